// One project, the same bytes: from the editor, in batch, with one thread and with sixteen.

// oneTBB has a member named emit, which Qt makes a macro of.
#pragma push_macro("emit")
#undef emit
#include <tbb/global_control.h>
#include <tbb/task_arena.h>
#pragma pop_macro("emit")

#include "application.h"
#include "document.h"
#include "editorfixture.h"
#include "exportcommands.h"
#include "imagepane.h"
#include "pictureexport.h"
#include "project.h"
#include "projectfiles.h"
#include "scene.h"
#include "values.h"

#include <tests/support/dngfile.h>

#include <ondrel/core/color.h>

#include <QCoreApplication>
#include <QFile>
#include <QPointF>
#include <QProcess>

using namespace Host;

namespace
{

struct Setting {
    QString type;
    std::vector<std::pair<QString, QString>> values; // by field, as they are typed
};

// Every kind that has a picture at both ends, with values that make it work.
const std::vector<Setting>& filters()
{
    static const std::vector<Setting> all = {
        {"colourprofile", {}},
        {"crop", {{"left", "31"}, {"top", "20"}, {"width", "181"}, {"height", "103"}}},
        {"curves", {{"curves", R"({"list": [{"list": [{"point": ["0", "0"]}, {"point": ["30000", "20000"]},
                                 {"point": ["65535", "65535"]}]}, {"list": []}, {"list": []}, {"list": []}]})"}}},
        {"erodedilate", {{"operation", "Open"}, {"radius", "3"}}},
        {"gaussianblur", {{"radiusx", "7.5"}, {"radiusy", "2"}, {"edge", "Transparent"}}},
        {"levels", {{"gamma", "1.7"}, {"redblack", "4"}, {"bluegain", "130"}}},
        {"median", {{"radius", "2"}}},
        {"mirror", {{"axis", "Both"}}},
        {"paint", {}}, // given a stroke below
        {"perspective", {{"corners", R"({"list": [{"point": ["0.1", "0"]}, {"point": ["0.9", "0.05"]},
                                      {"point": ["1", "1"]}, {"point": ["0", "0.95"]}]})"}}},
        {"resize", {{"unit", "Pixels"}, {"pixelwidth", "317"}, {"pixelheight", "201"}, {"aspect", "Ignore"}}},
        {"rotate", {{"angle", "12.5"}}},
        {"softproof", {{"gamut", "Show"}}},
        {"splitchannels", {}},
        {"translate", {{"x", "-13"}, {"y", "40"}}},
        {"unsharpmask", {{"radius", "2.5"}, {"amount", "180"}}},
    };
    return all;
}

