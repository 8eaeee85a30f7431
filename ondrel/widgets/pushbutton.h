#pragma once

#include <ondrel/ondrel_export.h>

#include <QPushButton>

namespace Ondrel
{

// A push button that paints the body colour of a node behind itself, which a style sheet alone does not do inside a
// QGraphicsProxyWidget.
class ONDREL_EXPORT PushButton : public QPushButton
{
    Q_OBJECT
public:
    PushButton(const QString& text, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace Ondrel
