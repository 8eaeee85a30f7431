#pragma once

#include <ondrel/core/parallel_p.h>

#include <vector>

namespace OndrelTest
{

// Calls body() with each engine of row loops, and puts the present one back. TBB itself is not compiled for the thread
// sanitizer, which cannot see how it hands ranges over and reports each one.
template <typename Body>
void forEveryRowEngine(Body body)
{
    const Ondrel::ParallelEngine before = Ondrel::parallelEngine();
    std::vector<Ondrel::ParallelEngine> engines = {Ondrel::ParallelEngine::Threads, Ondrel::ParallelEngine::Shuffled};
#ifndef __SANITIZE_THREAD__
    engines.push_back(Ondrel::ParallelEngine::Tbb);
#endif
    for (const Ondrel::ParallelEngine engine : engines) {
        Ondrel::setParallelEngine(engine);
        body();
    }
    Ondrel::setParallelEngine(before);
}

} // namespace OndrelTest
