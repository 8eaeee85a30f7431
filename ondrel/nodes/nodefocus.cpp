#include <ondrel/nodes/node.h>

#include <QFocusEvent>
#include <QGraphicsProxyWidget>
#include <QGraphicsScene>
#include <QKeyEvent>
#include <QPointer>
#include <QWidget>

#include <private/qwidget_p.h>

#include <algorithm>

namespace Ondrel
{
namespace
{

Qt::FocusReason focusReason(bool next)
{
    return next ? Qt::TabFocusReason : Qt::BacktabFocusReason;
}

// Takes a widget's link to its proxy away for a while, so that what it does with the focus stays inside of it.
class ProxyLinkCut
{
public:
    explicit ProxyLinkCut(QWidget& widget)
        : m_widget(&widget)
        , m_proxy(QWidgetPrivate::get(&widget)->extra->proxyWidget)
    {
        QWidgetPrivate::get(&widget)->extra->proxyWidget = nullptr;
    }

    ~ProxyLinkCut()
    {
        if (m_widget && m_proxy)
            QWidgetPrivate::get(m_widget)->extra->proxyWidget = m_proxy;
    }

    ProxyLinkCut(const ProxyLinkCut&) = delete;
    ProxyLinkCut& operator=(const ProxyLinkCut&) = delete;

private:
    QPointer<QWidget> m_widget;
    QPointer<QGraphicsProxyWidget> m_proxy;
};

// A composite control takes the key itself, as long as it has a further part to go to.
bool takesTab(QGraphicsProxyWidget& proxy, QWidget& widget, bool next)
{
    QKeyEvent press(QEvent::KeyPress, next ? Qt::Key_Tab : Qt::Key_Backtab, Qt::NoModifier);
    press.accept();
    const ProxyLinkCut cut(widget);
    return proxy.scene()->sendEvent(&proxy, &press) && press.isAccepted();
}

bool moveFocusInside(QGraphicsProxyWidget& proxy, bool next)
{
    const QPointer<QWidget> widget = proxy.widget();
    if (!widget)
        return false;
    const QPointer<QWidget> before = widget->focusWidget();
    if (before && proxy.scene() && takesTab(proxy, *widget, next))
        return true;
    if (!widget)
        return false;
    widget->setFocus(focusReason(next));
    const QWidget* after = widget->focusWidget();
    return after && after != before && after != widget && widget->isAncestorOf(after); // Qt's own ancestor is itself
}

} // namespace

bool Node::focusNextPrevChild(bool next, const FieldBase* currentField, QGraphicsItem* currentItem)
{
    auto* proxy = currentItem ? qgraphicsitem_cast<QGraphicsProxyWidget*>(currentItem) : nullptr;
    if (proxy && moveFocusInside(*proxy, next))
        return true;

    const auto count = static_cast<std::ptrdiff_t>(inputFields.size());
    const auto found = std::find(inputFields.begin(), inputFields.end(), currentField);
    const std::ptrdiff_t step = next ? 1 : -1;
    std::ptrdiff_t position = found - inputFields.begin();
    if (found == inputFields.end() && next)
        position = -1;
    for (position += step; position >= 0 && position < count; position += step)
        if (focusControlOf(*inputFields[static_cast<std::size_t>(position)], focusReason(next)))
            return true;
    return false;
}

// The control is to get one event that it has the focus, after the scene knows: the one that setFocus sends is held
// back, and sent by itself at the end.
bool Node::focusControlOf(const InputField& field, Qt::FocusReason reason)
{
    for (QGraphicsItem* child : field.childItems()) {
        if (!child->isWidget() || !child->isVisible())
            continue;
        auto* control = static_cast<QGraphicsWidget*>(child);
        if (control->focusPolicy() == Qt::NoFocus)
            continue;
        control->installEventFilter(this);
        control->setFocus(reason);
        control->removeEventFilter(this);
        if (QGraphicsScene* scene = control->scene()) {
            scene->setActiveWindow(control);
            QFocusEvent event(QEvent::FocusIn, reason);
            scene->sendEvent(control, &event);
        }
        auto* proxy = qgraphicsitem_cast<QGraphicsProxyWidget*>(child);
        if (proxy && proxy->widget())
            proxy->widget()->setAttribute(Qt::WA_KeyboardFocusChange);
        return true;
    }
    return false;
}

bool Node::eventFilter(QObject* object, QEvent* event)
{
    return event->type() == QEvent::FocusIn || QObject::eventFilter(object, event);
}

} // namespace Ondrel
