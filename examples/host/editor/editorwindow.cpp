#include "editorwindow.h"

#include "clipboardgraph.h"
#include "exportdialog.h"
#include "exporter.h"
#include "imagepane.h"
#include "modehost.h"
#include "nodesearch.h"
#include "pictures.h"
#include "project.h"
#include "recentmenu.h"
#include "scene.h"
#include "sceneview.h"
#include "viewmenu.h"

#include <ondrel/resources/resourceengine.h>
#include <ondrel/widgets/histogramwidget.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDir>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSplitter>
#include <QStatusBar>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace Host
{
namespace
{

constexpr int kMessageTime = 8000;
constexpr int kAutosaveTime = 60000;
const char* const kClipboardType = "application/x-ondrel-nodes+json";

} // namespace

EditorWindow::EditorWindow(const NodeTypes& types, QWidget* parent)
    : QMainWindow(parent)
    , m_types(types)
    , m_document(types)
    , m_scene(new Scene(m_document, this))
    , m_sceneView(new SceneView(*m_scene))
    , m_imagePane(new ImagePane)
    , m_pictures(new Pictures(m_document, *m_scene, *m_imagePane, this))
    , m_modes(new ModeHost(m_document, *m_scene, *m_imagePane, *this))
    , m_exporter(new Exporter(types, m_pictures->evaluator().cache(), this))
{
    auto* splitter = new QSplitter(Qt::Vertical, this);
    splitter->addWidget(m_imagePane);
    splitter->addWidget(m_sceneView);
    splitter->setSizes({500, 400});
    setCentralWidget(splitter);
    statusBar()->addPermanentWidget(m_exporter);
    setAcceptDrops(true);
    addHistogram();
    addActions();

    m_autosaveTimer.setSingleShot(true);
    m_autosaveTimer.setInterval(kAutosaveTime);
    connect(&m_autosaveTimer, SIGNAL(timeout()), this, SLOT(autosave()));
    connect(&m_document, &Document::changed, this, [this] {
        if (!m_autosaveTimer.isActive())
            m_autosaveTimer.start();
    });
    connect(m_exporter, &Exporter::finished, this, &EditorWindow::exportDone);
    m_pictures->setShownGraph([this] { return m_modes->shownGraph(); });
    connect(m_modes, SIGNAL(changed()), m_pictures, SLOT(schedule()));
    connect(m_modes, &ModeHost::left, this, [this] { m_editInView->setChecked(false); });
    connect(m_scene, &Scene::refused, this,
            [this](const QString& reason) { statusBar()->showMessage(reason, kMessageTime); });
    // The search runs an event loop, which is not to run inside of the mouse event that drops the wire.
    connect(m_scene, &Scene::wireDropped, this, &EditorWindow::addWiredNode, Qt::QueuedConnection);
    connect(m_sceneView, SIGNAL(searchWanted(QPointF)), this, SLOT(searchNode(QPointF)), Qt::QueuedConnection);
    connect(&m_document.undoStack(), SIGNAL(cleanChanged(bool)), this, SLOT(updateTitle()));
    updateTitle();
}

EditorWindow::~EditorWindow()
{
    delete m_exporter; // it uses the cache of the pictures
    delete m_pictures;
    delete m_modes;
    m_document.disconnect(this);
    m_document.undoStack().disconnect(this); // it tells of its end when the title is gone
    delete m_sceneView;
    delete m_scene; // before the document that it speaks to
}

QAction* EditorWindow::addAction(QMenu* menu, const QString& text, const QKeySequence& shortcut, const char* slot)
{
    QAction* const action = menu->addAction(text, this, slot, shortcut);
    return action;
}

void EditorWindow::addActions()
{
    QMenu* const file = menuBar()->addMenu(tr("&File"));
    addAction(file, tr("&Open..."), QKeySequence::Open, SLOT(open()));
    m_recent = new RecentMenu(this);
    file->addMenu(m_recent);
    connect(m_recent, &RecentMenu::chosen, this, [this](const QString& chosen) {
        if (mayLeave())
            openProject(chosen);
    });
    addAction(file, tr("&Save"), QKeySequence::Save, SLOT(save()));
    addAction(file, tr("Save &as..."), QKeySequence::SaveAs, SLOT(saveAs()));
    file->addSeparator();
    addAction(file, tr("&Import images..."), QKeySequence("Ctrl+I"), SLOT(importImages()));
    addAction(file, tr("&Export picture..."), QKeySequence("Ctrl+E"), SLOT(exportShown()));
    file->addSeparator();
    addAction(file, tr("&Quit"), QKeySequence::Quit, SLOT(close()));

    QMenu* const edit = menuBar()->addMenu(tr("&Edit"));
    QAction* const undo = m_document.undoStack().createUndoAction(this);
    undo->setShortcut(QKeySequence::Undo);
    QAction* const redo = m_document.undoStack().createRedoAction(this);
    redo->setShortcuts({QKeySequence("Ctrl+Shift+Z"), QKeySequence("Ctrl+Y")});
    edit->addActions({undo, redo});
    edit->addSeparator();
    addAction(edit, tr("Cu&t"), QKeySequence::Cut, SLOT(cutSelected()));
    addAction(edit, tr("&Copy"), QKeySequence::Copy, SLOT(copySelected()));
    addAction(edit, tr("&Paste"), QKeySequence::Paste, SLOT(paste()));
    addAction(edit, tr("D&uplicate"), QKeySequence("Ctrl+D"), SLOT(duplicateSelected()));
    addAction(edit, tr("De&lete"), QKeySequence::Delete, SLOT(deleteSelected()));
    edit->addSeparator();
    addAction(edit, tr("&Bypass"), QKeySequence("D"), SLOT(bypassSelected()));

    QMenu* const view = menuBar()->addMenu(tr("&View"));
    view->addAction(findChild<QDockWidget*>("histogram")->toggleViewAction());
    addAction(view, tr("&Show node"), QKeySequence("1"), SLOT(showSelected()));
    addAction(view, tr("Show node as s&econdary"), QKeySequence("2"), SLOT(showSelectedAsSecondary()));
    view->addMenu(new ViewMenu(*m_imagePane, this));
    m_editInView = view->addAction(tr("&Edit node in view"));
    m_editInView->setShortcut(QKeySequence("E"));
    m_editInView->setCheckable(true);
    connect(m_editInView, SIGNAL(triggered(bool)), this, SLOT(editInView(bool)));
    addAction(view, tr("Fit &all nodes"), QKeySequence("A"), SLOT(fitAll()));
    addAction(view, tr("Fit &selected nodes"), QKeySequence("F"), SLOT(fitSelected()));
    QAction* const fit = view->addAction(tr("Fit &picture"), m_imagePane, SLOT(fit()), QKeySequence("Ctrl+0"));
    fit->setObjectName("fitPicture");
}

void EditorWindow::updateTitle()
{
    const QString name = m_file.isEmpty() ? tr("Untitled") : QFileInfo(m_file).fileName();
    setWindowTitle(QString("%1%2 - Ondrel").arg(m_document.undoStack().isClean() ? "" : "*", name));
}

// ---- Files

bool EditorWindow::mayLeave()
{
    if (m_document.undoStack().isClean())
        return true;
    const auto answer = QMessageBox::question(this, tr("Unsaved changes"), tr("Save the project first?"),
                                              QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    if (answer == QMessageBox::Save)
        save(); // in the background: leaving is tried again afterwards
    return answer == QMessageBox::Discard;
}

void EditorWindow::closeEvent(QCloseEvent* event)
{
    event->setAccepted(mayLeave());
}

void EditorWindow::open()
{
    if (!mayLeave())
        return;
    const QString file = QFileDialog::getOpenFileName(this, tr("Open project"), QString(), tr("Projects (*.ondrel)"));
    if (!file.isEmpty())
        openProject(file);
}

void EditorWindow::openProject(const QString& file)
{
    setEnabled(false);
    m_worker.run([this, file]() -> std::function<void()> {
        const QString autosave = recoverableAutosave(file);
        return [this, file, autosave] {
            if (autosave.isEmpty())
                readProject(file, file);
            else
                chooseRecovery(file, autosave);
        };
    });
}

void EditorWindow::chooseRecovery(const QString& file, const QString& autosave)
{
    auto* const question = new QMessageBox(
        QMessageBox::Question, tr("Recovery"),
        tr("There are newer changes to %1 that were not saved. Open them?").arg(QFileInfo(file).fileName()),
        QMessageBox::Yes | QMessageBox::No, this);
    question->setAttribute(Qt::WA_DeleteOnClose);
    setEnabled(true); // for the question
    connect(question, &QDialog::finished, this,
            [this, file, autosave](int answer) { readProject(file, answer == QMessageBox::Yes ? autosave : file); });
    question->open();
}

void EditorWindow::readProject(const QString& file, const QString& from)
{
    setEnabled(false);
    m_worker.run([this, file, from]() -> std::function<void()> {
        const ProjectReading reading = loadProject(from, m_types);
        return [this, file, from, reading] { takeProject(file, reading, from != file); };
    });
}

void EditorWindow::takeProject(const QString& file, const ProjectReading& reading, bool isRecovered)
{
    setEnabled(true);
    if (!reading.project) {
        statusBar()->showMessage(reading.error, kMessageTime);
        return;
    }
    m_document.load(reading.project->graph);
    m_embedded = reading.project->embedded;
    m_file = file;
    const std::string shown = reading.project->view.value("primary", std::string());
    m_scene->show(QString::fromStdString(shown).toULongLong(), PreviewNode::EmblemPrimary);
    fitAll();
    m_autosaveTimer.stop(); // loading is no change
    m_recent->add(file);
    if (isRecovered)
        m_document.undoStack().resetClean();
    updateTitle();
    if (!reading.notes.isEmpty())
        statusBar()->showMessage(reading.notes.join("  "), kMessageTime);
}

Project EditorWindow::project() const
{
    Project project;
    project.graph = m_document.graph();
    project.embedded = m_embedded;
    project.view["primary"] = std::to_string(m_scene->primary());
    return project;
}

void EditorWindow::saveProject(const QString& file)
{
    setEnabled(false);
    m_autosaveTimer.stop();
    ++m_saves;
    m_worker.run([this, file, project = project()]() -> std::function<void()> {
        const std::lock_guard lock(m_saving);
        const QString reason = Host::saveProject(project, file);
        if (reason.isEmpty())
            discardAutosave(file);
        return [this, file, reason] {
            setEnabled(true);
            if (!reason.isEmpty()) {
                statusBar()->showMessage(reason, kMessageTime);
                return;
            }
            m_file = file;
            m_recent->add(file);
            m_document.undoStack().setClean();
            updateTitle();
        };
    });
}

void EditorWindow::setAutosaveInterval(int milliseconds)
{
    m_autosaveTimer.setInterval(milliseconds);
}

// Beside the file. A project that was never saved has no place yet.
void EditorWindow::autosave()
{
    if (m_file.isEmpty() || m_document.undoStack().isClean())
        return;
    m_worker.run(
        [this, file = autosaveName(m_file), project = project(), saves = m_saves.load()]() -> std::function<void()> {
            const std::lock_guard lock(m_saving);
            if (saves != m_saves)
                return {};
            const QString reason = Host::saveProject(project, file);
            return [this, reason] {
                if (!reason.isEmpty())
                    statusBar()->showMessage(reason, kMessageTime);
            };
        });
}

void EditorWindow::save()
{
    if (m_file.isEmpty())
        saveAs();
    else
        saveProject(m_file);
}

void EditorWindow::saveAs()
{
    const QString file = QFileDialog::getSaveFileName(this, tr("Save project"), m_file, tr("Projects (*.ondrel)"));
    if (!file.isEmpty())
        saveProject(file);
}

void EditorWindow::importImages()
{
    importFiles(QFileDialog::getOpenFileNames(this, tr("Import images")), m_sceneView->pointerInScene());
}

void EditorWindow::importFiles(const QStringList& files, QPointF at)
{
    for (const QString& file : files) {
        m_worker.run([this, file, at]() -> std::function<void()> {
            Ondrel::ResourceId id;
            const bool added = ResourceEngine::Get().AddImage(file.toStdString(), id);
            return [this, file, id, added, at] {
                if (added)
                    addImage(file, id, at);
                else
                    statusBar()->showMessage(tr("%1 is no image that can be read.").arg(file), kMessageTime);
            };
        });
        at += QPointF(40, 40);
    }
}

void EditorWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

// A project is opened, anything else imported: where it was dropped on the canvas, or in the middle of it.
void EditorWindow::dropEvent(QDropEvent* event)
{
    QStringList files;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile())
            files.append(url.toLocalFile());
    }
    event->acceptProposedAction();
    if (files.size() == 1 && files[0].endsWith(".ondrel")) {
        if (mayLeave())
            openProject(files[0]);
        return;
    }
    QWidget* const canvas = m_sceneView->viewport();
    const QPoint at = canvas->mapFrom(this, event->pos());
    importFiles(files, m_sceneView->mapToScene(canvas->rect().contains(at) ? at : canvas->rect().center()));
}

