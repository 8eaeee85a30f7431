// A graph of the size that hosts have.

#include "xmlsupport.h"

#include "tests/support/testimages.h"

#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/fields/imagepreviewfield.h>

namespace
{

using namespace OndrelTest;

constexpr int kNodes = 500, kColumns = 25;

// A preview, six sliders and two combo boxes.
QString nodeFile()
{
    QString inputs = "<i name=\"in\">Image</i><i type=\"preview\"/>";
    for (int i = 0; i < 6; ++i)
        inputs +=
            QString("<i name=\"slider%1\" type=\"slider\" min=\"0\" max=\"200\" value=\"%1\">Slider %1</i>").arg(i);
    for (int i = 0; i < 2; ++i)
        inputs += QString("<i name=\"box%1\" type=\"combobox\" choices=\"One,Two,--,Three\">Box %1</i>").arg(i);
    return "<node><input>" + inputs + "</input><output><o name=\"image\">Image</o></output></node>";
}

class ManyNodes : public testing::Test
{
protected:
    ManyNodes()
    {
        const QString xml = nodeFile();
        for (int i = 0; i < kNodes; ++i) {
            auto* node = loadNode(xml).release();
            node->setHeader(QString("Node %1").arg(i));
            node->setPos(i % kColumns * 250, i / kColumns * 450);
            scene.addItem(node);
            QApplication::processEvents(); // as in a host; else events pile up by the ten thousand
            EXPECT_EQ(node->log.take().count("moved"), 2) << "entering, and being polished";
            nodes.push_back(node);
        }
    }

    QGraphicsScene scene;
    std::vector<TestXml*> nodes;
};

TEST_F(ManyNodes, LiveInOneScene)
{
    const QRectF size = nodes.front()->rect();
    for (TestXml* node : nodes) {
        ASSERT_EQ(node->inputFieldCount(), 10U);
        ASSERT_EQ(node->rect(), size) << "all are laid out alike";
        ASSERT_EQ(node->log.take(), QStringList());
        for (int i = 0; i < 6; ++i)
            ASSERT_EQ(node->inputValue(2 + i), QVariant(QString::number(i)));
        ASSERT_EQ(node->inputValue(8), QVariant(QString("One")));
    }
    // A change stays with its node.
    nodes[123]->setInputValue(2, "7");
    nodes[123]->setInputValue(9, "Three");
    for (TestXml* node : nodes)
        ASSERT_EQ(node->log.take().size(), node == nodes[123] ? 3 : 0);
    EXPECT_EQ(nodes[122]->inputValue(2), QVariant(QString("0")));
    EXPECT_EQ(nodes[124]->inputValue(9), QVariant(QString("One")));

    // The host finds the closest anchor among all.
    const QPoint target = nodes[321]->inputFields[0]->anchor()->sceneBoundingRect().center().toPoint();
    TestXml* best = nullptr;
    float least = 10000;
    for (TestXml* node : nodes) {
        Ondrel::Anchor* anchor = nullptr;
        float distance = 0;
        node->findClosestAnchor(target, Ondrel::Anchor::Input, nullptr, &anchor, distance);
        if (anchor && distance < least) {
            least = distance;
            best = node;
        }
    }
    EXPECT_EQ(best, nodes[321]);
    EXPECT_LT(least, 1);
}

TEST_F(ManyNodes, ShowTheirPreviewsAndMoveTogether)
{
    const auto image = randomImage(91, 182, 3).toPtr();
    const double before = nodes.front()->rect().height();
    for (TestXml* node : nodes)
        node->setPreviewImage(image);
    EXPECT_TRUE(QTest::qWaitFor(
        [this, before] {
            return std::all_of(nodes.begin(), nodes.end(),
                               [before](const TestXml* node) { return node->rect().height() == before + 182 + 5; });
        },
        60000));

    // All of it can be painted, far away and near.
    for (const double zoom : {0.05, 1.0}) {
        QImage picture(900, 700, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        scene.render(&painter, picture.rect(), QRectF(0, 0, 900 / zoom, 700 / zoom));
        EXPECT_GT(qAlpha(picture.pixel(450, 30)) + qAlpha(picture.pixel(10, 10)), 0);
    }

    GraphView probe; // a window for the mouse
    probe.view.setScene(&scene);
    probe.view.setSceneRect(-50, -50, 900, 700);
    scene.setSceneRect(-50, -50, 900, 700);
    for (TestXml* node : nodes) {
        node->setSelected(true);
        node->log.take();
    }
    const QPointF grip(100, 8);
    probe.press(grip);
    probe.move(grip + QPointF(10, 20));
    probe.release(grip + QPointF(10, 20));
    EXPECT_EQ(nodes.front()->log.take(), QStringList({"selected", "moved by user", "moveComplete"}));
    for (int i = 0; i < kNodes; ++i) {
        ASSERT_EQ(nodes[static_cast<std::size_t>(i)]->pos(), QPointF(i % kColumns * 250 + 10, i / kColumns * 450 + 20));
        ASSERT_EQ(nodes[static_cast<std::size_t>(i)]->log.take(), QStringList());
    }
    probe.view.setScene(&probe.scene);
}

} // namespace
