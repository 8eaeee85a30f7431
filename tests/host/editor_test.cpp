#include "editorfixture.h"

#include "canvascommands.h"
#include "clipboardgraph.h"
#include "connectiondialog.h"
#include "exportcommands.h"
#include "exportdialog.h"
#include "exporter.h"
#include "imagepane.h"
#include "importer.h"
#include "modehost.h"
#include "pictures.h"
#include "projectfiles.h"
#include "recentmenu.h"
#include "scene.h"
#include "sceneview.h"
#include "values.h"
#include "worker.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/resources/resourceengine.h>

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QTest>
#include <QUrl>

using namespace Host;

TEST_F(Editor, ImportAddsANodeThatTheViewShows)
{
    EXPECT_EQ(graph().nodes.size(), 1u);
    EXPECT_EQ(window.scene().primary(), id("photo"));
    ASSERT_TRUE(window.imagePane().picture().image);
    EXPECT_EQ(window.imagePane().picture().fullSize, QSize(90, 60));
    EXPECT_TRUE(equalPictures(window.imagePane().picture(), freshPicture(id("photo"))));
}

TEST_F(Editor, FileThatIsNoImageIsNamedInTheStatusLine)
{
    QFile file(path("text.png"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a picture");
    file.close();
    play("import " + file.fileName() + " 0 0");
    EXPECT_EQ(graph().nodes.size(), 1u);
    EXPECT_TRUE(status().contains("text.png")) << qPrintable(status());
}

TEST_F(Editor, WireIsDrawnFromAnOutputAndTakenOffAnInput)
{
    addThree();
    play("wire photo image Blur image");
    ASSERT_EQ(graph().connections.size(), 1u);
    EXPECT_EQ(graph().connections[0], (Connection{id("photo"), "image", id("Blur"), "image"}));
    play("unwire Blur image\nexpect wires 0\nkey Ctrl+Z\nexpect wires 1\nkey Ctrl+Z\nexpect wires 0\n"
         "key Ctrl+Shift+Z\nexpect wires 1");
}

TEST_F(Editor, WireIsFoundWhereItIsDrawn)
{
    addThree();
    play("wire photo image Blur image");
    const auto center = [](const Anchor* anchor) { return anchor->sceneBoundingRect().center(); };
    const QPointF from = center(window.scene().item(id("photo"))->outputAnchorOfFieldByName("image"));
    const QPointF to = center(window.scene().item(id("Blur"))->inputAnchorOfFieldByName("image"));
    EXPECT_EQ(window.scene().connectionAt((from + to) / 2), graph().connections[0]);
    EXPECT_EQ(window.scene().connectionAt((from + to) / 2 + QPointF(0, 300)), std::nullopt);
}

TEST_F(Editor, EndOfAWireIsCarriedToAnotherInputInOneStep)
{
    addThree();
    play("wire photo image Blur image\nreplug Blur image Levels image\nexpect wires 1");
    EXPECT_EQ(graph().connections[0], (Connection{id("photo"), "image", id("Levels"), "image"}));
    play("key Ctrl+Z\nexpect wires 1");
    EXPECT_EQ(graph().connections[0], (Connection{id("photo"), "image", id("Blur"), "image"}));
}

TEST_F(Editor, SecondWireIntoAnInputReplacesTheFirst)
{
    addChain();
    play("wire photo image Levels image\nexpect wires 2");
    EXPECT_EQ(graph().into(id("Levels"), "image")->from, id("photo"));
    play("key Ctrl+Z");
    EXPECT_EQ(graph().into(id("Levels"), "image")->from, id("Blur"));
}

TEST_F(Editor, WireThatWouldCloseACycleIsRefusedWithAReason)
{
    addChain();
    play("wire Levels image Blur image\nexpect wires 2");
    const QString reason = whyNotConnect(graph(), nodeTypes(), {id("Levels"), "image", id("Blur"), "image"});
    EXPECT_FALSE(reason.isEmpty());
    EXPECT_EQ(status(), reason);
    EXPECT_EQ(graph().into(id("Blur"), "image")->from, id("photo"));
}

TEST_F(Editor, TabOpensTheSearchAndReturnAddsTheMarkedNode)
{
    inSearch([](NodeSearch& search) {
        auto* const line = search.findChild<QLineEdit*>();
        QTest::keyClicks(line, "gauss");
        EXPECT_EQ(offered(search).value(0), "essentials/gaussianblur");
        QTest::keyClick(line, Qt::Key_Return);
    });
    window.sceneView().setFocus();
    QTest::keyClick(&window.sceneView(), Qt::Key_Tab);
    EXPECT_TRUE(QTest::qWaitFor([&] { return graph().nodes.size() == 2; }));
    EXPECT_NE(id("Gaussian Blur"), 0u);
    play("key Ctrl+Z\nexpect nodes 1");
}

TEST_F(Editor, DoubleClickOpensTheSearchThereAndEscapeAddsNothing)
{
    bool opened = false;
    inSearch([&](NodeSearch& search) {
        opened = true;
        QTest::keyClick(search.findChild<QLineEdit*>(), Qt::Key_Escape);
    });
    QTest::mouseDClick(window.sceneView().viewport(), Qt::LeftButton, Qt::NoModifier, QPoint(20, 20));
    EXPECT_TRUE(QTest::qWaitFor([&] { return opened; }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !window.findChild<NodeSearch*>(); }));
    EXPECT_EQ(graph().nodes.size(), 1u);
}

TEST_F(Editor, SearchFindsByCategoryAndKeyword)
{
    QStringList found;
    for (const NodeType* type : findTypes(nodeTypes(), "keystone"))
        found.append(type->id);
    EXPECT_EQ(found, QStringList("essentials/perspective"));
    found.clear();
    for (const NodeType* type : findTypes(nodeTypes(), "Geometry"))
        found.append(type->id);
    EXPECT_TRUE(found.contains("essentials/crop"));
    EXPECT_FALSE(found.contains("essentials/gaussianblur"));
}

TEST_F(Editor, DroppedWireOpensTheSearchAndConnectsWhatIsChosen)
{
    play("type levels\ndrop photo image 300 300");
    EXPECT_TRUE(QTest::qWaitFor([&] { return graph().nodes.size() == 2; }));
    ASSERT_EQ(graph().connections.size(), 1u);
    EXPECT_EQ(graph().connections[0].from, id("photo"));
    EXPECT_EQ(graph().connections[0].to, id("Levels"));
    play("key Ctrl+Z\nexpect nodes 1\nexpect wires 0\nkey Ctrl+Shift+Z\nexpect nodes 2\nexpect wires 1");
}

TEST_F(Editor, SearchForAWireLeavesOutTypesWithoutSuchAnInput)
{
    const NodeSearch forOutput(
        nodeTypes(), [](const NodeType& type) { return takes(type, "image"); }, &window);
    const QStringList ids = offered(forOutput);
    EXPECT_TRUE(ids.contains("essentials/merge"));
    EXPECT_TRUE(ids.contains("essentials/histogram"));
    EXPECT_FALSE(ids.contains("essentials/image"));
    const NodeSearch forInput(
        nodeTypes(), [](const NodeType& type) { return gives(type, "image"); }, &window);
    EXPECT_FALSE(offered(forInput).contains("essentials/histogram"));
    EXPECT_TRUE(offered(forInput).contains("essentials/image"));
}

TEST_F(Editor, CopyAndPasteKeepValuesAndInnerWires)
{
    addChain();
    play("set Blur radiusx 12.5\nselect Blur Levels\nkey Ctrl+C\nkey Ctrl+V\nexpect nodes 5\nexpect wires 3");
    EXPECT_EQ(value("Blur 2", "radiusx"), value("Blur", "radiusx"));
    EXPECT_EQ(graph().into(id("Levels 2"), "image")->from, id("Blur 2"));
    EXPECT_EQ(graph().into(id("Blur 2"), "image"), nullptr);
    EXPECT_EQ(window.scene().selectedNodes(), (std::vector<NodeId>{id("Blur 2"), id("Levels 2")}));
    EXPECT_TRUE(graphFromText(QApplication::clipboard()->text().toUtf8()));
    play("key Ctrl+Z\nexpect nodes 3\nexpect wires 2");
}

TEST_F(Editor, CutIsOneStepAndPasteBringsBack)
{
    addChain();
    play("select Blur Levels\nkey Ctrl+X\nexpect nodes 1\nexpect wires 0\nkey Ctrl+V\nexpect nodes 3\nexpect wires 1\n"
         "key Ctrl+Z\nkey Ctrl+Z\nexpect nodes 3\nexpect wires 2");
}

TEST_F(Editor, DuplicateLeavesTheClipboardAlone)
{
    addChain();
    QApplication::clipboard()->setText("mine");
    play("select Blur Levels\nkey Ctrl+D\nexpect nodes 5\nexpect wires 3\nkey Ctrl+Z\nexpect nodes 3");
    EXPECT_EQ(QApplication::clipboard()->text(), "mine");
}

TEST_F(Editor, PasteOfOtherTextIsRefused)
{
    QApplication::clipboard()->setText("{\"ondrel nodes\": 1, \"nodes\": [7]}");
    play("key Ctrl+V\nexpect nodes 1");
    EXPECT_FALSE(status().isEmpty());
}

TEST_F(Editor, PasteOfHostileTextIsHarmless)
{
    addChain();
    play("select Blur Levels\nkey Ctrl+C");
    QString text = QApplication::clipboard()->text();
    const std::optional<Graph> copied = graphFromText(text.toUtf8());
    ASSERT_TRUE(copied);
    ASSERT_EQ(copied->connections.size(), 1u);
    EXPECT_TRUE(graphFromText(text.toUtf8()) && !graphFromText(text.replace("\"Blur\"", "\"\"").toUtf8()));
    text = QApplication::clipboard()->text();
    Graph cyclic = *copied;
    const Connection there = cyclic.connections[0];
    cyclic.connections.push_back({there.to, "image", there.from, "image"});
    cyclic.connections.push_back(there);
    QApplication::clipboard()->setText(QString::fromUtf8(graphToText(cyclic)));
    play("key Ctrl+V\nexpect nodes 5\nexpect wires 3");
    text.replace("\"bypassed\": false", "\"bypassed\": 3");
    QApplication::clipboard()->setText(text);
    play("key Ctrl+V\nexpect nodes 7\nexpect wires 4");
}

TEST_F(Editor, PicturesOfAStrangersTextAreLeftOutWhenItsNodesArePasted)
{
    using Ondrel::ResourceId;
    Graph graph;
    NodeRecord& record = graph.nodes[1];
    record.id = 1;
    record.type = "missing/kind";
    record.name = "Stranger";
    const QVariant picture = QVariant::fromValue(ResourceId(7));
    record.values = {{"image", picture}, {"list", QVariantList{picture}}, {"map", QVariantMap{{"a", picture}}}};
    record.unread.insert("json", "{\"more\": [1, 2]}");
    const QByteArray text = graphToText(graph);
    ASSERT_TRUE(graphFromText(text));
    EXPECT_TRUE(*graphFromText(text) == graph);
    const auto namesNoPicture = [](const QByteArray& changed) {
        const std::optional<Graph> read = graphFromText(changed);
        ASSERT_TRUE(read);
        const NodeRecord& other = read->nodes.begin()->second;
        EXPECT_TRUE(resourcesOf(*read).empty());
        EXPECT_EQ(other.values.size(), 3);
        EXPECT_TRUE(other.unread.isEmpty());
    };
    const int at = text.indexOf("\"seal\": \"") + 9;
    ASSERT_GT(at, 9);
    QByteArray forged = text;
    forged[at] = forged[at] == '0' ? '1' : '0';
    namesNoPicture(forged);
    namesNoPicture(QByteArray(text).replace("Stranger", "Strangle"));
    namesNoPicture(QByteArray(text).replace("\"seal\"", "\"other\""));
    namesNoPicture(QByteArray(text).replace("\"resource\": \"7\"", "\"resource\": \"8\""));
}

TEST_F(Editor, PasteOfDeepTextIsHarmless)
{
    Graph graph;
    graph.nodes[1].id = 1;
    graph.nodes[1].type = graph.nodes[1].name = "missing/kind";
    graph.nodes[1].values.insert("deep", "here");
    const QByteArray text = graphToText(graph);
    const auto deep = [&text](int levels) {
        return QByteArray(text).replace("\"here\"", QByteArray("{\"list\": [").repeated(levels) + "true" +
                                                        QByteArray("]}").repeated(levels));
    };
    EXPECT_TRUE(graphFromText(deep(kDeepestValue / 2)));
    EXPECT_FALSE(graphFromText(deep(kDeepestValue / 2 + 1)));
    EXPECT_FALSE(graphFromText(deep(100000)));
    QVariant value;
    EXPECT_FALSE(valueFromText(deep(100000), "hidden", {}, value));
}

TEST_F(Editor, PasteOfLongTextIsQuick)
{
    Graph graph;
    graph.nodes[1].id = 1;
    graph.nodes[1].type = graph.nodes[1].name = "missing/kind";
    const QByteArray text = graphToText(graph);
    const QByteArray many = QByteArray("{},").repeated(300000);
    EXPECT_TRUE(graphFromText(QByteArray(text).replace("\"embedded\": []", "\"embedded\": [" + many + "{}]")));
    EXPECT_FALSE(graphFromText(QByteArray(text).replace("\"frames\": []", "\"frames\": [" + many + "{}]")));
    EXPECT_TRUE(graphFromText("  " + QByteArray(text).replace(" \"ondrel", "\n\t\"ondrel")));
    EXPECT_FALSE(graphFromText(QByteArray(text).replace("{\n \"ondrel", "{\n \"first\": 1, \"ondrel")));
    for (const char* const other : {"", "{", " {\n", "{\"ondrel nodes", "[\"ondrel nodes\"]"})
        EXPECT_FALSE(graphFromText(other)) << other;
}

TEST_F(Editor, ValuesAsDeepAsTheyMayBeAreCopied)
{
    QVariant deepest = true;
    for (std::size_t levels = 0; levels < kDeepestValue; levels += 2)
        deepest = QVariantList{deepest};
    play("add essentials/paint 260 0 Paint");
    EXPECT_EQ(window.document().setValue(id("Paint"), "strokes", deepest), "");
    EXPECT_TRUE(sameValue(value("Paint", "strokes"), deepest));
    play("select Paint\nkey Ctrl+C\nkey Ctrl+V");
    EXPECT_TRUE(sameValue(value("Paint 2", "strokes"), deepest));
}

TEST_F(Editor, ValueOfAnItemThatIsTooDeepIsRefusedWithAWord)
{
    QVariant deep = true;
    for (std::size_t levels = 0; levels <= kDeepestValue; levels += 2)
        deep = QVariantList{deep};
    play("add essentials/paint 260 0 Paint");
    window.document().setValue(id("Paint"), "strokes", QVariantList{true});
    PreviewNode& paint = *window.scene().item(id("Paint"));
    const int index = paint.inputIndexOfFieldByName("strokes");
    paint.setInputValue(static_cast<unsigned long>(index), deep);
    window.scene().nodeUpdated(&paint);
    const QString refusal =
        "The value for \"strokes\" of \"Paint\" is nested too deeply to be saved. The old one stays.";
    EXPECT_EQ(status(), refusal);
    EXPECT_EQ(value("Paint", "strokes"), QVariantList{true});
    EXPECT_EQ(paint.inputValue(index), QVariantList{true});
}

TEST_F(Editor, CopiedNodesOfUnknownKindsKeepWhatWasNotUnderstood)
{
    Graph graph;
    NodeRecord record;
    record.id = 1;
    record.type = record.name = "missing/kind";
    record.unread.insert("text", "{\"more\": [1, 2]}");
    graph.nodes[1] = record;
    const std::optional<Graph> copied = graphFromText(graphToText(graph));
    ASSERT_TRUE(copied);
    EXPECT_EQ(copied->nodes.begin()->second.unread, record.unread);
}

TEST_F(Editor, RefusedReplugLeavesTheWire)
{
    addChain();
    play("add essentials/mirror 780 0 Mirror\nkey A\nwire Levels image Mirror image\nexpect wires 3");
    const std::vector<Connection> before = graph().connections;
    const int steps = window.document().undoStack().index();
    play("replug Mirror image Blur image"); // would close a cycle
    EXPECT_EQ(graph().connections, before);
    EXPECT_EQ(window.document().undoStack().index(), steps);
    EXPECT_FALSE(status().isEmpty());
}

TEST_F(Editor, BypassedMergeHandsItsFirstLayerThrough)
{
    play("add essentials/gaussianblur 260 0 Blur\nadd essentials/merge 520 0 Merge\nkey A");
    play("wire photo image Blur image");
    PreviewNode& merge = *window.scene().item(id("Merge"));
    const QString first = merge.inputNameOfFieldByIndex(0).isEmpty() ? QString() : [&] {
        for (unsigned long i = 0; i < merge.inputFieldCount(); ++i) {
            if (merge.inputNameOfFieldByIndex(i).startsWith("layer") && merge.inputAnchorOfFieldByIndex(i))
                return merge.inputNameOfFieldByIndex(i);
        }
        return QString();
    }();
    ASSERT_FALSE(first.isEmpty());
    play(QString("wire Blur image Merge %1\nselect Merge\nkey D\nshow Merge\nwait").arg(first));
    ASSERT_TRUE(window.imagePane().picture().image);
    EXPECT_TRUE(equalPictures(freshPicture(id("Merge")), freshPicture(id("Blur"))));
    EXPECT_EQ(fullSize(graph(), nodeTypes(), {id("Merge"), QString(), 1}), QSize(90, 60));
}

TEST_F(Editor, ConnectionForWhichTheOrderHasNoRoomIsRefusedWithAWord)
{
    play("add essentials/merge 260 0 Merge");
    QStringList ids; // long ones: each is an input on the canvas
    for (int i = 0; i < 195; ++i)
        ids.append(QString::number(10'000'000'000'000'000'000u + unsigned(i)));
    Graph large = graph();
    large.nodes[id("Merge")].values["layer_order"] = ids.join(',');
    window.document().load(large);
    EXPECT_EQ(window.document().addConnection({id("photo"), "image", id("Merge"), "layer0"}), "");
    const QString order = value("Merge", "layer_order").toString();
    EXPECT_EQ(order, ids.join(',') + ",0");
    EXPECT_EQ(order.size(), kLongestOrder);
    ConnectionDialog dialog(window.scene(), id("Merge"), std::nullopt, &window);
    const auto* const list = dialog.findChild<QListWidget*>();
    for (int row = 0; row < list->count(); ++row) {
        if (list->item(row)->data(Qt::UserRole).value<Connection>().input == "layer1")
            list->item(row)->setCheckState(Qt::Checked);
    }
    EXPECT_TRUE(status().startsWith("\"Merge\" takes no more connections: ")) << qPrintable(status());
    EXPECT_EQ(graph().connections.size(), 1u);
    EXPECT_EQ(value("Merge", "layer_order"), order);
}

TEST_F(Editor, OrderThatIsTooLongIsKeptWhateverTheCanvasDoes)
{
    play("add essentials/merge 260 0 Merge");
    const NodeId merge = id("Merge");
    const QString tooLong = QString("0,1,").repeated(kLongestOrder / 4) + '2';
    Graph odd = graph();
    odd.nodes[merge].values["layer_order"] = tooLong;
    odd.connections = {{id("photo"), "image", merge, "layer0"}};
    window.document().load(odd);
    const auto kept = [&] { return graph().node(merge)->values.value("layer_order"); };
    window.document().setValue(merge, "opacity0", "50");
    window.scene().nodeUpdated(window.scene().item(merge));
    EXPECT_EQ(kept(), tooLong);
    EXPECT_NE(window.document().addConnection({id("photo"), "image", merge, "layer7"}), "");
    window.document().removeConnection(odd.connections[0]);
    EXPECT_EQ(kept(), tooLong);
}

// A project may have connections that no order names; the canvas gives them inputs, and an order with them.
TEST_F(Editor, OrderOfTheCanvasIsNotTakenOnceItIsTooLong)
{
    play("add essentials/merge 260 0 Merge");
    const NodeId merge = id("Merge");
    QStringList ids;
    for (int i = 0; i < 195; ++i)
        ids.append(QString::number(10'000'000'000'000'000'000u + unsigned(i)));
    Graph large = graph();
    large.nodes[merge].values["layer_order"] = ids.join(',');
    for (const char* const input : {"layer0", "layer1"})
        large.connections.push_back({id("photo"), "image", merge, input});
    window.document().load(large);
    window.scene().nodeUpdated(window.scene().item(merge));
    EXPECT_EQ(value("Merge", "layer_order"), ids.join(','));
    window.document().removeConnection(large.connections[1]);
    EXPECT_EQ(value("Merge", "layer_order"), ids.join(',') + ",0");
}

TEST_F(Editor, DeleteTakesTheWiresAndUndoBringsThemBack)
{
    addChain();
    play("select Blur\nkey Delete\nexpect nodes 2\nexpect wires 0\nkey Ctrl+Z\nexpect nodes 3\nexpect wires 2");
    EXPECT_TRUE(window.scene().item(id("Blur"))->inputAnchorOfFieldByName("image")->connected());
}

TEST_F(Editor, VariableNodeGoesThroughUndoAndRedo)
{
    addThree();
    play("add essentials/merge 780 0 Merge\nkey A\n"
         "wire photo image Merge layer0\nexpect wires 1\nwire Blur image Merge layer1\nexpect wires 2");
    const Graph full = graph();
    play("key Ctrl+Z\nexpect wires 1\nkey Ctrl+Z\nexpect wires 0\nkey Ctrl+Shift+Z\nkey Ctrl+Shift+Z\nexpect wires 2");
    EXPECT_TRUE(graph() == full);
    for (const Connection& connection : graph().connections) {
        const Anchor* const input = window.scene().item(id("Merge"))->inputAnchorOfFieldByName(connection.input);
        ASSERT_TRUE(input) << qPrintable(connection.input);
        EXPECT_TRUE(input->connected());
    }
    play("unwire Merge layer0\nexpect wires 1\nkey Ctrl+Z\nexpect wires 2");
    EXPECT_TRUE(graph() == full);
}

TEST_F(Editor, BypassHandsThePictureThrough)
{
    addChain();
    play("show Blur\nwait\nselect Blur");
    EXPECT_FALSE(equalPictures(window.imagePane().picture(), freshPicture(id("photo"))));
    play("key D\nwait");
    EXPECT_TRUE(graph().node(id("Blur"))->bypassed);
    EXPECT_TRUE(equalPictures(window.imagePane().picture(), freshPicture(id("photo"))));
    EXPECT_LT(window.scene().item(id("Blur"))->opacity(), 1);
    play("key Ctrl+Z\nwait");
    EXPECT_FALSE(graph().node(id("Blur"))->bypassed);
    EXPECT_FALSE(equalPictures(window.imagePane().picture(), freshPicture(id("photo"))));
}

TEST_F(Editor, GroupMovesTogetherInOneStep)
{
    addChain();
    const QPointF blur = graph().nodeByName("Blur")->position, levels = graph().nodeByName("Levels")->position;
    play("select Blur Levels\nmove Blur 60 40");
    const QPointF moved = graph().nodeByName("Blur")->position - blur;
    EXPECT_GT(moved.x(), 30);
    EXPECT_GT(moved.y(), 20);
    EXPECT_EQ(graph().nodeByName("Levels")->position - levels, moved);
    play("key Ctrl+Z");
    EXPECT_EQ(graph().nodeByName("Blur")->position, blur);
    EXPECT_EQ(graph().nodeByName("Levels")->position, levels);
    EXPECT_EQ(window.scene().item(id("Levels"))->pos(), levels);
}

TEST_F(Editor, ProjectComesBackAsItWasSaved)
{
    addChain();
    play("set Blur radiusx 3.5\nshow Levels\nsave " + path("a.ondrel"));
    EXPECT_TRUE(window.document().undoStack().isClean());
    const Graph before = graph();
    play("set Blur radiusx 7\nopen " + path("a.ondrel") + "\nexpect nodes 3\nexpect wires 2");
    EXPECT_EQ(value("Blur", "radiusx").toDouble(), 3.5);
    EXPECT_EQ(graph().connections, before.connections);
    EXPECT_EQ(window.scene().primary(), id("Levels"));
    settle();
    EXPECT_TRUE(equalPictures(window.imagePane().picture(), freshPicture(id("Levels"))));
    play("save " + path("b.ondrel"));
    QFile a(path("a.ondrel")), b(path("b.ondrel"));
    ASSERT_TRUE(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly));
    EXPECT_EQ(a.readAll(), b.readAll());
}

