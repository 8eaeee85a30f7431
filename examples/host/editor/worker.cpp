// oneTBB has a member named emit, which Qt makes a macro of.
#pragma push_macro("emit")
#undef emit
#include <tbb/task_arena.h>
#pragma pop_macro("emit")

#include "worker.h"

#include <algorithm>

namespace Host
{

Worker::~Worker()
{
    std::unique_lock lock(m_mutex);
    m_idle.wait(lock, [this] { return m_running == 0; });
}

void Worker::run(std::function<std::function<void()>()> work)
{
    // No place is kept for a thread that joins, since none does; the pool has one thread less than there are cores.
    static tbb::task_arena arena(std::max(1, tbb::this_task_arena::max_concurrency() - 1), 0);
    ++m_waiting;
    {
        const std::lock_guard lock(m_mutex);
        ++m_running;
    }
    arena.enqueue([this, work = std::move(work)] {
        const std::function<void()> then = work();
        const auto finish = [this, then] {
            --m_waiting;
            if (then)
                then();
        };
        QMetaObject::invokeMethod(this, finish, Qt::QueuedConnection);
        leave();
    });
}

void Worker::leave()
{
    const std::lock_guard lock(m_mutex);
    --m_running;
    m_idle.notify_all();
}

} // namespace Host
