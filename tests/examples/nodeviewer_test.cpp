// The viewer of node files: its canvas with real events, and the program as a user runs it.

#include "examples/nodeviewer/canvas.h"
#include "examples/nodeviewer/canvasview.h"
#include "examples/nodeviewer/values.h"
#include "programs.h"

#include <ondrel/core/color.h>
#include <ondrel/nodes/xmlnode.h>
#include <ondrel/resources/resourceid.h>
#include <ondrel/widgets/precisionrangeslider.h>
#include <ondrel/widgets/precisionslider.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QGraphicsProxyWidget>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

namespace
{

using namespace Viewer;
using Ondrel::XmlNode;

const char* const kSource = "<node title='A Source'><input><f name='radius' type='slider' value='5'>Radius</f></input>"
                            "<output><f name='image'>Image</f></output></node>";
const char* const kMixer =
    "<node><input><f name='first'>First</f><f name='kind' type='fieldsetcombobox'><label>Kind</label>"
    "<fieldset choice='With'><f name='mask'>Mask</f></fieldset><fieldset choice='Without'/></f></input>"
    "<output><f name='image'>Image</f></output></node>";

class NodeViewer : public testing::Test
{
protected:
    QString write(const QString& name, const QByteArray& text)
    {
        const QString path = m_directory.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return path;
    }

    QString path(const QString& name) const { return m_directory.filePath(name); }

    static XmlNode* find(const Canvas& canvas, const QString& name)
    {
        for (QGraphicsItem* item : canvas.items()) {
            if (item->type() == Node::Type && static_cast<XmlNode*>(item)->name() == name)
                return static_cast<XmlNode*>(item);
        }
        return nullptr;
    }

    // The control of an input; null if its field has none.
    template <class Widget>
    static Widget* control(XmlNode* node, const QString& field)
    {
        for (QGraphicsItem* item : node->childItems()) {
            if (item->type() != Ondrel::FieldBase::Type || static_cast<Ondrel::FieldBase*>(item)->name() != field)
                continue;
            for (QGraphicsItem* child : item->childItems()) {
                if (const auto* proxy = qgraphicsitem_cast<QGraphicsProxyWidget*>(child))
                    return qobject_cast<Widget*>(proxy->widget());
            }
        }
        return nullptr;
    }

    static int wires(const Canvas& canvas)
    {
        int count = 0;
        for (QGraphicsItem* item : canvas.items())
            count += dynamic_cast<WireItem*>(item) ? 1 : 0;
        return count;
    }

    static QVariant value(XmlNode* node, const QString& name)
    {
        return node->inputValue(node->inputIndexOfFieldByName(name));
    }

    static std::shared_ptr<const Ondrel::Image> picture() { return std::make_shared<const Ondrel::Image>(40, 20); }

private:
    QTemporaryDir m_directory;
};

TEST_F(NodeViewer, PrintsAllValuesOfANodeAndThenThoseThatChange)
{
    Canvas canvas(picture());
    testing::internal::CaptureStdout();
    ASSERT_TRUE(
        canvas.addFile(write("all.xml", "<node><input><f name='plain'/><f name='count' type='slider' value='5'/>"
                                        "<f name='span' type='rangeslider' left='1' right='9'/>"
                                        "<f name='ink' type='color' value='1,2,3'/>"
                                        "<f name='how' type='combobox' choices='a,b' initial='1'/></input>"
                                        "<output/></node>")));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "all.count = 5\nall.span = 1 to 9\nall.ink = 1,2,3,65535\nall.how = b\n");

    testing::internal::CaptureStdout();
    XmlNode* const node = find(canvas, "all");
    control<Ondrel::PrecisionSlider>(node, "count")->setValue(QString("7"));
    control<QComboBox>(node, "how")->setCurrentIndex(0);
    control<Ondrel::PrecisionRangeSlider>(node, "span")->setValue("2", "8");
    node->setInputValue(1, "7"); // the same again
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "all.count = 7\nall.how = a\nall.span = 2 to 8\n");
}

