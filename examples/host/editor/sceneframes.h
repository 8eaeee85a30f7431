#pragma once

#include "document.h"
#include "frameitem.h"

namespace Host
{

class Scene;

// The items of a document's frames, and what the mouse does to them: one that is moved takes along the nodes that lie
// wholly inside.
class SceneFrames : public QObject
{
    Q_OBJECT
public:
    explicit SceneFrames(Scene& scene);
    ~SceneFrames() override;

    FrameItem* item(quint64 id) const; // null if there is none
    const std::map<quint64, FrameItem*>& items() const { return m_items; }
    std::vector<NodeId> nodesInside(quint64 id) const;
    QRectF area() const;                    // of them all
    quint64 at(const QPointF& point) const; // whose title or corner is there; else 0
    quint64 selected() const { return m_selected; }
    void select(quint64 id); // 0 for none

    // What the mouse does by dragging. Calls in a row with the same gesture are one step of undo, and take along the
    // nodes that were inside at its start.
    void moveBy(quint64 id, QPointF way, int gesture);
    void resizeBy(quint64 id, QSizeF more, int gesture); // at its lower right corner, not below the least size

Q_SIGNALS:
    void pressed(); // one is selected by the mouse

private Q_SLOTS:
    void follow(); // the document
    void press(quint64 id);
    void move(quint64 id, QPointF way);
    void release(quint64 id);
    void rename(quint64 id, const QString& title);

private:
    FrameItem* add(quint64 id);

    Scene& m_scene;
    std::map<quint64, FrameItem*> m_items; // the scene's
    quint64 m_selected = 0;
    std::map<NodeId, QPointF> m_carried; // by the frame that is moved: where they were
    std::vector<NodeId> m_taken;         // by moveBy()
    std::pair<quint64, int> m_takenBy;   // frame and gesture
};

} // namespace Host
