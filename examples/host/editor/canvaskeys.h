#pragma once

#include "graph.h"

#include <QObject>

class QKeyEvent;
class QMenu;

namespace Host
{

class Document;
class Scene;
class SceneView;

// What the mouse does on the canvas, by keys: the arrows select the next node in their direction (with Shift in
// addition), with Alt they move the selected nodes, with Ctrl the canvas; Return goes into the controls of the selected
// node, Escape out of them. User-interface thread only.
class CanvasKeys : public QObject
{
    Q_OBJECT
public:
    CanvasKeys(Document& document, Scene& scene, SceneView& view);

    void addActions(QMenu& menu);
    void connectLater(NodeId node); // shows the choice of connections once the caller has returned

public Q_SLOTS:
    void selectAll();
    void renameSelected();
    void connectSelected();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    bool press(const QKeyEvent& event);
    bool goTo(QPointF direction, bool extends);
    bool move(QPointF direction);
    void scroll(QPointF direction);
    bool enterControls();
    NodeId nextFrom(QPointF point, QPointF direction) const;
    NodeId current() const; // the one node that is selected, else 0
    void chooseConnections(NodeId node);

    Document& m_document;
    Scene& m_scene;
    SceneView& m_view;
    NodeId m_last = 0; // of those that the arrows have selected
    int m_gesture = 1; // of moves: those while a key is held are one step of undo
};

} // namespace Host
