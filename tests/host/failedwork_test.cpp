// Work in the background that throws. Whoever asked for it says so and goes on.

#include "editorfixture.h"
#include "evaluator.h"
#include "exporter.h"
#include "importer.h"
#include "panerenderer.h"
#include "testnodes.h"
#include "throwing.h"

#include <QFile>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>

#include <map>
#include <sys/resource.h>
#include <unistd.h>

using namespace Host;

namespace
{

constexpr int kPatience = 60000; // milliseconds

// Leaves the process one more GiB of address space, for as long as it lives.
class LittleMemory
{
public:
    LittleMemory()
    {
        EXPECT_EQ(getrlimit(RLIMIT_AS, &m_before), 0);
        QFile sizes("/proc/self/statm");
        EXPECT_TRUE(sizes.open(QIODevice::ReadOnly));
        const rlim_t inUse = sizes.readAll().split(' ').front().toULongLong() * rlim_t(sysconf(_SC_PAGESIZE));
        const rlimit little{inUse + (rlim_t(1) << 30), m_before.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_AS, &little), 0);
    }
    ~LittleMemory() { EXPECT_EQ(setrlimit(RLIMIT_AS, &m_before), 0); }
    LittleMemory(const LittleMemory&) = delete;
    LittleMemory& operator=(const LittleMemory&) = delete;

private:
    rlimit m_before{};
};

// A source, and behind it a hook, or a node that makes a picture and reports an error nevertheless; behind that one a
// node that adds to it.
class FailedWork : public testing::Test
{
protected:
    FailedWork()
    {
        const char* const types[] = {"source", "hook", "flawed", "add"};
        for (NodeId id = 1; id <= 4; ++id) {
            NodeRecord record;
            record.id = id;
            record.type = QString("test/") + types[id - 1];
            record.name = types[id - 1];
            graph.nodes[id] = record;
        }
        graph.connections = {{1, "image", 2, "image"}, {1, "image", 3, "image"}, {3, "image", 4, "image"}};
        nodes.hook = [](const Request&) { return 0u; };
    }

    QString path(const QString& name) const { return folder.filePath(name); }
    ExportOrder order(NodeId node, const QString& name) const
    {
        return {graph, node, path(name), FileFormat::Png, QVariantMap()};
    }

    TestNodes nodes;
    QTemporaryDir folder;
    Graph graph;
    ResultCache cache{std::size_t(1) << 20};
};

} // namespace

TEST_F(FailedWork, NextExportFollowsOneThatThrows)
{
    const Throwing throwing("\"%1\" cannot be written: %2.");
    Exporter exporter(nodes.types, cache, nullptr);
    QSignalSpy finished(&exporter, &Exporter::finished);
    QFile file(path("file"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)); // no folder can be there
    exporter.add(order(1, "file/a.png"));
    exporter.add(order(1, "b.png"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !exporter.isBusy(); }, kPatience));
    ASSERT_EQ(finished.count(), 2);
    EXPECT_EQ(finished[0][0].toString(), path("file/a.png"));
    EXPECT_EQ(finished[0][1].toString(), "out of paper");
    EXPECT_EQ(finished[1][0].toString(), path("b.png"));
    EXPECT_EQ(finished[1][1].toString(), "");
    EXPECT_TRUE(QFile::exists(path("b.png")));
    EXPECT_FALSE(exporter.isVisibleTo(nullptr));
}

TEST_F(FailedWork, ExportedNamesAreShownAsTheyAre)
{
    Exporter exporter(nodes.types, cache, nullptr);
    exporter.add(order(1, "50%2 off.png"));
    exporter.add(order(1, "b.png"));
    EXPECT_EQ(exporter.findChild<QLabel*>()->text(), "50%2 off.png and 1 more");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !exporter.isBusy(); }, kPatience));
}

TEST_F(FailedWork, PictureOfNodesThatReportErrorsIsNotExported)
{
    Exporter exporter(nodes.types, cache, nullptr);
    QSignalSpy finished(&exporter, &Exporter::finished);
    for (const NodeId node : std::vector<NodeId>{3, 4, 4, 3, 4}) // whatever was computed before
        exporter.add(order(node, "flawed.png"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !exporter.isBusy(); }, kPatience));
    ASSERT_EQ(finished.count(), 5);
    for (const QList<QVariant>& signal : finished)
        EXPECT_EQ(signal[1].toString(), "flawed: It is only half right.");
    EXPECT_FALSE(QFile::exists(path("flawed.png")));
}

