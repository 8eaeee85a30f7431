#include <ondrel/widgets/lineedit.h>
#include <ondrel/widgets/stylesheet_p.h>

#include <QPainter>

namespace Ondrel
{

LineEdit::LineEdit(QWidget* parent)
    : QLineEdit(parent)
{
    applyStyleSheet(*this, QStringLiteral("lineedit.css"));
}

void LineEdit::paintEvent(QPaintEvent* event)
{
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(palette().color(backgroundRole()));
        painter.setPen(Qt::NoPen);
        painter.drawRoundedRect(0, 1, width() + 1, height(), 2, 2);
    }
    QLineEdit::paintEvent(event);
}

} // namespace Ondrel
