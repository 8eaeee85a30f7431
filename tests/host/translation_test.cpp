// Every sentence of the core can be translated as a whole.

#include "marker.h"
#include "smallproject.h"
#include "testnodes.h"

#include <document.h>
#include <graph.h>
#include <imageimport.h>
#include <jsontext.h>
#include <pictureexport.h>
#include <project.h>
#include <values.h>

#include <gtest/gtest.h>

#include <QImage>
#include <QTemporaryDir>

namespace
{

class Translation : public testing::Test
{
protected:
    // A whole sentence, of which nothing stands outside of the marks.
    static void expectMarked(const QString& text)
    {
        EXPECT_TRUE(text.startsWith('<') && text.endsWith('>')) << qPrintable(text);
    }

    Host::ProjectReading read(const QByteArray& text)
    {
        return onWorker([&] { return readProject(text, folder.path(), nodes.types); });
    }

    static QByteArray replaced(QByteArray text, const char* what, const char* by)
    {
        EXPECT_TRUE(text.contains(what)) << what;
        return text.replace(what, by);
    }

    QTemporaryDir folder;
    TestNodes nodes;
    Host::Marker marker; // the last: kinds of nodes are no texts of the core
};

TEST_F(Translation, ReasonsAgainstConnections)
{
    Host::Graph graph;
    for (const char* const type : {"source", "add", "number", "elsewhere", "layers"}) {
        Host::NodeRecord record;
        record.id = graph.nodes.size() + 1;
        record.type = QString("test/") + type;
        record.name = type;
        graph.nodes[record.id] = record;
    }
    const auto why = [&](const Host::Connection& wire) { return whyNotConnect(graph, nodes.types, wire); };
    EXPECT_EQ(why({1, "image", 9, "image"}), "<One of the nodes does not exist.>");
    EXPECT_EQ(why({1, "image", 4, "image"}), "<The kind of \"elsewhere\" is not known here.>");
    EXPECT_EQ(why({1, "depth", 2, "image"}), "<\"source\" has no output \"depth\".>");
    EXPECT_EQ(why({1, "image", 2, "gone"}), "<\"add\" has no input \"gone\" to connect to.>");
    EXPECT_EQ(why({2, "image", 2, "image"}), "<\"add\" would depend on itself.>");
    EXPECT_EQ(why({3, "number", 2, "image"}),
              "<\"Image\" of \"add\" takes <an image>, and \"number\" gives <a number>.>");
    EXPECT_EQ(
        why({1, "image", 5, "layer" + QString(Host::kLongestOrder + 1, '1')}),
        "<\"layers\" takes no more connections: the text with their order would have more than 4096 characters.>");
}

TEST_F(Translation, ReasonsAgainstValues)
{
    Host::Document document(nodes.types);
    QVariant deep = true;
    for (std::size_t levels = 0; levels <= Host::kDeepestValue; levels += 2)
        deep = QVariantList{deep};
    const Host::NodeId id = document.addNode("test/all", {}, "A");
    EXPECT_EQ(document.setValue(id, "hidden", deep),
              "<The value for \"hidden\" of \"A\" is nested too deeply to be saved. The old one stays.>");
    EXPECT_EQ(document.setValue(77, "hidden", true), "<The node does not exist.>");
}

TEST_F(Translation, FaultsOfProjects)
{
    const QByteArray whole = replaced(smallProject(), "\"resources\": []",
                                      R"("resources": [{"id": "1", "kind": "image", "path": "/none.png"}])");
    const std::pair<const char*, const char*> faults[] = {
        {"\"version\": 1", "\"version\": 2"},
        {"\"version\": 1", "\"version\": 0"},
        {"ondrel-project", "other"},
        {"\"view\": {}", "\"view\": []"},
        {"\"view\": {}", "\"sound\": {}"},
        {"\"view\": {}", "\"view\": {}, \"sound\": {}"},
        {"\"view\": {}", "\"view\": {\"z\": 1e999}"},
        {"\"view\": {}", "\"view\": {}, \"view\": {}"},
        {"\"view\": {}", "\"view\": {"},
        {"\"view\": {}", "?"},
        {"{\"from\"", "5, {\"from\""},
        {"\"id\": \"1\", \"type\"", "\"id\": 1, \"type\""},
        {"\"id\": \"1\", \"type\"", "\"id\": \"-1\", \"type\""},
        {"\"id\": \"1\", \"type\"", "\"id\": \"2\", \"type\""},
        {"\"name\": \"A\"", "\"name\": \"B\""},
        {"[\"0\", \"0\"], \"bypassed\"", "[\"0\", \"x\"], \"bypassed\""},
        {"[\"0\", \"0\"], \"bypassed\"", "[\"0\"], \"bypassed\""},
        {"false", "null"},
        {"{\"amount\": \"3\"}", "{\"amount\": 3}"},
        {"{\"amount\": \"3\"}", "{\"amount\": {\"resource\": \"4\"}}"},
        {"{\"amount\": \"3\"}", "[]"},
        {"\"to\": \"2\"", "\"to\": \"3\""},
        {"\"to\": \"2\"", "\"to\": \"1\""},
        {"\"area\": [\"0\", ", "\"area\": ["},
        {"\"frames\": [", "\"frames\": {}, \"x\": ["},
        {"\"kind\": \"image\"", "\"kind\": \"film\""},
        {"\"kind\": \"image\"", "\"kind\": \"buffer\""},
        {"\"path\": \"/none.png\"", "\"path\": \"\\u0000\""},
        {"\"path\": \"/none.png\"", "\"path\": \"\", \"data\": \"!\""},
        {"\"kind\": \"image\"", "\"kind\": \"image\", \"id2\": 1"},
    };
    for (const auto& [what, by] : faults) {
        SCOPED_TRACE(by);
        const QString error = read(replaced(whole, what, by)).error;
        expectMarked(error);
        EXPECT_TRUE(error.startsWith("<Line ")) << qPrintable(error);
        EXPECT_TRUE(error.endsWith(">>")) << qPrintable(error);
    }
    expectMarked(read(QByteArray(65, '[') + QByteArray(65, ']')).error);
    expectMarked(onWorker([&] { return Host::loadProject(folder.filePath("nosuch"), nodes.types).error; }));
    expectMarked(onWorker([&] { return saveProject(Host::Project(), folder.filePath("no/such/folder")); }));
    QByteArray odd = replaced(whole, "\"amount\": \"3\"", "\"amount\": \"many\"");
    odd = replaced(replaced(odd, "\"input\": \"image\"", "\"input\": \"gone\""), "\"test/add\", \"name\": \"B\"",
                   "\"future/thing\", \"name\": \"B\"");
    const QStringList notes = read(odd).notes; // a kind, a picture, a value
    EXPECT_EQ(notes.size(), 3);
    for (const QString& note : notes)
        expectMarked(note);
    const QStringList wires = read(replaced(whole, "\"input\": \"image\"", "\"input\": \"gone\"")).notes;
    EXPECT_EQ(wires.size(), 2); // a picture, a wire
    for (const QString& note : wires)
        expectMarked(note);
}

TEST_F(Translation, NotesOfImportsAndErrorsOfExports)
{
    QImage grey(7, 5, QImage::Format_Grayscale8);
    grey.fill(100);
    const QString file = folder.filePath("100%1.png"); // a name that looks like a place for something
    ASSERT_TRUE(grey.save(file));
    EXPECT_EQ(onWorker([&] { return Host::importImage(file).note; }),
              "<\"100%1.png\" is grey and was made a colour picture.>");
    expectMarked(onWorker([&] { // a file is no folder
        return exportPicture(Ondrel::Image(1, 1), Host::FileFormat::Png, {}, file + "/a.png", {}).error;
    }));
}

} // namespace
