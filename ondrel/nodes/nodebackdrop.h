#pragma once

#include <ondrel/ondrel_export.h>

#include <QGraphicsRectItem>
#include <QObject>

// The soft shadow behind a node. It is blurred once in the life of the process and then drawn in pieces, whatever the
// node's size; its middle stays empty. User-interface thread only.
class ONDREL_EXPORT NodeBackdrop : public QObject, public QGraphicsRectItem
{
    Q_OBJECT
public:
    enum { Type = 65539 };

    explicit NodeBackdrop(QGraphicsItem* parent);

    int type() const override;

    // The rectangle that throws the shadow, in the parent's coordinates. The item grows by 17 beyond it on all sides.
    void setTargetRect(const QRectF& rect);

    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;
};
