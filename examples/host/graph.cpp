#include "graph.h"

#include "text.h"
#include "values.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace Host
{
namespace
{

bool sameValues(const QVariantMap& a, const QVariantMap& b)
{
    if (a.keys() != b.keys())
        return false;
    for (auto entry = a.begin(); entry != a.end(); ++entry) {
        if (!sameValue(entry.value(), b.value(entry.key())))
            return false;
    }
    return true;
}

QString displayOf(const QString& dataType)
{
    if (dataType.isEmpty())
        return Text::tr("nothing");
    return (QString("aeiou").contains(dataType[0]) ? Text::tr("an %1") : Text::tr("a %1")).arg(dataType);
}

} // namespace

bool NodeRecord::operator==(const NodeRecord& other) const
{
    return id == other.id && type == other.type && name == other.name && position == other.position &&
           bypassed == other.bypassed && unread == other.unread && sameValues(values, other.values);
}

bool Connection::operator==(const Connection& other) const
{
    return from == other.from && output == other.output && to == other.to && input == other.input;
}

bool FrameRecord::operator==(const FrameRecord& other) const
{
    return id == other.id && title == other.title && area == other.area;
}

const NodeRecord* Graph::node(NodeId id) const
{
    const auto found = nodes.find(id);
    return found == nodes.end() ? nullptr : &found->second;
}

const NodeRecord* Graph::nodeByName(const QString& name) const
{
    for (const auto& [id, record] : nodes) {
        if (record.name == name)
            return &record;
    }
    return nullptr;
}

const Connection* Graph::into(NodeId id, const QString& input) const
{
    for (const Connection& connection : connections) {
        if (connection.to == id && connection.input == input)
            return &connection;
    }
    return nullptr;
}

std::vector<Connection> Graph::touching(NodeId id) const
{
    std::vector<Connection> result;
    for (const Connection& connection : connections) {
        if (connection.from == id || connection.to == id)
            result.push_back(connection);
    }
    return result;
}

bool Graph::operator==(const Graph& other) const
{
    return nodes == other.nodes && connections == other.connections && frames == other.frames &&
           embedded == other.embedded;
}

QVariantMap completeValues(const NodeRecord& node, const NodeType& type)
{
    QVariantMap values = type.defaults();
    for (auto entry = node.values.begin(); entry != node.values.end(); ++entry) {
        const InputInfo* const input = type.input(entry.key());
        if (!input || fitsKind(entry.value(), input->kind))
            values.insert(entry.key(), entry.value());
    }
    return values;
}

bool fits(const Graph& graph, const NodeTypes& types, const Connection& connection)
{
    const NodeRecord* const from = graph.node(connection.from);
    const NodeRecord* const to = graph.node(connection.to);
    const NodeType* const fromType = from ? types.find(from->type) : nullptr;
    const NodeType* const toType = to ? types.find(to->type) : nullptr;
    const OutputInfo* const output = fromType ? fromType->output(connection.output) : nullptr;
    const InputInfo* const input = toType ? toType->input(connection.input) : nullptr;
    return output && input && !input->dataType.isEmpty() && output->dataType == input->dataType;
}

bool isRoomFor(const Graph& graph, const NodeTypes& types, const Connection& connection)
{
    const NodeRecord* const to = graph.node(connection.to);
    const NodeType* const type = to ? types.find(to->type) : nullptr;
    if (!type || type->entry.variablePrefix.isEmpty())
        return true;
    const QString prefix = type->entry.variablePrefix;
    const QString order = to->values.value(prefix + "_order").toString();
    const QStringList ids = order.split(',', Qt::SkipEmptyParts);
    std::set<QString> named(ids.begin(), ids.end());
    int length = order.size();
    const auto grows = [&](const QString& input) {
        const QString id = input.mid(prefix.size());
        if (type->input(input) != &type->entry.variableInput || !named.insert(id).second)
            return false;
        length += (length == 0 ? 0 : 1) + id.size(); // with a comma
        return true;
    };
    for (const Connection& each : graph.connections) {
        if (each.to == connection.to)
            grows(each.input);
    }
    return !grows(connection.input) || length <= kLongestOrder;
}

QString whyNotConnect(const Graph& graph, const NodeTypes& types, const Connection& connection)
{
    const NodeRecord* const from = graph.node(connection.from);
    const NodeRecord* const to = graph.node(connection.to);
    if (!from || !to)
        return Text::tr("One of the nodes does not exist.");
    const NodeType* const fromType = types.find(from->type);
    const NodeType* const toType = types.find(to->type);
    if (!fromType || !toType)
        return Text::tr("The kind of \"%1\" is not known here.").arg(fromType ? to->name : from->name);
    const OutputInfo* const output = fromType->output(connection.output);
    const InputInfo* const input = toType->input(connection.input);
    if (!output)
        return Text::tr("\"%1\" has no output \"%2\".").arg(from->name, connection.output);
    if (!input || input->dataType.isEmpty())
        return Text::tr("\"%1\" has no input \"%2\" to connect to.").arg(to->name, connection.input);
    if (input->dataType != output->dataType)
        return Text::tr("\"%1\" of \"%2\" takes %3, and \"%4\" gives %5.")
            .arg(input->label, to->name, displayOf(input->dataType), from->name, displayOf(output->dataType));
    const std::vector<NodeId> behind = dependencies(graph, connection.from);
    if (std::find(behind.begin(), behind.end(), connection.to) != behind.end())
        return Text::tr("\"%1\" would depend on itself.").arg(to->name);
    if (!isRoomFor(graph, types, connection))
        return Text::tr("\"%1\" takes no more connections: the text with their order would have more than %2 "
                        "characters.")
            .arg(to->name, QString::number(kLongestOrder));
    return QString();
}

std::vector<NodeId> dependencies(const Graph& graph, NodeId node)
{
    // A stack of its own: a chain may be longer than the thread's stack is deep.
    struct Step {
        NodeId node;
        bool leaving;
    };
    std::set<NodeId> seen;
    std::vector<NodeId> order;
    std::vector<Step> stack{{node, false}};
    while (!stack.empty()) {
        const Step step = stack.back();
        stack.pop_back();
        if (step.leaving) {
            order.push_back(step.node);
        } else if (seen.insert(step.node).second) {
            stack.push_back({step.node, true});
            for (const Connection& connection : graph.connections) {
                if (connection.to == step.node)
                    stack.push_back({connection.from, false});
            }
        }
    }
    return order;
}

std::vector<NodeId> dependents(const Graph& graph, const std::set<NodeId>& nodes)
{
    std::multimap<NodeId, NodeId> next;
    for (const Connection& connection : graph.connections)
        next.emplace(connection.from, connection.to);
    std::map<NodeId, int> waits; // for how many wires from among them
    std::vector<NodeId> reached;
    for (const NodeId id : nodes) {
        if (graph.node(id) && waits.emplace(id, 0).second)
            reached.push_back(id);
    }
    for (std::size_t i = 0; i < reached.size(); ++i) {
        const auto [first, last] = next.equal_range(reached[i]);
        for (auto wire = first; wire != last; ++wire) {
            const auto [known, isNew] = waits.emplace(wire->second, 0);
            ++known->second;
            if (isNew)
                reached.push_back(wire->second);
        }
    }
    std::vector<NodeId> order;
    std::copy_if(reached.begin(), reached.end(), std::back_inserter(order), [&](NodeId id) { return waits[id] == 0; });
    for (std::size_t i = 0; i < order.size(); ++i) {
        const auto [first, last] = next.equal_range(order[i]);
        for (auto wire = first; wire != last; ++wire) {
            if (--waits[wire->second] == 0)
                order.push_back(wire->second);
        }
    }
    return order;
}

QString uniqueName(const Graph& graph, const QString& wanted)
{
    QString name = wanted;
    for (int number = 2; graph.nodeByName(name); ++number)
        name = QString("%1 %2").arg(wanted, QString::number(number));
    return name;
}

} // namespace Host