TEST_F(Editor, RecentProjectsAreListedTheNewestFirst)
{
    play("save " + path("one.ondrel") + "\nsave " + path("two.ondrel") + "\nopen " + path("one.ondrel"));
    RecentMenu menu(&window);
    ASSERT_GE(menu.actions().size(), 2);
    EXPECT_EQ(menu.actions()[0]->text(), "one.ondrel");
    EXPECT_EQ(menu.actions()[1]->text(), "two.ondrel");
    QString chosen;
    QObject::connect(&menu, &RecentMenu::chosen, [&](const QString& file) { chosen = file; });
    menu.actions()[1]->trigger();
    EXPECT_EQ(chosen, path("two.ondrel"));
}

TEST_F(Editor, DamagedProjectLeavesTheDocument)
{
    QFile file(path("bad.ondrel"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{\"format\": \"ondrel-project\",\n \"version\": ");
    file.close();
    play("open " + file.fileName() + "\nexpect nodes 1");
    EXPECT_TRUE(status().contains("Line 2")) << qPrintable(status());
    EXPECT_TRUE(window.isEnabled());
}

TEST_F(Editor, ErrorStandsOnTheNodeUntilItIsGone)
{
    play("add essentials/perspective 260 0 View\nkey A\nwire photo image View image\nshow View");
    const QVariant corner = QPointF(0.5, 0.5);
    window.document().setValue(id("View"), "corners", QVariantList{corner, corner, corner, corner});
    settle();
    EXPECT_TRUE(window.scene().item(id("View"))->toolTip().contains("corners"));
    EXPECT_TRUE(window.scene().item(id("photo"))->toolTip().isEmpty());
    play("key Ctrl+Z\nwait");
    EXPECT_TRUE(window.scene().item(id("View"))->toolTip().isEmpty());
}

TEST_F(Editor, NewestValueWins)
{
    addChain();
    play("show Levels");
    for (int radius = 1; radius <= 40; ++radius) {
        window.document().setValue(id("Blur"), "radiusx", radius * 0.5, 1);
        QApplication::processEvents();
    }
    settle();
    EXPECT_EQ(value("Blur", "radiusx").toDouble(), 20);
    EXPECT_TRUE(equalPictures(window.imagePane().picture(), freshPicture(id("Levels"))));
    play("key Ctrl+Z"); // one gesture
    EXPECT_EQ(value("Blur", "radiusx").toDouble(), 5);
}

TEST_F(Editor, CropModeShowsTheWholePictureAndItsDragIsOneStep)
{
    play("add essentials/crop 260 0 Crop\nkey A\nwire photo image Crop image\nset Crop left 10\nset Crop width 40\n"
         "set Crop top 5\nset Crop height 30\nshow Crop\nwait\nedit Crop\nwait");
    EXPECT_TRUE(equalPictures(window.imagePane().picture(), freshPicture(id("photo"))));
    play("stroke 50 35 70 50\nwait"); // the lower right handle
    EXPECT_NEAR(value("Crop", "width").toInt(), 60, 2);
    EXPECT_NEAR(value("Crop", "height").toInt(), 45, 2);
    EXPECT_EQ(value("Crop", "left").toInt(), 10);
    EXPECT_TRUE(equalPictures(window.imagePane().picture(), freshPicture(id("photo"))));
    play("key Ctrl+Z");
    EXPECT_EQ(value("Crop", "width").toInt(), 40);
    EXPECT_EQ(value("Crop", "height").toInt(), 30);
    play("viewkey Right"); // from where the undo has put the frame
    EXPECT_EQ(value("Crop", "left").toInt(), 11);
    EXPECT_EQ(value("Crop", "width").toInt(), 40);
    play("key E\nwait");
    EXPECT_EQ(window.modes().mode(), nullptr);
    EXPECT_EQ(window.imagePane().picture().fullSize, QSize(40, 30));
}

TEST_F(Editor, CropIsEditedBehindATurnOfThePicture)
{
    play("add essentials/crop 260 0 Crop\nadd essentials/mirror 520 0 Mirror\nkey A\nwire photo image Crop image\n"
         "wire Crop image Mirror image\nshow Mirror\nwait\nedit Crop\nwait");
    EXPECT_EQ(window.scene().primary(), id("Mirror"));
    play("stroke 90 30 60 30\nwait"); // the right edge in the view is the left one of the picture
    EXPECT_NEAR(value("Crop", "left").toInt(), 30, 2);
    EXPECT_NEAR(value("Crop", "width").toInt(), 60, 2);
}

TEST_F(Editor, PerspectiveModeMovesCorners)
{
    play("add essentials/perspective 260 0 View\nkey A\nwire photo image View image\nshow View\nwait\nedit View\n"
         "stroke 0 0 18 12\nwait");
    const QPointF corner = value("View", "corners").toList().value(0).toPointF();
    EXPECT_NEAR(corner.x(), 0.2, 0.03);
    EXPECT_NEAR(corner.y(), 0.2, 0.03);
    EXPECT_EQ(value("View", "corners").toList().value(2).toPointF(), QPointF(1, 1));
    EXPECT_TRUE(equalPictures(window.imagePane().picture(), freshPicture(id("View"))));
    play("viewkey Space\nviewkey Left");
    EXPECT_NEAR(value("View", "corners").toList().value(1).toPointF().x(), 1 - 1 / 90.0, 1e-9);
    play("key Ctrl+Z\nkey Ctrl+Z");
    EXPECT_TRUE(value("View", "corners").toList().isEmpty());
}

TEST_F(Editor, PaintModePaintsStrokesThatAreUndoneOneByOne)
{
    play("add essentials/paint 260 0 Paint\nkey A\nwire photo image Paint image\nshow Paint\nwait\nedit Paint\n"
         "viewkey [\nviewkey [\nviewkey Shift+]\nstroke 10 10 40 10\nstroke 10 30 40 30\nwait");
    const QVariantList strokes = value("Paint", "strokes").toList();
    ASSERT_EQ(strokes.size(), 2);
    EXPECT_EQ(strokes[0].toMap().value("size").toInt(), 25); // 40 / 1.25 / 1.25
    EXPECT_EQ(strokes[0].toMap().value("hardness").toDouble(), 0.6);
    const QPointF first = strokes[1].toMap().value("points").toList().value(0).toPointF();
    EXPECT_NEAR(first.x(), 10, 1);
    EXPECT_NEAR(first.y(), 30, 1);
    EXPECT_TRUE(equalPictures(window.imagePane().picture(), freshPicture(id("Paint"))));
    EXPECT_FALSE(equalPictures(window.imagePane().picture(), freshPicture(id("photo"))));
    play("key Ctrl+Z\nstroke 50 10 60 10\nwait"); // the mode goes on from what the undo has left
    EXPECT_EQ(value("Paint", "strokes").toList().size(), 2);
    play("key Ctrl+Z\nkey Ctrl+Z\nwait");
    EXPECT_TRUE(equalPictures(window.imagePane().picture(), freshPicture(id("photo"))));
}

TEST_F(Editor, ModeEndsWithItsNode)
{
    play(
        "add essentials/crop 260 0 Crop\nkey A\nwire photo image Crop image\nedit Crop\nselect Crop\nkey Delete\nwait");
    EXPECT_EQ(window.modes().node(), 0u);
    play("select photo\nkey E");
    EXPECT_EQ(window.modes().mode(), nullptr);
    EXPECT_FALSE(status().isEmpty());
}

TEST_F(Editor, ExportsQueueUpAndWriteWhatIsShown)
{
    addChain();
    play("show Levels\nwait");
    const Picture expected = freshPicture(id("Levels"));
    window.exportCommands().exportPicture(path("out/a.png"), {{"pngdepth", "16 bits"}, {"pngalpha", "With"}});
    window.exportCommands().exportPicture(path("out/b.jpg"), {{"quality", "80"}});
    play("set Blur radiusx 60\nwait"); // comes too late for both
    EXPECT_EQ(status(), "b.jpg was exported.");
    Ondrel::ResourceId written;
    ASSERT_TRUE(std::async(std::launch::async, [&] {
                    return ResourceEngine::Get().AddImage(path("out/a.png").toStdString(), written);
                }).get());
    std::shared_ptr<const Ondrel::Image> image;
    ASSERT_TRUE(std::async(std::launch::async, [&] {
                    return ResourceEngine::Get().CopyImage(written, image, Ondrel::EmbeddedColorProfile,
                                                           Ondrel::RunStatus());
                }).get());
    EXPECT_TRUE(equalPictures({image, QSize()}, expected));
    EXPECT_EQ(QImage(path("out/b.jpg")).size(), QSize(90, 60));
}

TEST_F(Editor, CancelledExportLeavesNothing)
{
    play("add essentials/gradient 0 400 Large\nset Large width 2500\nset Large height 2500\nshow Large");
    window.exportCommands().exportPicture(path("out/large.png"), {});
    window.exporter().cancel();
    settle();
    EXPECT_FALSE(QFile::exists(path("out/large.png")));
    EXPECT_TRUE(QDir(path("out")).entryList(QDir::Files | QDir::Hidden).isEmpty());
    EXPECT_TRUE(status().contains("cancelled")) << qPrintable(status());
}

TEST_F(Editor, ExportWithoutAPictureSaysWhy)
{
    addThree();
    play("show Blur\nwait\nexport " + path("none.png"));
    EXPECT_TRUE(status().startsWith("none.png: ")) << qPrintable(status());
    EXPECT_FALSE(QFile::exists(path("none.png")));
}

TEST_F(Editor, ExportDialogGivesBackWhatAnOutputNodeSays)
{
    const NodeType& output = *nodeTypes().find("essentials/output");
    QVariantMap values = output.defaults();
    values["format"] = "TIFF";
    values["tiffdepth"] = "8 bits";
    values["tiffcompression"] = "LZW";
    values["tiffalpha"] = "With";
    const ExportDialog dialog(path("name.png"), values, &window);
    EXPECT_EQ(dialog.file(), path("name.tif"));
    EXPECT_EQ(dialog.format(), FileFormat::Tiff);
    for (const char* field : {"format", "tiffdepth", "tiffcompression", "tiffalpha", "space"})
        EXPECT_EQ(dialog.outputValues().value(field).toString(), values.value(field).toString()) << field;
    values["space"] = "Chosen";
    values["profile"] = QByteArray(reinterpret_cast<const char*>(Ondrel::DefaultColorProfileHash.data()), 32);
    const ExportDialog chosen(path("name.png"), values, &window);
    EXPECT_EQ(chosen.outputValues().value("space").toString(), "Chosen");
    EXPECT_EQ(chosen.outputValues().value("profile"), values.value("profile"));
}

TEST_F(Editor, ExportAsksBeforeItReplacesAFile)
{
    QFile file(path("there.png"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("mine");
    file.close();
    const auto answer = [&](QMessageBox::StandardButton button) {
        window.exportCommands().chooseAndExport();
        auto* const dialog = window.findChild<ExportDialog*>();
        ASSERT_TRUE(dialog);
        dialog->findChild<QLineEdit*>()->setText(path("there.png"));
        dialog->accept();
        auto* const question = window.findChild<QMessageBox*>();
        ASSERT_TRUE(question);
        question->button(button)->click();
        settle();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    answer(QMessageBox::No);
    EXPECT_EQ(file.size(), 4);
    answer(QMessageBox::Yes);
    EXPECT_GT(QFileInfo(path("there.png")).size(), 4);
}

TEST_F(Editor, ExportDialogKeepsDotsInNames)
{
    const ExportDialog dialog(path("IMG.v2"), {}, &window);
    EXPECT_EQ(dialog.file(), path("IMG.v2.png"));
    const ExportDialog other(path("IMG.v2.jpg"), {}, &window);
    EXPECT_EQ(other.file(), path("IMG.v2.png"));
}

TEST_F(Editor, WorkThatThrowsIsTold)
{
    Worker worker;
    QString reason;
    QObject::connect(&worker, &Worker::failed, [&](const QString& text) { reason = text; });
    worker.run([]() -> std::function<void()> { throw std::bad_alloc(); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return !worker.isBusy(); }));
    EXPECT_EQ(reason, "There is not enough memory.");
}

TEST_F(Editor, DroppedFilesAreImportedWhereTheyFall)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path("photo.png"))});
    QWidget* const canvas = window.sceneView().viewport();
    const QPoint at(100, 80);
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(canvas, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(canvas, &drop);
    settle();
    ASSERT_NE(id("photo 2"), 0u);
    EXPECT_EQ(graph().nodeByName("photo 2")->position, window.sceneView().mapToScene(100, 80));
}

// Whatever would wait for the store, waits for ever here.
TEST_F(Editor, NothingOnTheUserInterfaceThreadWaitsForTheStore)
{
    StoreHeldByAnother held;
    addChain();
    window.pictures().evaluator().cache().clear();
    play("show Levels\nset Blur radiusx 9\nselect Blur\nkey Ctrl+D\nkey D\nkey Delete\nkey Ctrl+Z");
    window.importer().import({path("photo.png")}, QPointF());
    window.files().save(path("locked.ondrel"));
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 200)
        QApplication::processEvents();
    held.release();
    settle();
    EXPECT_TRUE(QFile::exists(path("locked.ondrel")));
}
