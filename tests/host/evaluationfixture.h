#pragma once

#include "testnodes.h"

#include <evaluation.h>
#include <resultcache.h>

#include <gtest/gtest.h>

using Host::NodeId;
using Host::Outcome;

inline constexpr std::size_t kPictureBytes = 32 * 24 * 8;

// A graph of test nodes and a cache.
class Evaluation : public testing::Test
{
protected:
    NodeId add(const QString& type, const QVariantMap& values = {})
    {
        Host::NodeRecord record;
        record.id = graph.nodes.size() + 1;
        record.type = "test/" + type;
        record.name = QString::number(record.id);
        record.values = values;
        graph.nodes[record.id] = record;
        return record.id;
    }

    NodeId addAfter(NodeId before, const QString& type, const QVariantMap& values = {})
    {
        const NodeId id = add(type, values);
        graph.connections.push_back({before, "image", id, "image"});
        return id;
    }

    Outcome evaluateHere(NodeId node, const int* word, const Host::Progress& progress = {})
    {
        return Host::evaluate(graph, nodes.types, {node, QString(), 1}, cache, Ondrel::RunStatus{word}, progress);
    }

    Outcome evaluate(NodeId node)
    {
        return onWorker([&] { return evaluateHere(node, &stop); });
    }

    // How many nodes an evaluation computes.
    int work(NodeId node)
    {
        const int before = nodes.evaluations();
        evaluate(node);
        return nodes.evaluations() - before;
    }

    static QByteArray bytes(const Outcome& outcome)
    {
        const auto& image = outcome.picture.image;
        return image ? QByteArray(reinterpret_cast<const char*>(image->data), int(kPictureBytes)) : QByteArray();
    }

    TestNodes nodes;
    Host::Graph graph;
    Host::ResultCache cache{std::size_t(100) << 20};
    int stop = 0;
};
