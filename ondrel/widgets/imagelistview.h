#pragma once

#include <ondrel/ondrel_export.h>

#include <QImage>
#include <QListView>
#include <QStyledItemDelegate>

namespace Ondrel
{

// A grid of pictures that scrolls by pixels. The wheel scrolls it even at its ends, and never reaches a scene behind
// it.
class ONDREL_EXPORT ImageListView : public QListView
{
    Q_OBJECT
public:
    explicit ImageListView(QWidget* parent);

    // The picture of a row; a row outside of the model is ignored.
    void setItemIcon(int index, const QImage& image);

protected:
    void wheelEvent(QWheelEvent* event) override;
};

// Paints pictures without the colour of the selection. An item has room for a picture while it still waits for one.
class ONDREL_EXPORT ImageItemDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit ImageItemDelegate(QObject* parent = nullptr);
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace Ondrel
