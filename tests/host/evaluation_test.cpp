// What is computed, when, and what comes of it.

// oneTBB has a member named emit, which Qt makes a macro of.
#pragma push_macro("emit")
#undef emit
#include <tbb/global_control.h>
#pragma pop_macro("emit")

#include "testnodes.h"

#include <evaluation.h>
#include <resultcache.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <thread>

using Host::NodeId;
using Host::Outcome;

namespace
{

constexpr std::size_t kPictureBytes = 32 * 24 * 8;

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

    Outcome evaluate(NodeId node)
    {
        return onWorker([&] {
            return Host::evaluate(graph, nodes.types, {node, QString(), 1}, cache, Ondrel::RunStatus{&stop});
        });
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

TEST_F(Evaluation, OnlyWhatChangedIsComputedAgain)
{
    const NodeId a = add("source"), b = addAfter(a, "add"), c = addAfter(b, "add"), d = addAfter(c, "add");
    EXPECT_EQ(work(d), 4);
    EXPECT_EQ(work(d), 0);
    graph.nodes[c].values["amount"] = "5";
    EXPECT_EQ(work(d), 2);
    graph.nodes[c].position = {9, 9}; // of no matter
    graph.nodes[c].name = "other";
    EXPECT_EQ(work(d), 0);
    graph.nodes[c].values["amount"] = "1"; // back to what is known
    EXPECT_EQ(work(d), 0);
}

TEST_F(Evaluation, EqualWorkIsDoneOnce)
{
    const NodeId a = add("source"), b = add("source"), x = addAfter(a, "add"), y = addAfter(b, "add");
    const NodeId last = add("mix");
    graph.connections.push_back({x, "image", last, "a"});
    graph.connections.push_back({y, "image", last, "b"});
    EXPECT_EQ(work(last), 3);
}

TEST_F(Evaluation, CancellingTakesEffectWithinATenthOfASecond)
{
    const NodeId slow = addAfter(add("source"), "slow"), last = addAfter(slow, "add");
    std::promise<void> begun;
    Host::Progress progress;
    progress.begin = [&](NodeId id) {
        if (id == slow)
            begun.set_value();
    };
    auto running = std::async(std::launch::async, [&] {
        return Host::evaluate(graph, nodes.types, {last, QString(), 1}, cache, Ondrel::RunStatus{&stop}, progress);
    });
    begun.get_future().wait();
    const auto start = std::chrono::steady_clock::now();
    *const_cast<volatile int*>(&stop) = 1;
    const Outcome outcome = running.get();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
    EXPECT_TRUE(outcome.cancelled);
    EXPECT_FALSE(outcome.picture.image);
    EXPECT_EQ(nodes.evaluations(), 2); // nothing behind it began
    stop = 0;
    Host::Result kept;
    EXPECT_EQ(cache.bytes(), kPictureBytes + 256); // of the source alone: what was cut short is not kept
}

TEST_F(Evaluation, TheLeastRecentlyUsedResultGoesFirst)
{
    const auto resultOf = [](int) {
        Host::Result result;
        result.outputs["image"].image = std::make_shared<Ondrel::Image>(32, 24);
        return result;
    };
    Host::ResultCache small(3 * (kPictureBytes + 256));
    for (int i = 0; i < 3; ++i)
        small.insert(QByteArray::number(i), resultOf(i));
    Host::Result found;
    EXPECT_TRUE(small.find("0", found)); // now 1 is the oldest
    small.insert("3", resultOf(3));
    EXPECT_FALSE(small.find("1", found));
    EXPECT_TRUE(small.find("0", found));
    EXPECT_TRUE(small.find("2", found));
    EXPECT_LE(small.bytes(), small.byteBudget());
    small.setByteBudget(kPictureBytes + 256);
    EXPECT_TRUE(small.find("2", found));
    EXPECT_FALSE(small.find("0", found));
    small.clear();
    EXPECT_EQ(small.bytes(), 0u);
}

TEST_F(Evaluation, ABypassedNodeHandsItsFirstPictureOn)
{
    const NodeId a = add("source"), b = addAfter(a, "add"), c = addAfter(b, "add", {{"amount", "9"}});
    const QByteArray before = bytes(evaluate(b));
    graph.nodes[c].bypassed = true;
    EXPECT_EQ(bytes(evaluate(c)), before);
    graph.nodes[c].bypassed = false;
    EXPECT_NE(bytes(evaluate(c)), before);
}

TEST_F(Evaluation, NodesThatFailThrowOrAreUnknownAreNamed)
{
    const NodeId source = add("source");
    const NodeId failing = addAfter(source, "fail"), throwing = addAfter(source, "throw");
    const NodeId unknown = addAfter(source, "elsewhere");
    const NodeId last = add("mix");
    graph.connections.push_back({failing, "image", last, "a"});
    graph.connections.push_back({throwing, "image", last, "b"});
    const Outcome outcome = evaluate(last);
    EXPECT_EQ(outcome.errors.value(failing), "It did not go well.");
    EXPECT_EQ(outcome.errors.value(throwing), "out of paper");
    EXPECT_EQ(outcome.errors.size(), 2); // the last only waits for them
    EXPECT_FALSE(outcome.picture.image);
    EXPECT_EQ(evaluate(unknown).errors.value(unknown), "There is no plug-in for this kind of node.");
    EXPECT_EQ(work(last), 2); // failures are tried again, the source is known
}

TEST_F(Evaluation, OneAndSixteenThreadsGiveTheSameBytes)
{
    std::vector<NodeId> row{add("source")};
    for (int i = 0; i < 60; ++i) {
        const NodeId id = add("mix");
        graph.connections.push_back({row[row.size() / 2], "image", id, "a"});
        graph.connections.push_back({addAfter(row.back(), "add", {{"amount", QString::number(i)}}), "image", id, "b"});
        row.push_back(id);
    }
    QByteArray results[2];
    for (const auto threads : {std::size_t(1), std::size_t(16)}) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
        cache.clear();
        results[threads == 1 ? 0 : 1] = bytes(evaluate(row.back()));
    }
    EXPECT_FALSE(results[0].isEmpty());
    EXPECT_EQ(results[0], results[1]);
}

TEST_F(Evaluation, SeveralThreadsMayEvaluateWithOneCache)
{
    const NodeId a = add("source"), b = addAfter(a, "add"), c = addAfter(b, "add", {{"amount", "3"}});
    const QByteArray wanted = bytes(evaluate(c));
    cache.clear();
    std::vector<std::future<QByteArray>> all;
    for (int i = 0; i < 8; ++i)
        all.push_back(std::async(std::launch::async, [&] {
            return bytes(Host::evaluate(graph, nodes.types, {c, QString(), 1}, cache, Ondrel::RunStatus{&stop}));
        }));
    for (auto& result : all)
        EXPECT_EQ(result.get(), wanted);
}

TEST_F(Evaluation, SizesAreKnownWithoutComputing)
{
    const NodeId photo = add("photo"), sum = addAfter(photo, "add");
    EXPECT_TRUE(fullSize(graph, nodes.types, {sum, QString(), 1}).isEmpty());
    EXPECT_EQ(nodes.evaluations(), 0);
}

} // namespace
