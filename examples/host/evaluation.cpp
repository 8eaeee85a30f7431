// oneTBB has a member named emit, which Qt makes a macro of.
#pragma push_macro("emit")
#undef emit
#include <tbb/task_arena.h>
#include <tbb/task_group.h>
#pragma pop_macro("emit")

#include "evaluation.h"

#include "blocking.h"
#include "resultcache.h"
#include "stopword.h"
#include "text.h"
#include "values.h"

#include <QCryptographicHash>

#include <algorithm>
#include <atomic>
#include <deque>
#include <exception>
#include <future>
#include <iterator>
#include <mutex>
#include <set>

namespace Host
{
namespace
{

// The input whose picture a bypassed node hands on: its first one that has a picture, in the order of a variable node's
// own. Null if none has.
template <class Map>
const InputInfo* passingInput(const NodeRecord& record, const NodeType& type, const Map& pictures, QString& name)
{
    QStringList names;
    for (const InputInfo& input : type.inputs)
        names.append(input.name);
    const QString prefix = type.entry.variablePrefix;
    if (!prefix.isEmpty()) {
        for (const QString& id : completeValues(record, type).value(prefix + "_order").toString().split(','))
            names.append(prefix + id);
    }
    for (const QString& each : names) {
        if (!pictures.contains(each))
            continue;
        name = each;
        return type.input(each);
    }
    return nullptr;
}

// The outputs to which a bypassed node hands it: those that are of its type.
template <class Map>
std::vector<OutputInfo> passedOutputs(const NodeRecord& record, const NodeType& type, const Map& pictures,
                                      QString& name)
{
    std::vector<OutputInfo> outputs;
    const InputInfo* const input = passingInput(record, type, pictures, name);
    std::copy_if(type.outputs.begin(), type.outputs.end(), std::back_inserter(outputs),
                 [input](const OutputInfo& output) { return input && output.dataType == input->dataType; });
    return outputs;
}

// What a plug-in gives when it is asked, and an empty result where it throws instead.
template <class Ask>
auto asked(const Ask& ask) -> decltype(ask())
{
    try {
        return ask();
    } catch (...) {
        return {};
    }
}

// Whether this thread is inside a node's work at the moment. What is evaluated from there never waits for others, which
// may wait for that node.
thread_local bool isInNode = false;

class InNode
{
public:
    InNode() { isInNode = true; }
    ~InNode() { isInNode = m_before; }
    InNode(const InNode&) = delete;
    InNode& operator=(const InNode&) = delete;

private:
    const bool m_before = isInNode;
};

// One piece of work: all nodes of the graph whose results must be equal.
struct Task {
    enum State { Idle, Needed, Elsewhere, Done };

    ResultCache::Key key;
    const NodeRecord* record = nullptr;
    const NodeType* type = nullptr;
    std::vector<NodeId> nodes;
    std::map<QString, std::pair<Task*, QString>> inputs; // by field: where it comes from, and which output
    State state = Idle;
    ResultCache::ResultPtr result;  // once it is done
    ResultCache::WorkPtr elsewhere; // of the evaluation that computes it, instead of this one
    std::vector<Task*> next;        // those that wait for it in this round, once for each input
    std::atomic<int> missing{0};    // inputs that are not there yet

    void take(const ResultCache::ResultPtr& found)
    {
        result = found;
        state = Done;
    }
};

class Evaluation
{
public:
    Evaluation(const Graph& graph, const NodeTypes& types, double scale, ResultCache& cache,
               const Ondrel::RunStatus& status, const Progress& progress)
        : m_graph(graph)
        , m_types(types)
        , m_scale(scale)
        , m_cache(cache)
        , m_generation(cache.generation())
        , m_mayWait(!isInNode)
        , m_status(status)
        , m_progress(progress)
    {
    }

    // In rounds: all that needs no other evaluation is computed, then there is a wait for what others compute. Nothing
    // is claimed meanwhile, so that no two evaluations can wait for each other.
    Outcome run(NodeId node, const QString& output)
    {
        for (const NodeId id : dependencies(m_graph, node))
            addNode(id);
        Task* const last = m_byNode.count(node) ? m_byNode[node] : nullptr;
        Outcome outcome;
        if (!last)
            return outcome;
        do {
            need(*last);
            compute();
        } while (last->state != Task::Done && awaitOthers());
        outcome.cancelled = isStopped(m_status);
        if (!last->result)
            return outcome;
        outcome.picture = last->result->outputs.value(output);
        for (const auto& [key, error] : last->result->errors) {
            for (const NodeId id : m_byKey.at(key)->nodes)
                outcome.errors.insert(id, error);
        }
        return outcome;
    }

