#include "worker.h"

#include <QRunnable>

#include <exception>
#include <new>
#include <utility>

namespace Host
{

Worker::Worker(int threads)
{
    m_threads.setMaxThreadCount(threads);
}

Worker::~Worker()
{
    m_threads.waitForDone();
}

void Worker::run(std::function<std::function<void()>()> work, std::function<void(const QString&)> otherwise)
{
    ++m_waiting;
    m_threads.start(QRunnable::create([this, work = std::move(work), otherwise = std::move(otherwise)]() mutable {
        std::function<void()> then = resultOf(work, otherwise);
        // What this thread holds, such as the lock of a file, goes before it is told that it is done.
        work = nullptr;
        otherwise = nullptr;
        auto finish = [this, then = std::move(then)] {
            --m_waiting;
            if (then)
                then();
        };
        QMetaObject::invokeMethod(this, std::move(finish), Qt::QueuedConnection);
    }));
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

} // namespace Host
