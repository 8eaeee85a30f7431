#pragma once

#include <QPointF>

class QGraphicsItem;
class QGraphicsProxyWidget;
class QWidget;

namespace Ondrel
{

// What the fields that show a widget have in common. Such a widget has no parent: it belongs to its field, and once it
// is embedded to its proxy, which is a child item of the field.

// The size that the widget will have when it is embedded. An unshown widget is 480 pixels high, which would make a node
// tall that is laid out before it comes into a scene.
void adjustUnshownSize(QWidget& widget);

// Shows the widget in the field's scene, at a place in the field. Nothing without a scene, or if `proxy` is set.
void embed(QGraphicsProxyWidget*& proxy, QWidget* widget, QGraphicsItem& field, const QPointF& position);

// Lets the widget fill a row of this width from 4 behind the label column on. Nothing before it is embedded.
void fitBehindLabel(QGraphicsProxyWidget* proxy, QWidget& widget, float rowWidth, float labelWidth);

// Gives the widget this size and no other. QWidget::setFixedSize() would leave the limits of its proxy as they were.
void setOnlySize(QWidget& widget, float width, float height);

// Truncated, and limited to what a widget can have.
int widgetLength(float length);

} // namespace Ondrel
