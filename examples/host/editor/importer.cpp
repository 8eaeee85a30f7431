#include "importer.h"

#include "document.h"
#include "imageimport.h"
#include "scene.h"

#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>
#include <vector>

namespace Host
{
namespace
{

// Room for a node and its wires.
constexpr int kColumn = 320, kRow = 420;

// One core stays with the user interface.
int threadsForReading()
{
    return std::max(1, QThread::idealThreadCount() - 1);
}

// As what its name says, else as the other.
Import importAny(const QString& file, bool& isRaw)
{
    isRaw = hasRawName(file);
    Import made = isRaw ? importRawImage(file) : importImage(file);
    if (made.id.id == 0) {
        isRaw = !isRaw;
        made = isRaw ? importRawImage(file) : importImage(file);
    }
    return made;
}

} // namespace

// The files of one call.
struct Importer::Batch {
    QStringList texts;
    std::vector<std::function<QString()>> readings; // by file; each makes its node, and gives what there is to tell
    std::size_t next = 0;                           // to make its node
};

Importer::Importer(Document& document, Scene& scene, QObject* parent)
    : QObject(parent)
    , m_document(document)
    , m_scene(scene)
    , m_worker(threadsForReading())
{
}

void Importer::import(const QStringList& files, QPointF at, const QStringList& told)
{
    const auto batch = std::make_shared<Batch>();
    batch->texts = told;
    batch->readings.resize(std::size_t(files.size()));
    const int columns = int(std::ceil(std::sqrt(files.size())));
    for (int i = 0; i < files.size(); ++i) {
        const QPointF place = at + QPointF(i % columns * kColumn, i / columns * kRow);
        const auto read = [this, batch, i, place, file = files[i]]() -> std::function<void()> {
            bool isRaw = false;
            const Import made = importAny(file, isRaw);
            return [this, batch, i, file, made, isRaw, place] {
                take(*batch, i, [this, file, made, isRaw, place] {
                    if (made.id.id == 0)
                        return tr("%1 is no image that can be read.").arg(file);
                    addNode(file, isRaw ? "essentials/rawimage" : "essentials/image", made.id, place);
                    return made.note;
                });
            };
        };
        m_worker.run(read, [this, batch, i, file = files[i]](const QString& reason) {
            take(*batch, i, [file, reason] { return tr("%1 cannot be read. %2").arg(file, reason); });
        });
    }
}

// Those that are read wait for the ones before them.
void Importer::take(Batch& batch, int index, std::function<QString()> reading)
{
    batch.readings[std::size_t(index)] = std::move(reading);
    while (batch.next < batch.readings.size() && batch.readings[batch.next]) {
        const std::function<QString()> end = std::exchange(batch.readings[batch.next], nullptr);
        ++batch.next;
        const QString text = end();
        if (!text.isEmpty()) {
            batch.texts.append(text);
            Q_EMIT message(batch.texts.join("  "));
        }
        if (batch.next == batch.readings.size())
            Q_EMIT ended();
    }
}

void Importer::addNode(const QString& file, const QString& type, Ondrel::ResourceId id, QPointF at)
{
    m_document.beginStep(tr("Import image"));
    const NodeId node = m_document.addNode(type, at);
    m_document.setValue(node, "image", QVariant::fromValue(id));
    m_document.renameNode(node, uniqueName(m_document.graph(), QFileInfo(file).completeBaseName()));
    m_document.endStep();
    m_scene.selectNodes({node});
    if (m_scene.primary() == 0)
        m_scene.show(node, PreviewNode::EmblemPrimary);
}

} // namespace Host
