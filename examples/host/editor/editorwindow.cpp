#include "editorwindow.h"

#include "accessibleitems.h"
#include "canvasaccessibility.h"
#include "canvascommands.h"
#include "canvaskeys.h"
#include "embedding.h"
#include "exportcommands.h"
#include "exporter.h"
#include "fileopener.h"
#include "histogramdock.h"
#include "imagepane.h"
#include "importer.h"
#include "memorydisplay.h"
#include "modehost.h"
#include "panekeys.h"
#include "pictures.h"
#include "preferences.h"
#include "projectfiles.h"
#include "projectview.h"
#include "recentmenu.h"
#include "scene.h"
#include "sceneview.h"
#include "shortcuts.h"
#include "viewmenu.h"
#include "windowlayout.h"
#include "wirekeys.h"

#include <QAction>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSplitter>
#include <QStatusBar>
#include <QUrl>

namespace Host
{
namespace
{

constexpr int kMessageTime = 8000;

// Interfaces are kept from the first time that one is asked for, which may be while an item or view is being made.
Scene* makeAccessibleScene(Document& document, QObject* parent)
{
    QAccessible::installFactory(accessibleItem); // counts once
    return new Scene(document, parent);
}

} // namespace

EditorWindow::EditorWindow(const NodeTypes& types, QWidget* parent)
    : QMainWindow(parent)
    , m_document(types)
    , m_scene(makeAccessibleScene(m_document, this))
    , m_sceneView(new SceneView(*m_scene))
    , m_projectView(std::make_unique<ProjectView>(*m_scene, *m_sceneView))
    , m_imagePane(new ImagePane)
    , m_pictures(new Pictures(m_document, *m_scene, *m_imagePane, this))
    , m_modes(new ModeHost(m_document, *m_scene, *m_imagePane, *this))
    , m_exporter(new Exporter(types, m_pictures->evaluator().cache(), this))
    , m_files(new ProjectFiles(m_document, *this))
    , m_importer(new Importer(m_document, *m_scene, this))
    , m_opener(new FileOpener(*m_files, *m_importer, *m_scene, *m_sceneView, this))
    , m_canvasCommands(new CanvasCommands(m_document, *m_scene, *m_sceneView, *this))
    , m_embedding(new Embedding(m_document, *m_scene, *this))
    , m_wireKeys(new WireKeys(*m_scene, *m_sceneView, *m_canvasCommands))
    , m_canvasKeys(new CanvasKeys(*m_scene, *m_sceneView, *m_wireKeys))
    , m_paneKeys(new PaneKeys(*m_imagePane, *m_sceneView, *this))
    , m_histogram(new HistogramDock(*m_imagePane, this))
    , m_memory(new MemoryDisplay(m_document, *m_pictures, this))
    , m_exportCommands(new ExportCommands(m_document, *m_scene, *m_files, *m_exporter, *this))
    , m_preferences(new Preferences(*m_pictures, *m_imagePane, *this))
    , m_shortcuts(new Shortcuts(*this))
{
    auto* splitter = new QSplitter(Qt::Vertical, this);
    splitter->addWidget(m_imagePane);
    splitter->addWidget(m_sceneView);
    splitter->setSizes({500, 400});
    setCentralWidget(splitter);
    statusBar()->addPermanentWidget(m_exporter);
    statusBar()->addPermanentWidget(m_memory);
    addDockWidget(Qt::RightDockWidgetArea, m_histogram);
    setAcceptDrops(true);
    new CanvasAccessibility(m_document, *m_scene, *m_sceneView);
    addFileMenu();
    addEditMenu();
    addViewMenu();
    m_shortcuts->takeMenus(*menuBar());
    m_layout = new WindowLayout(*this, *splitter, *findChild<QAction*>("view.overview"));
    connectParts();
    updateTitle();
}

// What works in the background uses the document and the cache of the pictures.
EditorWindow::~EditorWindow()
{
    m_document.disconnect(this);
    m_document.undoStack().disconnect(this);
    delete m_opener;
    delete m_importer;
    delete m_files;
    delete m_exportCommands;
    delete m_exporter;
    delete m_memory;
    delete m_preferences;
    delete m_pictures;
    delete m_modes;
    delete m_canvasCommands;
    delete m_embedding;
    delete m_sceneView;
    delete m_scene;
}

void EditorWindow::connectParts()
{
    for (QObject* const part :
         {static_cast<QObject*>(m_files), static_cast<QObject*>(m_importer), static_cast<QObject*>(m_opener),
          static_cast<QObject*>(m_canvasCommands), static_cast<QObject*>(m_exportCommands),
          static_cast<QObject*>(m_embedding), static_cast<QObject*>(&m_pictures->evaluator()),
          static_cast<QObject*>(&m_imagePane->renderer())})
        connect(part, SIGNAL(message(QString)), this, SLOT(showMessage(QString)));
    connect(&m_preferences->device(), SIGNAL(message(QString)), this, SLOT(showMessage(QString)));
    connect(m_scene, SIGNAL(refused(QString)), this, SLOT(showMessage(QString)));
    connect(m_files, SIGNAL(nameChanged()), this, SLOT(updateTitle()));
    m_files->setView([this](const nlohmann::ordered_json& view) { return m_projectView->show(view); },
                     [this](nlohmann::ordered_json& view) { m_projectView->write(view); });
    m_files->setStillUsed([this] { return m_exporter->isBusy(); });
    m_pictures->setShownGraph([this] { return m_modes->shownGraph(); });
    connect(m_modes, SIGNAL(changed()), m_pictures, SLOT(schedule()));
    connect(m_modes, &ModeHost::left, this, [this] { m_editInView->setChecked(false); });
}

void EditorWindow::addFileMenu()
{
    QMenu* const file = menuBar()->addMenu(tr("&File"));
    file->setObjectName("file");
    file->addAction(tr("&New"), m_files, SLOT(startNew()), QKeySequence::New)->setObjectName("file.new");
    file->addAction(tr("&Open..."), m_files, SLOT(chooseAndOpen()), QKeySequence::Open)->setObjectName("file.open");
    auto* const recent = new RecentMenu(this);
    recent->setProperty("changing", true);
    file->addMenu(recent);
    connect(recent, SIGNAL(chosen(QString)), m_files, SLOT(openAfterAsking(QString)));
    connect(m_files, &ProjectFiles::used, recent, &RecentMenu::add);
    file->addAction(tr("&Save"), m_files, SLOT(save()), QKeySequence::Save)->setObjectName("file.save");
    file->addAction(tr("Save &as..."), m_files, SLOT(chooseAndSave()), QKeySequence::SaveAs)
        ->setObjectName("file.saveAs");
    file->addSeparator();
    file->addAction(tr("&Import images..."), this, SLOT(importImages()), QKeySequence("Ctrl+I"))
        ->setObjectName("file.import");
    file->addAction(tr("&Export picture..."), m_exportCommands, SLOT(chooseAndExport()), QKeySequence("Ctrl+E"))
        ->setObjectName("file.export");
    file->addSeparator();
    file->addAction(tr("&Quit"), this, SLOT(close()), QKeySequence::Quit)->setObjectName("file.quit");
}

void EditorWindow::addEditMenu()
{
    QMenu* const edit = menuBar()->addMenu(tr("&Edit"));
    edit->setObjectName("edit");
    QAction* const undo = m_document.undoStack().createUndoAction(this);
    undo->setObjectName("edit.undo");
    undo->setShortcut(QKeySequence::Undo);
    QAction* const redo = m_document.undoStack().createRedoAction(this);
    redo->setObjectName("edit.redo");
    redo->setShortcuts({QKeySequence("Ctrl+Shift+Z"), QKeySequence("Ctrl+Y")});
    edit->addActions({undo, redo});
    edit->addSeparator();
    m_canvasCommands->addEditActions(*edit);
    m_embedding->addActions(*edit);
    edit->addSeparator();
    m_canvasKeys->addActions(*edit);
    m_wireKeys->addActions(*edit);
    edit->addSeparator();
    edit->addAction(tr("&Free memory"), m_memory, SLOT(freeCaches()))->setObjectName("edit.freeMemory");
    edit->addAction(tr("Pre&ferences..."), m_preferences, SLOT(openDialog()), QKeySequence("Ctrl+,"))
        ->setObjectName("edit.preferences");
    edit->addAction(tr("&Keyboard shortcuts..."), m_shortcuts, SLOT(openDialog()), QKeySequence("Ctrl+Alt+K"))
        ->setObjectName("edit.shortcuts");
}

void EditorWindow::addViewMenu()
{
    QMenu* const view = menuBar()->addMenu(tr("&View"));
    view->setObjectName("view");
    view->addAction(m_histogram->toggleViewAction());
    m_canvasCommands->addViewActions(*view);
    view->addSeparator();
    m_paneKeys->addActions(*view);
    view->addSeparator();
    view->addMenu(new ViewMenu(*m_imagePane, this));
    m_editInView = view->addAction(tr("&Edit node in view"));
    m_editInView->setShortcut(QKeySequence("E"));
    m_editInView->setObjectName("view.editInView");
    m_editInView->setCheckable(true);
    connect(m_editInView, SIGNAL(triggered(bool)), this, SLOT(editInView(bool)));
    QAction* const fit = view->addAction(tr("Fit &picture"), m_imagePane, SLOT(fit()), QKeySequence("Ctrl+0"));
    fit->setObjectName("view.fitPicture");
    QAction* const pixels = view->addAction(tr("P&ixels of the picture"), m_imagePane, SLOT(showPixels()));
    pixels->setObjectName("view.showPixels");
    pixels->setShortcut(QKeySequence("Ctrl+1"));
}

void EditorWindow::updateTitle()
{
    const QString file = m_files->file();
    const QString name = file.isEmpty() ? tr("Untitled") : QFileInfo(file).fileName();
    setWindowTitle(QString("%1%2 - Ondrel").arg(m_document.undoStack().isClean() ? "" : "*", name));
}

void EditorWindow::restoreLayout()
{
    m_layout->restore();
}

void EditorWindow::showMessage(const QString& text)
{
    statusBar()->showMessage(text, kMessageTime);
}

void EditorWindow::closeEvent(QCloseEvent* event)
{
    event->setAccepted(mayEndExports() && m_files->mayLeave([this] { close(); }));
    if (!event->isAccepted())
        return;
    m_layout->keep();
    m_files->leave();
}

bool EditorWindow::mayEndExports()
{
    return !m_exporter->isBusy() ||
           QMessageBox::question(this, tr("Export"), tr("Pictures are being exported. Stop that?"),
                                 QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

void EditorWindow::importImages()
{
    m_importer->import(QFileDialog::getOpenFileNames(this, tr("Import images")), m_sceneView->pointerInScene());
}

void EditorWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

// Pictures go where they were dropped on the canvas, or below all nodes.
void EditorWindow::dropEvent(QDropEvent* event)
{
    QStringList files;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile())
            files.append(url.toLocalFile());
    }
    event->acceptProposedAction();
    QWidget* const canvas = m_sceneView->viewport();
    const QPoint at = canvas->mapFrom(this, event->pos());
    m_opener->open(files, canvas->rect().contains(at) ? std::optional(at) : std::nullopt);
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
        showMessage(tr("There is nothing to edit in the view: select a node such as Crop, Perspective or Paint."));
}

bool EditorWindow::isSettled() const
{
    return !m_pictures->isWaiting() && !m_files->isBusy() && !m_importer->isBusy() && !m_opener->isBusy() &&
           !m_exporter->isBusy() && !m_imagePane->isBusy() && !m_memory->isBusy() && !m_histogram->isBusy() &&
           !m_embedding->isBusy() && !m_preferences->isBusy();
}

} // namespace Host
