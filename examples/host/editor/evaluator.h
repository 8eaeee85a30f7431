#pragma once

#include "evaluation.h"
#include "resultcache.h"
#include "worker.h"

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

namespace Host
{

// Computes pictures for the screen away from the user-interface thread. Every request replaces the one before it, whose
// work is cancelled: the newest wins. Of each request all small pictures come first, in the order of the wishes, and
// then those at full size. User-interface thread only.
class Evaluator : public QObject
{
    Q_OBJECT
public:
    struct Wish {
        int slot = 0;           // what the caller knows it by
        Target target;          // its scale is that of the preview
        bool atFullSize = true; // wanted afterwards too, if the preview is smaller
    };

    Evaluator(const NodeTypes& types, std::size_t cacheBytes, QObject* parent = nullptr);
    ~Evaluator() override; // cancels what runs and waits for it

    ResultCache& cache() { return m_cache; }
    void request(Graph graph, std::vector<Wish> wishes);
    void cancel();
    bool isBusy() const { return m_running || m_next; }

Q_SIGNALS:
    // A null image where there is none.
    void pictureReady(int slot, Host::Picture picture, double scale);
    void errorsFound(QHash<Host::NodeId, QString> errors); // of all nodes that the request needs; empty if all is well
    void nodeBusy(Host::NodeId node, bool busy);
    void finished();                   // the newest request is done
    void message(const QString& text); // why a request was given up

private:
    struct Job;
    void start();
    void runJob(const Job& job, const std::function<void(std::function<void()>)>& tell);
    void finishJob(const Job& job);
    void giveUp(Job& job, const QString& reason);

    const NodeTypes& m_types;
    ResultCache m_cache;
    std::shared_ptr<Job> m_running;
    std::shared_ptr<Job> m_next;
    Worker m_worker; // the first to go: its end waits for what runs
};

} // namespace Host

Q_DECLARE_METATYPE(Host::Picture)
