// What is computed, when, and what comes of it.

// oneTBB has a member named emit, which Qt makes a macro of.
#pragma push_macro("emit")
#undef emit
#include <tbb/global_control.h>
#pragma pop_macro("emit")

#include "evaluationfixture.h"

#include <chrono>
#include <cstring>
#include <thread>

namespace
{

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
    EXPECT_EQ(cache.bytes(), kPictureBytes + 256); // of the source alone: what was cut short is not kept
}

TEST_F(Evaluation, TheLeastRecentlyUsedResultGoesFirst)
{
    Host::ResultCache small(3 * (kPictureBytes + 256));
    const auto insert = [&small](const std::string& key) {
        auto result = std::make_shared<Host::ResultCache::WorkResult>();
        result->outputs["image"].image = std::make_shared<Ondrel::Image>(32, 24);
        Host::ResultCache::Claim claim;
        small.begin(key, 0, claim);
        claim.finish(result);
    };
    const auto has = [&small](const std::string& key) { return small.find(key, 0).result != nullptr; };
    for (const char* const key : {"0", "1", "2"})
        insert(key);
    EXPECT_TRUE(has("0")); // now 1 is the oldest
    insert("3");
    EXPECT_FALSE(has("1"));
    EXPECT_TRUE(has("0"));
    EXPECT_TRUE(has("2"));
    EXPECT_LE(small.bytes(), small.byteBudget());
    small.setByteBudget(kPictureBytes + 256);
    EXPECT_TRUE(has("2"));
    EXPECT_FALSE(has("0"));
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

TEST_F(Evaluation, ErrorsBehindAPictureAreNotForgotten)
{
    const QHash<NodeId, QString> none;
    const NodeId source = add("source"), before = addAfter(source, "add"), flawed = addAfter(before, "flawed");
    const NodeId after = addAfter(flawed, "add"), last = addAfter(after, "add");
    const QHash<NodeId, QString> expected{{flawed, "It is only half right."}};
    for (const NodeId node : {last, last, after, flawed, last}) {
        const Outcome outcome = evaluate(node);
        EXPECT_TRUE(outcome.picture.image) << node;
        EXPECT_EQ(outcome.errors, expected) << node;
    }
    EXPECT_EQ(work(last), 3) << "what is before it is known";
    EXPECT_EQ(evaluate(before).errors, none);
    nodes.hasFlaw = false;
    EXPECT_EQ(evaluate(last).errors, none);
    EXPECT_EQ(work(last), 0);
    nodes.hasFlaw = true;
    EXPECT_EQ(evaluate(last).errors, none) << "it is what was made when all was well";
}

TEST_F(Evaluation, ErrorsOfEqualWorkAreThoseOfAllNodesThatShareIt)
{
    const NodeId source = add("source"), first = addAfter(source, "flawed"), second = addAfter(source, "flawed");
    const NodeId last = add("mix"), aside = addAfter(source, "flawed");
    graph.connections.push_back({first, "image", last, "a"});
    graph.connections.push_back({second, "image", last, "b"});
    const QString error = "It is only half right.";
    EXPECT_EQ(evaluate(last).errors, (QHash<NodeId, QString>{{first, error}, {second, error}}));
    EXPECT_EQ(work(last), 2);
    EXPECT_EQ(evaluate(aside).errors, (QHash<NodeId, QString>{{aside, error}}));
}

TEST_F(Evaluation, ErrorsOfSeveralNodesComeTogether)
{
    const NodeId source = add("source"), flawed = addAfter(source, "flawed"), again = addAfter(flawed, "flawed");
    const NodeId failing = addAfter(again, "fail"), last = add("mix");
    graph.connections.push_back({addAfter(again, "add"), "image", last, "a"});
    graph.connections.push_back({addAfter(source, "add"), "image", last, "b"});
    const QString error = "It is only half right.";
    const QHash<NodeId, QString> both{{flawed, error}, {again, error}};
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(evaluate(last).errors, both);
        QHash<NodeId, QString> all = both;
        all[failing] = "It did not go well.";
        EXPECT_EQ(evaluate(failing).errors, all);
    }
    EXPECT_EQ(work(last), 4); // not the source, nor what is made from it alone
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

// Projects may have connections that do not fit any more.
class MisfittingConnection : public Evaluation
{
protected:
    // From the first node over the second to the third one, the last connection from this output.
    void connectNodes(const QString& output)
    {
        graph.connections = {{first, "image", second, "image"}, {second, output, third, "image"}};
    }
    QSize sizeOf(NodeId node, const QString& output) { return fullSize(graph, nodes.types, {node, output, 1}); }
    QSize knownSizeOf(NodeId node, const QString& output)
    {
        Host::OutputSizes sizes;
        updateSizes(graph, nodes.types, {first, second, third}, sizes);
        return knownSize(graph, nodes.types, {node, output, 1}, sizes);
    }
    bool hasRoute()
    {
        Ondrel::TransformSeries series;
        return transformGraph(graph, nodes.types).buildTransformSeries(first, third, series);
    }

    const NodeId first = add("twice"), second = add("twice"), third = add("twice");
};

TEST_F(MisfittingConnection, DoesNotCountForSizes)
{
    connectNodes("image");
    EXPECT_EQ(sizeOf(third, "image"), QSize(16, 16));
    EXPECT_EQ(knownSizeOf(third, "image"), QSize(16, 16));
    connectNodes("depth");
    EXPECT_EQ(sizeOf(third, "image"), QSize(4, 4));
    EXPECT_EQ(knownSizeOf(third, "image"), QSize(4, 4));
}

TEST_F(MisfittingConnection, LeadsNowhere)
{
    connectNodes("image");
    EXPECT_TRUE(hasRoute());
    connectNodes("depth");
    EXPECT_FALSE(hasRoute());
}

TEST_F(MisfittingConnection, IsNotHandedOnByABypassedNode)
{
    graph.nodes[third].bypassed = true;
    connectNodes("image");
    EXPECT_EQ(sizeOf(third, "image"), QSize(8, 8));
    EXPECT_TRUE(sizeOf(third, "depth").isEmpty()) << "no number goes in";
    EXPECT_TRUE(hasRoute());
    connectNodes("depth");
    EXPECT_TRUE(sizeOf(third, "image").isEmpty());
    EXPECT_TRUE(knownSizeOf(third, "image").isEmpty());
    EXPECT_FALSE(hasRoute());
}

TEST_F(MisfittingConnection, IsNotTheTargetOfANodeWithoutOutputs)
{
    const NodeId last = add("show");
    graph.connections = {{first, "image", last, "image"}};
    EXPECT_EQ(sizeOf(last, QString()), QSize(4, 4));
    graph.connections = {{first, "depth", last, "image"}};
    EXPECT_TRUE(sizeOf(last, QString()).isEmpty());
}

} // namespace