// ---- Export

QVariantMap EditorWindow::shownOutputValues() const
{
    const NodeRecord* const record = m_document.graph().node(m_scene->primary());
    const NodeType* const type = record ? m_types.find(record->type) : nullptr;
    return type && type->id == "essentials/output" ? completeValues(*record, *type) : QVariantMap();
}

void EditorWindow::exportShown()
{
    const NodeRecord* const record = m_document.graph().node(m_scene->primary());
    if (!record) {
        statusBar()->showMessage(tr("Show a node first: its picture is exported."), kMessageTime);
        return;
    }
    const QVariantMap values = shownOutputValues();
    const QString last = values.value("file").toString();
    const QString folder = m_file.isEmpty() ? QDir::homePath() : QFileInfo(m_file).path();
    ExportDialog dialog(last.isEmpty() ? folder + "/" + record->name : last, values, this);
    if (dialog.exec() == QDialog::Accepted)
        exportPicture(dialog.file(), dialog.outputValues());
}

void EditorWindow::exportPicture(const QString& file, const QVariantMap& outputValues)
{
    ExportOrder order{m_document.graph(), m_scene->primary(), file, formatOf(outputValues), outputValues};
    formatFromName(file, order.format);
    m_exporter->add(order);
}

void EditorWindow::exportDone(const QString& file, const QString& error)
{
    const QString name = QFileInfo(file).fileName();
    statusBar()->showMessage(error.isEmpty() ? tr("%1 was exported.").arg(name) : name + ": " + error, kMessageTime);
}

