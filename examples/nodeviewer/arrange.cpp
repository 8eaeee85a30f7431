#include "arrange.h"

#include <QMap>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace Viewer
{
namespace
{

constexpr qreal kColumnGap = 70, kRowGap = 34;

using Column = std::vector<Ondrel::PreviewNode*>;

// The column of each node that has a wire: the length of the longest way to it, and then as far to the right as the
// nodes allow that it feeds, so that wires are short. Wires close no circles.
QMap<QString, int> columnsOf(const std::vector<Wires::Link>& links)
{
    QMap<QString, int> columns;
    for (const Wires::Link& link : links)
        columns[link.fromNode] = columns[link.toNode] = 0;
    for (bool changed = true; changed;) {
        changed = false;
        for (const Wires::Link& link : links) {
            const int behind = columns[link.fromNode] + 1;
            changed = changed || columns[link.toNode] < behind;
            columns[link.toNode] = std::max(columns[link.toNode], behind);
        }
    }
    QMap<QString, int> latest; // of the nodes that feed others
    for (bool changed = true; changed;) {
        changed = false;
        for (const Wires::Link& link : links) {
            const int before = latest.value(link.toNode, columns[link.toNode]) - 1;
            changed = changed || latest.value(link.fromNode, before + 1) > before;
            latest[link.fromNode] = std::min(latest.value(link.fromNode, before), before);
        }
    }
    for (auto node = latest.constBegin(); node != latest.constEnd(); ++node)
        columns[node.key()] = node.value();
    return columns;
}

qreal heightOf(const Column& column)
{
    qreal height = 0;
    for (const Node* node : column)
        height += node->rect().height() + kRowGap;
    return height - kRowGap;
}

qreal widthOf(const Column& column)
{
    qreal width = 0;
    for (const Node* node : column)
        width = std::max(width, node->rect().width());
    return width;
}

// The mean height from which a node's wires come; below all others without any.
qreal heightOfSources(const Node& node, const Column& nodes, const std::vector<Wires::Link>& links)
{
    qreal sum = 0;
    int count = 0;
    for (const Wires::Link& link : links) {
        for (const Node* other : nodes) {
            if (link.toNode == node.name() && link.fromNode == other->name()) {
                sum += other->sceneBoundingRect().center().y();
                ++count;
            }
        }
    }
    return count == 0 ? std::numeric_limits<qreal>::max() : sum / count;
}

// The place of a node's first wire in the list, which decides between equal heights.
std::ptrdiff_t placeOf(const Node& node, const std::vector<Wires::Link>& links)
{
    const auto first = std::find_if(links.begin(), links.end(),
                                    [&node](const Wires::Link& link) { return link.toNode == node.name(); });
    return first - links.begin();
}

void stack(const Column& column, qreal x, qreal y)
{
    for (Node* node : column) {
        node->setPos(x, y);
        y += node->rect().height() + kRowGap;
    }
}

void arrangeLoose(const Column& nodes, qreal y)
{
    if (nodes.empty())
        return;
    std::vector<Column> columns(std::size_t(std::ceil(std::sqrt(double(nodes.size()) * 1.5))));
    for (Ondrel::PreviewNode* node : nodes) {
        auto shortest = std::min_element(columns.begin(), columns.end(),
                                         [](const Column& a, const Column& b) { return heightOf(a) < heightOf(b); });
        shortest->push_back(node);
    }
    qreal x = 0;
    for (const Column& column : columns) {
        stack(column, x, y);
        x += widthOf(column) + kColumnGap;
    }
}

} // namespace

void arrange(const std::vector<Ondrel::PreviewNode*>& nodes, const std::vector<Wires::Link>& links)
{
    const QMap<QString, int> places = columnsOf(links);
    QMap<int, Column> columns;
    Column loose;
    for (Ondrel::PreviewNode* node : nodes) {
        if (places.contains(node->name()))
            columns[places.value(node->name())].push_back(node);
        else
            loose.push_back(node);
    }
    qreal x = 0, lowest = 0;
    for (Column& column : columns) {
        std::stable_sort(column.begin(), column.end(), [&](const Node* a, const Node* b) {
            return std::make_pair(heightOfSources(*a, nodes, links), placeOf(*a, links)) <
                   std::make_pair(heightOfSources(*b, nodes, links), placeOf(*b, links));
        });
        stack(column, x, -heightOf(column) * 0.5);
        x += widthOf(column) + kColumnGap;
        lowest = std::max(lowest, heightOf(column) * 0.5 + 2 * kRowGap);
    }
    arrangeLoose(loose, lowest);
}

} // namespace Viewer
