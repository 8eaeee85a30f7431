// Nodes that are cancelled while they work.

#include "essentials.h"

#include "evaluation.h"
#include "resultcache.h"
#include "values.h"

#include <tests/support/dngfile.h>

#include <ondrel/core/color.h>
#include <ondrel/resources/resourceengine.h>

#include <QPointF>

#include <chrono>
#include <future>
#include <set>
#include <thread>

using namespace Host;

namespace
{

using Clock = std::chrono::steady_clock;

struct Case {
    const char* file;
    std::vector<std::pair<const char*, const char*>> values; // as they are typed
};

// Every node, with values that make it work hard. A histogram has no picture of its own: it shows that of its input.
const Case kCases[] = {
    {"colourprofile", {}},
    {"crop", {{"left", "10"}}},
    {"curves", {}},
    {"erodedilate", {{"operation", "Open"}, {"radius", "10"}}},
    {"gaussianblur", {{"radiusx", "60.5"}, {"radiusy", "60.5"}}},
    {"gradient", {{"mix", "Lab"}, {"width", "300"}, {"height", "200"}}},
    {"histogram", {}},
    {"image", {}},
    {"levels", {{"gamma", "1.7"}}},
    {"median", {{"radius", "10"}}},
    {"merge", {}},
    {"mirror", {}},
    {"output", {}},
    {"paint", {}},
    {"perspective", {}},
    {"rawimage", {}},
    {"resize", {{"percentwidth", "60"}, {"percentheight", "60"}}},
    {"rotate", {{"angle", "12.5"}}},
    {"softproof", {{"gamut", "Show"}}},
    {"splitchannels", {}},
    {"translate", {{"x", "50"}}},
    {"unsharpmask", {{"radius", "20.5"}}},
};

QVariantMap valuesOf(const Case& node)
{
    const NodeType& type = OndrelTest::nodeType(node.file);
    QVariantMap values = type.defaults();
    for (const auto& [field, text] : node.values) {
        const InputInfo* const input = type.input(field);
        EXPECT_TRUE(input && valueFromText(text, input->kind, input->choices, values[field])) << field;
    }
    if (values.contains("corners"))
        values["corners"] = QVariantList{QPointF(0.1, 0), QPointF(0.9, 0.05), QPointF(1, 1), QPointF(0, 0.95)};
    if (values.contains("strokes")) {
        const QVariantMap stroke = {{"size", 60.0},
                                    {"hardness", 0.3},
                                    {"color", QVariant::fromValue(Ondrel::Color(60000, 10000, 0, 40000))},
                                    {"points", QVariantList{QPointF(20, 30), QPointF(150, 90), QPointF(10, 110)}}};
        values["strokes"] = QVariantList{stroke, stroke, stroke, stroke};
    }
    if (QString(node.file) == "curves") {
        const QVariantList bent{QPointF(0, 0), QPointF(30000, 20000), QPointF(65535, 65535)};
        values["curves"] = QVariantList{QVariant(bent), QVariant(bent), QVariant(bent), QVariant(bent)};
    }
    return values;
}

std::vector<unsigned char> cameraFile(unsigned int width, unsigned int height)
{
    OndrelTest::DngFile file;
    file.width = width;
    file.height = height;
    for (std::size_t i = 0; i < std::size_t(width) * height; ++i)
        file.samples.push_back(std::uint16_t((i * 7919 + i * i * 31) % 30000));
    return file.bytes();
}

// A picture of noise in the store, as the source of a graph, and one of a camera.
class StoredNoise
{
public:
    StoredNoise(unsigned int width, unsigned int height)
    {
        EXPECT_TRUE(ResourceEngine::Get().AddImageBuffer(OndrelTest::picture(width, height), m_id));
        EXPECT_TRUE(ResourceEngine::Get().AddImageByData(ResourceEngine::FormatRAW, cameraFile(width, height),
                                                         "camera.dng", m_camera));
    }
    ~StoredNoise()
    {
        ResourceEngine::Get().RemoveResource(m_id);
        ResourceEngine::Get().RemoveResource(m_camera);
    }
    StoredNoise(const StoredNoise&) = delete;
    StoredNoise& operator=(const StoredNoise&) = delete;

