#include <ondrel/widgets/pushbutton.h>

#include <QPainter>
#include <QStyleOptionButton>

namespace Ondrel
{

PushButton::PushButton(const QString& text, QWidget* parent)
    : QPushButton(text, parent)
{
}

void PushButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(76, 75, 75));
    QStyleOptionButton option;
    initStyleOption(&option);
    style()->drawControl(QStyle::CE_PushButton, &option, &painter, this);
}

} // namespace Ondrel
