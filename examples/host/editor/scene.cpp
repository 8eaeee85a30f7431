#include "scene.h"

#include "values.h"

#include <ondrel/nodes/fieldbase.h>
#include <ondrel/nodes/xmlnode.h>

#include <QGraphicsSceneMouseEvent>

#include <algorithm>
#include <cmath>

namespace Host
{
namespace
{

constexpr float kSnap = 30; // scene units
constexpr qreal kWireReach = 7;

QPointF centerOf(const Anchor& anchor)
{
    return anchor.sceneBoundingRect().center();
}

// What stands in for a node whose plug-in is missing.
QString placeholderFile(const NodeRecord& record, const Graph& graph)
{
    QStringList inputs, outputs;
    for (const Connection& connection : graph.touching(record.id)) {
        QStringList& names = connection.to == record.id ? inputs : outputs;
        const QString name = connection.to == record.id ? connection.input : connection.output;
        if (!names.contains(name))
            names.append(name);
    }
    const auto fields = [](const QStringList& names) {
        QString text;
        for (const QString& name : names)
            text += QString("<field name=\"%1\">%1</field>").arg(name.toHtmlEscaped());
        return text;
    };
    return QString("<node><input>%1</input><output>%2</output></node>").arg(fields(inputs), fields(outputs));
}

} // namespace

Scene::Scene(Document& document, QObject* parent)
    : QGraphicsScene(parent)
    , m_document(document)
{
    setItemIndexMethod(QGraphicsScene::NoIndex); // nodes move and change their size all the time
    connect(&document, &Document::nodeAdded, this, &Scene::addItemFor);
    connect(&document, &Document::nodeRemoved, this, &Scene::removeItemOf);
    connect(&document, &Document::nodeChanged, this, &Scene::updateItemOf);
    connect(&document, &Document::valueChanged, this, &Scene::updateValue);
    connect(&document, &Document::connectionAdded, this, &Scene::addWire);
    connect(&document, &Document::connectionRemoved, this, &Scene::removeWire);
    connect(&document, &Document::changed, this, &Scene::settleVariableNodes);
    connect(&document, &Document::reset, this, &Scene::rebuild);
    rebuild();
}

// Nodes that go with the scene are not to speak to what is gone before it.
Scene::~Scene()
{
    m_document.disconnect(this);
    m_wires.clear();
    for (const auto& [id, node] : m_items) {
        node->disconnect(this);
        delete node;
    }
}

PreviewNode* Scene::item(NodeId id) const
{
    const auto found = m_items.find(id);
    return found == m_items.end() ? nullptr : found->second;
}

NodeId Scene::idOf(const Node* node) const
{
    return node->id();
}

PreviewNode* Scene::makeItem(const NodeRecord& record) const
{
    const NodeType* const type = m_document.types().find(record.type);
    Node* node = type ? type->entry.behaviour->createItem(type->fileText) : nullptr;
    if (!node)
        node = Ondrel::XmlNode::create(type ? type->fileText : placeholderFile(record, m_document.graph()));
    return qobject_cast<PreviewNode*>(node);
}

void Scene::rebuild()
{
    m_wires.clear();
    for (const auto& [id, node] : m_items) {
        node->disconnect(this);
        delete node;
    }
    m_items.clear();
    m_primary = m_secondary = 0;
    clearWire();
    for (const auto& [id, record] : m_document.graph().nodes)
        addItemFor(id);
    for (const Connection& connection : m_document.graph().connections)
        addWire(connection);
    Q_EMIT shownNodesChanged();
}

void Scene::addItemFor(NodeId id)
{
    const NodeRecord& record = *m_document.graph().node(id);
    PreviewNode* const node = makeItem(record);
    if (!node)
        return;
    node->setId(id);
    node->setName(record.type);
    node->availableColorProfilesChanged();
    m_items[id] = node;
    addItem(node);
    fillValues(*node, record);
    watch(*node);
    updateItemOf(id);
}

void Scene::watch(PreviewNode& node)
{
    connect(&node, SIGNAL(updated(Node*)), this, SLOT(nodeUpdated(Node*)));
    connect(&node, SIGNAL(selected(Node*)), this, SLOT(nodeSelected(Node*)));
    connect(&node, SIGNAL(moved(Node*, bool)), this, SLOT(nodeMoved(Node*, bool)));
    connect(&node, SIGNAL(moveComplete(Node*)), this, SLOT(nodeMoveComplete(Node*)));
    connect(&node, SIGNAL(emblemChanged(PreviewNode*, PreviewNode::Emblem)), this,
            SLOT(emblemChanged(PreviewNode*, PreviewNode::Emblem)));
    connect(&node, SIGNAL(fieldAnchorPressEvent(Node*, Anchor*, QGraphicsSceneMouseEvent*)), this,
            SLOT(anchorPressed(Node*, Anchor*, QGraphicsSceneMouseEvent*)));
    connect(&node, SIGNAL(fieldAnchorMoveEvent(Node*, Anchor*, QGraphicsSceneMouseEvent*)), this,
            SLOT(anchorMoved(Node*, Anchor*, QGraphicsSceneMouseEvent*)));
    connect(&node, SIGNAL(fieldAnchorReleaseEvent(Node*, Anchor*, QGraphicsSceneMouseEvent*)), this,
            SLOT(anchorReleased(Node*, Anchor*, QGraphicsSceneMouseEvent*)));
}

void Scene::removeItemOf(NodeId id)
{
    PreviewNode* const node = item(id);
    if (!node)
        return;
    if (m_loose)
        clearWire();
    node->disconnect(this);
    m_items.erase(id);
    delete node;
    if (m_primary != id && m_secondary != id)
        return;
    m_primary = m_primary == id ? 0 : m_primary;
    m_secondary = m_secondary == id ? 0 : m_secondary;
    Q_EMIT shownNodesChanged();
}

void Scene::updateItemOf(NodeId id)
{
    PreviewNode* const node = item(id);
    const NodeRecord* const record = m_document.graph().node(id);
    if (!node || !record)
        return;
    node->setHeader(record->name);
    node->setPos(record->position);
    node->setOpacity(record->bypassed ? 0.5 : 1);
    node->layout();
    placeWires(id);
}

void Scene::fillValues(PreviewNode& node, const NodeRecord& record)
{
    m_filling = true;
    const NodeType* const type = m_document.types().find(record.type);
    const QVariantMap values = type ? completeValues(record, *type) : record.values;
    for (unsigned long i = 0; i < node.inputFieldCount(); ++i) {
        const QString name = node.inputNameOfFieldByIndex(i);
        if (values.contains(name))
            node.setInputValue(i, values.value(name));
    }
    m_filling = false;
}

void Scene::updateValue(NodeId id, const QString& field)
{
    PreviewNode* const node = item(id);
    const NodeRecord* const record = m_document.graph().node(id);
    const NodeType* const type = record ? m_document.types().find(record->type) : nullptr;
    const int index = node ? node->inputIndexOfFieldByName(field) : -1;
    if (index < 0 || !type)
        return;
    const QVariant value = completeValues(*record, *type).value(field);
    if (sameValue(node->inputValue(index), value) || field == type->entry.variablePrefix + "_order")
        return; // it came from there, or its wires say it
    m_filling = true;
    node->setInputValue(static_cast<unsigned long>(index), value);
    m_filling = false;
}

// A drag of the mouse is one gesture, however many values it passes; each key is one of its own.
void Scene::nodeUpdated(Node* node)
{
    if (m_filling || item(idOf(node)) != node)
        return;
    storeValues(*static_cast<PreviewNode*>(node));
}

void Scene::storeValues(PreviewNode& node)
{
    const NodeRecord* const record = m_document.graph().node(idOf(&node));
    const NodeType* const type = record ? m_document.types().find(record->type) : nullptr;
    if (!type)
        return;
    if (!m_mousePressed)
        ++m_gesture;
    const QVariantMap stored = completeValues(*record, *type);
    for (unsigned long i = 0; i < node.inputFieldCount(); ++i) {
        const QString field = node.inputNameOfFieldByIndex(i);
        const QVariant value = node.inputValue(int(i));
        if (value.isValid() && type->input(field) && !sameValue(value, stored.value(field)))
            m_document.setValue(idOf(&node), field, value, m_gesture);
    }
}

std::vector<NodeId> Scene::selectedNodes() const
{
    std::vector<NodeId> ids;
    for (const auto& [id, node] : m_items) {
        if (node->isSelected())
            ids.push_back(id);
    }
    return ids;
}

void Scene::selectNodes(const std::vector<NodeId>& ids)
{
    clearSelection();
    for (const auto& [id, node] : m_items)
        node->setFirstSelected(false);
    for (const NodeId id : ids) {
        if (PreviewNode* const node = item(id))
            node->setSelected(true);
    }
    if (!ids.empty() && item(ids.front()))
        item(ids.front())->setFirstSelected(true);
}

void Scene::nodeSelected(Node* node)
{
    for (const auto& [id, each] : m_items)
        each->setFirstSelected(each == node);
    m_beforeMove.clear();
    for (const auto& [id, each] : m_items)
        m_beforeMove[id] = each->pos();
}

void Scene::nodeMoved(Node* node, bool)
{
    placeWires(idOf(node));
    for (const NodeId id : selectedNodes())
        placeWires(id);
}

void Scene::nodeMoveComplete(Node*)
{
    std::map<NodeId, QPointF> moved;
    for (const auto& [id, node] : m_items) {
        const NodeRecord* const record = m_document.graph().node(id);
        if (record && record->position != node->pos())
            moved[id] = node->pos();
    }
    if (!moved.empty())
        m_document.moveNodes(moved);
}

QRectF Scene::nodesRect(const std::vector<NodeId>& ids) const
{
    QRectF rect;
    for (const auto& [id, node] : m_items) {
        if (ids.empty() || std::find(ids.begin(), ids.end(), id) != ids.end())
            rect |= node->sceneBoundingRect();
    }
    return rect;
}

void Scene::show(NodeId id, PreviewNode::Emblem emblem)
{
    if (PreviewNode* const node = item(id)) {
        node->setEmblem(emblem, false);
        emblemChanged(node, node->emblem());
    }
}

// Each of the two views shows one node.
void Scene::emblemChanged(PreviewNode* node, PreviewNode::Emblem emblem)
{
    const auto shows = [emblem](PreviewNode::Emblem part) { return (int(emblem) & int(part)) != 0; };
    for (const auto& [id, each] : m_items) {
        if (each != node)
            each->clearEmblem(emblem);
    }
    const NodeId id = idOf(node);
    const auto change = [id](NodeId& shown, bool on) { shown = on ? id : shown == id ? 0 : shown; };
    change(m_primary, shows(PreviewNode::EmblemPrimary));
    change(m_secondary, shows(PreviewNode::EmblemSecondary));
    Q_EMIT shownNodesChanged();
}

void Scene::setErrors(const QHash<NodeId, QString>& errors)
{
    for (const auto& [id, node] : m_items) {
        const QString reason = errors.value(id);
        node->setDebugText(reason.isEmpty()
                               ? QString()
                               : QString("<span style=\"color:#ff7060\">%1</span>").arg(reason.toHtmlEscaped()));
        node->setToolTip(reason);
    }
}

void Scene::setBusy(NodeId id, bool busy)
{
    if (PreviewNode* const node = item(id))
        node->setLoading(busy);
}

Anchor* Scene::anchorOf(NodeId id, const QString& field, bool output) const
{
    PreviewNode* const node = item(id);
    if (!node)
        return nullptr;
    return output ? node->outputAnchorOfFieldByName(field) : node->inputAnchorOfFieldByName(field);
}

void Scene::telling(PreviewNode& node, Anchor& anchor, bool connected, const QString& other)
{
    anchor.setConnected(connected);
    m_filling = true; // a variable node changes its own order, which the document knows already
    if (connected)
        node.anchorHasBeenConnected(&anchor, other);
    else
        node.anchorHasBeenDisconnected(&anchor);
    m_filling = false;
}

void Scene::addWire(const Connection& connection)
{
    Anchor* const output = anchorOf(connection.from, connection.output, true);
    Anchor* const input = anchorOf(connection.to, connection.input, false);
    m_rewired.insert(connection.to); // also where the item has no such input: it is made anew then
    if (!output || !input)
        return;
    m_wires.push_back({connection, std::make_unique<Viewer::WireItem>()});
    addItem(m_wires.back().item.get());
    telling(*item(connection.from), *output, true, item(connection.to)->inputDisplayNameOfFieldByAnchor(input));
    telling(*item(connection.to), *input, true, item(connection.from)->outputDisplayNameOfFieldByAnchor(output));
    item(connection.to)->layout();
    placeWires(connection.to);
}

void Scene::removeWire(const Connection& connection)
{
    const auto wire =
        std::find_if(m_wires.begin(), m_wires.end(), [&](const Wire& each) { return each.connection == connection; });
    if (wire == m_wires.end())
        return;
    m_wires.erase(wire);
    const bool more = std::any_of(m_wires.begin(), m_wires.end(), [&](const Wire& each) {
        return each.connection.from == connection.from && each.connection.output == connection.output;
    });
    if (Anchor* const output = anchorOf(connection.from, connection.output, true)) {
        output->setConnected(more);
        if (!more)
            telling(*item(connection.from), *output, false, QString());
    }
    if (Anchor* const input = anchorOf(connection.to, connection.input, false)) {
        telling(*item(connection.to), *input, false, QString());
        m_rewired.insert(connection.to);
        item(connection.to)->layout();
        placeWires(connection.to);
    }
}

bool Scene::hasAllWires(NodeId id) const
{
    for (const Connection& connection : m_document.graph().touching(id)) {
        if (std::none_of(m_wires.begin(), m_wires.end(),
                         [&](const Wire& wire) { return wire.connection == connection; }))
            return false;
    }
    return true;
}

// A variable node makes and drops inputs by its wires, and says so in its order, which belongs to the same step of
// undo. Where an undo or redo wants an input that the item no longer has, the item is made anew from the document.
void Scene::settleVariableNodes()
{
    const std::set<NodeId> rewired = std::exchange(m_rewired, {});
    for (const NodeId id : rewired) {
        const NodeRecord* const record = m_document.graph().node(id);
        const NodeType* const type = record ? m_document.types().find(record->type) : nullptr;
        if (!type || type->entry.variablePrefix.isEmpty() || !item(id))
            continue;
        if (hasAllWires(id))
            storeValues(*item(id));
        else
            remakeItem(id);
    }
}

void Scene::remakeItem(NodeId id)
{
    const PreviewNode::Emblem emblem = item(id)->emblem();
    const bool selected = item(id)->isSelected();
    m_wires.erase(
        std::remove_if(m_wires.begin(), m_wires.end(),
                       [id](const Wire& wire) { return wire.connection.from == id || wire.connection.to == id; }),
        m_wires.end());
    item(id)->disconnect(this);
    delete item(id);
    m_items.erase(id);
    addItemFor(id);
    for (const Connection& connection : m_document.graph().touching(id))
        addWire(connection);
    m_rewired.erase(id);
    item(id)->setEmblem(emblem, true);
    item(id)->setSelected(selected);
}

void Scene::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    m_mousePressed = true;
    ++m_gesture;
    QGraphicsScene::mousePressEvent(event);
}

