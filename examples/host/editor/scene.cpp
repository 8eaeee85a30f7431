#include "scene.h"

#include <ondrel/nodes/fieldbase.h>

#include <QGraphicsSceneMouseEvent>

#include <algorithm>
#include <utility>

namespace Host
{

Scene::Scene(Document& document, QObject* parent)
    : QGraphicsScene(parent)
    , m_document(document)
    , m_values(document)
    , m_wires(*this)
    , m_loose(*this)
    , m_frames(*this)
    , m_drag(*this)
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
    connect(&m_frames, &SceneFrames::pressed, this, [this] { selectNodes({}); });
    connect(this, &Scene::selectionChanged, this, [this] { // keys are for nodes, or for one wire or frame
        if ((m_wires.selected() || m_frames.selected() != 0) && !selectedItems().isEmpty())
            selectBesideNodes(std::nullopt, 0);
    });
    connect(&m_loose, &LooseWire::refused, this, &Scene::refused);
    connect(&m_loose, &LooseWire::dropped, this, &Scene::wireDropped);
    rebuild();
}

// Nodes that go with the scene are not to speak to what is gone before it.
Scene::~Scene()
{
    m_document.disconnect(this);
    m_loose.drop();
    m_wires.clear();
    deleteItems();
}

// Those that watch the scene are told of each end, and are not to find there what has gone.
void Scene::deleteItems()
{
    for (const auto& [id, node] : std::exchange(m_items, {})) {
        node->disconnect(this);
        delete node;
    }
}

PreviewNode* Scene::item(NodeId id) const
{
    const auto found = m_items.find(id);
    return found == m_items.end() ? nullptr : found->second;
}

void Scene::rebuild()
{
    m_loose.drop();
    m_wires.clear();
    deleteItems();
    m_errors.clear();
    m_primary = m_secondary = 0;
    for (const auto& [id, record] : m_document.graph().nodes)
        addItemFor(id);
    for (const Connection& connection : m_document.graph().connections)
        addWire(connection);
    Q_EMIT shownNodesChanged();
}

void Scene::addItemFor(NodeId id)
{
    const NodeRecord& record = *m_document.graph().node(id);
    PreviewNode* const node = makeNodeItem(record, m_document.types(), m_document.graph());
    if (!node)
        return;
    node->setId(id);
    node->setName(record.type);
    node->availableColorProfilesChanged();
    m_items[id] = node;
    addItem(node);
    node->setGraphicsEffect(new NodePicture(*node, m_pictures));
    m_values.fill(*node);
    watch(*node);
    updateItemOf(id);
    showError(id);
}

void Scene::watch(PreviewNode& node)
{
    connect(&node, SIGNAL(updated(Node*)), this, SLOT(nodeUpdated(Node*)));
    connect(&node, SIGNAL(selected(Node*)), this, SLOT(nodeSelected(Node*)));
    connect(&node, SIGNAL(moved(Node*, bool)), this, SLOT(nodeMoved(Node*, bool)));
    connect(&node, SIGNAL(moveComplete(Node*)), this, SLOT(nodeMoveComplete(Node*)));
    connect(&node, SIGNAL(emblemChanged(PreviewNode*, PreviewNode::Emblem)), this,
            SLOT(emblemChanged(PreviewNode*, PreviewNode::Emblem)));
    m_loose.watch(node);
}

void Scene::removeItemOf(NodeId id)
{
    PreviewNode* const node = item(id);
    if (!node)
        return;
    m_loose.drop();
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
    m_wires.place(id);
}

void Scene::updateValue(NodeId id, const QString& field)
{
    if (PreviewNode* const node = item(id))
        m_values.update(*node, field);
}

void Scene::nodeUpdated(Node* node)
{
    if (!m_values.isFilling() && item(node->id()) == node)
        store(*static_cast<PreviewNode*>(node));
}

void Scene::store(PreviewNode& node)
{
    const QString refusal = m_values.store(node);
    if (!refusal.isEmpty())
        Q_EMIT refused(refusal);
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
    m_drag.begin();
}

// The one that the mouse holds says it for all that move with it.
void Scene::nodeMoved(Node* node, bool movedByUser)
{
    if (movedByUser)
        m_drag.move(*node, m_snaps);
    else
        m_wires.place(node->id());
}

void Scene::nodeMoveComplete(Node*)
{
    m_drag.end();
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
    const NodeId id = node->id();
    const auto change = [id](NodeId& shown, bool on) { shown = on ? id : shown == id ? 0 : shown; };
    change(m_primary, shows(PreviewNode::EmblemPrimary));
    change(m_secondary, shows(PreviewNode::EmblemSecondary));
    Q_EMIT shownNodesChanged();
}

void Scene::setErrors(const QHash<NodeId, QString>& errors)
{
    const QHash<NodeId, QString> before = std::exchange(m_errors, errors);
    for (auto gone = before.begin(); gone != before.end(); ++gone) {
        if (!errors.contains(gone.key()))
            showError(gone.key());
    }
    for (auto error = errors.begin(); error != errors.end(); ++error) {
        if (before.value(error.key()) != error.value())
            showError(error.key());
    }
}

void Scene::showError(NodeId id)
{
    PreviewNode* const node = item(id);
    const QString reason = m_errors.value(id);
    if (!node)
        return;
    node->setDebugText(
        reason.isEmpty() ? QString() : QString("<span style=\"color:#ff7060\">%1</span>").arg(reason.toHtmlEscaped()));
    node->setToolTip(reason);
}

void Scene::setBusy(NodeId id, bool busy)
{
    if (PreviewNode* const node = item(id))
        node->setLoading(busy);
}

