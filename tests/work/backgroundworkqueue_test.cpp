#include <ondrel/core/runtimestatistics.h>
#include <ondrel/work/backgroundworkqueue.h>

#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QPointer>
#include <QSignalSpy>
#include <QThread>
#include <QThreadPool>

#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>
#include <vector>

namespace
{

using Ondrel::Image;
using QImageJob = std::function<QImage()>;
using ImageJob = std::function<Image()>;

// A job that waits until it is released, so that the order of all later ones can be arranged.
class Gate
{
public:
    QImageJob job()
    {
        return [shared = m_shared] {
            shared->started.set_value();
            shared->release.get_future().wait();
            return QImage(1, 1, QImage::Format_ARGB32);
        };
    }
    ImageJob imageJob()
    {
        return [job = job()] {
            job();
            return Image(1, 1);
        };
    }
    void waitUntilStarted() { m_shared->started.get_future().wait(); }
    void open() { m_shared->release.set_value(); }

private:
    struct Shared {
        std::promise<void> started, release;
    };
    std::shared_ptr<Shared> m_shared = std::make_shared<Shared>();
};

class BackgroundQueue : public testing::Test
{
protected:
    struct Result {
        bool isQImage;
        int width;
        int priority;
        QVariant userData;
        bool operator==(const Result& o) const
        {
            return isQImage == o.isQImage && width == o.width && priority == o.priority && userData == o.userData;
        }
    };

    BackgroundQueue()
    {
        QObject::connect(queue.get(),
                         QOverload<const QImage&, int, const QVariant&>::of(&BackgroundWorkQueue::qImageFinished),
                         [this](const QImage& image, int priority, const QVariant& userData) {
                             results.push_back({true, image.width(), priority, userData});
                         });
        QObject::connect(queue.get(),
                         QOverload<const Image&, int, const QVariant&>::of(&BackgroundWorkQueue::imageFinished),
                         [this](const Image& image, int priority, const QVariant& userData) {
                             results.push_back({false, int(image.width), priority, userData});
                         });
    }

    // A job whose result is `width` pixels wide.
    static QImageJob qImage(int width)
    {
        return [width] { return QImage(width, 1, QImage::Format_ARGB32); };
    }
    static ImageJob image(unsigned int width)
    {
        return [width] { return Image(width, 1); };
    }

    void post(const QImageJob& job, int priority, bool clearPriority = false, bool clearLower = false,
              QVariant data = {})
    {
        queue->queueWork(job, priority, clearPriority, clearLower, data);
    }
    void post(const ImageJob& job, int priority, bool clearPriority = false, bool clearLower = false,
              QVariant data = {})
    {
        queue->queueWork(job, priority, clearPriority, clearLower, data);
    }

