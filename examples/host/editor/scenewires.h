#pragma once

#include "graph.h"

#include "../../nodeviewer/wireitem.h"

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace Host
{

class Scene;

// The items of a scene's connections. They end at anchors, and follow when told that a node has moved or changed.
class SceneWires
{
public:
    explicit SceneWires(Scene& scene);

    void add(const Connection& connection); // whose ends have anchors
    bool remove(const Connection& connection);
    void removeTouching(NodeId id);
    void clear();

    bool has(const Connection& connection) const { return find(connection) != nullptr; }
    bool leaves(NodeId id, const QString& output) const; // whether a wire begins there
    std::optional<Connection> at(const QPointF& point) const;

    void place(NodeId id); // all that touch the node
    void hide(const Connection& connection);
    void showAll();

private:
    struct Wire {
        Connection connection;
        Viewer::WireItem item;
    };
    Wire* find(const Connection& connection) const;
    void forget(NodeId id, const Wire* wire);
    void erase(const Wire* wire);

    Scene& m_scene;
    std::vector<std::unique_ptr<Wire>> m_wires;             // the newest last
    std::unordered_map<NodeId, std::vector<Wire*>> m_touch; // by both ends, as one node's wires follow its every move
};

} // namespace Host
