#pragma once

#include <QCoreApplication>
#include <QTranslator>

#include <stdexcept>

namespace Host
{

// A translation that throws when it is asked for one text, for as long as it lives: whoever says that text, fails.
class Throwing : public QTranslator
{
public:
    explicit Throwing(const QString& text)
        : m_text(text)
    {
        QCoreApplication::installTranslator(this);
    }
    ~Throwing() override { QCoreApplication::removeTranslator(this); }
    Throwing(const Throwing&) = delete;
    Throwing& operator=(const Throwing&) = delete;

    QString translate(const char*, const char* text, const char*, int) const override
    {
        if (m_text == text)
            throw std::runtime_error("out of paper");
        return QString();
    }
    bool isEmpty() const override { return false; }

private:
    const QString m_text;
};

} // namespace Host
