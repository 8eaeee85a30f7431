#pragma once

#include <QDockWidget>

namespace Host
{

class ImagePane;

// The histogram of the picture in the view.
class HistogramDock : public QDockWidget
{
    Q_OBJECT
public:
    HistogramDock(const ImagePane& pane, QWidget* parent);
};

} // namespace Host
