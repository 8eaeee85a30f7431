#include "loosewire.h"

#include "scene.h"

#include <QGraphicsSceneMouseEvent>

namespace Host
{
namespace
{

constexpr float kSnap = 30; // scene units

} // namespace

LooseWire::LooseWire(Scene& scene)
    : m_scene(scene)
{
}

void LooseWire::watch(PreviewNode& node)
{
    connect(&node, SIGNAL(fieldAnchorPressEvent(Node*, Anchor*, QGraphicsSceneMouseEvent*)), this,
            SLOT(anchorPressed(Node*, Anchor*, QGraphicsSceneMouseEvent*)));
    connect(&node, SIGNAL(fieldAnchorMoveEvent(Node*, Anchor*, QGraphicsSceneMouseEvent*)), this,
            SLOT(anchorMoved(Node*, Anchor*, QGraphicsSceneMouseEvent*)));
    connect(&node, SIGNAL(fieldAnchorReleaseEvent(Node*, Anchor*, QGraphicsSceneMouseEvent*)), this,
            SLOT(anchorReleased(Node*, Anchor*, QGraphicsSceneMouseEvent*)));
}

Anchor* LooseWire::anchorOf(const Grip& grip) const
{
    return m_scene.anchor(grip.node, grip.field, grip.isOutput);
}

std::optional<LooseWire::Grip> LooseWire::gripNear(const QPointF& point, bool outputs) const
{
    std::optional<Grip> closest;
    float least = kSnap;
    for (const auto& [id, node] : m_scene.nodeItems()) {
        Anchor* anchor = nullptr;
        float distance = 0;
        node->findClosestAnchor(point.toPoint(), outputs ? Anchor::Output : Anchor::Input, nullptr, &anchor, distance);
        if (!anchor || !anchor->isVisible() || distance >= least)
            continue;
        least = distance;
        closest = Grip{id, outputs ? node->outputNameOfFieldByAnchor(anchor) : node->inputNameOfFieldByAnchor(anchor),
                       outputs};
    }
    return closest;
}

Connection LooseWire::connectionOf(const Grip& a, const Grip& b)
{
    const Grip& output = a.isOutput ? a : b;
    const Grip& input = a.isOutput ? b : a;
    return {output.node, output.field, input.node, input.field};
}

// An input that has a wire gives it back to the mouse.
void LooseWire::anchorPressed(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event)
{
    drop();
    const bool isOutput = anchor->direction() == Anchor::Output;
    m_start = {node->id(), isOutput ? node->outputNameOfFieldByAnchor(anchor) : node->inputNameOfFieldByAnchor(anchor),
               isOutput};
    if (!isOutput) {
        if (const Connection* const connection = m_scene.document().graph().into(m_start.node, m_start.field)) {
            m_pulled = *connection;
            m_start = {connection->from, connection->output, true};
            m_scene.wires().hide(*m_pulled);
        }
    }
    m_item = std::make_unique<Viewer::WireItem>();
    m_item->setLook(Viewer::WireItem::Marked);
    m_scene.addItem(m_item.get());
    anchorMoved(node, anchor, event);
}

void LooseWire::anchorMoved(Node*, Anchor*, QGraphicsSceneMouseEvent* event)
{
    if (!m_item)
        return;
    m_target = gripNear(event->scenePos(), !m_start.isOutput);
    const Anchor* const start = anchorOf(m_start);
    const Anchor* const target = m_target ? anchorOf(*m_target) : nullptr;
    const QPointF free = target ? centerOf(*target) : event->scenePos();
    if (start)
        m_item->setEnds(m_start.isOutput ? centerOf(*start) : free, m_start.isOutput ? free : centerOf(*start));
}

void LooseWire::anchorReleased(Node*, Anchor*, QGraphicsSceneMouseEvent* event)
{
    if (!m_item)
        return;
    const Grip start = m_start;
    const std::optional<Grip> target = m_target;
    const std::optional<Connection> pulled = m_pulled;
    drop();
    if (target && pulled && connectionOf(start, *target) == *pulled)
        return; // back where it was
    Document& document = m_scene.document();
    const QString refusal =
        target ? whyNotConnect(document.graph(), document.types(), connectionOf(start, *target)) : QString();
    if (!refusal.isEmpty()) { // a wire that was pulled stays where it was
        Q_EMIT refused(refusal);
        return;
    }
    document.beginStep(tr("Connect"));
    if (pulled)
        document.removeConnection(*pulled);
    if (target)
        document.addConnection(connectionOf(start, *target));
    document.endStep();
    if (!target && !pulled)
        Q_EMIT dropped(start.node, start.field, start.isOutput, event->scenePos());
}

bool LooseWire::drop()
{
    const bool wasThere = m_item != nullptr;
    if (m_pulled)
        m_scene.wires().showAll();
    m_item.reset();
    m_target.reset();
    m_pulled.reset();
    m_start = Grip();
    return wasThere;
}

} // namespace Host