TEST_F(NodeViewer, WritesValuesForPeople)
{
    EXPECT_EQ(textOf(QVariant::fromValue(Ondrel::ResourceId(12))), "resource 12");
    EXPECT_EQ(textOf(QVariant(QByteArray())), "none");
    EXPECT_EQ(textOf(QVariant(QByteArray(32, 'x'))), "unknown profile");
    EXPECT_EQ(textOf(QVariant(QString("text"))), "text");
}

TEST_F(NodeViewer, LoadsAChangedFileAnewAndKeepsWhatHasAName)
{
    Canvas canvas(picture());
    const QString file = write("source.xml", kSource);
    testing::internal::CaptureStdout();
    ASSERT_TRUE(canvas.addFile(file));
    ASSERT_TRUE(canvas.addFile(write("mixer.xml", kMixer)));
    ASSERT_TRUE(canvas.connectLink({"source", "image", "mixer", "first"}));
    XmlNode* const former = find(canvas, "source");
    former->setInputValue(0, "42");
    former->setPos(30, 40);
    former->setEmblem(Ondrel::PreviewNode::EmblemSecondary, true);
    write("source.xml", "<node title='B'><input><f name='new' type='slider' value='1'/>"
                        "<f name='radius' type='slider' value='6'/><f name='kind' type='color'/></input>"
                        "<output><f name='image'/></output></node>");
    for (int i = 0; i < 500 && (!find(canvas, "source") || find(canvas, "source")->inputFieldCount() != 3); ++i)
        QTest::qWait(10);
    testing::internal::GetCapturedStdout();

    XmlNode* const node = find(canvas, "source");
    ASSERT_EQ(node->inputFieldCount(), 3u);
    EXPECT_EQ(value(node, "radius"), QVariant("42"));
    EXPECT_EQ(value(node, "new"), QVariant("1"));
    EXPECT_EQ(node->emblem(), Ondrel::PreviewNode::EmblemSecondary);
    EXPECT_EQ(wires(canvas), 1);
    EXPECT_TRUE(node->outputAnchorOfFieldByName("image")->connected());
    EXPECT_TRUE(find(canvas, "mixer")->inputAnchorOfFieldByName("first")->connected());
}

TEST_F(NodeViewer, KeepsANodeWhoseFileIsBroken)
{
    Canvas canvas(picture());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const QString file = write("source.xml", kSource);
    ASSERT_TRUE(canvas.addFile(file));
    XmlNode* const node = find(canvas, "source");
    write("source.xml", "<node>");
    canvas.fileChanged(file);
    canvas.reloadChanged();
    EXPECT_EQ(find(canvas, "source"), node);
    write("source.xml", kSource);
    canvas.fileChanged(file);
    canvas.reloadChanged();
    EXPECT_NE(find(canvas, "source"), nullptr);
    testing::internal::GetCapturedStdout();
    const QString errors = QString::fromStdString(testing::internal::GetCapturedStderr());
    EXPECT_EQ(errors.count("Unable to parse node XML:\n<node>\n"), 1); // the platform may have more to say
}

class NodeViewerWires : public NodeViewer
{
protected:
    void SetUp() override
    {
        testing::internal::CaptureStdout();
        canvas = std::make_unique<Canvas>(picture());
        ASSERT_TRUE(canvas->addFile(write("source.xml", kSource)));
        ASSERT_TRUE(canvas->addFile(write("mixer.xml", kMixer)));
        testing::internal::GetCapturedStdout();
        source = find(*canvas, "source");
        mixer = find(*canvas, "mixer");
        source->setPos(0, 0);
        mixer->setPos(400, 0);
        out = source->outputAnchorOfFieldByName("image");
        first = mixer->inputAnchorOfFieldByName("first");
        mask = mixer->inputAnchorOfFieldByName("mask");
        view = std::make_unique<CanvasView>(*canvas);
        view->setSceneRect(-50, -50, 800, 400);
        view->resize(820, 420);
        view->show();
    }

    QPoint at(const Anchor* anchor) const { return view->mapFromScene(anchor->sceneBoundingRect().center()); }