TEST_F(FailedWork, NextRequestFollowsOneThatThrows)
{
    Evaluator evaluator(nodes.types, std::size_t(1) << 20);
    QSignalSpy told(&evaluator, &Evaluator::message);
    QSignalSpy finished(&evaluator, &Evaluator::finished);
    std::map<NodeId, bool> atWork;
    QObject::connect(&evaluator, &Evaluator::nodeBusy, [&](NodeId node, bool busy) { atWork[node] = busy; });
    QSignalSpy pictures(&evaluator, &Evaluator::pictureReady);
    const std::vector<Evaluator::Wish> wishes{{0, {2, QString(), 1}, false}};
    {
        const Throwing throwing("The plug-in failed.");
        nodes.hook = [](const Request&) -> unsigned int { throw 5; };
        evaluator.request(graph, wishes);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !evaluator.isBusy(); }, kPatience));
    }
    ASSERT_EQ(told.count(), 1);
    EXPECT_EQ(told[0][0].toString(), "out of paper");
    EXPECT_EQ(finished.count(), 0) << "it is still to be done";
    ASSERT_EQ(atWork.count(2), 1u);
    EXPECT_FALSE(atWork[2]);
    nodes.hook = [](const Request&) { return 0u; };
    evaluator.request(graph, wishes);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !evaluator.isBusy(); }, kPatience));
    EXPECT_EQ(finished.count(), 1);
    ASSERT_EQ(pictures.count(), 1);
    EXPECT_TRUE(pictures[0][1].value<Picture>().image);
}

// A soft proof is a picture of its own, for which there is no memory.
TEST_F(FailedWork, NextRenderingFollowsOneThatThrows)
{
    PaneRenderer renderer;
    QSignalSpy told(&renderer, &PaneRenderer::message);
    QSignalSpy rendered(&renderer, &PaneRenderer::rendered);
    DisplayOptions proof;
    proof.proofs = true;
    renderer.setOptions(proof);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !renderer.isBusy(); }, kPatience));
    const auto huge = std::make_shared<Ondrel::Image>(); // without pixels; its proof would take 4 GiB
    huge->width = 1u << 15;
    huge->height = 1u << 14;
    {
        const LittleMemory little;
        renderer.setFirst({huge, QSize(1 << 15, 1 << 14)});
        ASSERT_TRUE(QTest::qWaitFor([&] { return !renderer.isBusy(); }, kPatience));
    }
    ASSERT_EQ(told.count(), 1);
    EXPECT_EQ(told[0][0].toString(), "There is not enough memory.");
    EXPECT_FALSE(renderer.first().picture.image) << "what was shown stays";
    const int before = rendered.count();
    const auto image = std::make_shared<Ondrel::Image>(4, 3);
    image->Fill(1000, 2000, 3000, 65535);
    renderer.setFirst({image, QSize(4, 3)});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !renderer.isBusy(); }, kPatience));
    EXPECT_EQ(rendered.count(), before + 1);
    EXPECT_EQ(renderer.first().picture.image, image);
    EXPECT_EQ(renderer.first().rendered.levels.front().size(), QSize(4, 3));
}

TEST_F(Editor, OtherFilesAreImportedBesideOneThatThrows)
{
    QImage grey(7, 5, QImage::Format_Grayscale8);
    grey.fill(100);
    ASSERT_TRUE(grey.save(path("grey.png")));
    const Throwing throwing("\"%1\" is grey and was made a colour picture.");
    QSignalSpy ended(&window.importer(), &Importer::ended);
    window.importer().import({path("grey.png"), path("photo.png")}, QPointF(500, 0));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window.importer().isBusy(); }, kPatience));
    EXPECT_EQ(ended.count(), 1);
    EXPECT_EQ(status(), path("grey.png") + " cannot be read. out of paper");
    EXPECT_FALSE(id("grey"));
    EXPECT_TRUE(id("photo 2"));
}
