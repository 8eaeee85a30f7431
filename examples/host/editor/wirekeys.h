#pragma once

#include "graph.h"

#include <QObject>

class QMenu;

namespace Host
{

class CanvasCommands;
class Scene;
class SceneView;

// Single wires by keys. From a selected node its wires are selected one after the other, first those that end at it;
// from a selected wire, the others of that node. User-interface thread only.
class WireKeys : public QObject
{
    Q_OBJECT
public:
    WireKeys(Scene& scene, SceneView& view, CanvasCommands& commands);
    void addActions(QMenu& menu);

    // Across to the node at that end of the selected wire, down and up to the other wires. False if none is selected.
    bool go(QPointF direction);

public Q_SLOTS:
    void selectNext();
    void selectPrevious();
    void insertNode(); // into the selected wire

private:
    void step(int by);
    void select(const Connection& wire);

    Scene& m_scene;
    SceneView& m_view;
    CanvasCommands& m_commands;
    NodeId m_node = 0; // whose wires are walked
};

// A node's wires: those that end at it in the order of its inputs, then those that leave it in the order of its
// outputs.
std::vector<Connection> wiresOf(const Scene& scene, NodeId node);

} // namespace Host
