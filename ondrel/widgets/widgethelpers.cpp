#include <ondrel/widgets/widgethelpers.h>

#include <QComboBox>
#include <QDialog>
#include <QGraphicsProxyWidget>

namespace Ondrel
{

QGraphicsProxyWidget* WidgetParentGraphicsProxyWidget(QWidget* widget)
{
    for (; widget; widget = widget->parentWidget()) {
        if (QGraphicsProxyWidget* proxy = widget->graphicsProxyWidget())
            return proxy;
    }
    return nullptr;
}

void SetComboBoxIndexByData(QComboBox* comboBox, const QVariant& data)
{
    const int index = comboBox->findData(data, Qt::UserRole, Qt::MatchCaseSensitive);
    if (index >= 0)
        comboBox->setCurrentIndex(index);
}

void CenterDialogToParent(QDialog* dialog)
{
    const QPoint position = dialog->pos();
    const bool placed = dialog->testAttribute(Qt::WA_Moved);
    if (!dialog->testAttribute(Qt::WA_WState_ExplicitShowHide)) { // it has no size before it is laid out
        dialog->setAttribute(Qt::WA_DontShowOnScreen, true);
        dialog->show();
        dialog->hide();
        dialog->setAttribute(Qt::WA_DontShowOnScreen, false);
    }
    const QWidget* const parent = dialog->parentWidget();
    if (!parent) {
        if (dialog->pos() != position) // showing it places it
            dialog->move(position);
        dialog->setAttribute(Qt::WA_Moved, placed);
        return;
    }
    const QRect area = parent->geometry();
    dialog->move((area.left() + area.right()) / 2 - dialog->width() / 2,
                 (area.top() + area.bottom()) / 2 - dialog->height() / 2);
}

} // namespace Ondrel
