// Nodes and connections, and why some may not be connected.

#include "testnodes.h"

#include <graph.h>
#include <values.h>

#include <gtest/gtest.h>

using Host::Connection;
using Host::Graph;

namespace
{

class GraphOfNodes : public testing::Test
{
protected:
    Host::NodeId add(const QString& type, const QString& name)
    {
        Host::NodeRecord record;
        record.id = graph.nodes.size() + 1;
        record.type = "test/" + type;
        record.name = name;
        graph.nodes[record.id] = record;
        return record.id;
    }

    QString why(const Connection& connection) const { return whyNotConnect(graph, nodes.types, connection); }

    TestNodes nodes;
    Graph graph;
};

TEST_F(GraphOfNodes, AllKindsOfTheTestPlugInAreThere)
{
    EXPECT_TRUE(nodes.problems.isEmpty()) << qPrintable(nodes.problems.join('\n'));
    EXPECT_EQ(nodes.types.all().size(), 14u);
}

TEST_F(GraphOfNodes, AConnectionThatWouldCloseACycleIsRefusedWithTheReason)
{
    const auto a = add("add", "A"), b = add("add", "B"), c = add("add", "C");
    graph.connections = {{a, "image", b, "image"}, {b, "image", c, "image"}};
    EXPECT_EQ(why({c, "image", a, "image"}), "\"A\" would depend on itself.");
    EXPECT_EQ(why({a, "image", a, "image"}), "\"A\" would depend on itself.");
    EXPECT_EQ(why({a, "image", c, "image"}), "");
}

TEST_F(GraphOfNodes, AConnectionBetweenTypesThatDoNotFitIsRefusedWithTheReason)
{
    const auto number = add("number", "N"), sum = add("add", "A");
    EXPECT_EQ(why({number, "number", sum, "image"}), "\"Image\" of \"A\" takes an image, and \"N\" gives a number.");
}

TEST_F(GraphOfNodes, FieldsAndNodesThatDoNotExistAreNamed)
{
    const auto source = add("source", "S"), sum = add("add", "A"), other = add("elsewhere", "X");
    EXPECT_EQ(why({source, "depth", sum, "image"}), "\"S\" has no output \"depth\".");
    EXPECT_EQ(why({source, "image", sum, "amount"}), "\"A\" has no input \"amount\" to connect to.");
    EXPECT_EQ(why({source, "image", other, "image"}), "The kind of \"X\" is not known here.");
    EXPECT_EQ(why({source, "image", 77, "image"}), "One of the nodes does not exist.");
}

TEST_F(GraphOfNodes, DependentsComeBehindWhatTheyDependOn)
{
    const auto a = add("add", "A"), b = add("add", "B"), c = add("add", "C"), d = add("add", "D"), e = add("add", "E");
    graph.connections = {{d, "image", b, "image"},
                         {a, "image", d, "image"},
                         {a, "image", b, "other"},
                         {b, "image", c, "image"},
                         {e, "image", c, "other"}};
    using Ids = std::vector<Host::NodeId>;
    EXPECT_EQ(dependents(graph, {a}), (Ids{a, d, b, c}));
    EXPECT_EQ(dependents(graph, {e, d}), (Ids{d, e, b, c}));
    EXPECT_EQ(dependents(graph, {c}), Ids{c});
    EXPECT_EQ(dependents(graph, {77}), Ids());
    EXPECT_EQ(dependents(graph, {}), Ids());
}

TEST_F(GraphOfNodes, AVariableNodeTakesInputsByNumber)
{
    const auto source = add("source", "S"), layers = add("layers", "L");
    EXPECT_EQ(why({source, "image", layers, "layer12"}), "");
    EXPECT_NE(why({source, "image", layers, "layer"}), "");
    EXPECT_NE(why({source, "image", layers, "opacity1"}), "");
    EXPECT_EQ(nodes.types.find("test/layers")->input("opacity3")->kind, "slider");
}

TEST_F(GraphOfNodes, AConnectionForWhichTheOrderHasNoRoomIsRefusedWithTheReason)
{
    const auto source = add("source", "S"), other = add("source", "T"), layers = add("layers", "L%2");
    const auto into = [&](const QString& id) { return why({source, "image", layers, "layer" + id}); };
    const QString refusal = "\"L%2\" takes no more connections: the text with their order would have more than 4096 "
                            "characters.";
    EXPECT_EQ(into(QString(Host::kLongestOrder, '7')), "");
    EXPECT_EQ(into(QString(Host::kLongestOrder + 1, '7')), refusal);
    const QString named = QString(Host::kLongestOrder - 2, '7');
    QVariant& order = graph.nodes[layers].values["layer_order"];
    order = named;
    EXPECT_EQ(into("5"), "");
    EXPECT_EQ(into("15"), refusal);
    order = named + "8";
    EXPECT_EQ(into("5"), refusal);
    EXPECT_EQ(into(named + "8"), "");
    order = named;
    graph.connections = {{other, "image", layers, "layer8"}, {other, "image", layers, "layer" + named}};
    EXPECT_EQ(into("8"), "") << "it takes the place of another";
    EXPECT_EQ(into("5"), refusal) << "the order has yet to name the other";
    order = QString(Host::kLongestOrder + 1, '7');
    EXPECT_EQ(into("5"), refusal);
}

TEST_F(GraphOfNodes, DependenciesComeFirstAndOnce)
{
    const auto a = add("source", "A"), b = add("add", "B"), c = add("add", "C"), d = add("mix", "D");
    graph.connections = {
        {a, "image", b, "image"}, {a, "image", c, "image"}, {b, "image", d, "a"}, {c, "image", d, "b"}};
    const std::vector<Host::NodeId> order = dependencies(graph, d);
    ASSERT_EQ(order.size(), 4u);
    EXPECT_EQ(order.front(), a);
    EXPECT_EQ(order.back(), d);
}

TEST_F(GraphOfNodes, AChainOfManyNodesNeedsNoDeepStack)
{
    Host::NodeId last = add("source", "0");
    for (int i = 1; i < 3000; ++i) {
        const auto next = add("add", QString::number(i));
        graph.connections.push_back({last, "image", next, "image"});
        last = next;
    }
    EXPECT_EQ(dependencies(graph, last).size(), 3000u);
}

TEST_F(GraphOfNodes, NamesAreMadeUniqueWhateverSignsTheyHave)
{
    for (const char* const name : {"Blur", "100%2", "%1"}) {
        add("add", name);
        EXPECT_EQ(uniqueName(graph, name), QString(name) + " 2");
    }
    EXPECT_EQ(uniqueName(graph, "%2"), "%2");
}

} // namespace
