#pragma once

#include "scene.h"

#include <QObject>

#include <optional>

class QKeyEvent;
class QMenu;

namespace Host
{

class SceneView;
class WireKeys;

// What the mouse does on the canvas, by keys: the arrows select the next node or frame in their direction (nodes in
// addition with Shift), with Alt they move what is selected, with Alt and Shift they resize a frame, with Ctrl they
// move the canvas. Return goes into the controls of the selected node, Escape out of them; of a frame Return selects
// the nodes. From a wire the arrows lead as wirekeys.h says. User-interface thread only.
class CanvasKeys : public QObject
{
    Q_OBJECT
public:
    CanvasKeys(Scene& scene, SceneView& view, WireKeys& wires);

    void addActions(QMenu& menu);
    // Shows the choice of connections, or of those that may take the wire's place, once the caller has returned.
    void connectLater(NodeId node, const std::optional<Connection>& wire = std::nullopt);

public Q_SLOTS:
    void selectAll();
    void renameSelected();
    void connectSelected();
    void typeValues();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    bool press(const QKeyEvent& event);
    bool goTo(QPointF direction, bool extends);
    bool select(const CanvasThing& thing, bool extends);
    bool move(QPointF direction);
    bool resize(QPointF direction);
    void scroll(QPointF direction);
    bool enter();
    QPointF startOf(QPointF direction) const;
    CanvasThing nextFrom(QPointF point, QPointF direction, bool nodesOnly) const;
    NodeId current() const; // the one node that is selected, else 0
    void renameNode(NodeId node);
    void chooseConnections(NodeId node, const std::optional<Connection>& wire);

    Scene& m_scene;
    Document& m_document;
    SceneView& m_view;
    WireKeys& m_wires;
    NodeId m_last = 0; // of those that the arrows have selected
    int m_gesture;     // of moves: those while a key is held are one step of undo
};

} // namespace Host