void EditorWindow::addHistogram()
{
    auto* const dock = new QDockWidget(tr("Histogram"), this);
    dock->setObjectName("histogram");
    auto* const panel = new QWidget(dock);
    auto* const histogram = new Ondrel::HistogramWidget(panel);
    histogram->setFixedHeight(150);
    histogram->setMinimumWidth(220);
    auto* const layout = new QVBoxLayout(panel); // keeps it at the top where the dock is high
    layout->setContentsMargins(6, 0, 6, 6);
    layout->addWidget(histogram);
    layout->addStretch();
    histogram->setAccessibleName(tr("Histogram of the picture in view"));
    dock->setWidget(panel);
    addDockWidget(Qt::RightDockWidgetArea, dock);
    connect(m_imagePane, &ImagePane::pictureShown, histogram,
            [this, histogram] { histogram->update(m_imagePane->picture().image); });
}

void EditorWindow::addImage(const QString& file, Ondrel::ResourceId id, QPointF at)
{
    m_document.beginStep(tr("Import image"));
    const NodeId node = addNode("essentials/image", at);
    m_document.setValue(node, "image", QVariant::fromValue(id));
    m_document.renameNode(node, uniqueName(m_document.graph(), QFileInfo(file).completeBaseName()));
    m_document.endStep();
    if (m_scene->primary() == 0)
        m_scene->show(node, PreviewNode::EmblemPrimary);
}

