#pragma once

#include "graph.h"

#include "../../nodeviewer/wireitem.h"

#include <QObject>

#include <limits>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace Host
{

class Scene;

// What is drawn of a connection. An object, so that assistive programs can have it.
class SceneWire : public QObject
{
    Q_OBJECT
public:
    SceneWire(Scene& scene, const Connection& connection);

    Scene& scene;
    const Connection connection;
    Viewer::WireItem item;
};

// The items of a scene's connections. They end at anchors, and follow when told that a node has moved or changed.
class SceneWires
{
public:
    explicit SceneWires(Scene& scene);

    void add(const Connection& connection); // whose ends have anchors
    bool remove(const Connection& connection);
    void removeTouching(NodeId id);
    void clear();

    SceneWire* find(const Connection& connection) const; // null if there is none
    bool has(const Connection& connection) const { return find(connection) != nullptr; }
    const std::vector<std::unique_ptr<SceneWire>>& all() const { return m_wires; } // the newest last
    std::vector<SceneWire*> touching(NodeId id) const;
    bool leaves(NodeId id, const QString& output) const; // whether a wire begins there
    std::optional<Connection> at(const QPointF& point) const;
    QPointF middleOf(const Connection& connection) const;

    // What is marked for the user; nothing for a connection that has no wire.
    void setLit(const std::optional<Connection>& connection);
    void setSelected(const std::optional<Connection>& connection);
    void setTarget(const std::optional<Connection>& connection); // where a node would go between
    const std::optional<Connection>& selected() const { return m_selected; }
    const std::optional<Connection>& target() const { return m_target; }
    // The one that comes nearest to the middle of the area, of those that pass it and that are wanted.
    template <class Predicate>
    std::optional<Connection> through(const QRectF& area, Predicate wanted) const
    {
        std::optional<Connection> nearest;
        double least = std::numeric_limits<double>::infinity();
        for (const auto& wire : m_wires) {
            const double distance = distanceWithin(wire->item, area);
            if (distance < least && wanted(wire->connection)) {
                least = distance;
                nearest = wire->connection;
            }
        }
        return nearest;
    }

    void place(NodeId id); // all that touch the node
    void hide(const Connection& connection);
    void showAll();

private:
    static double distanceWithin(const Viewer::WireItem& item, const QRectF& area);
    void mark(std::optional<Connection>& slot, const std::optional<Connection>& connection);
    void updateLook(const std::optional<Connection>& connection);
    void forget(NodeId id, const SceneWire* wire);
    void erase(const SceneWire* wire);

    Scene& m_scene;
    std::vector<std::unique_ptr<SceneWire>> m_wires;
    std::unordered_map<NodeId, std::vector<SceneWire*>>
        m_touch; // by both ends, as one node's wires follow its every move
    std::optional<Connection> m_lit, m_selected, m_target;
};

} // namespace Host