Anchor* Scene::anchor(NodeId id, const QString& field, bool output) const
{
    PreviewNode* const node = item(id);
    if (!node)
        return nullptr;
    return output ? node->outputAnchorOfFieldByName(field) : node->inputAnchorOfFieldByName(field);
}

void Scene::tellOfWire(NodeId id, Anchor& anchor, bool connected, const QString& other)
{
    anchor.setConnected(connected);
    m_values.whileFilling([&] { // a variable node changes its own order, which the document knows already
        if (connected)
            item(id)->anchorHasBeenConnected(&anchor, other);
        else
            item(id)->anchorHasBeenDisconnected(&anchor);
    });
}

void Scene::addWire(const Connection& connection)
{
    Anchor* const output = anchor(connection.from, connection.output, true);
    Anchor* const input = anchor(connection.to, connection.input, false);
    m_rewired.insert(connection.to); // also where the item has no such input: it is made anew then
    if (!output || !input)
        return;
    m_wires.add(connection);
    tellOfWire(connection.from, *output, true, item(connection.to)->inputDisplayNameOfFieldByAnchor(input));
    tellOfWire(connection.to, *input, true, item(connection.from)->outputDisplayNameOfFieldByAnchor(output));
    item(connection.to)->layout();
    m_wires.place(connection.to);
}

void Scene::removeWire(const Connection& connection)
{
    if (!m_wires.remove(connection))
        return;
    if (Anchor* const output = anchor(connection.from, connection.output, true)) {
        const bool more = m_wires.leaves(connection.from, connection.output);
        output->setConnected(more);
        if (!more)
            tellOfWire(connection.from, *output, false, QString());
    }
    if (Anchor* const input = anchor(connection.to, connection.input, false)) {
        tellOfWire(connection.to, *input, false, QString());
        m_rewired.insert(connection.to);
        item(connection.to)->layout();
        m_wires.place(connection.to);
    }
}

std::optional<Connection> Scene::connectionAt(const QPointF& point) const
{
    return m_wires.at(point);
}

bool Scene::hasAllWires(NodeId id) const
{
    const std::vector<Connection> touching = m_document.graph().touching(id);
    return std::all_of(touching.begin(), touching.end(), [this](const Connection& each) { return m_wires.has(each); });
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
            store(*item(id));
        else
            remakeItem(id);
    }
}

void Scene::remakeItem(NodeId id)
{
    const PreviewNode::Emblem emblem = item(id)->emblem();
    const bool selected = item(id)->isSelected();
    m_wires.removeTouching(id);
    PreviewNode* const old = item(id);
    old->disconnect(this);
    m_items.erase(id);
    delete old;
    addItemFor(id);
    for (const Connection& connection : m_document.graph().touching(id))
        addWire(connection);
    m_rewired.erase(id);
    item(id)->setEmblem(emblem, true);
    item(id)->setSelected(selected);
}

// A shadow is no part of its node.
NodeId Scene::nodeAt(const QPointF& point) const
{
    for (const QGraphicsItem* each : QGraphicsScene::items(point)) {
        while (each && each->type() != Node::Type)
            each = each->parentItem();
        const auto* const node = static_cast<const Node*>(each);
        if (node && node->mapRectToScene(node->rect()).contains(point))
            return node->id();
    }
    return 0;
}

CanvasThing Scene::thingAt(const QPointF& point) const
{
    CanvasThing thing;
    thing.node = nodeAt(point);
    if (thing.node == 0)
        thing.wire = m_wires.at(point);
    if (thing.node == 0 && !thing.wire)
        thing.frame = m_frames.at(point);
    return thing;
}

CanvasThing Scene::selectedThing() const
{
    const std::vector<NodeId> nodes = selectedNodes();
    return nodes.empty() ? CanvasThing{0, m_wires.selected(), m_frames.selected()}
                         : CanvasThing{nodes.front(), std::nullopt, 0};
}

void Scene::select(const CanvasThing& thing)
{
    if (thing.node == 0)
        selectNodes({});
    else if (!item(thing.node)->isSelected())
        selectNodes({thing.node});
    selectBesideNodes(thing.wire, thing.frame);
}

void Scene::selectBesideNodes(const std::optional<Connection>& wire, quint64 frame)
{
    m_wires.setSelected(wire);
    m_frames.select(frame);
    Q_EMIT thingSelected();
}

bool Scene::dropLooseWire()
{
    return m_loose.drop();
}

void Scene::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    m_values.press();
    const CanvasThing thing = event->button() == Qt::LeftButton ? thingAt(event->scenePos()) : CanvasThing();
    if (event->button() == Qt::LeftButton)
        selectBesideNodes(thing.wire, thing.frame);
    if (thing.wire) {
        setFocusItem(nullptr);
        selectNodes({});
        event->accept();
        return;
    }
    QGraphicsScene::mousePressEvent(event);
}

void Scene::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    m_snaps = !event->modifiers().testFlag(Qt::AltModifier);
    if (event->buttons() == Qt::NoButton) {
        const auto covers = [event](const auto& each) {
            return each.second->mapRectToScene(each.second->rect()).contains(event->scenePos());
        };
        const bool isCovered = std::any_of(m_items.begin(), m_items.end(), covers);
        m_wires.setLit(isCovered ? std::nullopt : m_wires.at(event->scenePos()));
    }
    QGraphicsScene::mouseMoveEvent(event);
}

void Scene::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    QGraphicsScene::mouseReleaseEvent(event);
    m_values.release();
}

bool Scene::moveFocus(bool next)
{
    QGraphicsItem* const focused = focusItem();
    if (focused && focused->type() == FrameTitle::Type) {
        focused->clearFocus();
        return true;
    }
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
