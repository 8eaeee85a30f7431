#include <ondrel/nodes/fields/fieldproxy_p.h>

#include <QGraphicsItem>
#include <QGraphicsProxyWidget>
#include <QGraphicsScene>
#include <QWidget>

namespace Ondrel
{

void adjustUnshownSize(QWidget& widget)
{
    widget.adjustSize();
    widget.setAttribute(Qt::WA_Resized, false); // the scene may have another font: the proxy is to adjust it again
}

void embed(QGraphicsProxyWidget*& proxy, QWidget* widget, QGraphicsItem& field, const QPointF& position)
{
    if (proxy || !field.scene())
        return;
    proxy = field.scene()->addWidget(widget);
    proxy->setParentItem(&field);
    // A frame of hundreds of nodes would render thousands of widgets anew.
    proxy->setCacheMode(QGraphicsItem::DeviceCoordinateCache);
    proxy->setPos(position);
}

void fitBehindLabel(QGraphicsProxyWidget* proxy, QWidget& widget, float rowWidth, float labelWidth)
{
    if (!proxy)
        return;
    const float x = labelWidth + 4.0f;
    proxy->setPos(double(x), 0.0);
    widget.setFixedWidth(widgetLength(rowWidth - x));
}

void setOnlySize(QWidget& widget, float width, float height)
{
    const QSize size(widgetLength(width), widgetLength(height));
    widget.setMinimumSize(size);
    widget.setMaximumSize(size);
}

int widgetLength(float length)
{
    if (!(length > 0.0f)) // not a number, too
        return 0;
    return length < float(QWIDGETSIZE_MAX) ? int(length) : QWIDGETSIZE_MAX;
}

} // namespace Ondrel
