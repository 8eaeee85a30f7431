// How much memory a run in batch is expected to take.

#include "testnodes.h"

#include <evaluation.h>
#include <render/memoryneed.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <limits>

namespace
{

constexpr std::size_t kEverything = std::numeric_limits<std::size_t>::max();

class MemoryNeed : public testing::Test
{
protected:
    void write(const QString& name, const QByteArray& bytes)
    {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    // Of a project whose only resource is at the path.
    std::size_t toRead(const QByteArray& resource)
    {
        const QByteArray text = "{\"resources\": [{\"id\": \"1\", \"path\": \"" + resource + "\"}]}";
        write("project.ondrel", text);
        return bytesToRead(folder.filePath("project.ondrel")) - std::size_t(text.size()) * 8;
    }

    QTemporaryDir folder;
};

TEST_F(MemoryNeed, OnlyRegularFilesCount)
{
    write("photo.jpg", QByteArray(100, 'x'));
    EXPECT_EQ(toRead("photo.jpg"), 100u + 100 * 4 * 48 + 100 * 3);
    ASSERT_TRUE(QDir(folder.path()).mkdir("inside"));
    EXPECT_EQ(toRead(""), 0u);
    EXPECT_EQ(toRead("inside"), 0u);
    EXPECT_EQ(toRead("none.jpg"), 0u);
    EXPECT_EQ(toRead("/dev/zero"), 0u);
}

TEST_F(MemoryNeed, NodesOfAbsurdSizeTakeMoreThanThereIs)
{
    TestNodes nodes;
    Host::Graph graph;
    graph.nodes[1].id = 1;
    graph.nodes[1].type = "test/twice";
    graph.nodes[1].name = "Huge";
    graph.nodes[1].values["width"] = QString::number(std::numeric_limits<int>::max());
    EXPECT_EQ(bytesToCompute(graph, nodes.types, 1), kEverything);
    graph.nodes[1].values["width"] = "10";
    EXPECT_GE(bytesToCompute(graph, nodes.types, 1), 10u * 10 * 32);
    EXPECT_LT(bytesToCompute(graph, nodes.types, 1), 1000000u);
}

// Nodes that nothing connects may run at once.
TEST_F(MemoryNeed, ConnectionsThatDoNotFitMakeNothingWait)
{
    TestNodes nodes;
    Host::Graph graph;
    for (const char* const type : {"test/twice", "test/twice", "test/mix"}) {
        Host::NodeRecord record;
        record.id = graph.nodes.size() + 1;
        record.type = type;
        record.name = QString::number(record.id);
        graph.nodes[record.id] = record;
    }
    graph.connections = {{1, "image", 3, "a"}, {2, "image", 3, "b"}};
    const std::size_t beside = bytesToCompute(graph, nodes.types, 3);
    graph.connections.push_back({1, "depth", 2, "image"});
    EXPECT_EQ(bytesToCompute(graph, nodes.types, 3), beside);
}

TEST_F(MemoryNeed, IsToldInWholeMebibytes)
{
    EXPECT_EQ(memoryText(0), "0 MiB");
    EXPECT_EQ(memoryText(1), "1 MiB");
    EXPECT_EQ(memoryText(std::size_t(3) << 20), "3 MiB");
    EXPECT_EQ(memoryText(kEverything), "17592186044416 MiB");
}

} // namespace
