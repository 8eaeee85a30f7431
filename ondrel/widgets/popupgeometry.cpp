#include <ondrel/widgets/widgethelpers.h>

#include <QComboBox>
#include <QGraphicsProxyWidget>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QStyleOptionComboBox>

#include <algorithm>
#include <cmath>

namespace Ondrel
{
namespace
{

// Where the style would open the list, in the box's coordinates.
QRect listRectangle(QWidget* comboBox)
{
    QStyleOptionComboBox option;
    option.initFrom(comboBox);
    return comboBox->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxListBoxPopup, comboBox);
}

// As far to the left and upwards as it takes to end inside the bounds.
QRect pushedInside(QRect rect, const QRect& bounds)
{
    if (rect.right() > bounds.right())
        rect.moveRight(bounds.right());
    if (rect.bottom() > bounds.bottom())
        rect.moveBottom(bounds.bottom());
    return rect;
}

QRect onScreen(QWidget* comboBox, const QSize& size)
{
    const QRect list = listRectangle(comboBox);
    const QPoint at = comboBox->mapToGlobal(QPoint(0, 0)) + QPoint(list.left(), list.height());
    const QScreen* screen = QGuiApplication::screenAt(at);
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    const QRect rect(at, size);
    return screen ? pushedInside(rect, screen->geometry()) : rect;
}

// The popup becomes an item of its own, above all others.
void putIntoScene(QWidget* popup, QGraphicsScene* scene)
{
    if (!popup->graphicsProxyWidget())
        scene->addWidget(popup, Qt::Popup);
    popup->graphicsProxyWidget()->setParentItem(nullptr);
    popup->graphicsProxyWidget()->setZValue(999);
}

// `proxy` is in a scene with a view.
QRect inScene(QWidget* comboBox, QWidget* popup, const QSize& size, const QGraphicsProxyWidget& proxy,
              const QGraphicsView& view)
{
    const QRect list = listRectangle(comboBox);
    QPoint at = view.mapToGlobal(view.mapFromScene(proxy.scenePos()));
    // The height of the box on the screen, where the view's zoom has its part in it.
    const int bottom = int(std::lround(view.mapToScene(list.bottomRight()).y()));
    const int top = int(std::lround(view.mapToScene(list.topLeft()).y()));
    const double perSceneUnit = double(list.height()) / double(std::max(bottom - top + 1, 1));
    at += QPoint(list.left(), int(list.height() * perSceneUnit));

    putIntoScene(popup, proxy.scene());
    const QPoint inSceneUnits = view.mapToScene(view.mapFromGlobal(at)).toPoint();
    const QRect bounds = view.mapToScene(view.viewport()->rect()).boundingRect().toAlignedRect();
    return pushedInside(QRect(inSceneUnits, size), bounds);
}

} // namespace

QRect CalculateComboBoxPopupGeometry(QWidget* comboBox, QWidget* popup, const QSize& size)
{
    const QGraphicsProxyWidget* const proxy = WidgetParentGraphicsProxyWidget(comboBox);
    if (!proxy || !proxy->scene() || proxy->scene()->views().isEmpty())
        return onScreen(comboBox, size);
    return inScene(comboBox, popup, size, *proxy, *proxy->scene()->views().first());
}

} // namespace Ondrel
