// oneTBB has a member named emit, which Qt makes a macro of.
#pragma push_macro("emit")
#undef emit
#include <tbb/flow_graph.h>
#pragma pop_macro("emit")

#include "evaluation.h"

#include "blocking.h"
#include "resultcache.h"
#include "values.h"

#include <QCoreApplication>
#include <QCryptographicHash>

#include <deque>
#include <exception>
#include <future>
#include <set>

namespace Host
{
namespace
{

bool isCancelled(const Ondrel::RunStatus& status)
{
    return status.state && *const_cast<const volatile int*>(status.state) == 1;
}

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

// One piece of work: all nodes of the graph whose results must be equal.
struct Task {
    QByteArray key;
    const NodeRecord* record = nullptr;
    const NodeType* type = nullptr;
    std::vector<NodeId> nodes;
    std::map<QString, std::pair<Task*, QString>> inputs; // by field: where it comes from, and which output
    bool needed = false;
    bool computed = false; // or found in the cache
    bool starved = false;  // an input has no picture
    Result result;
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
        , m_status(status)
        , m_progress(progress)
    {
    }

    Outcome run(NodeId node, const QString& output)
    {
        for (const NodeId id : dependencies(m_graph, node))
            addNode(id);
        Task* const last = m_byNode.count(node) ? m_byNode[node] : nullptr;
        Outcome outcome;
        if (!last)
            return outcome;
        need(*last);
        compute();
        outcome.cancelled = isCancelled(m_status);
        outcome.picture = last->result.outputs.value(output);
        for (const Task& task : m_tasks) {
            for (const NodeId id : task.nodes) {
                if (!task.result.error.isEmpty())
                    outcome.errors.insert(id, task.result.error);
            }
        }
        return outcome;
    }

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
            if (connection.to == id && m_byNode.count(connection.from) != 0)
                task.inputs[connection.input] = {m_byNode[connection.from], connection.output};
        }
        task.key = keyOf(task);
        auto [known, isNew] = m_byKey.try_emplace(task.key.toStdString(), nullptr);
        if (isNew) {
            m_tasks.push_back(std::move(task));
            known->second = &m_tasks.back();
        }
        known->second->nodes.push_back(id);
        m_byNode[id] = known->second;
    }

    // Everything that the result depends on.
    QByteArray keyOf(const Task& task) const
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
            add(source.first->key.toStdString());
            add(source.second.toStdString());
        }
        return hash.result();
    }

    // Marks what has to be computed; what the cache has needs nothing behind it.
    void need(Task& last)
    {
        std::vector<Task*> stack{&last};
        while (!stack.empty()) {
            Task* const task = stack.back();
            stack.pop_back();
            if (task->needed || task->computed)
                continue;
            if (m_cache.find(task->key, task->result)) {
                task->computed = true;
                continue;
            }
            task->needed = true;
            for (const auto& [field, source] : task->inputs)
                stack.push_back(source.first);
        }
    }

#ifdef __SANITIZE_THREAD__
    // Debian's oneTBB is not built for the thread sanitizer, which would report whatever it orders: a plain thread for
    // each task instead.
    void compute()
    {
        std::map<const Task*, std::shared_future<void>> done;
        for (Task& task : m_tasks) { // each behind those it needs
            if (!task.needed)
                continue;
            std::vector<std::shared_future<void>> before;
            for (const auto& [field, source] : task.inputs) {
                const auto found = done.find(source.first);
                if (found != done.end())
                    before.push_back(found->second);
            }
            done[&task] = std::async(std::launch::async, [this, &task, before] {
                              for (const std::shared_future<void>& other : before)
                                  other.wait();
                              runTask(task);
                          }).share();
        }
        for (const auto& [task, future] : done)
            future.get();
    }
#else
    void compute()
    {
        using Message = tbb::flow::continue_msg;
        using FlowNode = tbb::flow::continue_node<Message>;
        tbb::flow::graph flow;
        std::map<const Task*, std::unique_ptr<FlowNode>> flowNodes;
        for (Task& task : m_tasks) {
            if (task.needed)
                flowNodes[&task] = std::make_unique<FlowNode>(flow, [this, &task](Message) { runTask(task); });
        }
        std::vector<FlowNode*> first;
        for (const auto& [task, flowNode] : flowNodes) {
            bool waits = false;
            for (const auto& [field, source] : task->inputs) {
                const auto before = flowNodes.find(source.first);
                if (before == flowNodes.end())
                    continue;
                tbb::flow::make_edge(*before->second, *flowNode);
                waits = true;
            }
            if (!waits)
                first.push_back(flowNode.get());
        }
        for (FlowNode* const flowNode : first)
            flowNode->try_put(Message());
        flow.wait_for_all();
    }
