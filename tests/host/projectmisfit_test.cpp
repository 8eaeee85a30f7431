// Projects that say what the loaded kinds of nodes do not have, and large ones.

#include "testnodes.h"

#include <evaluation.h>
#include <project.h>
#include <resultcache.h>
#include <values.h>

#include <ondrel/core/color.h>
#include <ondrel/resources/resourceengine.h>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <random>

using Host::ProjectReading;
using Ondrel::ResourceId;

namespace
{

class MisfittingProject : public testing::Test
{
protected:
    ProjectReading read(const QByteArray& text)
    {
        return onWorker([&] { return readProject(text, "/", nodes.types); });
    }

    // As the writer would put it.
    static QByteArray laidOut(const std::string& text)
    {
        return QByteArray::fromStdString(nlohmann::ordered_json::parse(text).dump(2) + '\n');
    }

    // A project of one node of every field with one value, which stands in the fifth line.
    static QByteArray withValue(const char* field, const char* value)
    {
        return QByteArray("{\"format\": \"ondrel-project\", \"version\": 1,\n \"nodes\": [\n"
                          "  {\"id\": \"1\", \"type\": \"test/all\", \"name\": \"A\", \"position\": [\"0\", \"0\"],\n"
                          "   \"bypassed\": false, \"values\": {\n\"") +
               field + "\": " + value + "}}],\n \"connections\": [], \"frames\": [],\n" +
               " \"resources\": [{\"id\": \"1\", \"kind\": \"image\", \"path\": \"/none.png\"}], \"view\": {}}\n";
    }

    // Of sources 1 and 2 (the second a number), a sum 3 and one of an unknown kind 4.
    static std::string withWires(const std::string& wires)
    {
        std::string list;
        const char* const types[] = {"test/source", "test/number", "test/add", "future/thing"};
        for (int i = 0; i < 4; ++i)
            list += std::string(i == 0 ? "" : ",\n") + "{\"id\": \"" + std::to_string(i + 1) + "\", \"type\": \"" +
                    types[i] + "\", \"name\": \"N" + std::to_string(i + 1) +
                    "\", \"position\": [\"0\", \"0\"], \"bypassed\": false, \"values\": {}}";
        return "{\"format\": \"ondrel-project\", \"version\": 1, \"nodes\": [\n" + list + "],\n\"connections\": [\n" +
               wires + "], \"frames\": [], \"resources\": [], \"view\": {}}";
    }

    static std::string wire(const char* from, const char* output, const char* to, const char* input)
    {
        return std::string("{\"from\": \"") + from + "\", \"output\": \"" + output + "\", \"to\": \"" + to +
               "\", \"input\": \"" + input + "\"}";
    }

    QVariant usedValue(const Host::Project& project, const QString& field)
    {
        const Host::NodeRecord& record = project.graph.nodes.at(1);
        return completeValues(record, *nodes.types.find(record.type)).value(field);
    }

