// What becomes of work that several evaluations want at once.

// oneTBB has a member named emit, which Qt makes a macro of.
#pragma push_macro("emit")
#undef emit
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>
#pragma pop_macro("emit")

#include "evaluationfixture.h"
#include "gate.h"

#include <chrono>
#include <random>
#include <stdexcept>
#include <thread>

namespace
{

using Running = std::future<Outcome>;

// Words of two evaluations, and what it takes to know where they are.
class SharedWork : public Evaluation
{
protected:
    SharedWork()
    {
        nodes.hook = [](const Host::Request& request) { return amountOf(request); };
    }

    static unsigned int amountOf(const Host::Request& request)
    {
        return request.values.value("amount").toString().toUInt();
    }

    Running start(NodeId node, const int& word, const Host::Progress& progress = {})
    {
        return std::async(std::launch::async,
                          [this, node, &word, progress] { return evaluateHere(node, &word, progress); });
    }

    static Host::Progress opens(Gate& gate, NodeId node)
    {
        Host::Progress progress;
        progress.begin = [&gate, node, isOpen = std::make_shared<std::atomic<bool>>(false)](NodeId begun) {
            if (begun == node && !isOpen->exchange(true))
                gate.open();
        };
        return progress;
    }

    static void cancel(int& word) { __atomic_store_n(&word, 1, __ATOMIC_RELAXED); }
    static bool isCancelled(const Host::Request& request)
    {
        return __atomic_load_n(request.status.state, __ATOMIC_RELAXED) == 1;
    }

    // A hook behind a source, and a node behind the hook.
    const NodeId hook = addAfter(add("source"), "hook", {{"amount", "7"}}), last = addAfter(hook, "add");
    Gate begun, waited; // the first evaluation is in the hook, the second one waits for it
    int first = 0, second = 0;
};

TEST_F(SharedWork, IsDoneByOneAndGivenToAll)
{
    for (const auto threads : {std::size_t(1), std::size_t(16)}) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
        Gate inHook, waits;
        nodes.hook = [&](const Host::Request& request) {
            inHook.open(); // twice would throw
            waits.pass();
            return amountOf(request);
        };
        cache.clear();
        const int before = nodes.evaluations();
        Running one = start(last, first);
        inHook.pass();
        Running other = start(last, second, opens(waits, hook));
        const QByteArray expected = bytes(one.get());
        EXPECT_FALSE(expected.isEmpty());
        EXPECT_EQ(bytes(other.get()), expected);
        EXPECT_EQ(nodes.evaluations() - before, 3);
    }
}

TEST_F(SharedWork, IsGivenToAllThoughNothingIsKept)
{
    cache.setByteBudget(0);
    nodes.hook = [&](const Host::Request& request) {
        begun.open();
        waited.pass();
        return amountOf(request);
    };
    Running one = start(hook, first);
    begun.pass();
    Running other = start(hook, second, opens(waited, hook));
    EXPECT_EQ(one.get().picture.image, other.get().picture.image);
    EXPECT_EQ(nodes.evaluations(), 2);
    EXPECT_EQ(cache.bytes(), 0u);
}

TEST_F(SharedWork, OfOneThatIsCancelledIsDoneByAnother)
{
    std::atomic<int> entries{0};
    nodes.hook = [&](const Host::Request& request) {
        if (++entries == 1) {
            begun.open();
            waited.pass();
            cancel(first);
            EXPECT_TRUE(isCancelled(request));
            return 1000u; // what a node gives that was cancelled is of no use
        }
        return amountOf(request);
    };
    Running one = start(last, first);
    begun.pass();
    Running other = start(last, second, opens(waited, hook));
    EXPECT_TRUE(one.get().cancelled);
    const QByteArray result = bytes(other.get());
    EXPECT_EQ(entries, 2);
    EXPECT_EQ(nodes.evaluations(), 4); // the source once, the last once
    EXPECT_EQ(work(last), 0);
    EXPECT_EQ(bytes(evaluate(last)), result);
    cache.clear();
    EXPECT_EQ(bytes(evaluate(last)), result);
}

