#include "memorydisplay.h"

#include "document.h"
#include "memoryuse.h"
#include "pictures.h"

#include <ondrel/resources/resourceengine.h>

#include <QLocale>

namespace Host
{

MemoryDisplay::MemoryDisplay(const Document& document, Pictures& pictures, QWidget* parent)
    : QLabel(parent)
    , m_document(document)
    , m_pictures(pictures)
{
    setAccessibleName(tr("Memory of pictures"));
    setContentsMargins(12, 0, 12, 0);
    connect(&pictures.evaluator(), SIGNAL(finished()), this, SLOT(refresh()));
}

void MemoryDisplay::refresh()
{
    const ResultCache& cache = m_pictures.evaluator().cache();
    m_worker.run([this, graph = m_document.graph(), &cache]() -> std::function<void()> {
        const MemoryUse use = memoryUse(graph, cache);
        return [this, use] {
            const QLocale locale;
            setText(locale.formattedDataSize(qint64(use.images)));
            setToolTip(tr("Pictures in memory: %1\nResults kept: %2\nResources: %3")
                           .arg(locale.formattedDataSize(qint64(use.images)),
                                locale.formattedDataSize(qint64(use.results)),
                                locale.formattedDataSize(qint64(use.resources))));
        };
    });
}

void MemoryDisplay::freeCaches()
{
    m_pictures.evaluator().cache().clear();
    m_worker.run([this]() -> std::function<void()> {
        ResourceEngine::Get().ClearCache();
        return [this] { refresh(); };
    });
}

} // namespace Host
