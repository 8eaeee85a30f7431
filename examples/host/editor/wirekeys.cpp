#include "wirekeys.h"

#include "canvascommands.h"
#include "scene.h"
#include "sceneview.h"

#include <QMenu>

#include <algorithm>
#include <tuple>

namespace Host
{

std::vector<Connection> wiresOf(const Scene& scene, NodeId node)
{
    std::vector<Connection> wires;
    const PreviewNode* const item = scene.item(node);
    if (!item)
        return wires;
    for (const SceneWire* const wire : scene.wires().touching(node))
        wires.push_back(wire->connection);
    const auto place = [&](const Connection& wire) {
        const bool leaves = wire.from == node;
        return std::tuple(
            leaves, leaves ? item->outputIndexOfFieldByName(wire.output) : item->inputIndexOfFieldByName(wire.input),
            wire.to);
    };
    std::stable_sort(wires.begin(), wires.end(),
                     [&](const Connection& a, const Connection& b) { return place(a) < place(b); });
    return wires;
}

WireKeys::WireKeys(Scene& scene, SceneView& view, CanvasCommands& commands)
    : QObject(&view)
    , m_scene(scene)
    , m_view(view)
    , m_commands(commands)
{
}

void WireKeys::addActions(QMenu& menu)
{
    menu.addAction(tr("Select next &wire"), this, SLOT(selectNext()), QKeySequence("X"))
        ->setObjectName("edit.nextWire");
    menu.addAction(tr("Select pre&vious wire"), this, SLOT(selectPrevious()), QKeySequence("Shift+X"))
        ->setObjectName("edit.previousWire");
    menu.addAction(tr("&Insert node into wire..."), this, SLOT(insertNode()), QKeySequence("I"))
        ->setObjectName("edit.insertIntoWire");
}

bool WireKeys::go(QPointF direction)
{
    const std::optional<Connection> wire = m_scene.wires().selected();
    if (!wire)
        return false;
    if (direction.x() == 0) {
        step(direction.y() > 0 ? 1 : -1);
        return true;
    }
    const NodeId end = direction.x() < 0 ? wire->from : wire->to;
    m_scene.select({end, std::nullopt, 0});
    m_view.ensureVisible(m_scene.item(end));
    return true;
}

void WireKeys::selectNext()
{
    step(1);
}

void WireKeys::selectPrevious()
{
    step(-1);
}

// Round and round.
void WireKeys::step(int by)
{
    const std::optional<Connection> wire = m_scene.wires().selected();
    const std::vector<NodeId> nodes = m_scene.selectedNodes();
    if (!wire)
        m_node = nodes.size() == 1 ? nodes.front() : 0;
    else if (wire->from != m_node && wire->to != m_node)
        m_node = wire->to;
    const std::vector<Connection> wires = wiresOf(m_scene, m_node);
    if (wires.empty())
        return;
    const int count = int(wires.size());
    const auto now = wire ? std::find(wires.begin(), wires.end(), *wire) : wires.end();
    const int before = now != wires.end() ? int(now - wires.begin()) : by > 0 ? -1 : count;
    select(wires[std::size_t((before + by + count) % count)]);
}

void WireKeys::select(const Connection& wire)
{
    m_scene.select({0, wire, 0});
    const QPointF middle = m_scene.wires().middleOf(wire);
    m_view.ensureVisible(QRectF(middle, QSizeF(1, 1)));
}

void WireKeys::insertNode()
{
    if (const std::optional<Connection> wire = m_scene.wires().selected())
        m_commands.insertIntoWire(*wire, m_scene.wires().middleOf(*wire));
}

} // namespace Host