TEST_F(SharedWork, ThatFailsFailsForAllWhoWait)
{
    std::atomic<int> entries{0};
    nodes.hook = [&](const Host::Request&) -> unsigned int {
        if (++entries == 1) {
            begun.open();
            waited.pass();
        }
        throw std::runtime_error("out of ink");
    };
    Running one = start(last, first);
    begun.pass();
    Running other = start(last, second, opens(waited, hook));
    const Outcome outcomes[] = {one.get(), other.get()};
    for (const Outcome& outcome : outcomes) {
        EXPECT_FALSE(outcome.picture.image);
        EXPECT_FALSE(outcome.cancelled);
        EXPECT_EQ(outcome.errors, (QHash<NodeId, QString>{{hook, "out of ink"}}));
    }
    EXPECT_EQ(entries, 1);
    EXPECT_EQ(evaluate(last).errors.value(hook), "out of ink");
    EXPECT_EQ(entries, 2) << "a failure is tried again";
}

// Of two graphs, whose nodes have other numbers.
TEST_F(SharedWork, HasItsErrorsWithAllWhoWait)
{
    const NodeId flawed = addAfter(add("source"), "flawed"), behind = addAfter(flawed, "hook");
    const NodeId end = addAfter(behind, "add");
    Host::Graph other;
    for (const auto& [id, record] : graph.nodes) {
        Host::NodeRecord& copy = other.nodes[id + 100] = record;
        copy.id = id + 100;
    }
    for (Host::Connection connection : graph.connections) {
        connection.from += 100;
        connection.to += 100;
        other.connections.push_back(connection);
    }
    std::atomic<int> entries{0};
    nodes.hook = [&](const Host::Request& request) {
        if (++entries == 1) {
            begun.open();
            waited.pass();
        }
        return amountOf(request);
    };
    Running one = start(end, first);
    begun.pass();
    Running waiting = std::async(std::launch::async, [&] {
        return Host::evaluate(other, nodes.types, {end + 100, QString(), 1}, cache, Ondrel::RunStatus{&second},
                              opens(waited, behind + 100));
    });
    const QString error = "It is only half right.";
    const Outcome outcome = one.get(), outcomeOfOther = waiting.get();
    EXPECT_EQ(outcome.errors, (QHash<NodeId, QString>{{flawed, error}}));
    EXPECT_EQ(outcomeOfOther.errors, (QHash<NodeId, QString>{{flawed + 100, error}}));
    EXPECT_FALSE(bytes(outcome).isEmpty());
    EXPECT_EQ(bytes(outcomeOfOther), bytes(outcome));
    EXPECT_EQ(entries, 1);
    EXPECT_EQ(evaluate(end).errors, outcome.errors);
    EXPECT_EQ(entries, 2) << "what is made from a flawed picture is made again";
}

TEST_F(SharedWork, IsNotWaitedForByOneThatIsCancelled)
{
    Gate release;
    nodes.hook = [&](const Host::Request& request) {
        begun.open();
        release.pass();
        return amountOf(request);
    };
    Running one = start(last, first);
    begun.pass();
    Running other = start(last, second, opens(waited, hook));
    waited.pass();
    const auto begin = std::chrono::steady_clock::now();
    cancel(second);
    EXPECT_TRUE(other.get().cancelled);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(100));
    release.open();
    EXPECT_TRUE(one.get().picture.image);
}

// A node whose plug-in evaluates a graph itself, even one that it is part of.
TEST_F(SharedWork, IsNotWaitedForFromWithinANode)
{
    std::atomic<int> depth{0};
    Outcome inner;
    nodes.hook = [&](const Host::Request& request) {
        if (++depth == 1)
            inner = evaluateHere(last, &first);
        return amountOf(request);
    };
    const QByteArray outer = bytes(start(last, second).get());
    EXPECT_FALSE(outer.isEmpty());
    EXPECT_EQ(bytes(inner), outer);
    EXPECT_EQ(depth, 2);
}