    // False if some of the results may be of another generation than the rest.
    bool isCurrent() const { return m_cache.generation() == m_generation; }

private:
    void addNode(NodeId id)
    {
        const NodeRecord* const record = m_graph.node(id);
        if (!record)
            return;
        Task task;
        task.record = record;
        task.type = m_types.find(record->type);
        for (const Connection& connection : m_graph.connections) {
            if (connection.to == id && m_byNode.count(connection.from) != 0 && carries(m_graph, m_types, connection))
                task.inputs[connection.input] = {m_byNode[connection.from], connection.output};
        }
        task.key = keyOf(task);
        auto [known, isNew] = m_byKey.try_emplace(task.key, nullptr);
        if (isNew) {
            Task& added = m_tasks.emplace_back();
            added.key = task.key;
            added.record = task.record;
            added.type = task.type;
            added.inputs = std::move(task.inputs);
            known->second = &added;
        }
        known->second->nodes.push_back(id);
        m_byNode[id] = known->second;
    }

    // Everything that the result depends on, but for what has generations (see ResultCache).
    ResultCache::Key keyOf(const Task& task) const
    {
        QCryptographicHash hash(QCryptographicHash::Sha256);
        const auto add = [&hash](const std::string& text) {
            hash.addData(QByteArray::number(qulonglong(text.size())) + ':');
            hash.addData(text.data(), int(text.size()));
        };
        add(task.record->type.toStdString());
        add(valueToJson(m_scale).dump());
        add(task.record->bypassed ? "bypassed" : "");
        const QVariantMap values = task.type ? completeValues(*task.record, *task.type) : task.record->values;
        add(valueToJson(values).dump());
        for (const auto& [field, source] : task.inputs) {
            add(field.toStdString());
            add(source.first->key);
            add(source.second.toStdString());
        }
        return hash.result().toStdString();
    }

    // Marks what has to be computed; what is there, or is computed elsewhere, needs nothing behind it.
    void need(Task& last)
    {
        m_elsewhere.clear();
        for (Task& task : m_tasks) {
            if (task.state != Task::Done)
                task.state = Task::Idle;
        }
        std::vector<Task*> stack{&last};
        while (!stack.empty()) {
            Task& task = *stack.back();
            stack.pop_back();
            if (task.state != Task::Idle)
                continue;
            const ResultCache::Answer answer = m_cache.find(task.key, m_generation);
            if (answer.result) {
                task.take(answer.result);
            } else if (answer.work && m_mayWait) {
                leaveToOthers(task, answer.work);
            } else {
                task.state = Task::Needed;
                for (const auto& [field, source] : task.inputs)
                    stack.push_back(source.first);
            }
        }
    }

    void leaveToOthers(Task& task, const ResultCache::WorkPtr& work)
    {
        task.state = Task::Elsewhere;
        task.elsewhere = work;
        const std::lock_guard lock(m_mutex);
        m_elsewhere.push_back(&task);
    }

    // Until one of them has come to an end. False if there is none, or this evaluation is cancelled.
    bool awaitOthers()
    {
        if (m_elsewhere.empty() || isStopped(m_status))
            return false;
        std::vector<ResultCache::WorkPtr> works;
        for (Task* const task : m_elsewhere) {
            works.push_back(task->elsewhere);
            tell(m_progress.begin, *task);
        }
        m_cache.await(works, [this] { return isStopped(m_status); });
        for (Task* const task : m_elsewhere) {
            tell(m_progress.end, *task);
            if (const ResultCache::ResultPtr result = m_cache.resultOf(task->elsewhere))
                task->take(result);
        }
        return !isStopped(m_status);
    }

    // The needed tasks of which no input, however far behind, is computed elsewhere.
    void compute()
    {
        for (Task& task : m_tasks) {
            task.next.clear();
            task.missing = 0;
        }
        std::vector<Task*> first;
        for (Task& task : m_tasks) { // each behind those that it depends on
            if (task.state != Task::Needed)
                continue;
            for (const auto& [field, source] : task.inputs) {
                if (source.first->state == Task::Done)
                    continue;
                source.first->next.push_back(&task);
                ++task.missing;
            }
            if (task.missing == 0)
                first.push_back(&task);
        }
        computeFrom(first);
    }

#ifdef __SANITIZE_THREAD__
    // Debian's oneTBB is not built for the thread sanitizer, which would report whatever it orders: a plain thread for
    // each task instead.
    void computeFrom(const std::vector<Task*>& ready)
    {
        std::vector<std::future<void>> threads;
        for (Task* const task : ready)
            threads.push_back(std::async(std::launch::async, [this, task] { computeFrom(computed(*task)); }));
        for (std::future<void>& thread : threads)
            thread.get();
    }
#else
    // While a thread waits for the others of this evaluation, it takes up nothing else: work from elsewhere that waits
    // for this evaluation could not come to an end on top of it.
    void computeFrom(const std::vector<Task*>& first)
    {
        tbb::this_task_arena::isolate([this, &first] {
            tbb::task_group group;
            spawn(group, first);
            group.wait();
        });
    }

