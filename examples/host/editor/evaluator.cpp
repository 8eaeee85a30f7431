#include "evaluator.h"

#include "memoryuse.h"
#include "stopword.h"

namespace Host
{

struct Evaluator::Job {
    Graph graph;
    std::vector<Wish> wishes;
    int word = 0; // of the run's status: 1 cancels

    void cancel() { stop(word); }
    bool isCancelled() const { return isStopped(Ondrel::RunStatus{&word}); }
};

Evaluator::Evaluator(const NodeTypes& types, std::size_t cacheBytes, QObject* parent)
    : QObject(parent)
    , m_types(types)
    , m_cache(cacheBytes)
{
    qRegisterMetaType<Host::Picture>("Host::Picture");
    qRegisterMetaType<QHash<Host::NodeId, QString>>("QHash<Host::NodeId,QString>");
}

Evaluator::~Evaluator()
{
    cancel();
}

void Evaluator::cancel()
{
    m_next.reset();
    if (m_running)
        m_running->cancel();
}

void Evaluator::request(Graph graph, std::vector<Wish> wishes)
{
    cancel();
    m_next = std::make_shared<Job>();
    m_next->graph = std::move(graph);
    m_next->wishes = std::move(wishes);
    if (!m_running)
        start();
}

void Evaluator::start()
{
    m_running = std::move(m_next);
    m_next.reset();
    if (!m_running)
        return;
    const auto work = [this, job = m_running]() -> std::function<void()> {
        runJob(*job, [this, job](std::function<void()> call) {
            // Results of a cancelled job come to nothing.
            const auto unlessCancelled = [this, job, call] {
                if (job == m_running && !job->isCancelled())
                    call();
            };
            QMetaObject::invokeMethod(&m_worker, unlessCancelled, Qt::QueuedConnection);
        });
        return [this, job] { finishJob(*job); };
    };
    m_worker.run(work, [this, job = m_running](const QString& reason) { giveUp(*job, reason); });
}

// On another thread.
void Evaluator::runJob(const Job& job, const std::function<void(std::function<void()>)>& tell)
{
    Progress progress;
    progress.begin = [this, &tell](NodeId id) { tell([this, id] { Q_EMIT nodeBusy(id, true); }); };
    progress.end = [this](NodeId id) {
        QMetaObject::invokeMethod(
            &m_worker, [this, id] { Q_EMIT nodeBusy(id, false); }, Qt::QueuedConnection);
    };
    QHash<NodeId, QString> errors;
    for (const bool atFullSize : {false, true}) {
        for (Wish wish : job.wishes) {
            if (atFullSize && (!wish.atFullSize || wish.target.scale >= 1))
                continue;
            if (atFullSize)
                wish.target.scale = 1;
            const Outcome outcome =
                evaluate(job.graph, m_types, wish.target, m_cache, Ondrel::RunStatus{&job.word}, progress);
            if (outcome.cancelled)
                return;
            for (auto error = outcome.errors.begin(); error != outcome.errors.end(); ++error)
                errors.insert(error.key(), error.value());
            tell([this, wish, outcome, errors] {
                Q_EMIT pictureReady(wish.slot, outcome.picture, wish.target.scale);
                Q_EMIT errorsFound(errors);
            });
        }
    }
    keepStoreWithinBudget(job.graph, m_cache);
}

void Evaluator::finishJob(const Job& job)
{
    const bool wasCancelled = job.isCancelled();
    m_running.reset();
    if (m_next)
        start();
    else if (!wasCancelled)
        Q_EMIT finished();
}

// As a cancelled one: what it was about is still to be done. A node that was at work has not told that it ended.
void Evaluator::giveUp(Job& job, const QString& reason)
{
    job.cancel();
    for (const auto& [id, record] : job.graph.nodes)
        Q_EMIT nodeBusy(id, false);
    finishJob(job);
    Q_EMIT message(reason);
}

} // namespace Host
