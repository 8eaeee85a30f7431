#include <ondrel/widgets/focuseventfilter.h>

namespace Ondrel
{

FocusEventFilter::FocusEventFilter(QObject* parent)
    : QObject(parent)
{
}

bool FocusEventFilter::eventFilter(QObject* object, QEvent* event)
{
    switch (event->type()) {
    case QEvent::FocusAboutToChange:
        Q_EMIT focusAboutToChange(static_cast<QFocusEvent*>(event));
        break;
    case QEvent::FocusIn:
        Q_EMIT focusIn();
        break;
    case QEvent::FocusOut:
        Q_EMIT focusOut();
        break;
    default:
        break;
    }
    return QObject::eventFilter(object, event);
}

} // namespace Ondrel
