#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>
#include <ondrel/work/backgroundworkqueue.h>

#include <QPointF>
#include <QWidget>

#include <memory>
#include <vector>

namespace Ondrel
{

// The histogram of an image, counted in the background. A new image replaces one that still waits to be counted; what
// is shown changes only when a count is complete. User-interface thread only.
class ONDREL_EXPORT HistogramWidget : public QWidget
{
    Q_OBJECT
public:
    enum Channel { All = 0, Red = 1, Green = 2, Blue = 3, Luminosity = 4 };
    enum Scale { Linear = 0, Logarithmic = 1 };

    explicit HistogramWidget(QWidget* parent);

    using QWidget::update;

    // Counts into as many bins as the widget is wide, at most 256. A null pointer counts as an image without pixels.
    void update(std::shared_ptr<const Ondrel::Image> image);

    void setChannel(Channel channel); // All at first
    void setScale(Scale scale);       // Logarithmic at first

    QSize sizeHint() const override;

Q_SIGNALS:
    void histogramBuilt();

public Q_SLOTS:
    void histogramBuilt(const QImage& image, int priority, const QVariant& userData);

protected:
    void paintEvent(QPaintEvent* event) override;
    void calculateHighestValueCount();

private:
    void describe();
    void drawHistogram(QPainter& painter, const QColor& outline, const QColor& fill,
                       const std::vector<unsigned int>& bins);
    double heightOf(unsigned int count) const;

    Channel m_channel = All;
    Scale m_scale = Logarithmic;
    Image::Histogram m_histogram;
    std::shared_ptr<Image::Histogram> m_histogramInProgress; // shared with the job, which may outlive the widget
    unsigned int m_highestValueCount = 0;
    std::vector<QPointF> m_polygon; // kept for the next paint
    BackgroundWorkQueue* m_workQueue;
};

} // namespace Ondrel
