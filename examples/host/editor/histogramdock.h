#pragma once

#include <QDockWidget>

namespace Ondrel
{
class HistogramWidget;
}

namespace Host
{

class ImagePane;

// The histogram of the picture in the view.
class HistogramDock : public QDockWidget
{
    Q_OBJECT
public:
    HistogramDock(const ImagePane& pane, QWidget* parent);
    bool isBusy() const { return m_counting; }

private Q_SLOTS:
    void count();
    void takeCounts();

private:
    const ImagePane& m_pane;
    Ondrel::HistogramWidget* m_histogram;
    bool m_counting = false;
    bool m_waiting = false; // a picture behind the one that is being counted
};

} // namespace Host
