#include "renderer.h"

#include "evaluation.h"
#include "imageimport.h"
#include "memorygate.h"
#include "memoryneed.h"
#include "pictureexport.h"
#include "picturesize.h"
#include "resultcache.h"
#include "saturated.h"

#include <ondrel/resources/resourceengine.h>

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <map>
#include <memory>
#include <mutex>

using namespace Host;

namespace
{

// A picture in the store, for as long as it is needed.
class StoredPicture
{
public:
    StoredPicture(const QString& file, bool raw)
        : m_import(raw ? importRawImage(QFileInfo(file).absoluteFilePath())
                       : importImage(QFileInfo(file).absoluteFilePath()))
    {
    }
    ~StoredPicture()
    {
        if (isThere())
            ResourceEngine::Get().RemoveResource(m_import.id);
    }
    StoredPicture(const StoredPicture&) = delete;
    StoredPicture& operator=(const StoredPicture&) = delete;

    bool isThere() const { return m_import.id.id != 0; }
    const Import& import() const { return m_import; }

private:
    Import m_import;
};

// The pictures that jobs have in the store, each of them once: several outputs may be made of one.
class StoredPictures
{
public:
    // Null unless a job has it.
    std::shared_ptr<StoredPicture> find(const QString& file)
    {
        Place& place = placeOf(file);
        const std::lock_guard lock(place.mutex);
        return place.picture.lock();
    }

    std::shared_ptr<StoredPicture> get(const QString& file, bool raw)
    {
        Place& place = placeOf(file);
        const std::lock_guard lock(place.mutex); // one reads the file, the others wait
        std::shared_ptr<StoredPicture> picture = place.picture.lock();
        if (!picture)
            place.picture = picture = std::make_shared<StoredPicture>(file, raw);
        return picture;
    }

private:
    struct Place {
        std::mutex mutex;
        std::weak_ptr<StoredPicture> picture;
    };

    Place& placeOf(const QString& file)
    {
        const std::lock_guard lock(m_mutex);
        return m_places[file];
    }

    std::mutex m_mutex;
    std::map<QString, Place> m_places;
};

// What a job may take, given back at its end.
class Allowance
{
public:
    explicit Allowance(MemoryGate& gate)
        : m_gate(gate)
    {
    }
    ~Allowance() { change(0); }
    Allowance(const Allowance&) = delete;
    Allowance& operator=(const Allowance&) = delete;

    bool change(std::size_t bytes)
    {
        if (!m_gate.change(m_bytes, bytes))
            return false;
        m_bytes = bytes;
        return true;
    }

private:
    MemoryGate& m_gate;
    std::size_t m_bytes = 0;
};

class Renderer
{
public:
    Renderer(const Plan& plan, const NodeTypes& types, const Options& options, const int& stop, Report& report)
        : m_plan(plan)
        , m_types(types)
        , m_options(options)
        , m_stop(stop)
        , m_report(report)
        , m_kept(kProgramBytes + bytesInStore(plan.stored))
        , m_gate(options.memory == 0 ? 0 : std::max(options.memory, m_kept + 1) - m_kept)
    {
    }

    void run()
    {
        std::vector<std::future<void>> workers;
        const int count = std::min(m_options.jobs, std::max(1, int(m_plan.jobs.size())));
        for (int i = 0; i < count; ++i)
            workers.push_back(std::async(std::launch::async, [this] { work(); }));
        for (std::future<void>& worker : workers) {
            while (worker.wait_for(std::chrono::milliseconds(250)) == std::future_status::timeout)
                m_report.draw();
            worker.get();
        }
    }

private:
    bool isStopped() const { return *const_cast<const volatile int*>(&m_stop) == 1; }

    void work()
    {
        for (std::size_t i = m_next++; i < m_plan.jobs.size() && !isStopped(); i = m_next++) {
            const Job& job = m_plan.jobs[i];
            if (job.isDone) {
                m_report.skipped(job);
                continue;
            }
            QElapsedTimer clock;
            clock.start();
            QString reason;
            try {
                reason = make(job);
            } catch (const std::bad_alloc&) {
                reason = "There is not enough memory.";
            }
            if (isStopped())
                return;
            if (reason.isEmpty())
                m_report.done(job, clock.elapsed());
            else
                m_report.failed(job, reason);
        }
    }

    // Why it failed; empty if all went well or the run is stopped.
    QString make(const Job& job)
    {
        Graph graph = m_plan.graph;
        Allowance allowance(m_gate); // given back when the picture is gone
        std::shared_ptr<StoredPicture> picture;
        QString reason = begin(job, graph, picture, allowance);
        if (!reason.isEmpty() || isStopped())
            return reason;
        const Outcome outcome =
            evaluate(graph, m_types, {job.outputNode, QString(), 1}, m_sharedOnly, Ondrel::RunStatus{&m_stop});
        if (isStopped())
            return QString();
        reason = whyNotExport(graph, outcome);
        return reason.isEmpty() ? write(job, graph, *outcome.picture.image) : reason;
    }

    // Reads the job's picture and waits until there is room for the rest. With a bound one job at a time: only then may
    // it hold what it has read while it waits for more.
    QString begin(const Job& job, Graph& graph, std::shared_ptr<StoredPicture>& picture, Allowance& allowance)
    {
        std::unique_lock alone(m_beginning, std::defer_lock);
        if (m_options.memory != 0)
            alone.lock();
        std::size_t stored = 0;
        if (!job.input.isEmpty()) {
            picture = m_pictures.find(job.input);
            const std::size_t bytes = picture || m_options.memory == 0 ? 0 : bytesToImport(job.input);
            if (!allowance.change(bytes))
                return tooLarge(bytes);
            NodeRecord& node = graph.nodes.at(m_plan.overNode);
            const NodeType* const type = m_types.find(node.type);
            picture = m_pictures.get(job.input, type && takesRaw(*type));
            if (!picture->isThere())
                return "It cannot be read as a picture.";
            const Import& import = picture->import();
            node.values.insert(m_plan.overField, QVariant::fromValue(import.id));
            if (!import.note.isEmpty())
                m_report.note(import.note);
            stored = ResourceEngine::Get().SumMemorySizes({import.id});
        }
        const std::size_t bytes = saturatedSum(stored, bytesToCompute(graph, m_types, job.outputNode));
        return allowance.change(bytes) ? QString() : tooLarge(bytes);
    }

    QString tooLarge(std::size_t bytes) const
    {
        return QString("It needs up to %1, more than --memory allows.").arg(memoryText(saturatedSum(m_kept, bytes)));
    }

    QString write(const Job& job, const Graph& graph, const Ondrel::Image& image) const
    {
        const NodeRecord& node = graph.nodes.at(job.outputNode);
        const QVariantMap values = completeValues(node, *m_types.find(node.type));
        FileFormat format = formatOf(values);
        formatFromName(job.output, format);
        return exportPicture(image, format, values, job.output, [this](int) { return !isStopped(); }).error;
    }

    const Plan& m_plan;
    const NodeTypes& m_types;
    const Options& m_options;
    const int& m_stop;
    Report& m_report;
    const std::size_t m_kept; // all the time
    MemoryGate m_gate;
    std::mutex m_beginning;
    StoredPictures m_pictures;
    ResultCache m_sharedOnly{0}; // what jobs have in common while they run
    std::atomic<std::size_t> m_next{0};
};

} // namespace

void render(const Plan& plan, const NodeTypes& types, const Options& options, const int& stop, Report& report)
{
    Renderer(plan, types, options, stop, report).run();
}