TEST_F(SharedWork, OfAnEarlierGenerationIsNeitherKeptNorGiven)
{
    std::atomic<unsigned int> setting{3};
    std::atomic<int> entries{0};
    nodes.hook = [&](const Host::Request&) {
        const unsigned int seen = setting;
        if (++entries == 1) {
            begun.open();
            waited.pass();
        }
        return seen;
    };
    Running one = start(last, first); // sees the old setting
    begun.pass();
    setting = 5;
    cache.beginGeneration();
    const QByteArray result = bytes(start(last, second).get()); // does not wait for it
    const QByteArray hooked = bytes(start(hook, second).get());
    EXPECT_EQ(entries, 2);
    waited.open();
    EXPECT_EQ(bytes(one.get()), result) << "the one that ran meanwhile is of the new setting too";
    EXPECT_EQ(entries, 2) << "it found what is there now";
    EXPECT_EQ(work(last), 0);
    EXPECT_EQ(bytes(evaluate(last)), result);
    EXPECT_EQ(bytes(evaluate(hook)), hooked);
    EXPECT_EQ(entries, 2);
}

TEST_F(SharedWork, GoesOnWhenTheCacheIsCleared)
{
    nodes.hook = [&](const Host::Request& request) {
        begun.open();
        waited.pass();
        return amountOf(request);
    };
    Running one = start(last, first);
    begun.pass();
    cache.clear();
    Running other = start(last, second, opens(waited, hook));
    EXPECT_EQ(bytes(one.get()), bytes(other.get()));
    EXPECT_EQ(nodes.evaluations(), 3);
    EXPECT_EQ(work(last), 0);
}

#ifndef __SANITIZE_THREAD__ // which cannot follow what oneTBB orders
// Evaluations as tasks of one arena, whose nodes wait for loops of their own: threads that wait there must not take up
// an evaluation that would wait for them.
TEST_F(SharedWork, CannotWaitForItsOwnThread)
{
    nodes.hook = [](const Host::Request& request) {
        std::atomic<unsigned int> sum{0};
        tbb::parallel_for(0, 16, [&](int) {
            tbb::parallel_for(0, 16, [&](int) {
                std::this_thread::sleep_for(std::chrono::microseconds(20));
                ++sum;
            });
        });
        return sum + amountOf(request);
    };
    std::vector<NodeId> row{last};
    for (int i = 0; i < 6; ++i)
        row.push_back(addAfter(row.back(), "hook", {{"amount", QString::number(i)}}));
    for (const int threads : {1, 2, 16}) {
        const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, std::size_t(threads));
        cache.clear();
        const int before = nodes.evaluations();
        Running done = std::async(std::launch::async, [&] {
            tbb::task_arena arena(threads);
            arena.execute([&] {
                tbb::task_group group;
                for (int i = 0; i < 24; ++i)
                    group.run([&, i] { evaluateHere(row[row.size() - 1 - std::size_t(i % 3)], &first); });
                group.wait();
            });
            return Outcome();
        });
        if (done.wait_for(std::chrono::minutes(2)) != std::future_status::ready) {
            ADD_FAILURE() << "does not come to its end with " << threads << " threads";
            std::abort(); // nothing can be waited for
        }
        EXPECT_EQ(nodes.evaluations() - before, 9);
    }
}
#endif

// Graphs that are drawn by lot, evaluated by several at once, of whom some are cancelled somewhere.
class RandomSharedWork : public SharedWork, public testing::WithParamInterface<int>
{
protected:
    void grow(std::mt19937& random, bool flaws = false)
    {
        graph = Host::Graph();
        ends = {add("source"), add("source", {{"shade", "9"}})};
        for (int i = 0; i < 40; ++i) {
            const auto any = [&] { return ends[random() % ends.size()]; };
            const QString amount = QString::number(random() % 5); // equal work in several places
            if (flaws && random() % 8 == 0) {
                ends.push_back(addAfter(any(), random() % 4 ? "flawed" : "fail"));
            } else if (random() % 3 == 0) {
                const NodeId node = add("mix");
                graph.connections.push_back({any(), "image", node, "a"});
                graph.connections.push_back({any(), "image", node, "b"});
                ends.push_back(node);
            } else {
                ends.push_back(addAfter(any(), random() % 2 ? "hook" : "add", {{"amount", amount}}));
            }
        }
    }

    Outcome outcomeAlone(NodeId node)
    {
        Host::ResultCache own(std::size_t(100) << 20);
        return onWorker([&] {
            return Host::evaluate(graph, nodes.types, {node, QString(), 1}, own, Ondrel::RunStatus());
        });
    }
    QByteArray alone(NodeId node) { return bytes(outcomeAlone(node)); }

    std::vector<NodeId> ends;
};

