#include "nodedrag.h"

#include "scene.h"
#include "snapping.h"
#include "splice.h"

#include <QGraphicsView>
#include <QPen>

namespace Host
{
namespace
{

constexpr double kSnap = 8;    // scene units
constexpr double kMiddle = .3; // the part of a node's extent that a wire has to pass, on both sides of its centre

QRectF areaOf(const Node& node)
{
    return node.mapRectToScene(node.rect());
}

QRectF areaInView(const Scene& scene)
{
    const QList<QGraphicsView*> views = scene.views();
    return views.isEmpty() ? scene.sceneRect() : views[0]->mapToScene(views[0]->viewport()->rect()).boundingRect();
}

} // namespace

GuideLines::GuideLines(QGraphicsScene& scene)
    : m_scene(scene)
{
}

void GuideLines::setLines(const std::vector<QLineF>& lines)
{
    if (lines == m_lines)
        return;
    m_lines = lines;
    m_items.clear();
    QPen pen(QColor(255, 204, 0), 1, Qt::DashLine);
    pen.setCosmetic(true);
    for (const QLineF& line : lines) {
        m_items.push_back(std::make_unique<QGraphicsLineItem>(line));
        m_items.back()->setPen(pen);
        m_items.back()->setZValue(10);
        m_items.back()->setAcceptedMouseButtons(Qt::NoButton);
        m_scene.addItem(m_items.back().get());
    }
}

NodeDrag::NodeDrag(Scene& scene)
    : m_scene(scene)
    , m_guides(scene)
{
}

void NodeDrag::begin()
{
    m_others.clear();
    const QRectF inView = areaInView(m_scene);
    for (const auto& [id, node] : m_scene.nodeItems()) {
        const QRectF area = areaOf(*node);
        if (!node->isSelected() && area.intersects(inView))
            m_others.push_back(area);
    }
}

void NodeDrag::move(const Node& held, bool snaps)
{
    const std::vector<NodeId> selected = m_scene.selectedNodes();
    if (snaps)
        snap(held, selected);
    else
        m_guides.setLines({});
    for (const NodeId id : selected)
        m_scene.wires().place(id);
    findWire(selected);
}

void NodeDrag::snap(const Node& held, const std::vector<NodeId>& selected)
{
    const Snap snap = snapTo(areaOf(held), m_others, kSnap);
    m_guides.setLines(snap.guides);
    if (snap.offset.isNull())
        return;
    for (const NodeId id : selected)
        m_scene.item(id)->setPos(m_scene.item(id)->pos() + snap.offset);
}

void NodeDrag::findWire(const std::vector<NodeId>& selected)
{
    std::optional<Connection> target;
    if (selected.size() == 1) {
        const PreviewNode& node = *m_scene.item(selected.front());
        const QRectF area = areaOf(node);
        const double x = area.width() * kMiddle, y = area.height() * kMiddle;
        target = m_scene.wires().through(area.adjusted(x, y, -x, -y), [&](const Connection& wire) {
            return findSplice(m_scene.document(), node, wire).has_value();
        });
    }
    m_scene.wires().setTarget(target);
}

void NodeDrag::end()
{
    m_guides.setLines({});
    const std::optional<Connection> wire = m_scene.wires().target();
    m_scene.wires().setTarget(std::nullopt);
    Document& document = m_scene.document();
    std::map<NodeId, QPointF> moved;
    for (const auto& [id, node] : m_scene.nodeItems()) {
        const NodeRecord* const record = document.graph().node(id);
        if (record && record->position != node->pos())
            moved[id] = node->pos();
    }
    if (moved.empty())
        return;
    const std::vector<NodeId> selected = m_scene.selectedNodes();
    document.beginStep(wire ? Document::tr("Insert into wire") : Document::tr("Move"));
    document.moveNodes(moved);
    if (wire && selected.size() == 1) {
        if (const std::optional<Splice> found = findSplice(document, *m_scene.item(selected.front()), *wire))
            splice(document, *found);
    }
    document.endStep();
}

} // namespace Host
