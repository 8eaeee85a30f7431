#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QGraphicsProxyWidget>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QMouseEvent>
#include <QTest>
#include <QWidget>

namespace OndrelTest
{

inline void sendMouse(QWidget& widget, QEvent::Type type, const QPoint& position, Qt::KeyboardModifiers modifiers = {})
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, position, widget.mapToGlobal(position), button, buttons, modifiers);
    QApplication::sendEvent(&widget, &event);
}

inline void press(QWidget& widget, const QPoint& position)
{
    sendMouse(widget, QEvent::MouseButtonPress, position);
}

inline void move(QWidget& widget, const QPoint& position, Qt::KeyboardModifiers modifiers = {})
{
    sendMouse(widget, QEvent::MouseMove, position, modifiers);
}

inline void release(QWidget& widget, const QPoint& position)
{
    sendMouse(widget, QEvent::MouseButtonRelease, position);
}

inline void setHovered(QWidget& widget, bool hovered)
{
    widget.setAttribute(Qt::WA_UnderMouse, hovered);
    QEvent event(hovered ? QEvent::Enter : QEvent::Leave);
    QApplication::sendEvent(&widget, &event);
}

// Shows a window and waits until it has the keyboard, without which no widget in it gets the focus.
inline void showActive(QWidget& window)
{
    window.show();
    QApplication::setActiveWindow(&window);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
}

// A widget inside a scene with one view, as a node has it. The scene owns the widget.
struct SceneHost {
    explicit SceneHost(QWidget* widget, double zoom = 1, const QPointF& position = {40, 40})
        : view(&scene)
    {
        scene.setSceneRect(0, 0, 600, 400);
        view.setAlignment(Qt::AlignLeft | Qt::AlignTop);
        view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.scale(zoom, zoom);
        view.resize(600, 400);
        proxy = scene.addWidget(widget);
        proxy->setPos(position);
        showActive(view);
    }

    // Where a point of the widget is in the view.
    QPoint at(const QPoint& position) const { return view.mapFromScene(proxy->mapToScene(position)); }

    void click(const QPoint& position) { QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, at(position)); }

    QGraphicsScene scene;
    QGraphicsView view;
    QGraphicsProxyWidget* proxy = nullptr;
};

} // namespace OndrelTest
