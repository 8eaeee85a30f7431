#pragma once

#include "graph.h"

#include <QGraphicsObject>
#include <QGraphicsTextItem>

namespace Host
{

// The line in which a frame's title is edited. Return and a click elsewhere take the text, Escape takes the old one.
class FrameTitle : public QGraphicsTextItem
{
    Q_OBJECT
public:
    enum { Type = QGraphicsItem::UserType + 301 };

    explicit FrameTitle(QGraphicsItem* parent);
    int type() const override { return Type; }
    void begin(const QString& title);

Q_SIGNALS:
    void done(QString title);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    QString m_before;
};

// A frame on the canvas, behind all nodes. The mouse gets it by its title and by its corner; on the rest of it the
// canvas goes on.
class FrameItem : public QGraphicsObject
{
    Q_OBJECT
public:
    enum { Type = QGraphicsItem::UserType + 300 };

    explicit FrameItem(quint64 id);
    int type() const override { return Type; }
    quint64 id() const { return m_id; }

    void show(const FrameRecord& record);
    QString title() const { return m_title; }
    QRectF area() const; // in the scene, also while it is moved or resized
    QRectF titleArea() const;
    static QSizeF leastSize();
    void setArea(const QRectF& area);
    void setMarked(bool marked);
    void editTitle();

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

Q_SIGNALS:
    void pressed(quint64 id);
    void moved(quint64 id, QPointF way); // since the press
    void released(quint64 id);
    void titleEdited(quint64 id, QString title);

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;
    void hoverMoveEvent(QGraphicsSceneHoverEvent* event) override;

private:
    QRectF titleBar() const;
    QRectF corner() const;
    void endEditing(const QString& title);

    quint64 m_id;
    QString m_title;
    QSizeF m_size;
    QSizeF m_sizeBefore;
    FrameTitle* m_editor;
    bool m_marked = false;
    bool m_resizes = false;
};

} // namespace Host
