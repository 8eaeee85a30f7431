#pragma once

#include "document.h"

#include <QMainWindow>

#include <memory>

namespace Host
{

class CanvasCommands;
class CanvasKeys;
class Embedding;
class ExportCommands;
class Exporter;
class FileOpener;
class HistogramDock;
class ImagePane;
class Importer;
class MemoryDisplay;
class ModeHost;
class PaneKeys;
class Pictures;
class Preferences;
class ProjectFiles;
class ProjectView;
class Scene;
class SceneView;
class Shortcuts;
class WindowLayout;
class WireKeys;

// The window: the canvas of nodes, the picture of the node that carries the primary emblem, and the menus of what is
// done to both.
class EditorWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit EditorWindow(const NodeTypes& types, QWidget* parent = nullptr);
    ~EditorWindow() override;

    Document& document() { return m_document; }
    Scene& scene() { return *m_scene; }
    SceneView& sceneView() { return *m_sceneView; }
    ImagePane& imagePane() { return *m_imagePane; }
    Exporter& exporter() { return *m_exporter; }
    ModeHost& modes() { return *m_modes; }
    Pictures& pictures() { return *m_pictures; }
    ProjectFiles& files() { return *m_files; }
    Importer& importer() { return *m_importer; }
    FileOpener& opener() { return *m_opener; }
    CanvasCommands& canvasCommands() { return *m_canvasCommands; }
    Embedding& embedding() { return *m_embedding; }
    ExportCommands& exportCommands() { return *m_exportCommands; }
    Preferences& preferences() { return *m_preferences; }
    Shortcuts& shortcuts() { return *m_shortcuts; }

    void restoreLayout(); // that of the last window that was closed

    bool isSettled() const; // no picture and no file is waited for

public Q_SLOTS:
    void editInView(bool on); // the selected node, or the one that is shown
    void showMessage(const QString& text);

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private Q_SLOTS:
    void importImages();
    void updateTitle();

private:
    void addFileMenu();
    void addEditMenu();
    void addViewMenu();
    void connectParts();
    bool mayEndExports();

    Document m_document;
    Scene* m_scene;
    SceneView* m_sceneView;
    std::unique_ptr<ProjectView> m_projectView;
    ImagePane* m_imagePane;
    Pictures* m_pictures;
    ModeHost* m_modes;
    Exporter* m_exporter;
    ProjectFiles* m_files;
    Importer* m_importer;
    FileOpener* m_opener;
    CanvasCommands* m_canvasCommands;
    Embedding* m_embedding;
    WireKeys* m_wireKeys;     // the canvas's
    CanvasKeys* m_canvasKeys; // the canvas's
    PaneKeys* m_paneKeys;
    HistogramDock* m_histogram; // the window's
    MemoryDisplay* m_memory;
    ExportCommands* m_exportCommands;
    Preferences* m_preferences;
    Shortcuts* m_shortcuts;
    WindowLayout* m_layout = nullptr;
    QAction* m_editInView = nullptr; // the window's
};

} // namespace Host
