#pragma once

#include "evaluation.h"
#include "pictureexport.h"
#include "worker.h"

#include <QVariantMap>
#include <QWidget>

#include <atomic>
#include <deque>
#include <memory>

class QLabel;
class QProgressBar;

namespace Host
{

class ResultCache;

// What is to be written. A value: later edits of the document change nothing.
struct ExportOrder {
    Graph graph;
    NodeId node = 0;
    QString file;
    FileFormat format = FileFormat::Png;
    QVariantMap values; // those of an "Output" node
};

// Writes pictures in the background, one after the other, and shows how far it is, for a status bar. User-interface
// thread only.
class Exporter : public QWidget
{
    Q_OBJECT
public:
    Exporter(const NodeTypes& types, ResultCache& cache, QWidget* parent);
    ~Exporter() override; // cancels all

    void add(const ExportOrder& order);
    bool isBusy() const { return m_running != nullptr; }

public Q_SLOTS:
    void cancel(); // what is being written; the next one begins. Nothing is left of it

Q_SIGNALS:
    void finished(QString file, QString error); // a sentence, empty if all went well

private:
    struct Job {
        ExportOrder order;
        int word = 0; // of the run's status: 1 cancels
        std::atomic<bool> cancelled{false};
    };
    void start();
    void finish(const Job& job, const QString& error);
    QString written(Job& job); // on another thread; why it failed, empty otherwise
    void showState();

    const NodeTypes& m_types;
    ResultCache& m_cache;
    std::deque<ExportOrder> m_waiting;
    std::shared_ptr<Job> m_running;
    QLabel* m_name;
    QProgressBar* m_bar;
    Worker m_worker; // the first to go: its end waits for what runs
};

} // namespace Host
