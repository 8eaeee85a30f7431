#include "canvascommands.h"

#include "arrangemenu.h"
#include "canvasmenu.h"
#include "clipboardgraph.h"
#include "document.h"
#include "minimap.h"
#include "nodesearch.h"
#include "scene.h"
#include "sceneview.h"
#include "splice.h"

#include <QAction>
#include <QMenu>

#include <algorithm>

namespace Host
{

CanvasCommands::CanvasCommands(Document& document, Scene& scene, SceneView& view, QWidget& window)
    : QObject(&window)
    , m_document(document)
    , m_scene(scene)
    , m_view(view)
    , m_window(window)
{
    // The search runs an event loop, which is not to run inside of the mouse event that drops the wire.
    connect(&scene, &Scene::wireDropped, this, &CanvasCommands::addWiredNode, Qt::QueuedConnection);
    connect(&view, SIGNAL(menuWanted(QPointF)), this, SLOT(openMenu(QPointF)));
    connect(&view, SIGNAL(searchWanted(QPointF)), this, SLOT(searchNode(QPointF)), Qt::QueuedConnection);
}

void CanvasCommands::addEditActions(QMenu& menu)
{
    const auto add = [&](const QString& text, const char* slot, const QKeySequence& shortcut, const char* name) {
        menu.addAction(text, this, slot, shortcut)->setObjectName(name);
    };
    add(tr("Cu&t"), SLOT(cutSelected()), QKeySequence::Cut, "edit.cut");
    add(tr("&Copy"), SLOT(copySelected()), QKeySequence::Copy, "edit.copy");
    add(tr("&Paste"), SLOT(paste()), QKeySequence::Paste, "edit.paste");
    add(tr("D&uplicate"), SLOT(duplicateSelected()), QKeySequence("Ctrl+D"), "edit.duplicate");
    add(tr("De&lete"), SLOT(deleteSelected()), QKeySequence::Delete, "edit.delete");
    menu.addSeparator();
    add(tr("&Bypass"), SLOT(bypassSelected()), QKeySequence("D"), "edit.bypass");
    add(tr("R&eplace node..."), SLOT(replaceSelected()), QKeySequence("R"), "edit.replaceNode");
    add(tr("&Frame nodes"), SLOT(frameSelected()), QKeySequence("Ctrl+G"), "edit.frameNodes");
    menu.addMenu(new ArrangeMenu(m_scene, &m_window));
}

void CanvasCommands::addViewActions(QMenu& menu)
{
    const auto add = [&](const QString& text, const char* slot, const char* shortcut, const char* name) {
        menu.addAction(text, this, slot, QKeySequence(shortcut))->setObjectName(name);
    };
    add(tr("&Show node"), SLOT(showSelected()), "1", "view.showNode");
    add(tr("Show node as s&econdary"), SLOT(showSelectedAsSecondary()), "2", "view.showNodeAsSecondary");
    menu.addSeparator();
    add(tr("Fit &all nodes"), SLOT(fitAll()), "A", "view.fitAllNodes");
    add(tr("Fit &selected nodes"), SLOT(fitSelected()), "F", "view.fitSelectedNodes");
    auto* const miniMap = new MiniMap(m_scene, m_view);
    QAction* const shown = menu.addAction(tr("&Overview of the nodes"));
    shown->setObjectName("view.overview");
    shown->setShortcut(QKeySequence("N"));
    shown->setCheckable(true);
    shown->setChecked(true);
    connect(shown, SIGNAL(toggled(bool)), miniMap, SLOT(setVisible(bool)));
}

NodeId CanvasCommands::addNode(const QString& type, QPointF at)
{
    const NodeId id = m_document.addNode(type, at);
    if (id != 0)
        m_scene.selectNodes({id});
    return id;
}

QString CanvasCommands::chooseType(const std::function<bool(const NodeType&)>& isOffered, QPointF at)
{
    NodeSearch search(m_document.types(), isOffered, &m_window);
    search.move(m_view.viewport()->mapToGlobal(m_view.mapFromScene(at)));
    return search.exec() == QDialog::Accepted ? search.chosenType() : QString();
}

void CanvasCommands::searchNode(QPointF at)
{
    const QString type = chooseType([](const NodeType&) { return true; }, at);
    if (!type.isEmpty())
        addNode(type, at);
}

void CanvasCommands::openMenu(QPointF at)
{
    const CanvasThing thing = m_scene.thingAt(at);
    m_scene.select(thing);
    auto* const menu = new CanvasMenu(*this, m_scene, thing, at, m_window);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(m_view.viewport()->mapToGlobal(m_view.mapFromScene(at)));
}

void CanvasCommands::replaceSelected()
{
    const std::vector<NodeId> ids = m_scene.selectedNodes();
    if (ids.size() != 1) {
        Q_EMIT message(tr("Select one node to replace it."));
        return;
    }
    const NodeId id = ids.front();
    const NodeRecord record = *m_document.graph().node(id);
    const bool isWired = !m_document.graph().touching(id).empty();
    const QString type = chooseType(
        [&](const NodeType& each) {
            return each.id != record.type && (!isWired || !m_document.wiresKept(id, each.id).empty());
        },
        record.position);
    if (!type.isEmpty() && m_document.replaceNode(id, type))
        m_scene.selectNodes({id});
}

// With its title open, as the first thing that one wants to do with it.
void CanvasCommands::frameSelected()
{
    const std::vector<NodeId> ids = m_scene.selectedNodes();
    const QPointF at = m_view.pointerInScene();
    const QRectF area = ids.empty() ? QRectF(at, QSizeF(400, 300)) : m_scene.nodesRect(ids).adjusted(-30, -60, 30, 30);
    const quint64 id = m_document.addFrame(tr("Frame"), area);
    m_scene.select({0, std::nullopt, id});
    editFrameTitle(id);
}

void CanvasCommands::editFrameTitle(quint64 id)
{
    m_view.setFocus();
    if (FrameItem* const frame = m_scene.frames().item(id))
        frame->editTitle();
}

void CanvasCommands::insertIntoWire(const Connection& wire, QPointF at)
{
    const NodeRecord* const from = m_document.graph().node(wire.from);
    const NodeType* const known = from ? m_document.types().find(from->type) : nullptr;
    const OutputInfo* const output = known ? known->output(wire.output) : nullptr;
    if (!output)
        return;
    const QString type = chooseType(
        [dataType = output->dataType](const NodeType& each) { return takes(each, dataType) && gives(each, dataType); },
        at);
    if (type.isEmpty())
        return;
    m_document.beginStep(tr("Insert into wire"));
    const NodeId made = addNode(type, at);
    if (const PreviewNode* const node = m_scene.item(made)) {
        if (const std::optional<Splice> found = findSplice(m_document, *node, wire))
            splice(m_document, *found);
    }
    m_document.endStep();
}

void CanvasCommands::addWiredNode(NodeId node, const QString& field, bool fromOutput, QPointF at)
{
    const NodeRecord* const record = m_document.graph().node(node);
    const NodeType* const known = record ? m_document.types().find(record->type) : nullptr;
    if (!known)
        return;
    const OutputInfo* const output = fromOutput ? known->output(field) : nullptr;
    const InputInfo* const input = fromOutput ? nullptr : known->input(field);
    const QString dataType = output ? output->dataType : input ? input->dataType : QString();
    const QString type = chooseType(
        [&](const NodeType& each) { return fromOutput ? takes(each, dataType) : gives(each, dataType); }, at);
    if (type.isEmpty())
        return;
    m_document.beginStep(tr("Add connected node"));
    connectTo(addNode(type, at), node, field, fromOutput);
    m_document.endStep();
}

// By the first field that fits.
void CanvasCommands::connectTo(NodeId made, NodeId node, const QString& field, bool fromOutput)
{
    PreviewNode* const item = m_scene.item(made);
    if (!item)
        return;
    QString refusal;
    const unsigned long count = fromOutput ? item->inputFieldCount() : item->outputFieldCount();
    for (unsigned long i = 0; i < count; ++i) {
        const QString other = fromOutput ? item->inputNameOfFieldByIndex(i) : item->outputNameOfFieldByIndex(i);
        const Connection connection =
            fromOutput ? Connection{node, field, made, other} : Connection{made, other, node, field};
        refusal = m_document.addConnection(connection);
        if (refusal.isEmpty())
            return;
    }
    Q_EMIT message(refusal); // such as that there is no room for one more
}

void CanvasCommands::deleteSelected()
{
    const std::vector<NodeId> ids = m_scene.selectedNodes();
    const std::optional<Connection> wire = m_scene.wires().selected();
    const quint64 frame = m_scene.frames().selected();
    if (!ids.empty())
        m_document.removeNodes(ids);
    else if (wire)
        m_document.removeConnection(*wire);
    else if (frame != 0)
        m_document.removeFrame(frame);
}

void CanvasCommands::bypassSelected()
{
    m_document.beginStep(tr("Bypass"));
    for (const NodeId id : m_scene.selectedNodes())
        m_document.setBypassed(id, !m_document.graph().node(id)->bypassed);
    m_document.endStep();
}

// The selected frame is meant with all that lies in it, and selected nodes with a frame that has no others.
Graph CanvasCommands::selectedGraph() const
{
    const Graph& all = m_document.graph();
    const quint64 frame = m_scene.selectedThing().frame;
    Graph graph;
    graph.embedded = all.embedded;
    for (const NodeId id : frame != 0 ? m_scene.frames().nodesInside(frame) : m_scene.selectedNodes())
        graph.nodes[id] = *all.node(id);
    for (const Connection& connection : all.connections) {
        if (graph.node(connection.from) && graph.node(connection.to))
            graph.connections.push_back(connection);
    }
    for (const auto& [id, record] : all.frames) {
        const std::vector<NodeId> inside = m_scene.frames().nodesInside(id);
        const bool isTaken = std::all_of(inside.begin(), inside.end(), [&](NodeId each) { return graph.node(each); });
        const bool isMeant = frame != 0 ? all.frames.at(frame).area.contains(record.area) : !inside.empty();
        if (isTaken && isMeant)
            graph.frames[id] = record;
    }
    return graph;
}

void CanvasCommands::copySelected()
{
    const Graph graph = selectedGraph();
    if (!graph.nodes.empty() || !graph.frames.empty())
        putOnClipboard(graph);
}

void CanvasCommands::cutSelected()
{
    const Graph graph = selectedGraph();
    if (graph.nodes.empty() && graph.frames.empty())
        return;
    putOnClipboard(graph);
    std::vector<NodeId> nodes;
    for (const auto& [id, record] : graph.nodes)
        nodes.push_back(id);
    m_document.beginStep(tr("Cut"));
    m_document.removeNodes(nodes);
    for (const auto& [id, record] : graph.frames)
        m_document.removeFrame(id);
    m_document.endStep();
}

void CanvasCommands::paste()
{
    const std::optional<Graph> graph = graphOnClipboard();
    if (!graph) {
        Q_EMIT message(tr("There are no nodes on the clipboard."));
        return;
    }
    insertAndSelect(*graph);
}

void CanvasCommands::duplicateSelected()
{
    insertAndSelect(selectedGraph());
}

// Of frames without nodes, the last.
void CanvasCommands::insertAndSelect(const Graph& graph)
{
    std::vector<NodeId> made;
    for (const auto& [from, to] : m_document.insert(graph, QPointF(40, 40)))
        made.push_back(to);
    m_scene.selectNodes(made);
    if (made.empty() && !graph.frames.empty())
        m_scene.select({0, std::nullopt, m_document.graph().frames.rbegin()->first});
}

void CanvasCommands::showSelected()
{
    const std::vector<NodeId> ids = m_scene.selectedNodes();
    if (ids.size() == 1)
        m_scene.show(ids.front(), PreviewNode::EmblemPrimary);
}

void CanvasCommands::showSelectedAsSecondary()
{
    const std::vector<NodeId> ids = m_scene.selectedNodes();
    if (ids.size() == 1)
        m_scene.show(ids.front(), PreviewNode::EmblemSecondary);
}

void CanvasCommands::fitAll()
{
    m_view.fit(m_scene.nodesRect({}) | m_scene.frames().area());
}

void CanvasCommands::fitSelected()
{
    m_view.fit(m_scene.nodesRect(m_scene.selectedNodes()));
}

} // namespace Host
