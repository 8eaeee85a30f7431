// oneTBB has a member named emit, which Qt makes a macro of.
#pragma push_macro("emit")
#undef emit
#include <tbb/task_arena.h>
#pragma pop_macro("emit")

#include "worker.h"

#include <algorithm>
#include <exception>
#include <new>
#include <thread>
#include <utility>

namespace Host
{
namespace
{

#ifdef __SANITIZE_THREAD__
// Debian's oneTBB is not built for the thread sanitizer, which would report whatever it orders.
void onThread(std::function<void()> work)
{
    std::thread(std::move(work)).detach();
}
#else
void onThread(std::function<void()> work)
{
    // No place is kept for a thread that joins, since none does; the pool has one thread less than there are cores.
    static tbb::task_arena arena(std::max(1, tbb::this_task_arena::max_concurrency() - 1), 0);
    arena.enqueue(std::move(work));
}
#endif

} // namespace

Worker::~Worker()
{
    std::unique_lock lock(m_mutex);
    m_idle.wait(lock, [this] { return m_running == 0; });
}

void Worker::run(std::function<std::function<void()>()> work, std::function<void(const QString&)> otherwise)
{
    ++m_waiting;
    {
        const std::lock_guard lock(m_mutex);
        ++m_running;
    }
    onThread([this, work = std::move(work), otherwise = std::move(otherwise)] {
        const std::function<void()> then = resultOf(work, otherwise);
        const auto finish = [this, then] {
            --m_waiting;
            if (then)
                then();
        };
        QMetaObject::invokeMethod(this, finish, Qt::QueuedConnection);
        leave();
    });
}

// The threads of the pool end the process for what is thrown there.
std::function<void()> Worker::resultOf(const std::function<std::function<void()>()>& work,
                                       const std::function<void(const QString&)>& otherwise)
{
    QString reason;
    try {
        return work();
    } catch (const std::bad_alloc&) {
        reason = tr("There is not enough memory.");
    } catch (const std::exception& exception) {
        reason = QString::fromLocal8Bit(exception.what());
    } catch (...) {
    }
    if (reason.isEmpty())
        reason = tr("Something went wrong in the background.");
    return [this, otherwise, reason] {
        if (otherwise)
            otherwise(reason);
        else
            Q_EMIT failed(reason);
    };
}

void Worker::leave()
{
    const std::lock_guard lock(m_mutex);
    --m_running;
    m_idle.notify_all();
}

} // namespace Host