    // Runs the event loop until so many results have come.
    void waitFor(std::size_t count)
    {
        QDeadlineTimer deadline(20000);
        while (results.size() < count && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        EXPECT_EQ(results.size(), count);
    }

    // Lets everything that is queued be delivered, and shows that no further result comes.
    void expectNoMoreThan(std::size_t count)
    {
        waitFor(count);
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        EXPECT_EQ(results.size(), count);
        EXPECT_FALSE(queue && queue->isWorking());
    }

    std::vector<int> widths() const
    {
        std::vector<int> list;
        for (const Result& r : results)
            list.push_back(r.width);
        return list;
    }

    std::unique_ptr<BackgroundWorkQueue> queue = std::make_unique<BackgroundWorkQueue>(nullptr);
    std::vector<Result> results;
};

TEST_F(BackgroundQueue, DeliversTheResultWithPriorityAndUserData)
{
    EXPECT_FALSE(queue->isWorking());
    post(qImage(7), 3, false, false, QString("mine"));
    EXPECT_TRUE(queue->isWorking());
    expectNoMoreThan(1);
    EXPECT_EQ(results[0], (Result{true, 7, 3, QString("mine")}));
    post(image(9), -2, false, false, 5u);
    waitFor(2);
    EXPECT_EQ(results[1], (Result{false, 9, -2, 5u}));
}

TEST_F(BackgroundQueue, SignalsHaveTheSignaturesThatHostsConnectTo)
{
    const QMetaObject* const meta = queue->metaObject();
    EXPECT_GE(meta->indexOfSignal("qImageFinished(QImage,int,QVariant)"), 0);
    EXPECT_GE(meta->indexOfSignal("imageFinished(Ondrel::Image,int,QVariant)"), 0);
    QSignalSpy spy(queue.get(), SIGNAL(qImageFinished(QImage, int, QVariant)));
    ASSERT_TRUE(spy.isValid());
    post(qImage(4), 1);
    waitFor(1);
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy[0][0].value<QImage>().width(), 4);
    EXPECT_EQ(spy[0][1].toInt(), 1);
}

TEST_F(BackgroundQueue, JobsRunOnAnotherThreadAndResultsArriveOnTheOwners)
{
    QThread* worker = nullptr;
    QThread* receiver = nullptr;
    QObject::connect(queue.get(),
                     QOverload<const QImage&, int, const QVariant&>::of(&BackgroundWorkQueue::qImageFinished),
                     [&] { receiver = QThread::currentThread(); });
    post(QImageJob([&worker] {
             worker = QThread::currentThread();
             return QImage();
         }),
         0);
    waitFor(1);
    EXPECT_NE(worker, QThread::currentThread());
    EXPECT_EQ(receiver, QThread::currentThread());
}

TEST_F(BackgroundQueue, NothingIsDeliveredWithoutTheEventLoop)
{
    std::promise<void> done;
    post(QImageJob([&done] {
             done.set_value();
             return QImage();
         }),
         0);
    done.get_future().wait();
    EXPECT_TRUE(results.empty());
    EXPECT_TRUE(queue->isWorking());
    waitFor(1);
}

TEST_F(BackgroundQueue, NullResultsAreDeliveredLikeAnyOther)
{
    post(QImageJob([] { return QImage(); }), 0);
    waitFor(1);
    post(ImageJob([] { return Image(); }), 0);
    expectNoMoreThan(2);
    EXPECT_EQ(widths(), (std::vector<int>{0, 0}));
}

TEST_F(BackgroundQueue, OneJobAtATime)
{
    std::atomic<int> running{0}, most{0};
    const QImageJob job = [&] {
        most = std::max(most.load(), ++running);
        QThread::yieldCurrentThread();
        --running;
        return QImage();
    };
    for (int i = 0; i < 50; ++i)
        post(job, i % 3);
    for (int i = 0; i < 50; ++i)
        post(ImageJob([job] {
                 job();
                 return Image();
             }),
             i % 3);
    expectNoMoreThan(100);
    EXPECT_EQ(most.load(), 1);
}

TEST_F(BackgroundQueue, ClearingKeepsOnlyTheNewestWaitingJob)
{
    Gate gate;
    post(gate.job(), 0, true);
    gate.waitUntilStarted();
    post(qImage(2), 0, true);
    post(qImage(3), 0, true);
    post(qImage(4), 0, true);
    gate.open();
    expectNoMoreThan(2);
    EXPECT_EQ(widths(), (std::vector<int>{1, 4}));
}

TEST_F(BackgroundQueue, ClearingTouchesItsOwnPriorityAlone)
{
    Gate gate;
    post(gate.job(), 0);
    gate.waitUntilStarted();
    post(qImage(2), 1);
    post(qImage(3), 2);
    post(qImage(4), 3);
    post(qImage(5), 2, true);
    post(qImage(6), 7, true); // no such priority yet: nothing to clear
    gate.open();
    expectNoMoreThan(5);
    EXPECT_EQ(widths(), (std::vector<int>{1, 2, 5, 4, 6}));
}

TEST_F(BackgroundQueue, ClearingLowerPrioritiesDropsNumericallyGreaterOnes)
{
    Gate gate;
    post(gate.job(), 0);
    gate.waitUntilStarted();
    post(qImage(3), 3);
    post(qImage(5), 5);
    post(qImage(7), 7);
    post(qImage(8), 8);
    post(qImage(55), 5, false, true);
    gate.open();
    expectNoMoreThan(4);
    EXPECT_EQ(widths(), (std::vector<int>{1, 3, 5, 55}));
}

TEST_F(BackgroundQueue, ClearingNeverTouchesTheOtherKind)
{
    Gate gate;
    post(gate.job(), 0);
    gate.waitUntilStarted();
    post(image(3), 5);
    post(qImage(4), 0, true, true);
    post(qImage(5), 9);
    post(image(6), 5, true, true); // drops the image job of priority 5 alone
    gate.open();
    expectNoMoreThan(4);
    EXPECT_EQ(widths(), (std::vector<int>{1, 4, 5, 6}));
}

TEST_F(BackgroundQueue, SmallerPrioritiesComeFirstNegativeOnesToo)
{
    Gate gate;
    post(gate.job(), 0);
    gate.waitUntilStarted();
    post(qImage(10), 5);
    post(qImage(11), 0);
    post(qImage(12), -3);
    post(qImage(13), 5);
    post(qImage(14), 0);
    gate.open();
    expectNoMoreThan(6);
    EXPECT_EQ(widths(), (std::vector<int>{1, 12, 11, 14, 10, 13}));
}

TEST_F(BackgroundQueue, AnyQImageJobComesBeforeAnyImageJob)
{
    Gate gate;
    post(gate.imageJob(), 0);
    gate.waitUntilStarted();
    post(image(20), 0);
    post(qImage(21), 100);
    gate.open();
    expectNoMoreThan(3);
    EXPECT_EQ(widths(), (std::vector<int>{1, 21, 20}));
}

TEST_F(BackgroundQueue, APriorityThatRanEmptyIsUsedAgain)
{
    post(qImage(2), 4);
    waitFor(1);
    Gate gate;
    post(gate.job(), 0);
    gate.waitUntilStarted();
    post(qImage(3), 4);
    post(qImage(4), 4, true);
    gate.open();
    expectNoMoreThan(3);
    EXPECT_EQ(widths(), (std::vector<int>{2, 1, 4}));
}

TEST_F(BackgroundQueue, DroppedJobsDieSilentlyOnTheCallingThread)
{
    Gate gate;
    post(gate.job(), 0);
    gate.waitUntilStarted();
    auto captured = std::make_shared<int>(1);
    post(QImageJob([captured] { return QImage(); }), 0);
    EXPECT_GT(captured.use_count(), 1);
    post(qImage(2), 0, true);
    EXPECT_EQ(captured.use_count(), 1);
    gate.open();
    expectNoMoreThan(2);
}

TEST_F(BackgroundQueue, PostingFromTheSignalStartsTheNewJob)
{
    bool posted = false;
    QObject::connect(queue.get(),
                     QOverload<const QImage&, int, const QVariant&>::of(&BackgroundWorkQueue::qImageFinished), [&] {
                         if (posted)
                             return;
                         posted = true;
                         EXPECT_FALSE(queue->isWorking());
                         post(qImage(9), 0);
                         EXPECT_TRUE(queue->isWorking());
                     });
    post(qImage(8), 0);
    expectNoMoreThan(2);
    EXPECT_EQ(widths(), (std::vector<int>{8, 9}));
}

TEST_F(BackgroundQueue, WaitingImageJobsDoNotCountAsWorkDuringTheSignal)
{
    std::vector<bool> working;
    QObject::connect(queue.get(),
                     QOverload<const QImage&, int, const QVariant&>::of(&BackgroundWorkQueue::qImageFinished),
                     [&] { working.push_back(queue->isWorking()); });
    Gate gate;
    post(gate.job(), 0);
    gate.waitUntilStarted();
    post(qImage(2), 0);
    post(image(3), 0);
    gate.open();
    expectNoMoreThan(3);
    EXPECT_EQ(working, (std::vector<bool>{true, false})); // one QImage job waits, then an Image job alone
}

TEST_F(BackgroundQueue, AThrowingJobDeliversANullImageAndTheNextOneRuns)
{
    post(QImageJob([]() -> QImage { throw std::runtime_error("broken"); }), 0);
    post(ImageJob([]() -> Image { throw 5; }), 0);
    post(qImage(4), 0);
    expectNoMoreThan(3);
    EXPECT_EQ(widths(), (std::vector<int>{0, 4, 0}));
}

TEST_F(BackgroundQueue, KeepsNoMoreThanTheLastResult)
{
    const auto memory = [] { return RunTimeStatistics::Get(RunTimeStatistics::ImageMemory); };
    const std::uint64_t before = memory();
    post(image(100), 0);
    waitFor(1);
    EXPECT_EQ(memory() - before, 800u);
    post(image(7), 0);
    waitFor(2);
    EXPECT_EQ(memory() - before, 56u);
    queue.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(memory(), before);
}

TEST_F(BackgroundQueue, DestructionNeitherWaitsNorReports)
{
    Gate gate;
    auto captured = std::make_shared<int>(1);
    post(gate.job(), 0);
    gate.waitUntilStarted();
    post(QImageJob([captured] { return QImage(); }), 0);
    queue.reset();
    EXPECT_EQ(captured.use_count(), 1);
    gate.open();
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    EXPECT_TRUE(results.empty());
}

TEST_F(BackgroundQueue, TheOwnerMayDeleteItInTheSlot)
{
    bool deleted = false;
    QObject::connect(queue.get(),
                     QOverload<const QImage&, int, const QVariant&>::of(&BackgroundWorkQueue::qImageFinished), [&] {
                         queue.reset();
                         deleted = true;
                     });
    post(qImage(2), 0);
    post(qImage(3), 0);
    waitFor(1);
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    EXPECT_TRUE(deleted);
    EXPECT_EQ(results.size(), 1u);
}

TEST_F(BackgroundQueue, FollowsItsParent)
{
    QObject parent;
    const QPointer<BackgroundWorkQueue> child = new BackgroundWorkQueue(&parent);
    EXPECT_EQ(child->parent(), &parent);
}

TEST(BackgroundQueues, OfTwoObjectsRunSideBySide)
{
    if (QThreadPool::globalInstance()->maxThreadCount() < 2)
        QThreadPool::globalInstance()->setMaxThreadCount(2);
    BackgroundWorkQueue a(nullptr), b(nullptr);
    Gate first, second;
    a.queueWork(first.job(), 0, false, false, QVariant());
    b.queueWork(second.job(), 0, false, false, QVariant());
    first.waitUntilStarted();
    second.waitUntilStarted(); // comes only if the first does not hold it up
    first.open();
    second.open();
    QThreadPool::globalInstance()->waitForDone();
}

} // namespace
