#pragma once

#include <ondrel/ondrel_export.h>

#include <QFocusEvent>
#include <QObject>

namespace Ondrel
{

// Reports what happens to the focus of the objects that it is installed on. No event is swallowed.
class ONDREL_EXPORT FocusEventFilter : public QObject
{
    Q_OBJECT
public:
    explicit FocusEventFilter(QObject* parent = nullptr);
    bool eventFilter(QObject* object, QEvent* event) override;

Q_SIGNALS:
    void focusAboutToChange(QFocusEvent* event);
    void focusIn();
    void focusOut();
};

} // namespace Ondrel