    void drag(const QPoint& from, const QPoint& to)
    {
        QTest::mousePress(view->viewport(), Qt::LeftButton, Qt::NoModifier, from);
        moveTo((from + to) / 2);
        moveTo(to);
        QTest::mouseRelease(view->viewport(), Qt::LeftButton, Qt::NoModifier, to);
    }

    std::unique_ptr<Canvas> canvas;
    std::unique_ptr<CanvasView> view;
    XmlNode* source = nullptr;
    XmlNode* mixer = nullptr;
    Anchor* out = nullptr;
    Anchor* first = nullptr;
    Anchor* mask = nullptr;

private:
    // QTest::mouseMove says nothing of the button that is held.
    void moveTo(const QPoint& position)
    {
        QMouseEvent event(QEvent::MouseMove, position, view->viewport()->mapToGlobal(position), Qt::NoButton,
                          Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &event);
    }
};

TEST_F(NodeViewerWires, AreDrawnFromAnchorToAnchor)
{
    drag(at(out), at(first) + QPoint(9, 4)); // near is enough
    EXPECT_EQ(wires(*canvas), 1);
    EXPECT_TRUE(out->connected());
    EXPECT_TRUE(first->connected());
    drag(at(mask), at(out)); // from an input
    EXPECT_EQ(wires(*canvas), 2);
    drag(at(out), QPoint(300, 300));                              // to nowhere
    drag(at(out), at(mixer->outputAnchorOfFieldByName("image"))); // to another output
    EXPECT_EQ(wires(*canvas), 2);
}

TEST_F(NodeViewerWires, ComeOffTheirInputs)
{
    drag(at(out), at(first));
    drag(at(first), at(mask));
    EXPECT_EQ(wires(*canvas), 1);
    EXPECT_FALSE(first->connected());
    EXPECT_TRUE(mask->connected());
    EXPECT_TRUE(out->connected());
    drag(at(mask), QPoint(300, 300));
    EXPECT_EQ(wires(*canvas), 0);
    EXPECT_FALSE(out->connected());
}

TEST_F(NodeViewerWires, GoWithTheFieldsOfASet)
{
    ASSERT_TRUE(canvas->connectLink({"source", "image", "mixer", "mask"}));
    control<QComboBox>(mixer, "kind")->setCurrentIndex(1);
    EXPECT_EQ(wires(*canvas), 0);
    EXPECT_FALSE(mask->connected());
    EXPECT_FALSE(out->connected());
}

TEST_F(NodeViewerWires, CloseNoCircle)
{
    testing::internal::CaptureStdout();
    ASSERT_TRUE(canvas->addFile(write("third.xml", kMixer)));
    testing::internal::GetCapturedStdout();
    EXPECT_TRUE(canvas->connectLink({"mixer", "image", "third", "first"}));
    EXPECT_FALSE(canvas->connectLink({"third", "image", "mixer", "first"}));
    EXPECT_FALSE(canvas->connectLink({"third", "image", "third", "mask"}));
    EXPECT_FALSE(canvas->connectLink({"third", "image", "nobody", "mask"}));
    EXPECT_FALSE(canvas->connectLink({"third", "nothing", "source", "radius"}));
    EXPECT_EQ(wires(*canvas), 1);
}

TEST_F(NodeViewerWires, FollowTheirNodes)
{
    ASSERT_TRUE(canvas->connectLink({"source", "image", "mixer", "first"}));
    canvas->arrangeNodes();
    EXPECT_LT(source->sceneBoundingRect().right(), mixer->sceneBoundingRect().left());
    for (QGraphicsItem* item : canvas->items()) {
        if (const auto* const wire = dynamic_cast<WireItem*>(item)) {
            EXPECT_EQ(wire->path().pointAtPercent(0), out->sceneBoundingRect().center());
            EXPECT_EQ(wire->path().pointAtPercent(1), first->sceneBoundingRect().center());
        }
    }
}

