#pragma once

#include "worker.h"

#include <QLabel>

namespace Host
{

class Document;
class Pictures;

// How much memory pictures take, for a status bar; brought up to date whenever all pictures on the screen are done.
class MemoryDisplay : public QLabel
{
    Q_OBJECT
public:
    MemoryDisplay(const Document& document, Pictures& pictures, QWidget* parent);

    bool isBusy() const { return m_worker.isBusy(); }

public Q_SLOTS:
    void freeCaches(); // all results, and the store's decoded pictures

private Q_SLOTS:
    void refresh();

private:
    const Document& m_document;
    Pictures& m_pictures;
    Worker m_worker; // the first to go: its end waits for what runs
};

} // namespace Host
