#include "canvascommands.h"

#include "clipboardgraph.h"
#include "document.h"
#include "nodesearch.h"
#include "scene.h"
#include "sceneview.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QMimeData>

namespace Host
{
namespace
{

const char* const kClipboardType = "application/x-ondrel-nodes+json";

} // namespace

CanvasCommands::CanvasCommands(Document& document, Scene& scene, SceneView& view, QWidget& window)
    : QObject(&window)
    , m_document(document)
    , m_scene(scene)
    , m_view(view)
    , m_window(window)
{
    // The search runs an event loop, which is not to run inside of the mouse event that drops the wire.
    connect(&scene, &Scene::wireDropped, this, &CanvasCommands::addWiredNode, Qt::QueuedConnection);
    connect(&view, SIGNAL(searchWanted(QPointF)), this, SLOT(searchNode(QPointF)), Qt::QueuedConnection);
}

void CanvasCommands::addEditActions(QMenu& menu)
{
    menu.addAction(tr("Cu&t"), this, SLOT(cutSelected()), QKeySequence::Cut);
    menu.addAction(tr("&Copy"), this, SLOT(copySelected()), QKeySequence::Copy);
    menu.addAction(tr("&Paste"), this, SLOT(paste()), QKeySequence::Paste);
    menu.addAction(tr("D&uplicate"), this, SLOT(duplicateSelected()), QKeySequence("Ctrl+D"));
    menu.addAction(tr("De&lete"), this, SLOT(deleteSelected()), QKeySequence::Delete);
    menu.addSeparator();
    menu.addAction(tr("&Bypass"), this, SLOT(bypassSelected()), QKeySequence("D"));
}

void CanvasCommands::addViewActions(QMenu& menu)
{
    menu.addAction(tr("&Show node"), this, SLOT(showSelected()), QKeySequence("1"));
    menu.addAction(tr("Show node as s&econdary"), this, SLOT(showSelectedAsSecondary()), QKeySequence("2"));
    menu.addSeparator();
    menu.addAction(tr("Fit &all nodes"), this, SLOT(fitAll()), QKeySequence("A"));
    menu.addAction(tr("Fit &selected nodes"), this, SLOT(fitSelected()), QKeySequence("F"));
}

NodeId CanvasCommands::addNode(const QString& type, QPointF at)
{
    const NodeId id = m_document.addNode(type, at);
    if (id != 0)
        m_scene.selectNodes({id});
    return id;
}

QString CanvasCommands::chooseType(const QString& dataType, bool wantsInput, QPointF at)
{
    NodeSearch search(m_document.types(), dataType, wantsInput, &m_window);
    search.move(m_view.viewport()->mapToGlobal(m_view.mapFromScene(at)));
    return search.exec() == QDialog::Accepted ? search.chosenType() : QString();
}

void CanvasCommands::searchNode(QPointF at)
{
    const QString type = chooseType(QString(), true, at);
    if (!type.isEmpty())
        addNode(type, at);
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
    const QString type = chooseType(dataType, fromOutput, at);
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
    const unsigned long count = fromOutput ? item->inputFieldCount() : item->outputFieldCount();
    for (unsigned long i = 0; i < count; ++i) {
        const QString other = fromOutput ? item->inputNameOfFieldByIndex(i) : item->outputNameOfFieldByIndex(i);
        const Connection connection =
            fromOutput ? Connection{node, field, made, other} : Connection{made, other, node, field};
        if (m_document.addConnection(connection).isEmpty())
            return;
    }
}

void CanvasCommands::deleteSelected()
{
    const std::vector<NodeId> ids = m_scene.selectedNodes();
    if (!ids.empty())
        m_document.removeNodes(ids);
}

void CanvasCommands::bypassSelected()
{
    m_document.beginStep(tr("Bypass"));
    for (const NodeId id : m_scene.selectedNodes())
        m_document.setBypassed(id, !m_document.graph().node(id)->bypassed);
    m_document.endStep();
}

Graph CanvasCommands::selectedGraph() const
{
    Graph graph;
    for (const NodeId id : m_scene.selectedNodes())
        graph.nodes[id] = *m_document.graph().node(id);
    for (const Connection& connection : m_document.graph().connections) {
        if (graph.node(connection.from) && graph.node(connection.to))
            graph.connections.push_back(connection);
    }
    return graph;
}

void CanvasCommands::copySelected()
{
    const Graph graph = selectedGraph();
    if (graph.nodes.empty())
        return;
    auto* data = new QMimeData; // the clipboard's
    const QByteArray text = graphToText(graph);
    data->setData(kClipboardType, text);
    data->setText(QString::fromUtf8(text));
    QApplication::clipboard()->setMimeData(data);
}

void CanvasCommands::cutSelected()
{
    copySelected();
    deleteSelected();
}

void CanvasCommands::paste()
{
    const QMimeData* const data = QApplication::clipboard()->mimeData();
    const QByteArray text = data->hasFormat(kClipboardType) ? data->data(kClipboardType) : data->text().toUtf8();
    const std::optional<Graph> graph = graphFromText(text);
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

void CanvasCommands::insertAndSelect(const Graph& graph)
{
    std::vector<NodeId> made;
    for (const auto& [from, to] : m_document.insert(graph, QPointF(40, 40)))
        made.push_back(to);
    m_scene.selectNodes(made);
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
    m_view.fit(m_scene.nodesRect({}));
}

void CanvasCommands::fitSelected()
{
    m_view.fit(m_scene.nodesRect(m_scene.selectedNodes()));
}

} // namespace Host