TEST_F(NodeViewerWires, StayAwayFromTheTabKeyWhichWalksThroughControls)
{
    QApplication::setActiveWindow(view.get());
    view->setFocus();
    EXPECT_FALSE(canvas->moveFocus(true)); // no control has the focus
    auto* const slider = control<Ondrel::PrecisionSlider>(source, "radius");
    canvas->setFocusItem(slider->graphicsProxyWidget());
    EXPECT_TRUE(canvas->moveFocus(true));
    EXPECT_TRUE(slider->isAncestorOf(slider->focusWidget()) || slider->hasFocus());
}

class NodeViewerProgram : public NodeViewer
{
protected:
    static Outcome view(const QStringList& arguments)
    {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return runProgram(ONDREL_NODEVIEWER, arguments);
    }
};

TEST_F(NodeViewerProgram, SavesAPictureOfTheNodesOfTheExamples)
{
    QStringList files;
    for (const QString& name : QDir(ONDREL_NODE_FILES).entryList({"*.xml"}, QDir::Files))
        files.append(QStringLiteral(ONDREL_NODE_FILES "/") + name);
    const Outcome outcome =
        view(files + QStringList{"--wires", ONDREL_NODE_FILES "/wires.txt", "--grab", path("nodes.png")});
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    EXPECT_TRUE(outcome.output.contains("\nwhitebalance.temperature = 5500\n"));
    EXPECT_TRUE(outcome.output.contains("\nphotograph.profile = sRGB built-in\n"));
    const QImage shown(path("nodes.png"));
    EXPECT_GT(shown.width(), 1200);
    EXPECT_GT(shown.height(), 500);
    EXPECT_EQ(shown.pixel(1, 1), qRgb(32, 32, 32));
}

TEST_F(NodeViewerProgram, ShowsSelectionAndScale)
{
    const QString file = write("source.xml", kSource);
    ASSERT_EQ(view({file, "--grab", path("plain.png")}).status, 0);
    ASSERT_EQ(view({file, "--grab", path("selected.png"), "--select", "source", "--scale", "2"}).status, 0);
    const QImage plain(path("plain.png")), selected(path("selected.png"));
    EXPECT_EQ(selected.size(), plain.size() * 2);
    const QPoint header(plain.width() / 2, 40 + 17 + 20); // the margin, the shadow's reach, and into the header
    EXPECT_EQ(plain.pixel(header), qRgb(50, 47, 47));
    EXPECT_EQ(selected.pixel(header * 2), qRgb(255, 204, 0));
}

TEST_F(NodeViewerProgram, SaysWhatItCannotDo)
{
    const QString good = write("source.xml", kSource), bad = write("bad.xml", "<node/>");
    const QString grab = path("a.png");
    const Outcome outcome = view({bad, good, "--grab", grab});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.errors.contains("Failed to create node type because of invalid XML:\n<node/>\n"));
    EXPECT_TRUE(QFile::exists(grab)); // with the other node
    EXPECT_TRUE(view({path("none.xml"), "--grab", grab}).errors.contains("none.xml: cannot be read"));
    EXPECT_EQ(view({good, "--grab", path("no/such/folder.png")}).status, 1);
    EXPECT_EQ(view({good, "--grab", grab, "--select", "nobody"}).status, 1);
    const Outcome wire = view({good, "--grab", grab, "--wires", write("wires.txt", "source.image source.radius\n")});
    EXPECT_EQ(wire.status, 1);
    EXPECT_TRUE(wire.errors.contains("no wire from source.image to source.radius"));
}

TEST_F(NodeViewerProgram, RefusesWhatMakesNoSense)
{
    const QString good = write("source.xml", kSource);
    const QStringList wrong[] = {{},
                                 {"--grab", path("a.png")},
                                 {good, "--scale", "0", "--grab", path("a.png")},
                                 {good, "--scale", "nan", "--grab", path("a.png")},
                                 {good, "--nonsense"},
                                 {good, "--wires", path("none.txt")},
                                 {good, "--wires", write("wires.txt", "source radius\n")}};
    for (const QStringList& arguments : wrong) {
        const Outcome outcome = view(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments.join(' ').toStdString();
        EXPECT_FALSE(outcome.errors.isEmpty());
    }
    EXPECT_EQ(view({"--help"}).status, 0);
}

} // namespace
