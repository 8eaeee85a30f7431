#include "controls.h"

#include <QApplication>
#include <QComboBox>
#include <QEnterEvent>
#include <QFocusEvent>
#include <QMouseEvent>

namespace
{

void send(QWidget* widget, QEvent::Type type, const QPointF& at, Qt::MouseButtons held)
{
    const QPointF global = widget->mapToGlobal(at.toPoint());
    QMouseEvent event(type, at, global, Qt::LeftButton, held, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

// The control, or the part of it that takes the mouse at its middle.
QWidget* target(QWidget* widget)
{
    QWidget* const child = widget->childAt(widget->rect().center());
    return child && !child->testAttribute(Qt::WA_TransparentForMouseEvents) && widget->focusPolicy() == Qt::NoFocus
               ? child
               : widget;
}

void hover(QWidget* widget)
{
    widget->setAttribute(Qt::WA_UnderMouse, true);
    QEnterEvent enter(widget->rect().center(), widget->rect().center(), widget->rect().center());
    QApplication::sendEvent(widget, &enter);
}

void press(QWidget* widget)
{
    if (!qobject_cast<QComboBox*>(widget)) // its popup is shown by itself
        send(target(widget), QEvent::MouseButtonPress, target(widget)->rect().center(), Qt::LeftButton);
}

void drag(QWidget* widget)
{
    press(widget);
    QWidget* const moved = target(widget);
    send(moved, QEvent::MouseMove, QPointF(moved->width() * 0.75, moved->height() * 0.4), Qt::LeftButton);
}

void focus(QWidget* widget)
{
    QApplication::setActiveWindow(widget->window());
    widget->setFocus(Qt::TabFocusReason);
}

} // namespace

std::vector<State> allStates()
{
    return {{"normal", [](QWidget*) {}}, {"hovered", hover},
            {"pressed", press},          {"dragged", drag},
            {"focused, editing", focus}, {"disabled", [](QWidget* widget) { widget->setEnabled(false); }}};
}