#endif

    void runTask(Task& task)
    {
        if (isCancelled(m_status))
            return;
        const auto tell = [&task](const std::function<void(NodeId)>& listener) {
            for (const NodeId id : task.nodes) {
                if (listener)
                    listener(id);
            }
        };
        tell(m_progress.begin);
        task.result = resultOf(task);
        tell(m_progress.end);
        if (task.result.error.isEmpty() && !task.starved && !isCancelled(m_status))
            m_cache.insert(task.key, task.result);
    }

    Result resultOf(Task& task) const
    {
        Result result;
        if (!task.type) {
            result.error = QCoreApplication::translate("Host", "There is no plug-in for this kind of node.");
            return result;
        }
        Request request;
        for (const auto& [field, source] : task.inputs) {
            const Picture picture = source.first->result.outputs.value(source.second);
            if (!picture.image) {
                task.starved = true; // the node before says why, and has to be asked again
                return result;
            }
            request.inputs.insert(field, picture);
        }
        if (task.record->bypassed)
            return passedThrough(task, request);
        request.values = completeValues(*task.record, *task.type);
        request.scale = m_scale;
        request.status = m_status;
        try {
            return task.type->entry.behaviour->evaluate(request);
        } catch (const std::bad_alloc&) {
            result.error = QCoreApplication::translate("Host", "There is not enough memory.");
        } catch (const std::exception& exception) {
            result.error = QString::fromLocal8Bit(exception.what());
        } catch (...) {
            result.error = QCoreApplication::translate("Host", "The plug-in failed.");
        }
        return result;
    }

    static Result passedThrough(const Task& task, const Request& request)
    {
        Result result;
        QString name;
        const InputInfo* const input = passingInput(*task.record, *task.type, request.inputs, name);
        for (const OutputInfo& output : task.type->outputs) {
            if (input && output.dataType == input->dataType)
                result.outputs.insert(output.name, request.inputs.value(name));
        }
        return result;
    }

    const Graph& m_graph;
    const NodeTypes& m_types;
    double m_scale;
    ResultCache& m_cache;
    const Ondrel::RunStatus& m_status;
    const Progress& m_progress;
    std::deque<Task> m_tasks; // each behind those that it depends on
    std::map<std::string, Task*> m_byKey;
    std::map<NodeId, Task*> m_byNode;
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
        if (const Connection* const connection = graph.into(target.node, input.name))
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
            if (connection.to == id && sizes[connection.from].contains(connection.output))
                inputs.insert(connection.input, sizes[connection.from].value(connection.output));
        }
        inputSizes[id] = inputs;
        if (!record->bypassed) {
            sizes[id] =
                asked([&] { return type->entry.behaviour->outputSizes(completeValues(*record, *type), inputs); });
            continue;
        }
        QString name;
        if (passingInput(*record, *type, inputs, name)) {
            for (const OutputInfo& output : type->outputs)
                sizes[id].insert(output.name, inputs.value(name));
        }
    }
}

// Of a bypassed node: its first picture goes through as it is.
std::vector<Ondrel::TransformMap> passingMaps(const NodeRecord& record, const NodeType& type, const Sizes& inputs)
{
    std::vector<Ondrel::TransformMap> maps;
    QString name;
    if (!passingInput(record, type, inputs, name))
        return maps;
    for (const OutputInfo& output : type.outputs) {
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

Outcome evaluate(const Graph& graph, const NodeTypes& types, const Target& target, ResultCache& cache,
                 const Ondrel::RunStatus& status, const Progress& progress)
{
    assertMayBlock("evaluate");
    const auto [node, output] = resolved(graph, types, target);
    return Evaluation(graph, types, target.scale, cache, status, progress).run(node, output);
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
            node.maps =
                asked([&] { return type->entry.behaviour->transformMaps(completeValues(record, *type), inputs[id]); });
        result.addNode(node);
    }
    for (const Connection& connection : graph.connections)
        result.addEdge(connection.from, connection.output, connection.to, connection.input);
    return result;
}

} // namespace Host