    void spawn(tbb::task_group& group, const std::vector<Task*>& ready)
    {
        for (Task* const task : ready)
            group.run([this, &group, task] { spawn(group, computed(*task)); });
    }
#endif

    // Computes it, if nobody else does, and gives those that now have all their inputs.
    std::vector<Task*> computed(Task& task)
    {
        std::vector<Task*> ready;
        runTask(task);
        if (task.state != Task::Done)
            return ready;
        for (Task* const next : task.next) {
            if (--next->missing == 0)
                ready.push_back(next);
        }
        return ready;
    }

    void runTask(Task& task)
    {
        if (isStopped(m_status))
            return;
        const auto result = std::make_shared<ResultCache::WorkResult>();
        for (const auto& [field, source] : task.inputs)
            result->errors.insert(source.first->result->errors.begin(), source.first->result->errors.end());
        if (!task.type) {
            result->errors[task.key] = Text::tr("There is no plug-in for this kind of node.");
            return task.take(result);
        }
        Request request;
        if (!takeInputs(task, request)) // the nodes before have to be asked again
            return task.take(result);
        ResultCache::Claim claim;
        const ResultCache::Answer answer = m_cache.begin(task.key, m_generation, claim);
        if (answer.result)
            return task.take(answer.result);
        if (answer.work && m_mayWait)
            return leaveToOthers(task, answer.work);
        tell(m_progress.begin, task);
        const Result own = resultOf(task, request);
        tell(m_progress.end, task);
        if (isStopped(m_status))
            return;
        result->outputs = own.outputs;
        if (!own.error.isEmpty())
            result->errors[task.key] = own.error;
        if (!answer.work)
            claim.finish(result);
        task.take(result);
    }

    static void tell(const std::function<void(NodeId)>& listener, const Task& task)
    {
        for (const NodeId id : task.nodes) {
            if (listener)
                listener(id);
        }
    }

    static bool takeInputs(const Task& task, Request& request)
    {
        for (const auto& [field, source] : task.inputs) {
            const Picture picture = source.first->result->outputs.value(source.second);
            if (!picture.image)
                return false;
            request.inputs.insert(field, picture);
        }
        return true;
    }

    Result resultOf(const Task& task, Request& request) const
    {
        if (task.record->bypassed)
            return passedThrough(task, request);
        request.values = completeValues(*task.record, *task.type);
        request.scale = m_scale;
        request.status = m_status;
        const InNode inNode;
        Result result;
        try {
            return task.type->entry.behaviour->evaluate(request);
        } catch (const std::bad_alloc&) {
            result.error = Text::tr("There is not enough memory.");
        } catch (const std::exception& exception) {
            result.error = QString::fromLocal8Bit(exception.what());
        } catch (...) {
            result.error = Text::tr("The plug-in failed.");
        }
        return result;
    }

    static Result passedThrough(const Task& task, const Request& request)
    {
        Result result;
        QString name;
        for (const OutputInfo& output : passedOutputs(*task.record, *task.type, request.inputs, name))
            result.outputs.insert(output.name, request.inputs.value(name));
        return result;
    }