class SameBytes : public Editor
{
protected:
    SameBytes()
    {
        nameApplication(); // as the programs do
        QImage picture(240, 180, QImage::Format_RGB888);
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixelColor(x, y, QColor(x % 256, (x * y / 97) % 256, (x * 7 + y * 13) % 256));
        }
        EXPECT_TRUE(picture.save(path("picture.png")));
    }

    ~SameBytes() override
    {
        QCoreApplication::setOrganizationName(m_organization);
        QCoreApplication::setApplicationName(m_name);
        QCoreApplication::setApplicationVersion(m_version);
    }

    NodeId add(const QString& type, const QString& name)
    {
        Document& document = window.document();
        const NodeId node = document.addNode("essentials/" + type, QPointF(300 * double(graph().nodes.size()), 0));
        EXPECT_NE(node, 0u) << qPrintable(type);
        EXPECT_TRUE(document.renameNode(node, name));
        return node;
    }

    void connectNodes(NodeId from, const QString& output, NodeId to, const QString& input)
    {
        const QString reason = window.document().addConnection({from, output, to, input});
        EXPECT_TRUE(reason.isEmpty()) << qPrintable(reason);
    }

    void set(NodeId node, const QString& field, const QString& text)
    {
        const NodeType& type = *nodeTypes().find(graph().node(node)->type);
        const InputInfo* const input = type.input(field);
        QVariant value;
        ASSERT_TRUE(input && valueFromText(text, input->kind, input->choices, value)) << qPrintable(field + text);
        window.document().setValue(node, field, value);
    }

    // An output node behind it, of a format that changes from one to the next.
    void addOutput(NodeId from, const QString& output, const QString& name)
    {
        const NodeId node = add("output", name);
        const char* const formats[] = {"PNG", "TIFF", "JPEG"};
        set(node, "format", formats[m_outputs.size() % 3]);
        connectNodes(from, output, node, "image");
        m_outputs.append(name);
    }

    QVariantMap outputValues(const NodeRecord& node) const
    {
        return completeValues(node, *nodeTypes().find(node.type));
    }

    static QByteArray bytesOf(const QString& file)
    {
        QFile reader(file);
        EXPECT_TRUE(reader.open(QIODevice::ReadOnly)) << qPrintable(file);
        return reader.readAll();
    }

    QStringList outputNames()
    {
        QStringList names;
        for (const auto& [node, record] : window.document().graph().nodes) {
            if (record.type == "essentials/output")
                names.append(record.name);
        }
        return names;
    }

    QString fileOf(const QString& folder, const QString& output)
    {
        const NodeRecord& node = *graph().nodeByName(output);
        return path(folder + "/" + output + "." + suffixOf(formatOf(outputValues(node))));
    }

    void exportInEditor(const QString& to)
    {
        for (const QString& name : outputNames()) {
            play("show \"" + name + "\"");
            window.exportCommands().exportPicture(fileOf(to, name), outputValues(*graph().nodeByName(name)));
            settle();
        }
    }

    // On one core, if so wanted.
    void renderInBatch(const QString& project, const QString& to, const QStringList& options = {}, bool oneCore = false)
    {
        QStringList command{ONDREL_RENDER,       project, "--plugins",
                            ONDREL_TEST_PLUGINS, "--out", path(to + "/{output}.{ext}")};
        command += options;
        if (oneCore)
            command = QStringList{"taskset", "-c", "0"} + command;
        QProcess process;
        process.start(command.takeFirst(), command);
        ASSERT_TRUE(process.waitForFinished(120000));
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
    }

    // Read, evaluated and written by so many threads, however few cores there are.
    void renderInArena(const QString& project, const QString& to, int threads)
    {
        const auto render = [&] {
            const ProjectReading reading = loadProject(project, nodeTypes());
            ASSERT_TRUE(reading.project) << qPrintable(reading.error);
            for (const auto& [id, node] : reading.project->graph.nodes) {
                if (node.type != "essentials/output")
                    continue;
                ResultCache cache(1 << 26);
                const Outcome outcome = evaluate(reading.project->graph, nodeTypes(), {id, QString(), 1}, cache, {});
                ASSERT_TRUE(outcome.picture.image) << qPrintable(node.name);
                EXPECT_TRUE(outcome.errors.isEmpty()) << qPrintable(outcome.errors.begin().value());
                const QVariantMap values = outputValues(node);
                const ExportResult written = Host::exportPicture(*outcome.picture.image, formatOf(values), values,
                                                                 fileOf(to, node.name), [](int) { return true; });
                EXPECT_TRUE(written.error.isEmpty()) << qPrintable(written.error);
            }
        };
        std::async(std::launch::async, [&] {
            const tbb::global_control control(tbb::global_control::max_allowed_parallelism, std::size_t(threads));
            tbb::task_arena arena(threads);
            arena.execute(render);
        }).get();
    }

    void expectSameEverywhere(const QString& project)
    {
        const QStringList names = outputNames();
        ASSERT_FALSE(names.isEmpty());
        exportInEditor("editor");
        renderInBatch(project, "batch");
        renderInBatch(project, "onecore", {}, true);
        renderInBatch(project, "jobs", {"--jobs", "16"});
        renderInArena(project, "one", 1);
        renderInArena(project, "sixteen", 16);
        for (const QString& name : names) {
            const QByteArray expected = bytesOf(fileOf("editor", name));
            EXPECT_GT(expected.size(), 100) << qPrintable(name);
            for (const char* const folder : {"batch", "onecore", "jobs", "one", "sixteen"})
                EXPECT_TRUE(bytesOf(fileOf(folder, name)) == expected) << folder << ' ' << qPrintable(name);
        }
    }

private:
    const QString m_organization = QCoreApplication::organizationName(), m_name = QCoreApplication::applicationName(),
                  m_version = QCoreApplication::applicationVersion();
    QStringList m_outputs;
};

