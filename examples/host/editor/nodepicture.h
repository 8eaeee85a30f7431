#pragma once

#include <QElapsedTimer>
#include <QGraphicsEffect>
#include <QPixmap>
#include <QRect>

#include <set>

namespace Host
{

class NodePicture;

// What the pictures of one canvas share: the time that one frame may spend on making them, and the memory for all.
class NodePictures
{
public:
    // Around the painting of a widget's exposed part. What is drawn otherwise is drawn anew.
    void beginFrame(const QRect& exposed);
    void endFrame() { m_isInFrame = false; }
    bool isUnfinished() const { return m_unfinished; } // some were drawn from an old picture, or none at all

private:
    friend class NodePicture;
    bool mayRender() const; // one of each frame always, so that all are made however slow the machine is
    void makeRoom(qint64 bytes);

    std::set<NodePicture*> m_all;
    QElapsedTimer m_clock;
    qint64 m_bytes = 0;
    quint64 m_frame = 0;
    QRect m_exposed;
    bool m_isInFrame = false;
    bool m_hasRendered = false; // in this frame
    bool m_unfinished = false;
};

// A node, with everything in it, is drawn from a picture of it, which is made again once something in it has changed.
// With hundreds of nodes in view the many small items would take too long. While the zoom changes, or a load of nodes
// is new, a frame makes as many pictures as it has time for, and draws the others from what there is, enlarged or
// reduced; the frames after it go on, until all are sharp.
class NodePicture : public QGraphicsEffect
{
    Q_OBJECT
public:
    NodePicture(QGraphicsItem& node, NodePictures& shared); // the node takes it over
    ~NodePicture() override;

protected:
    void draw(QPainter* painter) override;
    void sourceChanged(ChangeFlags flags) override;

private:
    friend class NodePictures;
    bool isSharp(qreal scale) const;
    void render(QPainter& painter, const QRectF& bounds, qreal scale);
    void drawPicture(QPainter& painter, qreal scale) const;
    void release();
    qint64 bytes() const { return qint64(m_picture.width()) * m_picture.height() * 4; }

    QGraphicsItem& m_node;
    NodePictures& m_shared;
    QPixmap m_picture;
    QPoint m_offset; // of its corner from that of the node, in its pixels
    qreal m_scale = 0;
    bool m_stale = true;
    quint64 m_lastFrame = 0; // that drew it
};

} // namespace Host
