#pragma once

#include "worker.h"

#include <QObject>
#include <QPoint>
#include <QStringList>

#include <optional>

namespace Host
{

class Importer;
class ProjectFiles;
class Scene;
class SceneView;

// Opens what a user hands over in one go, by dropping files or on the command line: a project, unless the user wants to
// keep what is open, and then pictures into it. What cannot be read is named, and the rest is opened. User-interface
// thread only.
class FileOpener : public QObject
{
    Q_OBJECT
public:
    FileOpener(ProjectFiles& projects, Importer& importer, Scene& scene, SceneView& canvas, QObject* parent);

    bool isBusy() const { return m_worker.isBusy(); }
    // Pictures go to the point of the canvas's window. Without one they go below all nodes, and all of them are shown.
    void open(const QStringList& files, std::optional<QPoint> at = std::nullopt);

    static bool isProjectName(const QString& file);

Q_SIGNALS:
    void message(const QString& text);

private:
    void openSorted(const QStringList& projects, const QStringList& pictures, std::optional<QPoint> at);
    void import(const QStringList& pictures, std::optional<QPoint> at);

    ProjectFiles& m_projects;
    Importer& m_importer;
    Scene& m_scene;
    SceneView& m_canvas;
    bool m_showsAll = false; // once the pictures are there
    QStringList m_told;      // since the files were handed over, so that it is not covered by what comes next
    Worker m_worker;         // the first to go: its end waits for what runs
};

} // namespace Host