    const Graph& m_graph;
    const NodeTypes& m_types;
    double m_scale;
    ResultCache& m_cache;
    const quint64 m_generation;
    const bool m_mayWait;
    const Ondrel::RunStatus& m_status;
    const Progress& m_progress;
    std::deque<Task> m_tasks; // each behind those that it depends on
    std::map<ResultCache::Key, Task*> m_byKey;
    std::map<NodeId, Task*> m_byNode;
    std::mutex m_mutex; // of m_elsewhere
    std::vector<Task*> m_elsewhere;
};

// The node and output whose picture is meant.
std::pair<NodeId, QString> resolved(const Graph& graph, const NodeTypes& types, const Target& target)
{
    const NodeRecord* const record = graph.node(target.node);
    const NodeType* const type = record ? types.find(record->type) : nullptr;
    if (!target.output.isEmpty() || !type)
        return {target.node, target.output};
    if (!type->outputs.empty())
        return {target.node, type->outputs.front().name};
    for (const InputInfo& input : type->inputs) {
        const Connection* const connection = graph.into(target.node, input.name);
        if (connection && carries(graph, types, *connection))
            return {connection->from, connection->output};
    }
    return {0, QString()};
}

using Sizes = QHash<QString, QSize>;

// Of the outputs and inputs of these nodes, which come in the order of their dependencies.
void findSizes(const Graph& graph, const NodeTypes& types, const std::vector<NodeId>& order, OutputSizes& sizes,
               OutputSizes& inputSizes)
{
    for (const NodeId id : order) {
        sizes[id].clear();
        const NodeRecord* const record = graph.node(id);
        const NodeType* const type = record ? types.find(record->type) : nullptr;
        if (!type)
            continue;
        Sizes inputs;
        for (const Connection& connection : graph.connections) {
            if (connection.to == id && sizes[connection.from].contains(connection.output) &&
                carries(graph, types, connection))
                inputs.insert(connection.input, sizes[connection.from].value(connection.output));
        }
        inputSizes[id] = inputs;
        if (!record->bypassed) {
            sizes[id] =
                asked([&] { return type->entry.behaviour->outputSizes(completeValues(*record, *type), inputs); });
            continue;
        }
        QString name;
        for (const OutputInfo& output : passedOutputs(*record, *type, inputs, name))
            sizes[id].insert(output.name, inputs.value(name));
    }
}

// Of a bypassed node: its first picture goes through as it is.
std::vector<Ondrel::TransformMap> passingMaps(const NodeRecord& record, const NodeType& type, const Sizes& inputs)
{
    std::vector<Ondrel::TransformMap> maps;
    QString name;
    for (const OutputInfo& output : passedOutputs(record, type, inputs, name)) {
        Ondrel::TransformMap map;
        map.inputField = name;
        map.outputField = output.name;
        map.rect = Ondrel::RectT<int>(QPoint(0, 0), inputs.value(name));
        maps.push_back(map);
    }
    return maps;
}

std::vector<NodeId> allInOrder(const Graph& graph)
{
    std::vector<NodeId> order;
    std::set<NodeId> seen;
    for (const auto& [id, record] : graph.nodes) {
        for (const NodeId dependency : dependencies(graph, id)) {
            if (seen.insert(dependency).second)
                order.push_back(dependency);
        }
    }
    return order;
}

} // namespace

bool carries(const Graph& graph, const NodeTypes& types, const Connection& connection)
{
    const auto isKnown = [&](NodeId id) {
        const NodeRecord* const record = graph.node(id);
        return record && types.find(record->type);
    };
    return !isKnown(connection.from) || !isKnown(connection.to) || fits(graph, types, connection);
}

Outcome evaluate(const Graph& graph, const NodeTypes& types, const Target& target, ResultCache& cache,
                 const Ondrel::RunStatus& status, const Progress& progress)
{
    assertMayBlock("evaluate");
    const auto [node, output] = resolved(graph, types, target);
    for (;;) {
        Evaluation evaluation(graph, types, target.scale, cache, status, progress);
        const Outcome outcome = evaluation.run(node, output);
        if (outcome.cancelled || evaluation.isCurrent())
            return outcome;
    }
}

QSize fullSize(const Graph& graph, const NodeTypes& types, const Target& target)
{
    const auto [node, output] = resolved(graph, types, target);
    OutputSizes inputs, sizes;
    findSizes(graph, types, dependencies(graph, node), sizes, inputs);
    return sizes[node].value(output);
}

void updateSizes(const Graph& graph, const NodeTypes& types, const std::vector<NodeId>& nodes, OutputSizes& sizes)
{
    OutputSizes inputs;
    findSizes(graph, types, nodes, sizes, inputs);
}

QSize knownSize(const Graph& graph, const NodeTypes& types, const Target& target, const OutputSizes& sizes)
{
    const auto [node, output] = resolved(graph, types, target);
    const auto known = sizes.find(node);
    return known == sizes.end() ? QSize() : known->second.value(output);
}

TransformGraph transformGraph(const Graph& graph, const NodeTypes& types)
{
    OutputSizes inputs, sizes;
    findSizes(graph, types, allInOrder(graph), sizes, inputs);
    TransformGraph result;
    for (const auto& [id, record] : graph.nodes) {
        const NodeType* const type = types.find(record.type);
        TransformGraph::Node node;
        node.id = id;
        if (type && record.bypassed)
            node.maps = passingMaps(record, *type, inputs[id]);
        else if (type)
            node.maps = asked([&, id = id, &record = record] {
                return type->entry.behaviour->transformMaps(completeValues(record, *type), inputs[id]);
            });
        result.addNode(node);
    }
    for (const Connection& connection : graph.connections) {
        if (carries(graph, types, connection))
            result.addEdge(connection.from, connection.output, connection.to, connection.input);
    }
    return result;
}

} // namespace Host
