#include "wires.h"

#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>

#include <algorithm>
#include <set>

namespace Viewer
{
namespace
{

constexpr float kSnap = 30; // scene units

QPointF centerOf(const Anchor& anchor)
{
    return anchor.sceneBoundingRect().center();
}

} // namespace

Wires::Wires(QGraphicsScene& scene)
    : m_scene(scene)
{
}

Wires::~Wires() = default;

void Wires::watch(Ondrel::PreviewNode& node)
{
    m_nodes.push_back(&node);
    connect(&node, SIGNAL(fieldAnchorPressEvent(Node*, Anchor*, QGraphicsSceneMouseEvent*)), this,
            SLOT(press(Node*, Anchor*, QGraphicsSceneMouseEvent*)));
    connect(&node, SIGNAL(fieldAnchorMoveEvent(Node*, Anchor*, QGraphicsSceneMouseEvent*)), this,
            SLOT(move(Node*, Anchor*, QGraphicsSceneMouseEvent*)));
    connect(&node, SIGNAL(fieldAnchorReleaseEvent(Node*, Anchor*, QGraphicsSceneMouseEvent*)), this,
            SLOT(release(Node*, Anchor*, QGraphicsSceneMouseEvent*)));
    connect(&node, SIGNAL(fieldMadeUnavailable(Node*, Anchor*)), this, SLOT(cut(Node*, Anchor*)));
    connect(&node, SIGNAL(moved(Node*, bool)), this, SLOT(follow(Node*)));
}

void Wires::forget(Ondrel::PreviewNode& node)
{
    if (m_start.node == &node || m_target.node == &node)
        stopDrawing();
    node.disconnect(this);
    m_nodes.erase(std::remove(m_nodes.begin(), m_nodes.end(), &node), m_nodes.end());
    for (auto wire = m_wires.begin(); wire != m_wires.end();) {
        const auto current = wire++;
        if (current->output.node == &node || current->input.node == &node)
            cutWire(current);
    }
}

Ondrel::PreviewNode* Wires::findNode(const QString& name) const
{
    const auto found =
        std::find_if(m_nodes.begin(), m_nodes.end(), [&](const Node* node) { return node->name() == name; });
    return found == m_nodes.end() ? nullptr : *found;
}

bool Wires::connectLink(const Link& link)
{
    const End output{findNode(link.fromNode), nullptr}, input{findNode(link.toNode), nullptr};
    if (!output.node || !input.node)
        return false;
    return connectEnds({output.node, output.node->outputAnchorOfFieldByName(link.output)},
                       {input.node, input.node->inputAnchorOfFieldByName(link.input)});
}

std::vector<Wires::Link> Wires::links() const
{
    std::vector<Link> result;
    for (const Wire& wire : m_wires)
        result.push_back({wire.output.node->name(), wire.output.node->outputNameOfFieldByAnchor(wire.output.anchor),
                          wire.input.node->name(), wire.input.node->inputNameOfFieldByAnchor(wire.input.anchor)});
    return result;
}

bool Wires::leadsTo(const Node* from, const Node* to) const
{
    std::set<const Node*> reached = {from};
    std::vector<const Node*> waiting = {from};
    while (!waiting.empty() && reached.count(to) == 0) {
        const Node* const node = waiting.back();
        waiting.pop_back();
        for (const Wire& wire : m_wires) {
            if (wire.output.node == node && reached.insert(wire.input.node).second)
                waiting.push_back(wire.input.node);
        }
    }
    return reached.count(to) > 0;
}

bool Wires::connectEnds(const End& output, const End& input)
{
    if (!output.anchor || !input.anchor || leadsTo(input.node, output.node))
        return false;
    cut(input.node, input.anchor);
    m_wires.push_back({output, input, std::make_unique<WireItem>()});
    m_scene.addItem(m_wires.back().item.get());
    output.anchor->setConnected(true);
    input.anchor->setConnected(true);
    follow(input.node);
    output.node->anchorHasBeenConnected(output.anchor, input.node->inputDisplayNameOfFieldByAnchor(input.anchor));
    input.node->anchorHasBeenConnected(input.anchor, output.node->outputDisplayNameOfFieldByAnchor(output.anchor));
    return true;
}

void Wires::cutWire(std::list<Wire>::iterator wire)
{
    const End output = wire->output, input = wire->input;
    m_wires.erase(wire);
    const bool more = std::any_of(m_wires.begin(), m_wires.end(),
                                  [&](const Wire& other) { return other.output.anchor == output.anchor; });
    output.anchor->setConnected(more);
    input.anchor->setConnected(false);
    input.node->anchorHasBeenDisconnected(input.anchor);
    if (!more)
        output.node->anchorHasBeenDisconnected(output.anchor);
}

void Wires::cut(Node*, Anchor* anchor)
{
    for (auto wire = m_wires.begin(); wire != m_wires.end();) {
        const auto current = wire++;
        if (current->output.anchor == anchor || current->input.anchor == anchor)
            cutWire(current);
    }
}

void Wires::follow(Node* node)
{
    for (const Wire& wire : m_wires) {
        if (wire.output.node == node || wire.input.node == node)
            wire.item->setEnds(centerOf(*wire.output.anchor), centerOf(*wire.input.anchor));
    }
}

Wires::End Wires::closestTo(const QPointF& point, Anchor::IODirection direction) const
{
    End closest;
    float least = kSnap;
    for (Ondrel::PreviewNode* const node : m_nodes) {
        Anchor* anchor = nullptr;
        float distance = 0;
        node->findClosestAnchor(point.toPoint(), direction, nullptr, &anchor, distance);
        if (anchor && anchor->isVisible() && distance < least) {
            least = distance;
            closest = {node, anchor};
        }
    }
    return closest;
}

// An input that has a wire gives it back to the mouse.
void Wires::press(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event)
{
    stopDrawing();
    m_start = {static_cast<Ondrel::PreviewNode*>(node), anchor};
    const auto wire =
        std::find_if(m_wires.begin(), m_wires.end(), [&](const Wire& other) { return other.input.anchor == anchor; });
    if (wire != m_wires.end()) {
        m_start = wire->output;
        cutWire(wire);
    }
    m_start.anchor->setInteracting(true);
    m_loose = std::make_unique<WireItem>();
    m_loose->setLook(WireItem::Marked);
    m_scene.addItem(m_loose.get());
    move(node, anchor, event);
}

void Wires::setTarget(const End& target)
{
    if (m_target.anchor && m_target.anchor != m_start.anchor)
        m_target.anchor->setInteracting(false);
    m_target = target;
    if (m_target.anchor)
        m_target.anchor->setInteracting(true);
}

void Wires::move(Node*, Anchor*, QGraphicsSceneMouseEvent* event)
{
    if (!m_loose)
        return;
    const bool fromOutput = m_start.anchor->direction() == Anchor::Output;
    End target = closestTo(event->scenePos(), fromOutput ? Anchor::Input : Anchor::Output);
    const End &output = fromOutput ? m_start : target, &input = fromOutput ? target : m_start;
    if (target.anchor && leadsTo(input.node, output.node))
        target = End();
    setTarget(target);
    const QPointF fixed = centerOf(*m_start.anchor);
    const QPointF free = target.anchor ? centerOf(*target.anchor) : event->scenePos();
    m_loose->setEnds(fromOutput ? fixed : free, fromOutput ? free : fixed);
}

void Wires::release(Node*, Anchor*, QGraphicsSceneMouseEvent*)
{
    if (!m_loose)
        return;
    const bool fromOutput = m_start.anchor->direction() == Anchor::Output;
    const End output = fromOutput ? m_start : m_target, input = fromOutput ? m_target : m_start;
    stopDrawing();
    connectEnds(output, input);
}

void Wires::stopDrawing()
{
    setTarget(End());
    if (m_start.anchor)
        m_start.anchor->setInteracting(false);
    m_start = End();
    m_loose.reset();
}

} // namespace Viewer
