#include "embedding.h"

#include "document.h"
#include "imageimport.h"
#include "project.h"
#include "projectresources.h"
#include "scene.h"

#include <ondrel/resources/resourceengine.h>

#include <QAction>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QSaveFile>

#include <algorithm>

using Ondrel::ResourceId;

namespace Host
{
namespace
{

using Bytes = std::vector<unsigned char>;

Import importAs(StoredResource::Form form, const QString& file)
{
    return form == StoredResource::RawFile ? importRawImage(file) : importImage(file);
}

// What a file gives, after the mending that it gets at import. No bytes if it cannot be read.
Bytes bytesAt(StoredResource::Form form, const QString& file)
{
    const Import import = importAs(form, file);
    const Bytes bytes = import.id.id == 0 ? Bytes() : copyFromStore(import.id.id, true).data;
    ResourceEngine::Get().RemoveResource(import.id);
    return bytes;
}

// Why a picture cannot be saved as the path of its file; empty if it can. Blocks.
QString whyNotLink(ResourceId picture)
{
    const StoredResource stored = copyFromStore(picture.id, true);
    if (stored.form == StoredResource::Buffer || stored.path.isEmpty())
        return Embedding::tr("This picture has no file, so it stays in the project. It can be saved as one.");
    if (!QFileInfo(stored.path).isFile())
        return Embedding::tr("%1 is gone, so the picture stays in the project. It can be saved as a file.")
            .arg(stored.path);
    if (bytesAt(stored.form, stored.path) != stored.data)
        return Embedding::tr("%1 is another picture by now, so that of the project stays there. It can be saved as "
                             "another file.")
            .arg(stored.path);
    return QString();
}

// Of a mended picture, the bytes may be of another format than its name says.
QString endingOf(const StoredResource& stored)
{
    const Bytes& data = stored.data;
    const auto starts = [&data](const char* with) {
        return QByteArray::fromRawData(reinterpret_cast<const char*>(data.data()),
                                       int(std::min<std::size_t>(8, data.size())))
            .startsWith(with);
    };
    if (stored.form != StoredResource::RawFile && starts("\x89PNG"))
        return "png";
    if (stored.form != StoredResource::RawFile && starts("\xff\xd8"))
        return "jpg";
    return QFileInfo(stored.path).suffix();
}

QString writeBytes(const Bytes& bytes, const QString& name)
{
    QSaveFile file(name);
    const auto size = qint64(bytes.size());
    if (file.open(QIODevice::WriteOnly) && file.write(reinterpret_cast<const char*>(bytes.data()), size) == size &&
        file.commit())
        return QString();
    return Embedding::tr("%1 cannot be written: %2.").arg(name, file.errorString());
}

} // namespace

Embedding::Embedding(Document& document, Scene& scene, QWidget& window)
    : QObject(&window)
    , m_document(document)
    , m_scene(scene)
    , m_window(window)
{
    connect(&m_worker, SIGNAL(failed(QString)), this, SIGNAL(message(QString)));
    connect(&scene, SIGNAL(selectionChanged()), this, SLOT(updateActions()));
    connect(&document, SIGNAL(changed()), this, SLOT(updateActions()));
}

void Embedding::addActions(QMenu& menu)
{
    m_embed = menu.addAction(tr("E&mbed picture in project"), this, SLOT(setEmbedded(bool)));
    m_embed->setObjectName("edit.embedPicture");
    m_embed->setCheckable(true);
    m_save = menu.addAction(tr("Sa&ve embedded picture as file..."), this, SLOT(chooseAndSave()));
    m_save->setObjectName("edit.savePicture");
    updateActions();
}

void Embedding::updateActions()
{
    if (!m_embed)
        return;
    const std::vector<ResourceId> pictures = selected();
    const std::set<std::uint32_t>& embedded = m_document.graph().embedded;
    const auto isEmbedded = [&embedded](ResourceId picture) { return embedded.count(picture.id) != 0; };
    const bool areAll = !pictures.empty() && std::all_of(pictures.begin(), pictures.end(), isEmbedded);
    m_embed->setEnabled(!pictures.empty());
    m_embed->setChecked(areAll);
    m_save->setEnabled(areAll && pictures.size() == 1);
}

std::vector<ResourceId> Embedding::selected() const
{
    Graph graph;
    for (const NodeId id : m_scene.selectedNodes()) {
        if (const NodeRecord* const record = m_document.graph().node(id))
            graph.nodes[id] = *record;
    }
    return resourcesOf(graph);
}

bool Embedding::isUsed(ResourceId picture) const
{
    const std::vector<ResourceId> used = resourcesOf(m_document.graph());
    return std::find(used.begin(), used.end(), picture) != used.end();
}

void Embedding::setEmbedded(bool embedded)
{
    if (embedded)
        embedSelected();
    else
        linkSelected();
    updateActions(); // the click has changed the mark, whatever has come of it
}

void Embedding::embedSelected()
{
    std::vector<ResourceId> pictures = selected();
    const auto isThere = [](ResourceId picture) {
        Ondrel::ImageInfo info;
        return ResourceEngine::Get().CopyImageInfo(picture, info) && info.width != 0 && info.height != 0;
    };
    const auto missing = std::stable_partition(pictures.begin(), pictures.end(), isThere);
    if (missing != pictures.end())
        Q_EMIT message(tr("There is nothing to embed of a picture that could not be read."));
    pictures.erase(missing, pictures.end());
    m_document.setEmbedded(pictures, true);
}

void Embedding::linkSelected()
{
    m_worker.run([this, pictures = selected()]() -> std::function<void()> {
        std::vector<ResourceId> links;
        QStringList reasons;
        for (const ResourceId picture : pictures) {
            const QString reason = whyNotLink(picture);
            if (reason.isEmpty())
                links.push_back(picture);
            else
                reasons.append(reason);
        }
        return [this, links, reasons] {
            m_document.setEmbedded(links, false);
            updateActions();
            if (!reasons.isEmpty())
                Q_EMIT message(reasons.join("  "));
        };
    });
}

void Embedding::chooseAndSave()
{
    const std::vector<ResourceId> pictures = selected();
    if (pictures.size() == 1)
        askForPlace(pictures.front());
}

void Embedding::askForPlace(ResourceId picture)
{
    m_worker.run([this, picture]() -> std::function<void()> {
        const StoredResource stored = copyFromStore(picture.id, true);
        const QFileInfo name(stored.path);
        const QString ending = endingOf(stored);
        const QString proposed =
            name.dir().filePath(name.completeBaseName() + (ending.isEmpty() ? QString() : '.' + ending));
        return [this, picture, proposed] {
            const QString file = QFileDialog::getSaveFileName(&m_window, tr("Save picture"), proposed);
            if (!file.isEmpty())
                saveAs(picture, file);
        };
    });
}

void Embedding::saveAs(ResourceId picture, const QString& file)
{
    m_worker.run([this, picture, file]() -> std::function<void()> {
        const StoredResource stored = copyFromStore(picture.id, true);
        if (stored.form == StoredResource::Buffer || stored.data.empty())
            return [this] { Q_EMIT message(tr("This picture is no file's.")); };
        const QString problem = writeBytes(stored.data, file);
        const Import made = problem.isEmpty() ? importAs(stored.form, file) : Import();
        return [this, picture, file, problem, made] {
            if (made.id.id != 0)
                take(picture, made.id);
            else
                Q_EMIT message(problem.isEmpty() ? tr("%1 is no image that can be read.").arg(file) : problem);
        };
    });
}

// Another project may be open by now.
void Embedding::take(ResourceId picture, ResourceId fromFile)
{
    if (isUsed(picture)) {
        m_document.replaceResource(picture, fromFile);
        return;
    }
    m_worker.run([fromFile]() -> std::function<void()> {
        ResourceEngine::Get().RemoveResource(fromFile);
        return {};
    });
}

} // namespace Host
