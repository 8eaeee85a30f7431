#include "renderer.h"

#include "evaluation.h"
#include "imageimport.h"
#include "memorygate.h"
#include "pictureexport.h"
#include "resultcache.h"

#include <ondrel/resources/resourceengine.h>

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <optional>
#include <thread>

using namespace Host;

namespace
{

// What the program takes without any picture, and what nodes and encoders take beside the pictures on the wires, in
// bytes a pixel of the largest one.
constexpr std::size_t kProgramBytes = std::size_t(96) << 20;
constexpr std::size_t kBytesAPixel = 8, kWorkingBytesAPixel = 40;

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

class Admission
{
public:
    Admission(MemoryGate& gate, std::size_t bytes)
        : m_gate(gate)
        , m_bytes(bytes)
        , m_isAdmitted(gate.enter(bytes))
    {
    }
    ~Admission()
    {
        if (m_isAdmitted)
            m_gate.leave(m_bytes);
    }
    Admission(const Admission&) = delete;
    Admission& operator=(const Admission&) = delete;

    bool isAdmitted() const { return m_isAdmitted; }

private:
    MemoryGate& m_gate;
    std::size_t m_bytes;
    bool m_isAdmitted;
};

// An upper estimate: the picture of every node on the way, and what the largest needs while it is worked on.
std::size_t bytesFor(const Graph& graph, const NodeTypes& types, NodeId node)
{
    std::size_t sum = 0, largest = 0;
    for (const NodeId id : dependencies(graph, node)) {
        const NodeRecord* const record = graph.node(id);
        const NodeType* const type = record ? types.find(record->type) : nullptr;
        for (const OutputInfo& output : type ? type->outputs : std::vector<OutputInfo>()) {
            const QSize size = fullSize(graph, types, {id, output.name, 1});
            const std::size_t pixels = size.isEmpty() ? 0 : std::size_t(size.width()) * std::size_t(size.height());
            sum += pixels * kBytesAPixel;
            largest = std::max(largest, pixels);
        }
    }
    return sum + largest * kWorkingBytesAPixel;
}

QString sizeText(std::size_t bytes)
{
    return QString("%1 MiB").arg((bytes + (std::size_t(1) << 20) - 1) >> 20);
}

QString reasonOf(const Graph& graph, const Outcome& outcome)
{
    QStringList reasons;
    for (auto error = outcome.errors.begin(); error != outcome.errors.end(); ++error) {
        const NodeRecord* const node = graph.node(error.key());
        reasons.append(QString("%1: %2").arg(node ? node->name : QString(), error.value()));
    }
    reasons.sort();
    return reasons.isEmpty() ? QString("There is no picture.") : reasons.join(' ');
}

class Renderer
{
public:
    Renderer(const Plan& plan, const NodeTypes& types, const Options& options, const int& stop, Report& report)
        : m_plan(plan)
        , m_types(types)
        , m_options(options)
        , m_stop(stop)
        , m_report(report)
        , m_gate(options.memory == 0 ? 0 : std::max(options.memory, kProgramBytes + 1) - kProgramBytes)
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
        std::optional<StoredPicture> picture;
        if (!job.input.isEmpty()) {
            NodeRecord& node = graph.nodes.at(m_plan.overNode);
            const NodeType* const type = m_types.find(node.type);
            picture.emplace(job.input, type && takesRaw(*type));
            if (!picture->isThere())
                return "It cannot be read as a picture.";
            node.values.insert(m_plan.overField, QVariant::fromValue(picture->import().id));
            if (!picture->import().note.isEmpty())
                m_report.note(picture->import().note);
        }
        const std::size_t bytes = bytesFor(graph, m_types, job.outputNode) + std::size_t(QFileInfo(job.input).size());
        const Admission admission(m_gate, bytes);
        if (!admission.isAdmitted())
            return QString("It needs up to %1, more than --memory allows.").arg(sizeText(kProgramBytes + bytes));
        ResultCache nothingKept(0);
        const Outcome outcome =
            evaluate(graph, m_types, {job.outputNode, QString(), 1}, nothingKept, Ondrel::RunStatus{&m_stop});
        if (isStopped())
            return QString();
        if (!outcome.picture.image || !outcome.errors.isEmpty())
            return reasonOf(graph, outcome);
        return write(job, graph, *outcome.picture.image);
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
    MemoryGate m_gate;
    std::atomic<std::size_t> m_next{0};
};

} // namespace

void render(const Plan& plan, const NodeTypes& types, const Options& options, const int& stop, Report& report)
{
    Renderer(plan, types, options, stop, report).run();
}
