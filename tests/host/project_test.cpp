// The text of project files.

#include "smallproject.h"
#include "testnodes.h"

#include <project.h>
#include <values.h>

#include <ondrel/core/color.h>
#include <ondrel/resources/resourceengine.h>
#include <ondrel/widgets/precisionrangeslider.h>

#include <tests/support/testimages.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <limits>

using Host::NodeId;
using Host::Project;
using Host::ProjectReading;
using Ondrel::ResourceId;

namespace
{

class ProjectText : public testing::Test
{
protected:
    ProjectText() { QDir().mkpath(folder.path()); }

    ProjectReading read(const QByteArray& text)
    {
        return onWorker([&] { return readProject(text, folder.path(), nodes.types); });
    }

    QByteArray write(const Project& project)
    {
        return onWorker([&] { return writeProject(project, folder.path()); });
    }

    // What was written is read without complaint, and written again as the same bytes.
    Project roundTrip(const Project& project)
    {
        const QByteArray text = write(project);
        ProjectReading reading = read(text);
        EXPECT_EQ(reading.error, "") << text.constData();
        if (!reading.project)
            return {};
        EXPECT_EQ(write(*reading.project), text);
        return *reading.project;
    }

    static Host::NodeRecord& add(Project& project, const QString& type, const QVariantMap& values = {})
    {
        const NodeId id = project.graph.nodes.size() + 1;
        Host::NodeRecord& record = project.graph.nodes[id];
        record.id = id;
        record.type = type;
        record.name = QString("Node %1").arg(id);
        record.values = values;
        return record;
    }

    // A small PNG file.
    QString makePicture(const QString& name)
    {
        const QString file = folder.filePath(name);
        QDir().mkpath(QFileInfo(file).path());
        EXPECT_TRUE(ResourceEngine::ExportPNG(file, OndrelTest::randomImage(9, 5, 1), {}, nullptr, nullptr));
        return file;
    }

    static ResourceId store(const QString& file)
    {
        ResourceId id;
        EXPECT_TRUE(ResourceEngine::Get().AddImage(file.toStdString(), id));
        return id;
    }

    static ResourceId resourceOf(const Project& project, NodeId id, const QString& field)
    {
        return project.graph.nodes.at(id).values.value(field).value<ResourceId>();
    }

