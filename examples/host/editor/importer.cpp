#include "importer.h"

#include "document.h"
#include "imageimport.h"
#include "scene.h"

#include <QFileInfo>

#include <cmath>
#include <memory>
#include <new>

namespace Host
{
namespace
{

// Room for a node and its wires.
constexpr int kColumn = 320, kRow = 420;

// As what its name says, else as the other. A file that takes more memory than there is counts as unreadable.
Import importAny(const QString& file, bool& isRaw)
{
    isRaw = hasRawName(file);
    try {
        Import made = isRaw ? importRawImage(file) : importImage(file);
        if (made.id.id == 0) {
            isRaw = !isRaw;
            made = isRaw ? importRawImage(file) : importImage(file);
        }
        return made;
    } catch (const std::bad_alloc&) {
        return {};
    }
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
    const int columns = int(std::ceil(std::sqrt(files.size())));
    for (int i = 0; i < files.size(); ++i) {
        const QPointF place = at + QPointF(i % columns * kColumn, i / columns * kRow);
        m_worker.run([this, file = files[i], place, batch]() -> std::function<void()> {
            bool isRaw = false;
            const Import made = importAny(file, isRaw);
            return [this, file, made, isRaw, place, batch] {
                if (made.id.id != 0)
                    addNode(file, isRaw ? "essentials/rawimage" : "essentials/image", made.id, place);
                const QString text = made.id.id != 0 ? made.note : tr("%1 is no image that can be read.").arg(file);
                if (!text.isEmpty()) {
                    batch->texts.append(text);
                    Q_EMIT message(batch->texts.join("  "));
                }
                if (--batch->left == 0)
                    Q_EMIT ended();
            };
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
