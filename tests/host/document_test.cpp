// Editing with undo.

#include "testnodes.h"

#include <document.h>
#include <editcommand.h>
#include <project.h>
#include <values.h>

#include <ondrel/core/color.h>

#include <gtest/gtest.h>

#include <QSignalSpy>

#include <random>

using Host::Connection;
using Host::NodeId;

namespace
{

class Editing : public testing::Test
{
protected:
    QByteArray saved()
    {
        Host::Project project;
        project.graph = document.graph();
        return onWorker([&] { return writeProject(project, "/"); });
    }

    TestNodes nodes;
    Host::Document document{nodes.types};
    Ondrel::MemoryBoundedUndoStack& undo = document.undoStack();
};

TEST_F(Editing, EveryEditIsTakenBackByOneUndo)
{
    const NodeId a = document.addNode("test/source", {0, 0}), b = document.addNode("test/add", {1, 1});
    const quint64 frame = document.addFrame("Title", {0, 0, 10, 10});
    const std::function<void()> edits[] = {
        [&] {
            document.addNode("test/mix", {2, 2});
        },
        [&] {
            document.addConnection({a, "image", b, "image"});
        },
        [&] {
            document.removeConnection({a, "image", b, "image"});
        },
        [&] { document.setValue(b, "amount", QString("7")); },
        [&] {
            document.moveNodes({{a, {5, 6}}, {b, {7, 8}}});
        },
        [&] { document.renameNode(a, "Sky"); },
        [&] { document.setBypassed(b, true); },
        [&] { document.replaceNode(b, "test/slow"); },
        [&] {
            document.changeFrame({frame, "Other", {1, 2, 3, 4}});
        },
        [&] { document.removeFrame(frame); },
        [&] {
            document.insert(document.graph(), {10, 10});
        },
        [&] {
            document.removeNodes({a, b});
        },
    };
    for (const auto& edit : edits) {
        const QByteArray before = saved();
        edit();
        const QByteArray after = saved();
        EXPECT_NE(before, after);
        undo.undo();
        EXPECT_EQ(saved(), before);
        undo.redo();
        EXPECT_EQ(saved(), after);
    }
}

TEST_F(Editing, OneDragOfASliderIsOneStep)
{
    const NodeId id = document.addNode("test/add", {0, 0});
    const int steps = int(undo.count());
    for (int i = 2; i < 50; ++i)
        document.setValue(id, "amount", QString::number(i), 1);
    EXPECT_EQ(int(undo.count()), steps + 1);
    for (int i = 2; i < 50; ++i)
        document.setValue(id, "amount", QString::number(i), 2);
    EXPECT_EQ(int(undo.count()), steps + 2);
    undo.undo();
    EXPECT_EQ(document.graph().node(id)->values.value("amount").toString(), "49");
    undo.undo();
    EXPECT_TRUE(document.graph().node(id)->values.isEmpty());
}

TEST_F(Editing, PicturesAreEmbeddedAndReplacedInOneStepEach)
{
    using Ondrel::ResourceId;
    const auto list = QVariantList{QVariant::fromValue(ResourceId(5)), QVariantMap{{"x", 1}}};
    const NodeId a = document.addNode("test/photo", {0, 0}), b = document.addNode("test/all", {0, 0});
    document.setValue(a, "image", QVariant::fromValue(ResourceId(5)));
    document.setValue(b, "hidden", list);
    const int steps = undo.count();
    document.setEmbedded({ResourceId(5), ResourceId(6)}, true);
    EXPECT_EQ(document.graph().embedded, (std::set<std::uint32_t>{5, 6}));
    document.setEmbedded({ResourceId(6)}, true); // changes nothing
    EXPECT_EQ(undo.count(), steps + 1);
    document.setEmbedded({ResourceId(6), ResourceId(7)}, false);
    EXPECT_EQ(document.graph().embedded, std::set<std::uint32_t>{5});
    document.replaceResource(ResourceId(5), ResourceId(9));
    EXPECT_EQ(undo.count(), steps + 3);
    EXPECT_EQ(document.graph().node(a)->values.value("image").value<ResourceId>().id, 9u);
    EXPECT_EQ(document.graph().node(b)->values.value("hidden").toList().value(0).value<ResourceId>().id, 9u);
    EXPECT_EQ(document.graph().node(b)->values.value("hidden").toList().value(1).toMap().value("x").toInt(), 1);
    undo.undo();
    EXPECT_EQ(document.graph().node(a)->values.value("image").value<ResourceId>().id, 5u);
    EXPECT_TRUE(Host::sameValue(document.graph().node(b)->values.value("hidden"), list));
    undo.undo();
    EXPECT_EQ(document.graph().embedded, (std::set<std::uint32_t>{5, 6}));
    undo.undo();
    EXPECT_TRUE(document.graph().embedded.empty());
}

TEST_F(Editing, InsertedPicturesStayEmbedded)
{
    Host::Graph graph;
    graph.nodes[1].id = 1;
    graph.nodes[1].type = "test/photo";
    graph.nodes[1].values["image"] = QVariant::fromValue(Ondrel::ResourceId(5));
    graph.embedded = {4, 5};
    document.insert(graph, {0, 0});
    EXPECT_EQ(document.graph().embedded, std::set<std::uint32_t>{5}); // none of its nodes names the other
    undo.undo();
    EXPECT_TRUE(document.graph().embedded.empty());
}

// A placeholder may hold megabytes of a plug-in's own.
TEST_F(Editing, StepsCountTheBytesOfWhatPlaceholdersKeep)
{
    const auto bytesOf = [](const QJsonObject& unread, std::set<std::uint32_t> embedded) {
        Host::GraphChange change;
        change.nodes[1].before = Host::NodeRecord();
        change.nodes[1].before->unread = unread;
        change.setEmbedded({}, embedded);
        return change.bytes();
    };
    const std::size_t plain = bytesOf({}, {});
    EXPECT_EQ(bytesOf({{"json", QString(1000000, 'a')}}, {}), plain + 1000009); // {"json":"..."} instead of {}
    EXPECT_EQ(bytesOf({}, {1, 2, 3}), plain + 12);
}

TEST_F(Editing, WhatLiesBetweenBeginAndEndIsOneStep)
{
    document.beginStep("Both");
    document.addNode("test/source", {0, 0});
    document.addNode("test/add", {0, 0});
    document.endStep();
    EXPECT_EQ(undo.count(), 1);
    undo.undo();
    EXPECT_TRUE(document.graph().nodes.empty());
}

TEST_F(Editing, AConnectionReplacesTheOneAtItsInput)
{
    const NodeId a = document.addNode("test/source", {0, 0}), b = document.addNode("test/source", {0, 0});
    const NodeId c = document.addNode("test/add", {0, 0});
    EXPECT_EQ(document.addConnection({a, "image", c, "image"}), "");
    EXPECT_EQ(document.addConnection({b, "image", c, "image"}), "");
    ASSERT_EQ(document.graph().connections.size(), 1u);
    EXPECT_EQ(document.graph().connections[0].from, b);
    EXPECT_NE(document.addConnection({c, "image", c, "image"}), "");
}

TEST_F(Editing, ReplacingKeepsWiresAndValuesThatFit)
{
    const NodeId a = document.addNode("test/source", {0, 0}), b = document.addNode("test/add", {0, 0});
    const NodeId c = document.addNode("test/add", {0, 0});
    document.addConnection({a, "image", b, "image"});
    document.addConnection({b, "image", c, "image"});
    document.setValue(b, "amount", QString("9"));
    ASSERT_TRUE(document.replaceNode(b, "test/slow"));
    EXPECT_EQ(document.graph().connections.size(), 2u);
    EXPECT_TRUE(document.graph().node(b)->values.isEmpty());
    ASSERT_TRUE(document.replaceNode(b, "test/mix")); // whose inputs have other names
    EXPECT_EQ(document.graph().connections.size(), 1u);
    EXPECT_FALSE(document.replaceNode(b, "test/nosuch"));
}

TEST_F(Editing, NamesStayUnique)
{
    const NodeId a = document.addNode("test/add", {0, 0}), b = document.addNode("test/add", {0, 0});
    EXPECT_EQ(document.graph().node(b)->name, "Add 2");
    EXPECT_FALSE(document.renameNode(b, document.graph().node(a)->name));
    EXPECT_FALSE(document.renameNode(b, ""));
    EXPECT_EQ(document.addNode("test/nosuch", {0, 0}), 0u);
}

TEST_F(Editing, NewNodesAndFramesFindAnIdEvenBesideTheLastOfAll)
{
    constexpr quint64 last = std::numeric_limits<quint64>::max();
    Host::Graph graph;
    for (const quint64 id : {quint64(1), quint64(2), last}) {
        graph.nodes[id].id = id;
        graph.nodes[id].type = "test/source";
        graph.nodes[id].name = QString::number(id);
        graph.frames[id] = {id, "F", {0, 0, 10, 10}};
    }
    document.load(graph);
    EXPECT_EQ(document.addNode("test/source", {}), 3u);
    EXPECT_EQ(document.addNode("test/source", {}), 4u);
    EXPECT_EQ(document.addFrame("G", {0, 0, 10, 10}), 3u);
    EXPECT_EQ(document.graph().nodes.size(), 5u);
    graph.nodes.erase(last);
    document.load(graph);
    EXPECT_EQ(document.addNode("test/source", {}), 3u);
}

TEST_F(Editing, OrderOfEndlessInputsIsKeptUnused)
{
    const NodeId layers = document.addNode("test/layers", {});
    const auto used = [&](const QString& order) {
        document.setValue(layers, "layer_order", order);
        const Host::NodeRecord& record = *document.graph().node(layers);
        EXPECT_EQ(record.values.value("layer_order").toString(), order);
        return completeValues(record, *nodes.types.find(record.type)).value("layer_order").toString();
    };
    const QString longest = QString("0,1,").repeated(1024);
    EXPECT_EQ(used(longest), longest);
    EXPECT_EQ(used(longest + '2'), "");
}

TEST_F(Editing, InsertedWiresForWhichAnOrderHasNoRoomAreLeftOut)
{
    Host::Graph graph;
    for (const NodeId id : {NodeId(1), NodeId(2)}) {
        graph.nodes[id].id = id;
        graph.nodes[id].type = id == 1 ? "test/source" : "test/layers";
        graph.nodes[id].name = QString::number(id);
    }
    graph.nodes[2].values["layer_order"] = QString(Host::kLongestOrder - 2, '7');
    graph.connections = {{1, "image", 2, "layer5"}, {1, "image", 2, "layer6"}};
    const auto ids = document.insert(graph, {});
    ASSERT_EQ(document.graph().connections.size(), 1u);
    EXPECT_EQ(document.graph().connections[0], (Connection{ids.at(1), "image", ids.at(2), "layer5"}));
}

TEST_F(Editing, TypedOrdersAreNoLongerThanTheyMayBe)
{
    QVariant value = "before";
    EXPECT_FALSE(Host::valueFromText('"' + QString(Host::kLongestOrder + 1, '7') + '"', Host::kOrderKind, {}, value));
    EXPECT_EQ(value, "before");
    EXPECT_TRUE(Host::valueFromText('"' + QString(Host::kLongestOrder, '7') + '"', Host::kOrderKind, {}, value));
    EXPECT_EQ(value, QString(Host::kLongestOrder, '7'));
}

TEST_F(Editing, ValuesTooDeepToBeSavedAreRefused)
{
    const NodeId id = document.addNode("test/all", {});
    QVariant deepest = true;
    for (std::size_t levels = 0; levels < Host::kDeepestValue; levels += 2)
        deepest = QVariantList{deepest};
    EXPECT_EQ(document.setValue(id, "hidden", deepest), "");
    const QByteArray before = saved();
    const int steps = undo.count();
    EXPECT_EQ(document.setValue(id, "hidden", QVariantList{deepest}),
              "The value for \"hidden\" of \"All\" is nested too deeply to be saved. The old one stays.");
    EXPECT_EQ(document.setValue(77, "hidden", true), "The node does not exist.");
    EXPECT_EQ(saved(), before);
    EXPECT_EQ(undo.count(), steps);
}

TEST_F(Editing, TheMemoryOfUndoIsBounded)
{
    const NodeId id = document.addNode("test/all", {0, 0});
    const QByteArray block(1 << 18, 'x');
    for (int i = 0; i < 100; ++i)
        document.setValue(id, "hidden", QByteArray(block + QByteArray::number(i)));
    EXPECT_LT(undo.count(), 70); // of 64 MiB, two texts of half a MiB each at least
    EXPECT_GT(undo.count(), 30);
}

class RandomEdits : public Editing, public testing::WithParamInterface<unsigned int>
{
protected:
    NodeId someNode()
    {
        const auto& all = document.graph().nodes;
        return all.empty() ? 0 : std::next(all.begin(), std::ptrdiff_t(random(all.size())))->first;
    }

