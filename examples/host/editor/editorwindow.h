#pragma once

#include "document.h"
#include "project.h"
#include "worker.h"

#include <QMainWindow>
#include <QTimer>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>

namespace Host
{

class Exporter;
class ImagePane;
class ModeHost;
class Pictures;
class RecentMenu;
class Scene;
class SceneView;

// The window: the canvas of nodes, the picture of the node that carries the primary emblem, and what is done to both.
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

    // Files are read and written in the background; the window cannot be edited meanwhile. A failure is shown, and the
    // document stays. Where an autosave is newer than the file, the user is asked for which of them is opened.
    void openProject(const QString& file);
    void saveProject(const QString& file);
    void importFiles(const QStringList& files, QPointF at);
    // Of the node that is shown, at full size, in the background. The name's ending decides on the format.
    void exportPicture(const QString& file, const QVariantMap& outputValues);
    NodeId addNode(const QString& type, QPointF at);
    void setAutosaveInterval(int milliseconds); // a minute at first; counted from the first change after a save
    bool isSettled() const;                     // no picture and no file is waited for

public Q_SLOTS:
    void searchNode(QPointF at);
    void deleteSelected();
    void bypassSelected();
    void copySelected();
    void cutSelected();
    void paste();
    void duplicateSelected();
    void showSelected();
    void showSelectedAsSecondary();
    void editInView(bool on); // the selected node, or the one that is shown
    void fitAll();
    void fitSelected();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private Q_SLOTS:
    void open();
    void save();
    void saveAs();
    void importImages();
    void exportShown();
    void exportDone(const QString& file, const QString& error);
    void addWiredNode(Host::NodeId node, const QString& field, bool fromOutput, QPointF at);
    void updateTitle();
    void autosave();

private:
    void addActions();
    QAction* addAction(QMenu* menu, const QString& text, const QKeySequence& shortcut, const char* slot);
    bool mayLeave();
    QString chooseType(const QString& dataType, bool wantsInput, QPointF at);
    void takeProject(const QString& file, const ProjectReading& reading, bool isRecovered);
    void readProject(const QString& file, const QString& from);
    void chooseRecovery(const QString& file, const QString& autosave);
    Project project() const;
    void addImage(const QString& file, Ondrel::ResourceId id, QPointF at);
    void connectTo(NodeId made, NodeId node, const QString& field, bool fromOutput);
    Graph selectedGraph() const;
    void addHistogram();
    QVariantMap shownOutputValues() const;

    const NodeTypes& m_types;
    Document m_document;
    Scene* m_scene;
    SceneView* m_sceneView;
    ImagePane* m_imagePane;
    Pictures* m_pictures;
    ModeHost* m_modes;
    Exporter* m_exporter;
    QAction* m_editInView = nullptr; // the window's
    std::mutex m_saving;             // one file is written at a time
    std::atomic<int> m_saves{0};     // by the user, so far: an autosave from before one of them is not written
    Worker m_worker;
    RecentMenu* m_recent = nullptr; // the window's
    QTimer m_autosaveTimer;
    QString m_file;
    std::set<std::uint32_t> m_embedded; // resources that are saved with their bytes
};

} // namespace Host
