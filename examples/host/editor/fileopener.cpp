#include "fileopener.h"

#include "importer.h"
#include "projectfiles.h"
#include "sceneview.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace Host
{
namespace
{

constexpr int kGap = 60;

// Projects may have any name. Opening a pipe would wait for its writer. Blocks.
bool beginsAsProject(const QString& name)
{
    constexpr int kBeginning = 80;
    QFile file(name);
    return QFileInfo(name).isFile() && file.open(QIODevice::ReadOnly) &&
           file.read(kBeginning).contains("\"ondrel-project\"");
}

} // namespace

FileOpener::FileOpener(ProjectFiles& projects, Importer& importer, Scene& scene, SceneView& canvas, QObject* parent)
    : QObject(parent)
    , m_projects(projects)
    , m_importer(importer)
    , m_scene(scene)
    , m_canvas(canvas)
{
    connect(&projects, &ProjectFiles::message, this, [this](const QString& text) { m_told.append(text); });
    connect(&importer, &Importer::ended, this, [this] {
        if (std::exchange(m_showsAll, false))
            m_canvas.fitAllNodes();
    });
}

bool FileOpener::isProjectName(const QString& file)
{
    return file.endsWith(".ondrel", Qt::CaseInsensitive);
}

void FileOpener::open(const QStringList& files, std::optional<QPoint> at)
{
    const auto sort = [this, files, at]() -> std::function<void()> {
        QStringList projects, pictures;
        for (const QString& file : files)
            (isProjectName(file) || beginsAsProject(file) ? projects : pictures).append(file);
        return [this, projects, pictures, at] { openSorted(projects, pictures, at); };
    };
    m_worker.run(sort, [this](const QString& reason) { Q_EMIT message(reason); });
}

void FileOpener::openSorted(const QStringList& projects, const QStringList& pictures, std::optional<QPoint> at)
{
    m_told.clear();
    if (projects.size() > 1)
        Q_EMIT message(tr("One project at a time can be opened."));
    else if (projects.size() == 1)
        m_projects.openAfterAsking(projects.front(), [this, pictures, at] { import(pictures, at); });
    else
        import(pictures, at);
}

void FileOpener::import(const QStringList& pictures, std::optional<QPoint> at)
{
    if (pictures.isEmpty())
        return;
    m_showsAll = !at;
    const QRectF all = m_scene.nodesRect({}) | m_scene.frames().area();
    const QPointF free = all.isEmpty() ? m_canvas.place().center : all.bottomLeft() + QPointF(0, kGap);
    m_importer.import(pictures, at ? m_canvas.mapToScene(*at) : free, m_told);
}

} // namespace Host
