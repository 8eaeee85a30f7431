#include "importer.h"

#include "document.h"
#include "imageimport.h"
#include "scene.h"

#include <QFileInfo>

#include <cmath>
#include <memory>

namespace Host
{
namespace
{

// Room for a node and its wires.
constexpr int kColumn = 320, kRow = 420;

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

Importer::Importer(Document& document, Scene& scene, QObject* parent)
    : QObject(parent)
    , m_document(document)
    , m_scene(scene)
{
}

void Importer::import(const QStringList& files, QPointF at, const QStringList& told)
{
    struct Batch {
        QStringList texts;
        int left;
    };
    const auto batch = std::make_shared<Batch>(Batch{told, files.size()});
    const auto endOne = [this, batch](const QString& text) {
        if (!text.isEmpty()) {
            batch->texts.append(text);
            Q_EMIT message(batch->texts.join("  "));
        }
        if (--batch->left == 0)
            Q_EMIT ended();
    };
    const int columns = int(std::ceil(std::sqrt(files.size())));
    for (int i = 0; i < files.size(); ++i) {
        const QPointF place = at + QPointF(i % columns * kColumn, i / columns * kRow);
        const auto read = [this, file = files[i], place, endOne]() -> std::function<void()> {
            bool isRaw = false;
            const Import made = importAny(file, isRaw);
            return [this, file, made, isRaw, place, endOne] {
                if (made.id.id != 0)
                    addNode(file, isRaw ? "essentials/rawimage" : "essentials/image", made.id, place);
                endOne(made.id.id != 0 ? made.note : tr("%1 is no image that can be read.").arg(file));
            };
        };
        m_worker.run(read, [file = files[i], endOne](const QString& reason) {
            endOne(tr("%1 cannot be read. %2").arg(file, reason));
        });
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
