#include <ondrel/widgets/accessible_p.h>
#include <ondrel/widgets/histogramwidget.h>

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Ondrel
{
namespace
{

unsigned int highest(const std::vector<unsigned int>& bins)
{
    return bins.empty() ? 0 : *std::max_element(bins.begin(), bins.end());
}

QColor withAlpha(QColor color, int alpha)
{
    color.setAlpha(alpha);
    return color;
}

} // namespace

HistogramWidget::HistogramWidget(QWidget* parent)
    : QWidget(parent)
    , m_histogramInProgress(std::make_shared<Image::Histogram>())
    , m_workQueue(new BackgroundWorkQueue(this))
{
    setFocusPolicy(Qt::NoFocus);
    installAccessibility();
    setAccessibleName(tr("Histogram"));
    describe();
    connect(m_workQueue, SIGNAL(qImageFinished(QImage, int, QVariant)), this,
            SLOT(histogramBuilt(QImage, int, QVariant)));
}

// The channel on display.
void HistogramWidget::describe()
{
    const QString names[] = {tr("Red, green and blue"), tr("Red"), tr("Green"), tr("Blue"), tr("Luminosity")};
    setAccessibleDescription(names[std::clamp(int(m_channel), int(All), int(Luminosity))]);
}

void HistogramWidget::update(std::shared_ptr<const Ondrel::Image> image)
{
    const auto bins = unsigned(std::clamp(contentsRect().width(), 0, 256));
    const std::function<QImage()> job = [image, bins, counts = m_histogramInProgress] {
        const Image none;
        const Image& counted = image ? *image : none;
        counted.BuildHistogram(*counts, true, false, true, true, true, bins);
        return QImage();
    };
    m_workQueue->queueWork(job, 0, true, false, QVariant());
}

// The next job starts after this, so nobody writes the counts that are swapped.
void HistogramWidget::histogramBuilt(const QImage&, int, const QVariant&)
{
    std::swap(m_histogram, *m_histogramInProgress);
    calculateHighestValueCount();
    m_polygon.resize(m_histogram.red.size() + 2);
    update();
    Q_EMIT histogramBuilt();
}

void HistogramWidget::calculateHighestValueCount()
{
    const unsigned int red = highest(m_histogram.red), green = highest(m_histogram.green),
                       blue = highest(m_histogram.blue);
    switch (m_channel) {
    case All:
        m_highestValueCount = std::max({red, green, blue});
        break;
    case Red:
        m_highestValueCount = red;
        break;
    case Green:
        m_highestValueCount = green;
        break;
    case Blue:
        m_highestValueCount = blue;
        break;
    case Luminosity:
        m_highestValueCount = highest(m_histogram.luminance);
        break;
    }
}

void HistogramWidget::setChannel(Channel channel)
{
    if (channel == m_channel)
        return;
    m_channel = channel;
    describe();
    calculateHighestValueCount();
    update();
}

void HistogramWidget::setScale(Scale scale)
{
    m_scale = scale;
    update();
}

QSize HistogramWidget::sizeHint() const
{
    return QSize(200, minimumSize().height());
}

void HistogramWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(contentsRect(), QColor(28, 28, 28));
    if (m_histogram.red.empty())
        return;
    const auto draw = [&](const QColor& color, const std::vector<unsigned int>& bins) {
        drawHistogram(painter, color, withAlpha(color, 128), bins);
    };
    switch (m_channel) {
    case All:
        painter.setCompositionMode(QPainter::CompositionMode_Plus); // where all three overlap it is white
        draw(Qt::blue, m_histogram.blue);
        draw(Qt::green, m_histogram.green);
        draw(Qt::red, m_histogram.red);
        break;
    case Red:
        draw(Qt::red, m_histogram.red);
        break;
    case Green:
        draw(Qt::green, m_histogram.green);
        break;
    case Blue:
        draw(Qt::blue, m_histogram.blue);
        break;
    case Luminosity:
        draw(Qt::white, m_histogram.luminance);
        break;
    }
}

double HistogramWidget::heightOf(unsigned int count) const
{
    if (count == 0)
        return 0;
    return m_scale == Logarithmic ? std::log2(double(count)) : double(count);
}

void HistogramWidget::drawHistogram(QPainter& painter, const QColor& outline, const QColor& fill,
                                    const std::vector<unsigned int>& bins)
{
    const double width = contentsRect().width(), height = contentsRect().height();
    const double perBin = bins.size() > 1 ? width / double(bins.size() - 1) : 0.0;
    const double top = heightOf(m_highestValueCount);
    const double perPixel = top > 0 ? height / top : 0.0;
    m_polygon.resize(bins.size() + 2);
    for (std::size_t i = 0; i < bins.size(); ++i)
        m_polygon[i] = QPointF(double(i) * perBin, height - heightOf(bins[i]) * perPixel);
    m_polygon[bins.size()] = QPointF(width, height);
    m_polygon[bins.size() + 1] = QPointF(0, height);

    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawPolygon(m_polygon.data(), int(m_polygon.size()));
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(outline);
    painter.drawPolyline(m_polygon.data(), int(bins.size()));
}

} // namespace Ondrel