TEST_P(RandomSharedWork, IsDoneOnce)
{
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, std::size_t(GetParam()));
    std::mt19937 random(5);
    nodes.hook = [](const Host::Request& request) {
        std::this_thread::sleep_for(std::chrono::microseconds(50));
        return amountOf(request);
    };
    for (int round = 0; round < 25; ++round) {
        grow(random);
        const NodeId wanted[] = {ends.back(), ends[ends.size() - 1 - random() % 5], ends[random() % ends.size()]};
        QByteArray expected[3];
        cache.beginGeneration();
        const int before = nodes.evaluations();
        for (int i = 0; i < 3; ++i)
            expected[i] = bytes(evaluate(wanted[i]));
        const int sum = nodes.evaluations() - before;
        cache.beginGeneration();
        Running all[] = {start(wanted[0], first), start(wanted[1], first), start(wanted[2], first)};
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(bytes(all[i].get()), expected[i]) << "round " << round;
        EXPECT_EQ(nodes.evaluations() - before, 2 * sum) << "round " << round;
    }
}

TEST_P(RandomSharedWork, SurvivesCancelsAndNewGenerations)
{
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, std::size_t(GetParam()));
    std::mt19937 random(17);
    int cancelled = 0, whole = 0;
    for (int round = 0; round < 40; ++round) {
        grow(random);
        const NodeId wanted[] = {ends.back(), ends.back(), ends[ends.size() - 1 - random() % 5]};
        int words[3] = {};
        std::atomic<int> entries{0};
        const int cancelAt[] = {int(random() % 4), int(random() % 12), 1000};
        const int generationAt = int(random() % 12);
        nodes.hook = [&](const Host::Request& request) {
            const int entry = entries++;
            for (int i = 0; i < 3; ++i) {
                if (entry == cancelAt[i])
                    cancel(words[i]);
            }
            if (entry == generationAt)
                cache.beginGeneration();
            return amountOf(request) + (request.status.state && isCancelled(request) ? 1000 : 0);
        };
        cache.beginGeneration();
        Running all[] = {start(wanted[0], words[0]), start(wanted[1], words[1]), start(wanted[2], words[2])};
        const Outcome outcomes[] = {all[0].get(), all[1].get(), all[2].get()};
        for (int i = 0; i < 3; ++i) {
            (outcomes[i].cancelled ? cancelled : whole) += 1;
            if (!outcomes[i].cancelled) {
                EXPECT_EQ(bytes(outcomes[i]), alone(wanted[i])) << "round " << round;
            }
            EXPECT_EQ(bytes(evaluate(wanted[i])), alone(wanted[i])) << "round " << round;
        }
    }
    EXPECT_GT(cancelled, 10);
    EXPECT_GT(whole, 40);
}

TEST_P(RandomSharedWork, HasTheErrorsOfWorkAlone)
{
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, std::size_t(GetParam()));
    std::mt19937 random(29);
    int withErrors = 0, withPicture = 0;
    for (int round = 0; round < 40; ++round) {
        grow(random, true);
        const NodeId wanted[] = {ends.back(), ends[ends.size() - 1 - random() % 5], ends[random() % ends.size()]};
        Outcome expected[3];
        const int before = nodes.evaluations();
        for (int i = 0; i < 3; ++i)
            expected[i] = outcomeAlone(wanted[i]);
        const int sum = nodes.evaluations() - before;
        cache.beginGeneration();
        for (int again = 0; again < 2; ++again) {
            Running all[] = {start(wanted[0], first), start(wanted[1], first), start(wanted[2], first)};
            for (int i = 0; i < 3; ++i) {
                const Outcome outcome = all[i].get();
                EXPECT_EQ(bytes(outcome), bytes(expected[i])) << "round " << round;
                EXPECT_EQ(outcome.errors, expected[i].errors) << "round " << round;
                withErrors += !outcome.errors.isEmpty();
                withPicture += !outcome.errors.isEmpty() && outcome.picture.image;
            }
        }
        EXPECT_LE(nodes.evaluations() - before, 3 * sum) << "no evaluation makes anything twice, round " << round;
    }
    EXPECT_GT(withErrors, 100);
    EXPECT_GT(withPicture, 50);
}

INSTANTIATE_TEST_SUITE_P(Threads, RandomSharedWork, testing::Values(1, 16));

} // namespace