// ---- Nodes

NodeId EditorWindow::addNode(const QString& type, QPointF at)
{
    const NodeId id = m_document.addNode(type, at);
    if (id != 0)
        m_scene->selectNodes({id});
    return id;
}

QString EditorWindow::chooseType(const QString& dataType, bool wantsInput, QPointF at)
{
    NodeSearch search(m_types, dataType, wantsInput, this);
    search.move(m_sceneView->viewport()->mapToGlobal(m_sceneView->mapFromScene(at)));
    return search.exec() == QDialog::Accepted ? search.chosenType() : QString();
}

void EditorWindow::searchNode(QPointF at)
{
    const QString type = chooseType(QString(), true, at);
    if (!type.isEmpty())
        addNode(type, at);
}

void EditorWindow::addWiredNode(NodeId node, const QString& field, bool fromOutput, QPointF at)
{
    const NodeRecord* const record = m_document.graph().node(node);
    const NodeType* const known = record ? m_types.find(record->type) : nullptr;
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
void EditorWindow::connectTo(NodeId made, NodeId node, const QString& field, bool fromOutput)
{
    PreviewNode* const item = m_scene->item(made);
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

void EditorWindow::deleteSelected()
{
    const std::vector<NodeId> ids = m_scene->selectedNodes();
    if (!ids.empty())
        m_document.removeNodes(ids);
}

void EditorWindow::bypassSelected()
{
    m_document.beginStep(tr("Bypass"));
    for (const NodeId id : m_scene->selectedNodes())
        m_document.setBypassed(id, !m_document.graph().node(id)->bypassed);
    m_document.endStep();
}

Graph EditorWindow::selectedGraph() const
{
    Graph graph;
    for (const NodeId id : m_scene->selectedNodes())
        graph.nodes[id] = *m_document.graph().node(id);
    for (const Connection& connection : m_document.graph().connections) {
        if (graph.node(connection.from) && graph.node(connection.to))
            graph.connections.push_back(connection);
    }
    return graph;
}

void EditorWindow::copySelected()
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

void EditorWindow::cutSelected()
{
    copySelected();
    deleteSelected();
}

void EditorWindow::paste()
{
    const QMimeData* const data = QApplication::clipboard()->mimeData();
    const QByteArray text = data->hasFormat(kClipboardType) ? data->data(kClipboardType) : data->text().toUtf8();
    const std::optional<Graph> graph = graphFromText(text);
    if (!graph) {
        statusBar()->showMessage(tr("There are no nodes on the clipboard."), kMessageTime);
        return;
    }
    std::vector<NodeId> made;
    for (const auto& [from, to] : m_document.insert(*graph, QPointF(40, 40)))
        made.push_back(to);
    m_scene->selectNodes(made);
}

void EditorWindow::duplicateSelected()
{
    std::vector<NodeId> made;
    for (const auto& [from, to] : m_document.insert(selectedGraph(), QPointF(40, 40)))
        made.push_back(to);
    m_scene->selectNodes(made);
}

void EditorWindow::showSelected()
{
    const std::vector<NodeId> ids = m_scene->selectedNodes();
    if (ids.size() == 1)
        m_scene->show(ids.front(), PreviewNode::EmblemPrimary);
}

void EditorWindow::showSelectedAsSecondary()
{
    const std::vector<NodeId> ids = m_scene->selectedNodes();
    if (ids.size() == 1)
        m_scene->show(ids.front(), PreviewNode::EmblemSecondary);
}

void EditorWindow::editInView(bool on)
{
    m_modes->leave();
    if (!on)
        return;
    const std::vector<NodeId> ids = m_scene->selectedNodes();
    const bool entered = m_modes->enter(ids.size() == 1 ? ids.front() : m_scene->primary());
    m_editInView->setChecked(entered);
    if (!entered)
        statusBar()->showMessage(tr("There is nothing to edit in the view: select a node such as Crop, Perspective or "
                                    "Paint."),
                                 kMessageTime);
}

void EditorWindow::fitAll()
{
    m_sceneView->fit(m_scene->nodesRect({}));
}

void EditorWindow::fitSelected()
{
    m_sceneView->fit(m_scene->nodesRect(m_scene->selectedNodes()));
}

bool EditorWindow::isSettled() const
{
    return !m_pictures->isWaiting() && !m_worker.isBusy() && !m_exporter->isBusy() && !m_imagePane->isBusy();
}

} // namespace Host
