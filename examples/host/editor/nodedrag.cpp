#include "nodedrag.h"

#include "scene.h"
#include "snapping.h"
#include "splice.h"

#include <QGraphicsView>
#include <QPainter>

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

GuideLines::GuideLines()
{
    setZValue(10);
    setAcceptedMouseButtons(Qt::NoButton);
}

void GuideLines::setLines(const std::vector<QLineF>& lines)
{
    if (lines == m_lines)
        return;
    prepareGeometryChange();
    m_lines = lines;
}

QRectF GuideLines::boundingRect() const
{
    QRectF bounds;
    for (const QLineF& line : m_lines)
        bounds |= QRectF(line.p1(), line.p2()).normalized().adjusted(-2, -2, 2, 2);
    return bounds;
}

void GuideLines::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    QPen pen(QColor(255, 204, 0), 1, Qt::DashLine);
    pen.setCosmetic(true);
    painter->setPen(pen);
    for (const QLineF& line : m_lines)
        painter->drawLine(line);
}

NodeDrag::NodeDrag(Scene& scene)
    : m_scene(scene)
{
    scene.addItem(&m_guides);
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
