#pragma once

#include <QCoreApplication>
#include <QTranslator>

namespace Host
{

// A translation into a language that puts every text between < and >, for as long as it lives.
class Marker : public QTranslator
{
public:
    Marker() { QCoreApplication::installTranslator(this); }
    ~Marker() override { QCoreApplication::removeTranslator(this); }
    Marker(const Marker&) = delete;
    Marker& operator=(const Marker&) = delete;

    QString translate(const char*, const char* text, const char*, int) const override
    {
        return QString("<%1>").arg(text);
    }
    bool isEmpty() const override { return false; }
};

} // namespace Host
