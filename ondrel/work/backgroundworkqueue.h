#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>

#include <QFuture>
#include <QFutureWatcher>
#include <QImage>
#include <QObject>
#include <QVariant>

#include <boost/noncopyable.hpp>

#include <functional>
#include <queue>
#include <utility>
#include <vector>

// Runs jobs that make an image on the global thread pool, one at a time for each queue object, and hands the results
// back by signal on the thread that owns the queue, whose event loop must run for that. All functions belong to that
// thread; only the jobs themselves run elsewhere.
//
// Smaller priorities run first, equal ones in the order of arrival. Any waiting QImage job comes before any waiting
// Ondrel::Image job. A job that throws delivers a null or empty image.
//
// The destructor neither waits for the running job nor cancels it; nothing is emitted afterwards. So a job must hold
// what it reads by shared ownership. A slot may delete the queue. A queue keeps the last result of each kind until the
// next job of that kind starts.
//
// Signals and slots are connected by their signatures: qImageFinished(QImage,int,QVariant) and
// imageFinished(Ondrel::Image,int,QVariant).
class ONDREL_EXPORT BackgroundWorkQueue : public QObject, private boost::noncopyable
{
    Q_OBJECT
public:
    struct QImageWork {
        std::function<QImage()> work;
        QVariant userData;
    };
    struct ImageWork {
        std::function<Ondrel::Image()> work;
        QVariant userData;
    };
    explicit BackgroundWorkQueue(QObject* parent);

    // Adds a job, which is copied several times; `userData` comes back with its result. clearPriority first drops the
    // waiting jobs of the same priority, clearLowerPriorities those of all numerically greater ones; both only among
    // jobs of the same kind. A job that has started always delivers; a dropped one never does.
    void queueWork(std::function<QImage()> work, int priority, bool clearPriority, bool clearLowerPriorities,
                   const QVariant& userData);
    void queueWork(std::function<Ondrel::Image()> work, int priority, bool clearPriority, bool clearLowerPriorities,
                   const QVariant& userData);

    // Whether a job runs or a QImage job waits. Waiting Ondrel::Image jobs alone do not count.
    bool isWorking() const;

Q_SIGNALS:
    // While these are emitted the queue is free: a slot may post the next job, and it starts at once.
    void qImageFinished(const QImage& image, int priority, const QVariant& userData);
    void imageFinished(const Ondrel::Image& image, int priority, const QVariant& userData);

private Q_SLOTS:
    void qImageFinished();
    void imageFinished();

private:
    // Ascending by priority. An entry stays when its queue runs empty.
    template <typename Work>
    using Queues = std::vector<std::pair<int, std::queue<Work>>>;

    template <typename Work, typename Result>
    bool startNext(Queues<Work>& queues, QFuture<Result>& future, QFutureWatcher<Result>& watcher);
    template <typename Result>
    void deliver(QFuture<Result>& future,
                 void (BackgroundWorkQueue::*finished)(const Result&, int priority, const QVariant& userData));
    void processNextWork();

    Queues<QImageWork> m_qImageQueues;
    Queues<ImageWork> m_imageQueues;
    QFutureWatcher<QImage> m_qImageWatcher;
    QFuture<QImage> m_qImageFuture;
    QFutureWatcher<Ondrel::Image> m_imageWatcher;
    QFuture<Ondrel::Image> m_imageFuture;
    int m_currentPriority = 0; // of the running job, like the user data
    QVariant m_currentUserData;
    bool m_working = false;
};
