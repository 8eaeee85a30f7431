#include <ondrel/nodes/fields/fieldproxy_p.h>
#include <ondrel/nodes/fields/histogramfield.h>

#include <QGraphicsProxyWidget>

#include <utility>

namespace Ondrel
{
namespace
{

constexpr int kWidth = 182;

} // namespace

HistogramField::HistogramField(QString name, HistogramWidget::Channel channel, HistogramWidget::Scale scale,
                               QGraphicsItem* parent)
    : InputField(name, parent, nullptr, QString())
    , m_widget(new HistogramWidget(nullptr))
{
    m_widget->setChannel(channel);
    m_widget->setScale(scale);
    m_widget->setFixedWidth(kWidth);
    m_widget->setFocusPolicy(Qt::NoFocus);
    setCompressedHeight(false);
    connect(m_widget, SIGNAL(histogramBuilt()), this, SIGNAL(histogramBuilt()));
}

HistogramField::~HistogramField()
{
    if (!m_proxy)
        delete m_widget;
}

void HistogramField::setChannel(HistogramWidget::Channel channel)
{
    m_widget->setChannel(channel);
}

void HistogramField::setScaleMode(HistogramWidget::Scale scale)
{
    m_widget->setScale(scale);
}

void HistogramField::setCompressedHeight(bool compressed)
{
    m_widget->setFixedHeight(compressed ? 75 : 150);
}

void HistogramField::setImage(std::shared_ptr<const Image> image)
{
    m_widget->update(std::move(image));
}

float HistogramField::minWidth() const
{
    return float(kWidth);
}

float HistogramField::minHeight() const
{
    return float(m_widget->minimumHeight());
}

void HistogramField::addedToScene()
{
    embed(m_proxy, m_widget, *this, QPointF(0.0, 0.0));
    m_widget->setFocusPolicy(Qt::NoFocus);
    if (m_proxy)
        m_proxy->setFocusPolicy(Qt::NoFocus);
}

void HistogramField::sizeChanged(float width, float, float)
{
    m_widget->setFixedWidth(widgetLength(width));
}

void HistogramField::paint(QPainter*, const QStyleOptionGraphicsItem*, QWidget*) {}

} // namespace Ondrel
