#include "importer.h"

#include "document.h"
#include "imageimport.h"
#include "scene.h"

#include <QFileInfo>

#include <new>

namespace Host
{

Importer::Importer(Document& document, Scene& scene, QObject* parent)
    : QObject(parent)
    , m_document(document)
    , m_scene(scene)
{
}

void Importer::import(const QStringList& files, QPointF at)
{
    for (const QString& file : files) {
        m_worker.run([this, file, at]() -> std::function<void()> {
            Import made;
            try {
                made = importImage(file);
            } catch (const std::bad_alloc&) { // told as any other file that cannot be read
            }
            return [this, file, made, at] {
                if (made.id.id != 0)
                    addNode(file, made.id, at);
                const QString text = made.id.id != 0 ? made.note : tr("%1 is no image that can be read.").arg(file);
                if (!text.isEmpty())
                    Q_EMIT message(text);
            };
        });
        at += QPointF(40, 40);
    }
}

void Importer::addNode(const QString& file, Ondrel::ResourceId id, QPointF at)
{
    m_document.beginStep(tr("Import image"));
    const NodeId node = m_document.addNode("essentials/image", at);
    m_document.setValue(node, "image", QVariant::fromValue(id));
    m_document.renameNode(node, uniqueName(m_document.graph(), QFileInfo(file).completeBaseName()));
    m_document.endStep();
    m_scene.selectNodes({node});
    if (m_scene.primary() == 0)
        m_scene.show(node, PreviewNode::EmblemPrimary);
}

} // namespace Host
