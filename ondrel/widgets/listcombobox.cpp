#include <ondrel/widgets/listcombobox.h>

#include <QListWidget>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionComboBox>

#include <algorithm>

namespace Ondrel
{

ListComboBox::ListComboBox(QWidget* parent)
    : ComboBoxBase(parent)
    , m_listWidget(new QListWidget) // the box takes it as its view
{
    setMinimumContentsLength(12);
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED // there is no other policy that leaves the icons' width out
        setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLength);
    QT_WARNING_POP
    m_listWidget->hide();
    m_listWidget->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setModel(m_listWidget->model());
    setView(m_listWidget);
}

void ListComboBox::setItemEnabled(int index, bool enabled)
{
    QListWidgetItem* const item = m_listWidget->item(index);
    if (!item)
        return;
    const Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    item->setFlags(enabled ? item->flags() | flags : item->flags() & ~flags);
}

void ListComboBox::addSeparator()
{
    auto* item = new QListWidgetItem(m_listWidget);
    item->setData(Qt::SizeHintRole, QSize(-1, 10)); // setSizeHint() drops a size without a width
    item->setFlags(Qt::NoItemFlags);
    auto* line = new QWidget;
    line->resize(0, 10); // a row is as high as its widget, which has a window's size by default
    line->setObjectName(QStringLiteral("node_combobox_dropdown_separator"));
    m_listWidget->setItemWidget(item, line);
}

int ListComboBox::popupVisibleItemHeightSum() const
{
    int first = 0;
    while (first < count() && m_listWidget->isRowHidden(first))
        ++first;
    const int last = std::min(count(), first + std::min(count(), maxVisibleItems()));
    int sum = 0;
    for (int row = first; row < last; ++row)
        sum += m_listWidget->sizeHintForRow(row);
    return sum;
}

QSize ListComboBox::calculatePopupSize()
{
    const QMargins margins = m_listWidget->contentsMargins();
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const int styled =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxListBoxPopup, this).width();
    int wanted = m_listWidget->sizeHintForColumn(0);
    if (maxVisibleItems() < count())
        wanted += m_listWidget->verticalScrollBar()->sizeHint().width();
    return QSize(std::max(wanted, styled), popupVisibleItemHeightSum() + margins.top() + margins.bottom());
}

// The list keeps the layout of its former size until its scroll bars change.
void ListComboBox::showPopup()
{
    ComboBoxBase::showPopup();
    m_listWidget->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_listWidget->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
}

} // namespace Ondrel