    QVariant someValue()
    {
        const QVariant values[] = {QVariant(),
                                   QVariant(true),
                                   QString::number(random(100)),
                                   qlonglong(random(1000)) << 40,
                                   0.1 * double(random(1000)),
                                   QByteArray("\x00\xff", 2),
                                   QPointF(double(random(9)) / 7, 2),
                                   QVariant::fromValue(Ondrel::Color("1,2,3,4")),
                                   QVariantList{1.5, QString("a")},
                                   QVariantMap{{"k", QVariantList{true}}}};
        return values[random(std::size(values))];
    }

    void edit()
    {
        const QString types[] = {"test/source", "test/add", "test/mix", "test/all", "test/layers", "test/number"};
        const QString fields[] = {"image", "a", "b", "layer1", "amount", "hidden", "layer_order"};
        const NodeId a = someNode(), b = someNode();
        switch (random(11)) {
        case 0:
        case 1:
            document.addNode(types[random(std::size(types))], {double(random(1000)) / 3, 4});
            break;
        case 2:
        case 3:
            document.addConnection({a, "image", b, fields[random(4)]});
            break;
        case 4:
            document.setValue(a, fields[random(std::size(fields))], someValue(), int(random(3)));
            break;
        case 5:
            document.moveNodes({{a, {double(random(50)), 0}}, {b, {0, 1}}}, int(random(2)));
            break;
        case 6:
            document.renameNode(a, QString("N%1").arg(random(20)));
            break;
        case 7:
            document.setBypassed(a, random(2) == 0);
            break;
        case 8:
            document.replaceNode(a, types[random(std::size(types))]);
            break;
        case 9:
            document.removeFrame(random(3) == 0 ? 1 : document.addFrame("F", {0, 1, 2, double(random(9))}));
            break;
        default:
            if (random(3) != 0)
                document.removeNodes({a});
            else if (document.graph().nodes.size() < 40)
                document.insert(document.graph(), {3, 3});
        }
    }

    std::size_t random(std::size_t below) { return std::size_t(m_engine()) % below; }

    std::mt19937 m_engine{GetParam()};
};

TEST_P(RandomEdits, AreTakenBackToTheFirstByte)
{
    document.load(document.graph());
    for (int i = 0; i < 5; ++i)
        edit();
    document.load(document.graph()); // from here on it is undone
    const QByteArray first = saved();
    for (int i = 0; i < 150; ++i)
        edit();
    const QByteArray last = saved();
    while (undo.canUndo())
        undo.undo();
    EXPECT_EQ(saved(), first);
    while (undo.canRedo())
        undo.redo();
    EXPECT_EQ(saved(), last);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEdits, testing::Range(1u, 9u));

} // namespace