OndrelTest::DngFile cameraFile()
{
    OndrelTest::DngFile file;
    file.width = 96;
    file.height = 64;
    file.matrix = {3.24, -1.54, -0.5, -0.97, 1.88, 0.04, 0.06, -0.2, 1.06};
    file.neutral = {0.5, 1, 0.8};
    for (std::size_t i = 0; i < std::size_t(file.width) * file.height; ++i)
        file.samples.push_back(std::uint16_t((i * 7919 + i * i * 31) % 30000));
    return file;
}

} // namespace

// At a quarter of its size, which its crop decides.
TEST_F(SameBytes, OfTheDemonstration)
{
    ASSERT_TRUE(QFile::copy(ONDREL_DEMO_PROJECT, path("demo.ondrel")));
    QImage photograph(720, 450, QImage::Format_RGB888);
    for (int y = 0; y < photograph.height(); ++y) {
        uchar* const row = photograph.scanLine(y);
        for (int x = 0; x < photograph.width() * 3; ++x)
            row[x] = uchar((x * 5 + y * 3 + (x * y) / 256) % 256);
    }
    ASSERT_TRUE(photograph.save(path("photograph.jpg"), nullptr, 90));
    window.document().undoStack().setClean(); // nobody is asked whether to save what is there
    play("open " + path("demo.ondrel") +
         "\nset Crop left 40\nset Crop top 25\nset Crop width 640\nset Crop height 400\n"
         "set Glow radiusx 6\nset Glow radiusy 6\nsave " +
         path("small.ondrel"));
    expectSameEverywhere(path("small.ondrel"));
}

TEST_F(SameBytes, OfEachNode)
{
    QFile camera(path("camera.dng"));
    ASSERT_TRUE(camera.open(QIODevice::WriteOnly));
    const std::vector<unsigned char> bytes = cameraFile().bytes();
    camera.write(reinterpret_cast<const char*>(bytes.data()), qint64(bytes.size()));
    camera.close();
    play("import " + path("picture.png") + " 0 0\nimport " + camera.fileName() + " 0 100\nexpect nodes 3");
    ASSERT_EQ(graph().nodeByName("camera")->type, "essentials/rawimage");
    const NodeId picture = id("picture");
    std::set<QString> seen = {"image", "rawimage", "output"};
    for (const Setting& filter : filters()) {
        const NodeId node = add(filter.type, filter.type);
        connectNodes(picture, "image", node, "image");
        for (const auto& [field, text] : filter.values)
            set(node, field, text);
        addOutput(node, filter.type == "splitchannels" ? "green" : "image", "Of " + filter.type);
        seen.insert(filter.type);
    }
    const QVariantMap stroke = {{"size", 30.0},
                                {"hardness", 0.3},
                                {"color", QVariant::fromValue(Ondrel::Color(60000, 10000, 0, 40000))},
                                {"points", QVariantList{QPointF(20, 30), QPointF(200, 120)}}};
    window.document().setValue(id("paint"), "strokes", QVariantList{stroke});
    const NodeId gradient = add("gradient", "gradient");
    set(gradient, "shape", "Radial");
    set(gradient, "mix", "Lab");
    set(gradient, "width", "333");
    set(gradient, "height", "222");
    addOutput(gradient, "image", "Of gradient");
    const NodeId merge = add("merge", "merge");
    connectNodes(picture, "image", merge, "layer0");
    connectNodes(gradient, "image", merge, "layer1");
    addOutput(merge, "image", "Of merge");
    addOutput(id("camera"), "image", "Of camera");
    connectNodes(picture, "image", add("histogram", "histogram"), "image"); // has no picture of its own
    seen.insert({"gradient", "merge", "histogram"});
    for (const NodeType* const type : nodeTypes().all())
        EXPECT_TRUE(seen.count(type->id.section('/', 1))) << qPrintable(type->id);
    play("save " + path("each.ondrel"));
    expectSameEverywhere(path("each.ondrel"));
}

// The window of the fixture has been told of its picture before.
TEST_F(SameBytes, MendedFilesAreToldInTheStatusLine)
{
    QImage grey(30, 20, QImage::Format_Grayscale8);
    grey.fill(77);
    ASSERT_TRUE(grey.save(path("scan.png")));
    play("import " + path("scan.png") + " 0 0\nexpect nodes 2");
    EXPECT_EQ(status(), "\"scan.png\" is grey and was made a colour picture.");
    play("show scan\nwait");
    EXPECT_EQ(window.imagePane().picture().image->data[1], 77 * 257);
}
