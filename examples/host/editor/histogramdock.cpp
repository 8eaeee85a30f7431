#include "histogramdock.h"

#include "imagepane.h"

#include <ondrel/widgets/histogramwidget.h>

#include <QVBoxLayout>

#include <utility>

namespace Host
{

HistogramDock::HistogramDock(const ImagePane& pane, QWidget* parent)
    : QDockWidget(tr("Histogram"), parent)
    , m_pane(pane)
{
    setObjectName("histogram");
    auto* const panel = new QWidget(this);
    m_histogram = new Ondrel::HistogramWidget(panel);
    m_histogram->setFixedHeight(150);
    m_histogram->setMinimumWidth(220);
    m_histogram->setAccessibleName(tr("Histogram of the picture in view"));
    auto* const layout = new QVBoxLayout(panel);
    layout->setContentsMargins(6, 0, 6, 6);
    layout->addWidget(m_histogram);
    panel->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum); // the docks of modes follow at once
    setWidget(panel);
    connect(&pane, SIGNAL(pictureShown()), this, SLOT(count()));
    connect(m_histogram, SIGNAL(histogramBuilt()), this, SLOT(takeCounts()));
}

// In the background; of the pictures that wait, only the newest is counted.
void HistogramDock::count()
{
    m_waiting = m_counting;
    m_counting = true;
    m_histogram->update(m_pane.shownPicture().image);
}

void HistogramDock::takeCounts()
{
    m_counting = std::exchange(m_waiting, false);
}

} // namespace Host