    QTemporaryDir folder;
    TestNodes nodes;
};

TEST_F(ProjectText, KeepsEveryFormOfValue)
{
    using Range = Ondrel::PrecisionRangeSlider::RangeValue;
    const QVariantMap values = {
        {"a", QVariant()},
        {"b", true},
        {"c", QString::fromUtf8("\"quotes\" \xc3\xa4\xe2\x82\xac\n")},
        {"d", std::numeric_limits<qlonglong>::min()},
        {"e", std::numeric_limits<qulonglong>::max()},
        {"f", 0.1},
        {"g", 5e-324},
        {"h", -std::numeric_limits<double>::infinity()},
        {"i", QVariant::fromValue(Ondrel::Color("65535,0,1,2"))},
        {"j", QVariant::fromValue(Range{"20.000000001", "80"})},
        {"k", QByteArray("\x00\xff\x80", 3)},
        {"l", QPointF(1.0 / 3, -0.0)},
        {"m", QVariantList{1.5, QVariantList{true}, QVariantMap{{"x", QString("y")}}}},
        {"layer_order", QString("3,1,2")},
    };
    Project project;
    add(project, "test/all", values);
    const Project again = roundTrip(project);
    ASSERT_EQ(again.graph.nodes.size(), 1u);
    const QVariantMap& read = again.graph.nodes.at(1).values;
    EXPECT_EQ(read.keys(), values.keys());
    for (auto value = values.begin(); value != values.end(); ++value)
        EXPECT_TRUE(Host::sameValue(read.value(value.key()), value.value())) << qPrintable(value.key());
}

TEST_F(ProjectText, KeepsNodesWiresFramesAndView)
{
    Project project;
    add(project, "test/source").position = {0.1, -1e300};
    Host::NodeRecord& second = add(project, "test/add");
    second.bypassed = true;
    second.name = "Brighter \\ \"more\"";
    project.graph.nodes[18446744073709551615u] = second;
    project.graph.nodes[18446744073709551615u].id = 18446744073709551615u;
    project.graph.nodes[18446744073709551615u].name = "Last";
    project.graph.connections = {{1, "image", 18446744073709551615u, "image"}, {1, "image", 2, "image"}};
    project.graph.frames[3] = {3, "Sky", {1, 2, 3.5, 4}};
    project.view = {{"zoom", 0.25}, {"big", 18446744073709551615u}, {"docks", {1, 2}}};
    const Project again = roundTrip(project);
    EXPECT_TRUE(again.graph == project.graph);
    EXPECT_EQ(again.view, project.view);
}

TEST_F(ProjectText, NamesPicturesBelowItByARelativePath)
{
    const ResourceId inside = store(makePicture("photos/a.png"));
    QTemporaryDir elsewhere;
    const QString outside = elsewhere.filePath("b.png");
    ASSERT_TRUE(QFile::copy(folder.filePath("photos/a.png"), outside));
    Project project;
    add(project, "test/photo", {{"image", QVariant::fromValue(inside)}});
    add(project, "test/photo", {{"image", QVariant::fromValue(store(outside))}});
    add(project, "test/photo", {{"image", QVariant::fromValue(inside)}});
    const QByteArray text = write(project);
    EXPECT_TRUE(text.contains("\"path\": \"photos/a.png\""));
    EXPECT_TRUE(text.contains("\"path\": \"" + outside.toUtf8() + '"'));
    const Project again = roundTrip(project);
    EXPECT_NE(resourceOf(again, 1, "image"), inside);
    EXPECT_EQ(resourceOf(again, 1, "image"), resourceOf(again, 3, "image")); // one picture, one handle
    Ondrel::ImageInfo info;
    EXPECT_TRUE(ResourceEngine::Get().CopyImageInfo(resourceOf(again, 2, "image"), info));
    EXPECT_EQ(info.width, 9u);
}

TEST_F(ProjectText, EmbedsPicturesOnRequest)
{
    const QString file = makePicture("a.png");
    const ResourceId id = store(file);
    ResourceId buffer;
    const Ondrel::Image pixels = OndrelTest::randomImage(4, 3, 2);
    ASSERT_TRUE(ResourceEngine::Get().AddImageBuffer(pixels, buffer));
    Project project;
    add(project, "test/photo", {{"image", QVariant::fromValue(id)}});
    add(project, "test/photo", {{"image", QVariantList{QVariant::fromValue(buffer)}}});
    project.graph.embedded = {id.id};
    const QByteArray text = write(project);
    ASSERT_TRUE(QFile::remove(file));
    const Project again = roundTrip(project);
    const ResourceId first = resourceOf(again, 1, "image");
    std::shared_ptr<const Ondrel::Image> image;
    ASSERT_TRUE(ResourceEngine::Get().CopyImage(first, image, Ondrel::EmbeddedColorProfile, {}));
    EXPECT_EQ(image->width, 9u);
    EXPECT_EQ(again.graph.embedded.count(first.id), 1u);
    const auto second = again.graph.nodes.at(2).values.value("image").toList().value(0).value<ResourceId>();
    std::shared_ptr<const Ondrel::Image> copy;
    ASSERT_TRUE(ResourceEngine::Get().CopyImage(second, copy, Ondrel::EmbeddedColorProfile, {}));
    EXPECT_TRUE(OndrelTest::samePixels(*copy, pixels));
}

TEST_F(ProjectText, TellsOfEmbeddedBytesThatAreNoPictureAndKeepsThem)
{
    for (const QByteArray kind : {"image", "raw", "buffer"}) {
        Project project;
        add(project, "test/photo", {{"image", QVariant::fromValue(store(makePicture("a.png")))}});
        project.graph.embedded = {resourceOf(project, 1, "image").id};
        QByteArray text = write(project);
        const int begin = text.indexOf("\"data\": \"") + 9, end = text.indexOf('"', begin);
        text.replace(begin, end - begin, QByteArray("no picture at all").toBase64());
        text.replace("\"kind\": \"image\"", "\"kind\": \"" + kind + '"');
        const ProjectReading reading = read(text);
        ASSERT_TRUE(reading.project) << qPrintable(reading.error);
        EXPECT_EQ(reading.notes, QStringList("The picture \"" + folder.filePath("a.png") + "\" cannot be read."));
        EXPECT_TRUE(write(*reading.project) == text) << kind.constData();
    }
}

TEST_F(ProjectText, KeepsThePathOfAPictureThatIsNotThere)
{
    const QString file = makePicture("a.png");
    Project project;
    add(project, "test/photo", {{"image", QVariant::fromValue(store(file))}});
    const QByteArray text = write(project);
    ASSERT_TRUE(QFile::remove(file));
    const ProjectReading reading = read(text);
    ASSERT_TRUE(reading.project);
    ASSERT_EQ(reading.notes.size(), 1);
    EXPECT_TRUE(reading.notes[0].contains("a.png"));
    EXPECT_EQ(write(*reading.project), text);
}

TEST_F(ProjectText, KeepsNodesOfUnknownKindsAsTheyAre)
{
    Project project;
    add(project, "test/source");
    add(project, "test/add");
    project.graph.connections = {{1, "image", 2, "image"}};
    QByteArray text = write(project);
    text.replace("test/add", "future/thing");
    text.replace("\"name\": \"Node 2\"", "\"name\": \"Node 2\",\n      \"serial\": 12345678901234567890");
    const int values = text.lastIndexOf("\"values\": {}");
    text.replace(values, 12,
                 "\"values\": {\n        \"z\": {\n          \"quark\": 1\n        },\n"
                 "        \"a\": {\n          \"int\": \"5\"\n        }\n      }");
    ProjectReading reading = read(text);
    ASSERT_TRUE(reading.project) << qPrintable(reading.error);
    EXPECT_EQ(reading.notes.size(), 1);
    EXPECT_EQ(reading.project->graph.connections.size(), 1u);
    EXPECT_EQ(reading.project->graph.nodes.at(2).values.value("a").toLongLong(), 5);
    EXPECT_EQ(write(*reading.project), text);
    reading.project->graph.nodes[2].position = {7, 8}; // it may be moved all the same
    const QByteArray moved = write(*reading.project);
    EXPECT_NE(moved, text);
    EXPECT_TRUE(moved.contains("12345678901234567890") && moved.contains("quark"));
}

struct Wrong {
    const char* find;
    const char* replace;
    const char* message;
};

// Printed instead of its bytes when a test fails.
void PrintTo(const Wrong& wrong, std::ostream* stream)
{
    *stream << wrong.replace;
}

class WrongProject : public ProjectText, public testing::WithParamInterface<Wrong>
{
};

TEST_P(WrongProject, IsRefusedWithLineAndColumn)
{
    const QByteArray whole = smallProject();
    ASSERT_TRUE(read(whole).project) << qPrintable(read(whole).error);
    QByteArray text = whole;
    ASSERT_EQ(text.count(GetParam().find), 1) << GetParam().find;
    text.replace(GetParam().find, GetParam().replace);
    const ProjectReading reading = read(text);
    EXPECT_FALSE(reading.project);
    EXPECT_TRUE(reading.error.contains(GetParam().message)) << qPrintable(reading.error);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, WrongProject,
    testing::Values(
        Wrong{"\"version\": 1", "\"version\": 2", "Line 1, column 41: The project was saved by a newer program"},
        Wrong{"\"version\": 1", "\"version\": 18446744073709551615", "Line 1, column 41: The project was saved by"},
        Wrong{"\"version\": 1", "\"version\": \"1\"", "Line 1, column 41: The version is a whole number"},
        Wrong{"ondrel-project", "photo", "Line 1, column 12: This is no project."},
        Wrong{"\"resources\": [],", "\"resources\": [,", "Line 7, column 16: This is no JSON."},
        Wrong{" \"view\": {}}\n", "", "The text ends too early."},
        Wrong{"\"resources\": [],", "\"resources\": {},", "Line 7, column 15: \"resources\" is a list"},
        Wrong{"\"resources\": [],", "", "Line 1, column 1: There is no \"resources\" here."},
        Wrong{"{\"amount\": \"3\"}", "{\"amount\": 3}", "Line 3, column 112: No value is written like this."},
        Wrong{"{\"amount\": \"3\"}", "{\"amount\": {\"resource\": \"9\"}}", "Line 3, column 112: There is no resource"},
        Wrong{"{\"id\": \"2\"", "{\"id\": 2", "Line 4, column 10: \"id\" is a text in quotes."},
        Wrong{"{\"id\": \"2\"", "{\"id\": \"1\"", "Line 4, column 10: There is another node with this id."},
        Wrong{"\"name\": \"B\"", "\"name\": \"A\"", "Line 4, column 43: The name is empty, or there is another"},
        Wrong{"\"name\": \"B\"", "\"name\": \"B\", \"name\": \"C\"", "Line 4, column 48: There are two values named"},
        Wrong{"\"to\": \"2\"", "\"to\": \"7\"", "Line 5, column 57: There is no node with this id."},
        Wrong{"\"to\": \"2\"", "\"to\": \"1\"", "Line 5, column 18: With this connection a node would depend"},
        Wrong{"\"view\": {}", "\"view\": 5", "Line 8, column 10: \"view\" is an object"},
        Wrong{"\"area\": [\"0\", \"0\", \"1\", \"1\"]", "\"area\": [\"0\"]",
              "Line 6, column 47: \"area\" has 4 numbers."},
        Wrong{"\"area\": [\"0\", ", "\"area\": [\"inf\", ", "Line 6, column 48: This is a number in quotes."},
        Wrong{"\"view\": {}", "\"view\": {}, \"sound\": 1", "Line 8, column 23: \"sound\" is unknown."},
        Wrong{"\"view\": {}", "\"view\": {\"z\": 1e999}", "Line 8, column 16: This number is too large."}));

TEST_F(ProjectText, ThatIsCutShortAnywhereOrDamagedIsAnError)
{
    Project project;
    add(project, "test/all", {{"hidden", QVariantList{1.5, QByteArray("abc")}}});
    project.graph.embedded = {store(makePicture("a.png")).id};
    project.graph.nodes[1].values["resource"] = QVariant::fromValue(ResourceId(*project.graph.embedded.begin()));
    const QByteArray text = write(project);
    for (int length = 0; length < text.size() - 2; ++length)
        ASSERT_FALSE(read(text.left(length)).error.isEmpty()) << length;
    for (int at = 0; at < text.size(); ++at) { // nothing breaks, whatever stands there
        for (const char c : {'"', '{', ']', '\\', '0', '\0', '\xff'}) {
            QByteArray damaged = text;
            damaged[at] = c;
            const ProjectReading reading = read(damaged);
            ASSERT_NE(reading.project.has_value(), !reading.error.isEmpty());
            for (const ResourceId id :
                 reading.project ? resourcesOf(reading.project->graph) : std::vector<ResourceId>())
                ResourceEngine::Get().RemoveResource(id);
        }
    }
}

TEST_F(ProjectText, ThatIsNestedTooDeeplyIsAnError)
{
    for (const int depth : {65, 1000000}) {
        const ProjectReading reading = read(QByteArray(depth, '[') + QByteArray(depth, ']'));
        EXPECT_EQ(reading.error, "Line 1, column 65: The values are nested too deeply.");
    }
    for (const int pairs : {33, 200000}) {
        const ProjectReading reading =
            read(QByteArray("{\"a\":[").repeated(pairs) + '1' + QByteArray("]}").repeated(pairs));
        EXPECT_EQ(reading.error, "Line 1, column 193: The values are nested too deeply.");
    }
    const ProjectReading reading = read(QByteArray("{\"a\":[").repeated(200000) + "1e999");
    EXPECT_EQ(reading.error, "Line 1, column 1200001: This number is too large.");
}

// Were each element or name looked for among all before it, this would take minutes.
TEST_F(ProjectText, OfAnyNumberOfObjectsAndNamesIsReadAtOnce)
{
    constexpr int kCount = 300000;
    const QByteArray list = '[' + QByteArray("{},").repeated(kCount) + "{}]";
    EXPECT_EQ(read(list).error, "Line 1, column 1: An object in braces belongs here.");
    EXPECT_EQ(read(list.left(list.size() - 1)).error, "Line 1, column 900004: The text ends too early.");
    QByteArray members;
    for (int i = 0; i < kCount; ++i)
        members += "\"m" + QByteArray::number(i) + "\": true,";
    const QByteArray object = '{' + members + "\"last\": null}";
    EXPECT_EQ(read('{' + members + "\"m5\": 1}").error,
              QString("Line 1, column %1: There are two values named \"m5\".").arg(members.size() + 2));
    QByteArray text = smallProject();
    text.replace("\"view\": {}", "\"view\": {\"list\": " + list + ", \"object\": " + object + '}');
    text.replace("{\"amount\": \"3\"}", "{\"amount\": \"3\", \"any\": {\"map\": " + object + "}}");
    text.replace("\"test/add\", \"name\": \"B\", \"position\": [\"0\", \"0\"], \"bypassed\": false, \"values\": {}",
                 "\"future/thing\", \"name\": \"B\", \"position\": [\"0\", \"0\"], \"bypassed\": false, \"values\": " +
                     object);
    const ProjectReading reading = read(text);
    ASSERT_TRUE(reading.project) << qPrintable(reading.error);
    EXPECT_EQ(reading.project->view["list"].size(), std::size_t(kCount) + 1);
    EXPECT_EQ(reading.project->view["object"].size(), std::size_t(kCount) + 1);
    EXPECT_EQ(reading.project->graph.nodes.at(1).values["any"].toMap().size(), kCount + 1);
    EXPECT_EQ(reading.project->graph.nodes.at(2).values.size(), kCount + 1);
    const QByteArray kept = write(*reading.project);
    const ProjectReading again = read(kept);
    ASSERT_TRUE(again.project) << qPrintable(again.error);
    EXPECT_TRUE(again.project->graph == reading.project->graph);
    EXPECT_TRUE(again.project->view == reading.project->view);
    EXPECT_TRUE(write(*again.project) == kept);
}

// Lists and maps in turn, one within another.
QVariant nested(std::size_t lists, const QVariant& inner)
{
    QVariant value = inner;
    for (std::size_t i = 0; i < lists; ++i)
        value = i % 2 == 0 ? QVariant(QVariantList{value}) : QVariant(QVariantMap{{"a", value}});
    return value;
}

TEST_F(ProjectText, KeepsValuesAsDeepAsTheyMayBe)
{
    constexpr std::size_t kLists = Host::kDeepestValue / 2; // of two levels each
    const QVariant deepest[] = {nested(kLists, true),
                                nested(kLists, "text"),
                                nested(kLists, QVariant()),
                                nested(kLists - 1, 1.5),
                                nested(kLists - 1, QPointF(1, 2)),
                                nested(kLists - 1, QVariant::fromValue(Ondrel::ResourceId()))};
    for (const QVariant& value : deepest) {
        EXPECT_FALSE(Host::isTooDeep(value));
        Project project;
        add(project, "test/all", {{"hidden", value}});
        add(project, "missing/kind", {{"any", value}});
        const Project again = roundTrip(project);
        ASSERT_EQ(again.graph.nodes.size(), 2u);
        EXPECT_TRUE(Host::sameValue(again.graph.nodes.at(1).values["hidden"], value));
        EXPECT_TRUE(Host::sameValue(again.graph.nodes.at(2).values["any"], value));
    }
    const QVariant tooDeep[] = {nested(kLists + 1, QVariant()), nested(kLists, 1.5), nested(kLists, QPointF(1, 2)),
                                nested(kLists, QVariant::fromValue(Ondrel::Color("1,2,3,4"))), nested(1000, true)};
    for (const QVariant& value : tooDeep)
        EXPECT_TRUE(Host::isTooDeep(value));
    Project project;
    add(project, "test/all", {{"hidden", tooDeep[0]}});
    EXPECT_TRUE(read(write(project)).error.endsWith("The values are nested too deeply."));
}

TEST_F(ProjectText, TypedValuesMayBeAsDeepAsSavedOnes)
{
    const auto typed = [](std::size_t lists, const QByteArray& inner) {
        QVariant value = "before";
        const QByteArray text =
            QByteArray("{\"list\": [").repeated(int(lists)) + inner + QByteArray("]}").repeated(int(lists));
        const bool isRead = Host::valueFromText(text, "hidden", {}, value);
        EXPECT_EQ(isRead, value != "before");
        return value;
    };
    constexpr std::size_t kLists = Host::kDeepestValue / 2;
    EXPECT_EQ(typed(kLists, "true").toList().size(), 1);
    EXPECT_EQ(typed(kLists, "").toList().size(), 1);
    EXPECT_EQ(typed(kLists, "{\"int\": \"1\"}"), "before");
    EXPECT_EQ(typed(kLists + 1, "true"), "before");
}

TEST_F(ProjectText, AMarkOfUnicodeAtTheStartIsNoDamage)
{
    Project project;
    add(project, "test/add");
    const QByteArray text = write(project);
    const ProjectReading reading = read("\xef\xbb\xbf" + text);
    ASSERT_TRUE(reading.project) << qPrintable(reading.error);
    EXPECT_EQ(write(*reading.project), text);
    EXPECT_EQ(read("\xef\xbb\xbf[2, 1e999]").error, "Line 1, column 8: This number is too large.");
}

} // namespace
