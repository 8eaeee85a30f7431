#include "scenewires.h"

#include "scene.h"

#include <QLineF>
#include <QPainterPathStroker>

#include <algorithm>
#include <utility>

namespace Host
{
namespace
{

constexpr qreal kReach = 7;  // of the mouse, on both sides
constexpr int kSamples = 32; // of a wire

} // namespace

SceneWire::SceneWire(Scene& inScene, const Connection& ofConnection)
    : scene(inScene)
    , connection(ofConnection)
{
}

SceneWires::SceneWires(Scene& scene)
    : m_scene(scene)
{
}

void SceneWires::add(const Connection& connection)
{
    m_wires.push_back(std::make_unique<SceneWire>(m_scene, connection));
    SceneWire* const wire = m_wires.back().get();
    m_touch[connection.from].push_back(wire);
    m_touch[connection.to].push_back(wire);
    m_scene.addItem(&wire->item);
    updateLook(connection);
}

SceneWire* SceneWires::find(const Connection& connection) const
{
    const auto touching = m_touch.find(connection.to);
    if (touching == m_touch.end())
        return nullptr;
    const auto found = std::find_if(touching->second.begin(), touching->second.end(),
                                    [&](const SceneWire* wire) { return wire->connection == connection; });
    return found == touching->second.end() ? nullptr : *found;
}

void SceneWires::forget(NodeId id, const SceneWire* wire)
{
    std::vector<SceneWire*>& touching = m_touch[id];
    touching.erase(std::remove(touching.begin(), touching.end(), wire), touching.end());
    if (touching.empty())
        m_touch.erase(id);
}

void SceneWires::erase(const SceneWire* wire)
{
    forget(wire->connection.from, wire);
    forget(wire->connection.to, wire);
    m_wires.erase(
        std::find_if(m_wires.begin(), m_wires.end(), [wire](const auto& each) { return each.get() == wire; }));
}

bool SceneWires::remove(const Connection& connection)
{
    const SceneWire* const wire = find(connection);
    if (wire)
        erase(wire);
    for (std::optional<Connection>* const slot : {&m_lit, &m_selected, &m_target}) {
        if (*slot == connection)
            slot->reset();
    }
    return wire != nullptr;
}

void SceneWires::removeTouching(NodeId id)
{
    while (m_touch.count(id) != 0)
        erase(m_touch[id].back());
}

void SceneWires::clear()
{
    m_touch.clear();
    m_wires.clear();
    m_lit = m_selected = m_target = std::nullopt;
}

std::vector<SceneWire*> SceneWires::touching(NodeId id) const
{
    const auto found = m_touch.find(id);
    return found == m_touch.end() ? std::vector<SceneWire*>() : found->second;
}

bool SceneWires::leaves(NodeId id, const QString& output) const
{
    const auto touching = m_touch.find(id);
    return touching != m_touch.end() &&
           std::any_of(touching->second.begin(), touching->second.end(), [&](const SceneWire* wire) {
               return wire->connection.from == id && wire->connection.output == output;
           });
}

std::optional<Connection> SceneWires::at(const QPointF& point) const
{
    QPainterPathStroker stroker;
    stroker.setWidth(2 * kReach);
    for (auto wire = m_wires.rbegin(); wire != m_wires.rend(); ++wire) {
        const QRectF near = (*wire)->item.boundingRect().adjusted(-kReach, -kReach, kReach, kReach);
        if (near.contains(point) && stroker.createStroke((*wire)->item.path()).contains(point))
            return (*wire)->connection;
    }
    return std::nullopt;
}

QPointF SceneWires::middleOf(const Connection& connection) const
{
    const SceneWire* const wire = find(connection);
    return wire ? wire->item.path().pointAtPercent(0.5) : QPointF();
}

double SceneWires::distanceWithin(const Viewer::WireItem& item, const QRectF& area)
{
    double least = std::numeric_limits<double>::infinity();
    if (!item.boundingRect().intersects(area))
        return least;
    for (int i = 0; i <= kSamples; ++i) {
        const QPointF point = item.path().pointAtPercent(double(i) / kSamples);
        if (area.contains(point))
            least = std::min(least, QLineF(point, area.center()).length());
    }
    return least;
}

void SceneWires::mark(std::optional<Connection>& slot, const std::optional<Connection>& connection)
{
    if (slot == connection)
        return;
    const std::optional<Connection> before =
        std::exchange(slot, connection && has(*connection) ? connection : std::nullopt);
    updateLook(before);
    updateLook(slot);
}

void SceneWires::updateLook(const std::optional<Connection>& connection)
{
    if (SceneWire* const wire = connection ? find(*connection) : nullptr) {
        const bool isMarked = connection == m_selected || connection == m_target;
        wire->item.setLook(isMarked              ? Viewer::WireItem::Marked
                           : connection == m_lit ? Viewer::WireItem::Lit
                                                 : Viewer::WireItem::Plain);
    }
}

void SceneWires::setLit(const std::optional<Connection>& connection)
{
    mark(m_lit, connection);
}

void SceneWires::setSelected(const std::optional<Connection>& connection)
{
    mark(m_selected, connection);
}

void SceneWires::setTarget(const std::optional<Connection>& connection)
{
    mark(m_target, connection);
}

void SceneWires::place(NodeId id)
{
    const auto touching = m_touch.find(id);
    if (touching == m_touch.end())
        return;
    for (SceneWire* wire : touching->second) {
        const Connection& connection = wire->connection;
        const Anchor* const output = m_scene.anchor(connection.from, connection.output, true);
        const Anchor* const input = m_scene.anchor(connection.to, connection.input, false);
        if (output && input)
            wire->item.setEnds(centerOf(*output), centerOf(*input));
    }
}

void SceneWires::hide(const Connection& connection)
{
    if (SceneWire* const wire = find(connection))
        wire->item.setVisible(false);
}

void SceneWires::showAll()
{
    for (const auto& wire : m_wires)
        wire->item.setVisible(true);
}

} // namespace Host