    // The picture, and the node behind it as number 2.
    Graph graphOf(const Case& node) const
    {
        Graph graph;
        NodeRecord& source = graph.nodes[1];
        source.id = 1;
        source.type = "essentials/image";
        source.name = "Source";
        source.values = {{"image", QVariant::fromValue(m_id)}};
        NodeRecord& record = graph.nodes[2];
        record.id = 2;
        record.type = QString("essentials/") + node.file;
        record.name = "Node";
        record.values = valuesOf(node);
        const NodeType& type = OndrelTest::nodeType(node.file);
        const InputInfo* const input = type.input("image");
        if (!type.entry.variablePrefix.isEmpty())
            graph.connections = {{1, "image", 2, type.entry.variablePrefix + "0"}};
        else if (input && input->kind == "resource")
            record.values["image"] = QVariant::fromValue(QString(node.file) == "rawimage" ? m_camera : m_id);
        else if (input)
            graph.connections = {{1, "image", 2, "image"}};
        if (!type.entry.variablePrefix.isEmpty())
            record.values[type.entry.variablePrefix + "_order"] = "0";
        return graph;
    }

private:
    Ondrel::ResourceId m_id, m_camera;
};

bool hasPicture(const Case& node)
{
    return !OndrelTest::nodeType(node.file).outputs.empty();
}

Outcome evaluateOnWorker(const Graph& graph, ResultCache& cache, const int& word, const Progress& progress = {})
{
    return std::async(std::launch::async,
                      [&] {
                          const Target target{2, QString(), 1};
                          return evaluate(graph, OndrelTest::essentials(), target, cache, Ondrel::RunStatus{&word},
                                          progress);
                      })
        .get();
}

void cancel(int& word)
{
    *const_cast<volatile int*>(&word) = 1; // nodes and library read it without a lock
}

} // namespace

TEST(Cancelling, IsTriedOnEveryNode)
{
    std::set<QString> tried;
    for (const Case& node : kCases)
        tried.insert(QString("essentials/") + node.file);
    EXPECT_EQ(tried.size(), 22u);
    for (const NodeType* const type : OndrelTest::essentials().all())
        EXPECT_TRUE(tried.count(type->id)) << qPrintable(type->id);
}

TEST(Cancelling, NodeThatIsCancelledAtItsStartMakesNoPicture)
{
    const StoredNoise source(40, 30);
    for (const Case& node : kCases) {
        ResultCache cache(1 << 26);
        int word = 0;
        Progress progress;
        progress.begin = [&, last = hasPicture(node) ? 2 : 1](NodeId id) {
            if (id == NodeId(last))
                cancel(word);
        };
        const Outcome outcome = evaluateOnWorker(source.graphOf(node), cache, word, progress);
        EXPECT_FALSE(outcome.picture.image) << node.file;
        EXPECT_TRUE(outcome.cancelled) << node.file;
        EXPECT_TRUE(outcome.errors.isEmpty()) << node.file;
        const int never = 0;
        const Outcome again = evaluateOnWorker(source.graphOf(node), cache, never);
        EXPECT_TRUE(again.picture.image) << node.file;
    }
}

// Wherever it is stopped, what was half done is not kept for later.
TEST(Cancelling, LeavesNoHalfPictureBehind)
{
    const StoredNoise source(160, 120);
    for (const Case& node : kCases) {
        const Graph graph = source.graphOf(node);
        const int never = 0;
        ResultCache fresh(1 << 26);
        const auto begin = Clock::now();
        const Outcome expected = evaluateOnWorker(graph, fresh, never);
        const auto whole = Clock::now() - begin;
        ASSERT_TRUE(expected.picture.image) << node.file;
        for (const int part : {1, 4, 8}) {
            ResultCache cache(1 << 26);
            int word = 0;
            std::thread canceller([&] {
                std::this_thread::sleep_for(whole * part / 10);
                cancel(word);
            });
            evaluateOnWorker(graph, cache, word);
            canceller.join();
            const Outcome again = evaluateOnWorker(graph, cache, never);
            ASSERT_TRUE(again.picture.image) << node.file;
            EXPECT_TRUE(OndrelTest::same(*expected.picture.image, *again.picture.image)) << node.file << part;
        }
    }
}

// Of those that work for long. The bound is loose, so that a machine with other work keeps it; the work itself takes
// several times as long.
TEST(Cancelling, StopsLongWorkSoon)
{
    const StoredNoise source(3000, 2000);
    for (const Case& node : {Case{"median", {{"radius", "10"}}}, Case{"erodedilate", {{"radius", "10"}}}}) {
        ResultCache cache(1 << 26);
        int word = 0;
        Clock::time_point cancelled;
        Progress progress;
        std::thread canceller;
        progress.begin = [&](NodeId id) {
            if (id != 2)
                return;
            canceller = std::thread([&] {
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
                cancelled = Clock::now();
                cancel(word);
            });
        };
        const Outcome outcome = evaluateOnWorker(source.graphOf(node), cache, word, progress);
        const auto back = Clock::now();
        canceller.join();
        EXPECT_TRUE(outcome.cancelled) << node.file;
        EXPECT_LT(std::chrono::duration<double>(back - cancelled).count(), 3) << node.file;
    }
}
