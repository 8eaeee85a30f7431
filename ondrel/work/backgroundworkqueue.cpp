#include <ondrel/work/backgroundworkqueue.h>

#include <QPointer>
#include <QtConcurrentRun>

#include <algorithm>

namespace
{

template <typename Work>
using Queues = std::vector<std::pair<int, std::queue<Work>>>;

template <typename Work>
typename Queues<Work>::iterator firstNotBelow(Queues<Work>& queues, int priority)
{
    return std::lower_bound(queues.begin(), queues.end(), priority,
                            [](const auto& entry, int wanted) { return entry.first < wanted; });
}

template <typename Work>
void enqueue(Queues<Work>& queues, Work record, int priority, bool clearPriority, bool clearLowerPriorities)
{
    // Dropped records die at the end, when the queues are in order: their destructors are foreign code.
    std::vector<std::queue<Work>> dropped;
    const auto drop = [&dropped](std::queue<Work>& queue) {
        dropped.emplace_back();
        dropped.back().swap(queue);
    };

    auto entry = firstNotBelow(queues, priority);
    if (entry == queues.end() || entry->first != priority)
        entry = queues.insert(entry, {priority, {}});
    else if (clearPriority)
        drop(entry->second);
    entry->second.push(std::move(record));
    if (clearLowerPriorities)
        std::for_each(entry + 1, queues.end(), [&drop](auto& lower) { drop(lower.second); });
}

// An exception of the job would come out of QFuture::result() in the middle of a slot, and the queue would stand still.
template <typename Result>
Result runJob(const std::function<Result()>& work)
{
    try {
        return work();
    } catch (...) {
        return Result();
    }
}

} // namespace

BackgroundWorkQueue::BackgroundWorkQueue(QObject* parent)
    : QObject(parent)
{
    connect(&m_qImageWatcher, SIGNAL(finished()), this, SLOT(qImageFinished()));
    connect(&m_imageWatcher, SIGNAL(finished()), this, SLOT(imageFinished()));
}

void BackgroundWorkQueue::queueWork(std::function<QImage()> work, int priority, bool clearPriority,
                                    bool clearLowerPriorities, const QVariant& userData)
{
    enqueue(m_qImageQueues, QImageWork{std::move(work), userData}, priority, clearPriority, clearLowerPriorities);
    processNextWork();
}

void BackgroundWorkQueue::queueWork(std::function<Ondrel::Image()> work, int priority, bool clearPriority,
                                    bool clearLowerPriorities, const QVariant& userData)
{
    enqueue(m_imageQueues, ImageWork{std::move(work), userData}, priority, clearPriority, clearLowerPriorities);
    processNextWork();
}

bool BackgroundWorkQueue::isWorking() const
{
    return m_working || std::any_of(m_qImageQueues.begin(), m_qImageQueues.end(),
                                    [](const auto& entry) { return !entry.second.empty(); });
}

void BackgroundWorkQueue::qImageFinished()
{
    deliver<QImage>(m_qImageFuture, &BackgroundWorkQueue::qImageFinished);
}

void BackgroundWorkQueue::imageFinished()
{
    deliver<Ondrel::Image>(m_imageFuture, &BackgroundWorkQueue::imageFinished);
}

void BackgroundWorkQueue::processNextWork()
{
    if (m_working)
        return;
    if (!startNext(m_qImageQueues, m_qImageFuture, m_qImageWatcher))
        startNext(m_imageQueues, m_imageFuture, m_imageWatcher);
}

// False if nothing waits.
template <typename Work, typename Result>
bool BackgroundWorkQueue::startNext(Queues<Work>& queues, QFuture<Result>& future, QFutureWatcher<Result>& watcher)
{
    const auto entry =
        std::find_if(queues.begin(), queues.end(), [](const auto& candidate) { return !candidate.second.empty(); });
    if (entry == queues.end())
        return false;
    const Work record = entry->second.front();
    future = QtConcurrent::run([work = record.work] { return runJob<Result>(work); });
    watcher.setFuture(future);
    entry->second.pop();
    m_currentPriority = entry->first;
    m_currentUserData = record.userData;
    m_working = true;
    return true;
}

template <typename Result>
void BackgroundWorkQueue::deliver(QFuture<Result>& future,
                                  void (BackgroundWorkQueue::*finished)(const Result&, int, const QVariant&))
{
    const int priority = m_currentPriority;
    const Result result = future.result();
    const QVariant userData = m_currentUserData;
    future = QFuture<Result>(); // releases the result that it holds
    m_working = false;
    m_currentUserData = QVariant();

    const QPointer<BackgroundWorkQueue> alive(this);
    Q_EMIT(this->*finished)(result, priority, userData);
    if (alive)
        processNextWork();
}
