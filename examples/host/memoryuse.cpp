#include "memoryuse.h"

#include "blocking.h"
#include "project.h"
#include "resultcache.h"

#include <ondrel/core/runtimestatistics.h>
#include <ondrel/resources/resourceengine.h>

namespace Host
{

MemoryUse memoryUse(const Graph& graph, const ResultCache& cache)
{
    assertMayBlock("memoryUse");
    return {cache.bytes(), ResourceEngine::Get().SumMemorySizes(resourcesOf(graph)),
            std::size_t(RunTimeStatistics::Get(RunTimeStatistics::ImageMemory))};
}

bool keepStoreWithinBudget(const Graph& graph, const ResultCache& cache)
{
    const MemoryUse use = memoryUse(graph, cache);
    return use.results + use.resources > cache.byteBudget() && ResourceEngine::Get().ClearCache();
}

} // namespace Host
