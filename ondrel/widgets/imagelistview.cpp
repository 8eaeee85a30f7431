#include <ondrel/widgets/imagelistview.h>

#include <QWheelEvent>

namespace Ondrel
{

ImageListView::ImageListView(QWidget* parent)
    : QListView(parent)
{
    setViewMode(QListView::IconMode);
    setSpacing(10);
    setFlow(QListView::LeftToRight);
    setWrapping(true);
    setMovement(QListView::Static);
    setUniformItemSizes(true);
    setItemDelegateForColumn(0, new ImageItemDelegate(this));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
}

void ImageListView::setItemIcon(int index, const QImage& image)
{
    if (!model() || index < 0 || index >= model()->rowCount(rootIndex()))
        return;
    model()->setData(model()->index(index, 0, rootIndex()), image, Qt::DecorationRole);
    updateGeometries();
}

void ImageListView::wheelEvent(QWheelEvent* event)
{
    // QListView would scroll sideways where it cannot scroll down.
    QAbstractScrollArea::wheelEvent(event); // NOLINT(bugprone-parent-virtual-call)
    event->accept();
}

ImageItemDelegate::ImageItemDelegate(QObject* parent)
    : QStyledItemDelegate(parent)
{
}

void ImageItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyleOptionViewItem unselected = option;
    unselected.state &= ~QStyle::State_Selected;
    QStyledItemDelegate::paint(painter, unselected, index);
}

QSize ImageItemDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QSize withPicture = option.decorationSize + QSize(0, option.fontMetrics.height() + 4);
    return QStyledItemDelegate::sizeHint(option, index).expandedTo(withPicture);
}

} // namespace Ondrel