    TestNodes nodes;
};

struct FieldValue {
    const char* field;
    const char* value;
};

// Printed instead of its bytes when a test fails.
void PrintTo(const FieldValue& value, std::ostream* stream)
{
    *stream << value.field << " " << value.value;
}

class MisfittingValue : public MisfittingProject, public testing::WithParamInterface<FieldValue>
{
};

TEST_P(MisfittingValue, IsToldByItsPlaceAndKeptWhileTheDefaultIsUsed)
{
    const QString field = GetParam().field;
    const QByteArray text = withValue(GetParam().field, GetParam().value);
    const ProjectReading reading = read(text);
    ASSERT_TRUE(reading.project) << qPrintable(reading.error);
    ASSERT_FALSE(reading.notes.isEmpty());
    EXPECT_EQ(reading.notes.back(),
              QString("Line 5, column %1: \"%2\" of \"A\" holds no such value. It is kept, and the "
                      "default is used.")
                  .arg(field.size() + 5)
                  .arg(field));
    const auto kept = onWorker([&] { return writeProject(*reading.project, "/"); });
    EXPECT_EQ(nlohmann::json::parse(kept.toStdString())["nodes"], nlohmann::json::parse(text.toStdString())["nodes"]);
    const ProjectReading again = read(kept);
    ASSERT_TRUE(again.project);
    EXPECT_TRUE(onWorker([&] { return writeProject(*again.project, "/"); }) == kept);
    EXPECT_TRUE(
        Host::sameValue(usedValue(*reading.project, field), nodes.types.find("test/all")->defaults().value(field)));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, MisfittingValue,
    testing::Values(FieldValue{"slider", "\"five\""}, FieldValue{"slider", "\"\""}, FieldValue{"slider", "\"inf\""},
                    FieldValue{"slider", "true"}, FieldValue{"slider", "null"},
                    FieldValue{"slider", "{\"list\": [{\"point\": [\"0\", \"0\"]}]}"},
                    FieldValue{"slider", "{\"resource\": \"1\"}"}, FieldValue{"slider", "{\"double\": \"nan\"}"},
                    FieldValue{"range", "\"2..8\""}, FieldValue{"range", "{\"range\": [\"2\", \"b\"]}"},
                    FieldValue{"combo", "{\"int\": \"1\"}"}, FieldValue{"combo", "null"},
                    FieldValue{"color", "\"1,2,3,4\""}, FieldValue{"color", "{\"list\": []}"},
                    FieldValue{"profile", "\"00ff\""}, FieldValue{"profile", "{\"bytes\": \"00ff\"}"},
                    FieldValue{"resource", "{\"int\": \"1\"}"}, FieldValue{"resource", "\"photo.png\""},
                    FieldValue{"image", "\"anything\""}));

class FittingValue : public MisfittingProject, public testing::WithParamInterface<FieldValue>
{
};

TEST_P(FittingValue, IsUsedWithoutAWord)
{
    ProjectReading reading = read(withValue(GetParam().field, GetParam().value));
    ASSERT_TRUE(reading.project) << qPrintable(reading.error);
    EXPECT_EQ(reading.notes, QStringList("The picture \"/none.png\" cannot be read."));
    const QVariant used = usedValue(*reading.project, GetParam().field);
    EXPECT_TRUE(Host::sameValue(used, reading.project->graph.nodes.at(1).values.value(GetParam().field)));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FittingValue,
    testing::Values(FieldValue{"slider", "\"-7.25\""}, FieldValue{"slider", "\"1e9\""}, // the slider has limits
                    FieldValue{"slider", "{\"int\": \"3\"}"}, FieldValue{"slider", "{\"double\": \"0.5\"}"},
                    FieldValue{"range", "{\"range\": [\"2\", \"8.5\"]}"}, FieldValue{"combo", "\"two\""},
                    FieldValue{"combo", "\"three\""}, // which an item may have added
                    FieldValue{"color", "{\"color\": \"1,2,3,4\"}"}, FieldValue{"profile", "{\"bytes\": \"\"}"},
                    FieldValue{"resource", "{\"resource\": \"1\"}"}, FieldValue{"hidden", "{\"map\": {}}"},
                    FieldValue{"elsewhere", "{\"point\": [\"1\", \"2\"]}"}));

TEST_F(MisfittingProject, AnOrderThatIsTooLongIsToldByItsPlaceAndKept)
{
    const auto projectWith = [](const QString& order) {
        return withValue("layer_order", ('"' + order + '"').toUtf8()).replace("test/all", "test/layers");
    };
    const QString longest = QString("0,1,").repeated(Host::kLongestOrder / 4);
    const ProjectReading fitting = read(projectWith(longest));
    ASSERT_TRUE(fitting.project) << qPrintable(fitting.error);
    EXPECT_EQ(fitting.notes, QStringList("The picture \"/none.png\" cannot be read."));
    EXPECT_EQ(usedValue(*fitting.project, "layer_order"), longest);
    const ProjectReading reading = read(projectWith(longest + '2'));
    ASSERT_TRUE(reading.project) << qPrintable(reading.error);
    EXPECT_EQ(reading.notes.back(), "Line 5, column 16: \"layer_order\" of \"A\" holds no such value. It is kept, and "
                                    "the default is used.");
    EXPECT_EQ(usedValue(*reading.project, "layer_order"), "");
    const auto kept = onWorker([&] { return writeProject(*reading.project, "/"); });
    EXPECT_TRUE(kept.contains(('"' + longest + "2\"").toUtf8()));
}

TEST_F(MisfittingProject, ConnectionsThatDoNotFitAreToldByTheirPlacesAndKept)
{
    const std::string wires = wire("1", "depth", "3", "image") + ",\n" + wire("1", "image", "3", "amount") + ",\n  " +
                              wire("1", "image", "3", "gone") + ",\n" + wire("1", "thing", "4", "other") + ",\n" +
                              wire("4", "what", "3", "ever");
    const std::string text = withWires(wires);
    const ProjectReading reading = read(QByteArray::fromStdString(text));
    ASSERT_TRUE(reading.project) << qPrintable(reading.error);
    EXPECT_EQ(
        reading.notes,
        (QStringList{"\"N4\": there is no plug-in for nodes of the kind \"future/thing\".",
                     "Line 7, column 1: \"N1\" has no output \"depth\". The connection is kept unused.",
                     "Line 8, column 1: \"N3\" has no input \"amount\" to connect to. The connection is kept unused.",
                     "Line 9, column 3: \"N3\" has no input \"gone\" to connect to. The connection is kept unused."}));
    EXPECT_TRUE(onWorker([&] { return writeProject(*reading.project, "/"); }) == laidOut(text));
}

TEST_F(MisfittingProject, NothingFlowsThroughAConnectionOfAnotherType)
{
    const std::string text = withWires(wire("2", "number", "3", "image"));
    const ProjectReading reading = read(QByteArray::fromStdString(text));
    ASSERT_TRUE(reading.project) << qPrintable(reading.error);
    EXPECT_EQ(reading.notes.back(),
              "Line 7, column 1: \"Image\" of \"N3\" takes an image, and \"N2\" gives a number. The "
              "connection is kept unused.");
    EXPECT_TRUE(onWorker([&] { return writeProject(*reading.project, "/"); }) == laidOut(text));
    const Host::Graph& graph = reading.project->graph;
    EXPECT_FALSE(fits(graph, nodes.types, graph.connections.front()));
    Host::ResultCache cache(std::size_t(1) << 20);
    const int before = nodes.evaluations();
    const Host::Outcome outcome = onWorker([&] {
        return evaluate(graph, nodes.types, {3, QString(), 1}, cache, Ondrel::RunStatus());
    });
    EXPECT_EQ(nodes.evaluations() - before, 1); // the sum alone
    ASSERT_TRUE(outcome.picture.image);
    EXPECT_EQ(outcome.picture.image->data[0], 1);
}

TEST_F(MisfittingProject, OnlyTheFirstOfManyAreToldByTheirPlaces)
{
    std::string wires = wire("1", "depth", "3", "in0");
    for (int i = 1; i < 25; ++i)
        wires += ",\n" + wire("1", "depth", "3", ("in" + std::to_string(i)).c_str());
    const ProjectReading reading = read(QByteArray::fromStdString(withWires(wires)));
    ASSERT_EQ(reading.notes.size(), 12); // and the unknown kind
    EXPECT_TRUE(reading.notes[10].startsWith("Line 16, column 1: ")) << qPrintable(reading.notes[10]);
    EXPECT_EQ(reading.notes[11], "There are 15 more of this kind.");
    EXPECT_EQ(reading.project->graph.connections.size(), 25u);
}

TEST_F(MisfittingProject, AChainOfThousandsIsReadAtOnceAndItsLoopFound)
{
    constexpr int kCount = 20000;
    std::string list, wires;
    for (int i = 1; i <= kCount; ++i) {
        const std::string id = std::to_string(i), next = std::to_string(i + 1);
        list += (i == 1 ? "" : ",\n") + ("{\"id\": \"" + id + "\", \"type\": \"test/add\", \"name\": \"N" + id +
                                         "\", \"position\": [\"0\", \"0\"], \"bypassed\": false, \"values\": {}}");
        if (i < kCount)
            wires += wire(id.c_str(), "image", next.c_str(), "image") + ",\n";
    }
    const auto project = [&](const std::string& last) {
        return QByteArray::fromStdString("{\"format\": \"ondrel-project\", \"version\": 1, \"nodes\": [\n" + list +
                                         "],\n\"connections\": [\n" + wires + last +
                                         "], \"frames\": [], \"resources\": [], \"view\": {}}");
    };
    const ProjectReading whole = read(project(wire("1", "image", "1", "more")));
    EXPECT_EQ(whole.error, "Line 40002, column 1: With this connection a node would depend on itself.");
    const ProjectReading loop = read(project(wire("20000", "image", "1", "image")));
    EXPECT_EQ(loop.error, "Line 40002, column 1: With this connection a node would depend on itself.");
    const ProjectReading chain = read(project(wire("1", "image", "20000", "gone")));
    ASSERT_TRUE(chain.project) << qPrintable(chain.error);
    EXPECT_EQ(chain.notes, QStringList("Line 40002, column 1: \"N20000\" has no input \"gone\" to connect to. The "
                                       "connection is kept unused."));
}

// Whatever two pieces of a project are exchanged, dropped or doubled, it is read or refused with a place.
TEST_F(MisfittingProject, PiecesInWrongPlacesBreakNothing)
{
    const std::string text = withWires(wire("1", "image", "3", "image")) + ' ';
    std::vector<std::string> pieces{""};
    for (const char c : text) {
        const bool isWord = std::isalnum(static_cast<unsigned char>(c)) || c == '/' || c == '-';
        if (!isWord || pieces.back().empty() || !std::isalnum(static_cast<unsigned char>(pieces.back().back())))
            pieces.emplace_back();
        pieces.back() += c;
    }
    std::mt19937 random(3);
    int read = 0, refused = 0;
    for (int i = 0; i < 4000; ++i) {
        std::vector<std::string> damaged = pieces;
        for (auto times = 1 + random() % 3; times > 0; --times)
            damaged[random() % damaged.size()] = random() % 4 == 0 ? "" : pieces[random() % pieces.size()];
        std::string whole;
        for (const std::string& piece : damaged)
            whole += piece;
        const ProjectReading reading = this->read(QByteArray::fromStdString(whole));
        ASSERT_NE(reading.project.has_value(), !reading.error.isEmpty());
        ASSERT_TRUE(reading.project || reading.error.startsWith("Line ")) << whole;
        ++(reading.project ? read : refused);
        if (reading.project) {
            const QByteArray kept = onWorker([&] { return writeProject(*reading.project, "/"); });
            const ProjectReading again = this->read(kept);
            ASSERT_TRUE(again.project) << qPrintable(again.error) << kept.constData();
            ASSERT_TRUE(again.project->graph == reading.project->graph);
        }
    }
    EXPECT_GT(read, 100);
    EXPECT_GT(refused, 100);
}

} // namespace