void Scene::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    QGraphicsScene::mouseReleaseEvent(event);
    m_mousePressed = false;
}

void Scene::placeWires(NodeId id)
{
    for (const Wire& wire : m_wires) {
        const Connection& connection = wire.connection;
        if (connection.from != id && connection.to != id)
            continue;
        const Anchor* const output = anchorOf(connection.from, connection.output, true);
        const Anchor* const input = anchorOf(connection.to, connection.input, false);
        if (output && input)
            wire.item->setEnds(centerOf(*output), centerOf(*input));
    }
}

std::optional<Connection> Scene::connectionAt(const QPointF& point) const
{
    QPainterPathStroker stroker;
    stroker.setWidth(2 * kWireReach);
    for (auto wire = m_wires.rbegin(); wire != m_wires.rend(); ++wire) {
        if (stroker.createStroke(wire->item->path()).contains(point))
            return wire->connection;
    }
    return std::nullopt;
}

std::optional<Scene::Grip> Scene::gripNear(const QPointF& point, bool outputs) const
{
    std::optional<Grip> closest;
    float least = kSnap;
    for (const auto& [id, node] : m_items) {
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

Connection Scene::connectionOf(const Grip& a, const Grip& b) const
{
    const Grip& output = a.isOutput ? a : b;
    const Grip& input = a.isOutput ? b : a;
    return {output.node, output.field, input.node, input.field};
}

// An input that has a wire gives it back to the mouse.
void Scene::anchorPressed(Node* node, Anchor* anchor, QGraphicsSceneMouseEvent* event)
{
    clearWire();
    const NodeId id = idOf(node);
    const bool isOutput = anchor->direction() == Anchor::Output;
    m_start = {id, isOutput ? node->outputNameOfFieldByAnchor(anchor) : node->inputNameOfFieldByAnchor(anchor),
               isOutput};
    if (!isOutput) {
        if (const Connection* const connection = m_document.graph().into(id, m_start.field)) {
            m_pulled = *connection;
            m_start = {connection->from, connection->output, true};
            for (const Wire& wire : m_wires)
                wire.item->setVisible(!(wire.connection == *m_pulled));
        }
    }
    m_loose = std::make_unique<Viewer::WireItem>();
    m_loose->setLoose(true);
    addItem(m_loose.get());
    anchorMoved(node, anchor, event);
}

void Scene::anchorMoved(Node*, Anchor*, QGraphicsSceneMouseEvent* event)
{
    if (!m_loose)
        return;
    m_target = gripNear(event->scenePos(), !m_start.isOutput);
    const Anchor* const start = anchorOf(m_start.node, m_start.field, m_start.isOutput);
    const Anchor* const target = m_target ? anchorOf(m_target->node, m_target->field, m_target->isOutput) : nullptr;
    const QPointF free = target ? centerOf(*target) : event->scenePos();
    if (start)
        m_loose->setEnds(m_start.isOutput ? centerOf(*start) : free, m_start.isOutput ? free : centerOf(*start));
}

void Scene::anchorReleased(Node*, Anchor*, QGraphicsSceneMouseEvent* event)
{
    if (!m_loose)
        return;
    const Grip start = m_start;
    const std::optional<Grip> target = m_target;
    const std::optional<Connection> pulled = m_pulled;
    clearWire();
    if (target && pulled && connectionOf(start, *target) == *pulled)
        return; // back where it was
    m_document.beginStep(tr("Connect"));
    if (pulled)
        m_document.removeConnection(*pulled);
    const QString reason = target ? m_document.addConnection(connectionOf(start, *target)) : QString();
    m_document.endStep();
    if (!reason.isEmpty())
        Q_EMIT refused(reason);
    else if (!target && !pulled)
        Q_EMIT wireDropped(start.node, start.field, start.isOutput, event->scenePos());
}

void Scene::clearWire()
{
    for (const Wire& wire : m_wires)
        wire.item->setVisible(true);
    m_loose.reset();
    m_target.reset();
    m_pulled.reset();
    m_start = Grip();
}

bool Scene::moveFocus(bool next)
{
    QGraphicsItem* const focused = focusItem();
    Ondrel::FieldBase* field = nullptr;
    for (QGraphicsItem* each = focused; each; each = each->parentItem()) {
        if (each->type() == Ondrel::FieldBase::Type)
            field = static_cast<Ondrel::FieldBase*>(each);
        else if (each->type() == Node::Type)
            return static_cast<Node*>(each)->focusNextPrevChild(next, field, focused) ||
                   static_cast<Node*>(each)->focusNextPrevChild(next, nullptr, nullptr);
    }
    return false;
}

} // namespace Host
