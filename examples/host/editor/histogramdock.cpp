#include "histogramdock.h"

#include "imagepane.h"

#include <ondrel/widgets/histogramwidget.h>

#include <QVBoxLayout>

namespace Host
{

HistogramDock::HistogramDock(const ImagePane& pane, QWidget* parent)
    : QDockWidget(tr("Histogram"), parent)
{
    setObjectName("histogram");
    auto* const panel = new QWidget(this);
    auto* const histogram = new Ondrel::HistogramWidget(panel);
    histogram->setFixedHeight(150);
    histogram->setMinimumWidth(220);
    histogram->setAccessibleName(tr("Histogram of the picture in view"));
    auto* const layout = new QVBoxLayout(panel);
    layout->setContentsMargins(6, 0, 6, 6);
    layout->addWidget(histogram);
    panel->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum); // the docks of modes follow at once
    setWidget(panel);
    connect(&pane, &ImagePane::pictureShown, histogram,
            [histogram, &pane] { histogram->update(pane.shownPicture().image); });
}

} // namespace Host
