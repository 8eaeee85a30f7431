#include "fields/fieldsupport.h"

#include "tests/support/testimages.h"

#include <ondrel/core/platform.h>
#include <ondrel/core/xml.h>
#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/fields/comboboxfield.h>
#include <ondrel/nodes/fields/imagepreviewfield.h>
#include <ondrel/nodes/previewnode.h>
#include <ondrel/widgets/thumbnailcombobox.h>

#include <QGraphicsSceneContextMenuEvent>
#include <QMenu>
#include <QPaintEvent>
#include <QSvgRenderer>
#include <QTime>
#include <QTimer>

namespace
{

using namespace OndrelTest;
using Ondrel::ComboBoxInputField;
using Ondrel::ImagePreviewField;
using Ondrel::PreviewNode;

struct TestPreview : PreviewNode {
    explicit TestPreview(bool createOutput = true)
        : PreviewNode(nullptr, createOutput)
    {
    }
    using Node::inputFields;
    using Node::outputFields;
    using PreviewNode::previewField;
    QVariant inputValue(int) override { return {}; }

    ComboBoxInputField* addThumbnails(const QString& fieldName)
    {
        auto* field = new ComboBoxInputField(fieldName, this, "Method", {"a", "b"}, 0, ComboBoxInputField::Thumbnails);
        connect(field, SIGNAL(thumbnailsRequested(ComboBoxInputField*)), this,
                SLOT(thumbnailsRequested(ComboBoxInputField*)));
        inputFields.push_back(field);
        return field;
    }
};

QTimer* timerOf(const PreviewNode& node)
{
    const auto timers = node.findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
    EXPECT_EQ(timers.size(), 1);
    return timers.value(0);
}

TEST(PreviewNode, HasAPreviewAndAnOutputIfAsked)
{
    TestPreview plain(false), full(true);
    EXPECT_EQ(plain.inputFieldCount(), 1U);
    EXPECT_EQ(plain.outputFieldCount(), 0U);
    EXPECT_EQ(full.inputFieldCount(), 1U);
    ASSERT_EQ(full.outputFieldCount(), 1U);
    EXPECT_EQ(full.inputNameOfFieldByIndex(0), "preview");
    EXPECT_EQ(full.inputDisplayNameOfFieldByIndex(0), "");
    EXPECT_EQ(full.inputFields[0], full.previewField);
    EXPECT_NE(dynamic_cast<ImagePreviewField*>(full.inputFields[0]), nullptr);
    EXPECT_EQ(full.previewField->parentItem(), &full);
    EXPECT_EQ(full.outputNameOfFieldByIndex(0), "image");
    EXPECT_EQ(full.outputDisplayNameOfFieldByIndex(0), "Image");
    ASSERT_NE(full.outputAnchorOfFieldByIndex(0), nullptr);
    EXPECT_EQ(full.outputAnchorOfFieldByIndex(0)->direction(), Ondrel::Anchor::Output);
    EXPECT_EQ(full.outputFields[0]->parentItem(), &full);
    EXPECT_EQ(full.emblem(), PreviewNode::EmblemNone);
    EXPECT_EQ(full.type(), 65538);
}

TEST(PreviewNode, EmblemsHaveTheirNumbers)
{
    EXPECT_EQ(PreviewNode::EmblemNone, 0);
    EXPECT_EQ(PreviewNode::EmblemPrimary, 1);
    EXPECT_EQ(PreviewNode::EmblemSecondary, 2);
    EXPECT_EQ(PreviewNode::EmblemPrimaryAndSecondary, 3);
}

TEST(PreviewNode, GrowsWithItsPreview)
{
    QGraphicsScene scene;
    auto* node = new TestPreview;
    scene.addItem(node);
    QApplication::processEvents(); // the scene tells its new items once more that they are visible
    const double before = node->rect().height();
    EXPECT_EQ(before, node->headerSize().height() + plainFieldHeight() + 5);
    SignalLog log(*node);
    QSignalSpy moved(node, SIGNAL(moved(Node*, bool)));
    node->setPreviewImage(randomImage(400, 200, 1).toPtr());
    ASSERT_TRUE(moved.wait());
    EXPECT_EQ(node->rect().height(), before + 91 + 5);
    EXPECT_EQ(log.take(), QStringList({"moved"}));
    EXPECT_EQ(node->previewField->pos().y(), before);
    node->setPreviewImage(nullptr);
    ASSERT_TRUE(moved.wait());
    EXPECT_EQ(node->rect().height(), before);
    EXPECT_EQ(log.take(), QStringList({"moved"}));
}

TEST(PreviewNode, HooksDoNothing)
{
    TestPreview node;
    SignalLog log(node);
    node.setInputImage(randomImage(4, 4, 1).toPtr());
    node.setInputImage(nullptr);
    node.anchorHasBeenConnected(node.outputAnchorOfFieldByIndex(0), "image");
    node.anchorHasBeenDisconnected(node.outputAnchorOfFieldByIndex(0));
    node.inputGeometryChanged(nullptr);
    node.availableColorProfilesChanged();
    QMenu menu;
    node.displayingContextMenu(&menu, nullptr, nullptr);
    EXPECT_TRUE(menu.isEmpty());
    EXPECT_EQ(log.take(), QStringList());
    EXPECT_EQ(node.inputFieldCount(), 1U);
}

// --- Emblems -------------------------------------------------------------------------------------------------------

// The emblem that a call leaves on a node with another emblem.
template <typename Call>
std::array<int, 4> emblemsAfter(Call call)
{
    std::array<int, 4> after{};
    for (int before = 0; before < 4; ++before) {
        TestPreview node;
        node.setEmblem(static_cast<PreviewNode::Emblem>(before), true);
        EXPECT_EQ(node.emblem(), before);
        QSignalSpy changed(&node, SIGNAL(emblemChanged(PreviewNode*, PreviewNode::Emblem)));
        call(node);
        EXPECT_EQ(changed.count(), 0) << "the host's own calls raise nothing";
        after[static_cast<std::size_t>(before)] = node.emblem();
    }
    return after;
}

TEST(PreviewNode, SetEmblemMergesOrReplaces)
{
    const auto merged = [](int emblem) {
        return emblemsAfter(
            [=](PreviewNode& node) { node.setEmblem(static_cast<PreviewNode::Emblem>(emblem), false); });
    };
    EXPECT_EQ(merged(0), (std::array<int, 4>{0, 0, 0, 0})) << "none always replaces";
    EXPECT_EQ(merged(1), (std::array<int, 4>{1, 1, 3, 3}));
    EXPECT_EQ(merged(2), (std::array<int, 4>{2, 3, 2, 3}));
    EXPECT_EQ(merged(3), (std::array<int, 4>{3, 3, 3, 3})) << "both always replace";
    for (int emblem = 0; emblem < 4; ++emblem)
        EXPECT_EQ(
            emblemsAfter([=](PreviewNode& node) { node.setEmblem(static_cast<PreviewNode::Emblem>(emblem), true); }),
            (std::array<int, 4>{emblem, emblem, emblem, emblem}));
}

TEST(PreviewNode, ClearEmblemTakesAPartAway)
{
    const auto cleared = [](int emblem) {
        return emblemsAfter([=](PreviewNode& node) { node.clearEmblem(static_cast<PreviewNode::Emblem>(emblem)); });
    };
    EXPECT_EQ(cleared(0), (std::array<int, 4>{0, 1, 2, 3}));
    EXPECT_EQ(cleared(1), (std::array<int, 4>{0, 0, 2, 2}));
    EXPECT_EQ(cleared(2), (std::array<int, 4>{0, 1, 0, 1}));
    EXPECT_EQ(cleared(3), (std::array<int, 4>{0, 0, 0, 0}));
}

TEST(PreviewNode, TogglesEmitTheNewEmblem)
{
    constexpr int primary[] = {1, 0, 3, 2}, secondary[] = {2, 3, 0, 1};
    for (int before = 0; before < 4; ++before) {
        for (const bool first : {true, false}) {
            TestPreview node;
            node.setEmblem(static_cast<PreviewNode::Emblem>(before), true);
            std::vector<int> told;
            QObject::connect(&node, &PreviewNode::emblemChanged, &node,
                             [&](PreviewNode* sender, PreviewNode::Emblem emblem) {
                                 EXPECT_EQ(sender, &node);
                                 EXPECT_EQ(node.emblem(), emblem) << "it is set before the signal";
                                 told.push_back(emblem);
                             });
            if (first)
                node.toggleEmblemPrimary();
            else
                node.toggleEmblemSecondary();
            const int expected = first ? primary[before] : secondary[before];
            EXPECT_EQ(node.emblem(), expected) << before;
            EXPECT_EQ(told, std::vector<int>{expected});
        }
    }
}

// The part of a view that is repainted. The view shows scene coordinates as they are.
class Repaints : public QObject
{
public:
    explicit Repaints(QGraphicsView& view)
    {
        view.viewport()->installEventFilter(this);
        take();
    }
    QRectF take()
    {
        QApplication::processEvents();
        return std::exchange(m_area, QRect());
    }
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            m_area |= static_cast<QPaintEvent*>(event)->region().boundingRect();
        return false;
    }

private:
    QRect m_area;
};

TEST(PreviewNode, EmblemsRepaintTheHeaderAlone)
{
    GraphView graph;
    auto* node = graph.add(new TestPreview, {50, 60});
    Repaints repaints(graph.view);
    const QRectF header(50, 60, node->rect().width(), Ondrel::Node::headerHeight());
    const auto isHeader = [&](const QRectF& area) {
        return area.contains(header) && header.adjusted(-2, -2, 2, 2).contains(area);
    };
    node->setEmblem(PreviewNode::EmblemNone, false);
    EXPECT_TRUE(isHeader(repaints.take())) << "even if nothing changes";
    node->clearEmblem(PreviewNode::EmblemNone);
    EXPECT_TRUE(isHeader(repaints.take()));
    node->toggleEmblemPrimary();
    EXPECT_TRUE(isHeader(repaints.take()));
    node->toggleEmblemSecondary();
    EXPECT_TRUE(isHeader(repaints.take()));
    node->updateHeader();
    EXPECT_TRUE(isHeader(repaints.take()));
    node->setLoading(false);
    EXPECT_TRUE(repaints.take().isEmpty()) << "no change";
}

// --- Painting ------------------------------------------------------------------------------------------------------

constexpr QSize kCanvas(240, 120);

QImage look(PreviewNode& node)
{
    return paintedItem(node, kCanvas, {10, 10});
}

// The node's look with an icon of the header drawn over it.
QImage withIcon(const QImage& ground, const QString& file, const QColor& color, const QRectF& rect)
{
    QImage image = ground;
    QPainter painter(&image);
    painter.translate(10, 10);
    QSvgRenderer renderer;
    Ondrel::LoadSvgWithReplace(renderer, Ondrel::Platform::IconsDirectory() + file, "#000000", color.name());
    EXPECT_TRUE(renderer.isValid());
    renderer.render(&painter, rect);
    return image;
}

TEST(PreviewNode, PaintsItsEmblem)
{
    TestPreview node;
    node.setHeader("Blur");
    node.layout();
    const int w = static_cast<int>(node.rect().width());
    const int yc = static_cast<int>(Ondrel::Node::headerHeight() * 0.5) - 8;
    const QColor text = QGuiApplication::palette().color(QPalette::Text);
    const struct {
        PreviewNode::Emblem emblem;
        QString file;
        QRectF rect;
    } cases[] = {
        {PreviewNode::EmblemPrimary, "node_primary.svg", QRectF(w - 22, yc, 16, 16)},
        {PreviewNode::EmblemSecondary, "node_secondary.svg", QRectF(w - 22, yc, 16, 16)},
        {PreviewNode::EmblemPrimaryAndSecondary, "node_primary_and_secondary.svg", QRectF(w - 38, yc, 32, 16)}};
    for (const bool firstSelected : {false, true}) {
        node.setFirstSelected(firstSelected);
        node.setEmblem(PreviewNode::EmblemNone, true);
        const QImage ground = look(node);
        for (const auto& c : cases) {
            node.setEmblem(c.emblem, true);
            const QImage expected = withIcon(ground, c.file, firstSelected ? QColor(50, 47, 47) : text, c.rect);
            EXPECT_NE(expected, ground);
            EXPECT_EQ(look(node), expected) << qPrintable(c.file) << firstSelected;
        }
    }
    // The dark variant depends on the mark alone, not on whether the selection is drawn.
    node.setDrawSelection(false);
    node.setEmblem(PreviewNode::EmblemNone, true);
    const QImage ground = look(node);
    node.setEmblem(PreviewNode::EmblemPrimary, true);
    EXPECT_EQ(look(node), withIcon(ground, "node_primary.svg", QColor(50, 47, 47), cases[0].rect));
}

// The node's look with the loading icon as it stands at a time.
QImage withLoading(const QImage& ground, const PreviewNode& node, const QColor& color, int milliseconds)
{
    QImage image = ground;
    QPainter painter(&image);
    painter.translate(10, 10);
    QSvgRenderer renderer;
    Ondrel::LoadSvgWithReplace(renderer, Ondrel::Platform::IconsDirectory() + "node_loading.svg", "#000000",
                               color.name());
    painter.translate(static_cast<int>(node.rect().width()) - 22, Ondrel::Node::headerHeight() * 0.5);
    painter.translate(8, 0);
    painter.rotate(milliseconds / 1000.0 * 360);
    painter.translate(-8, -8);
    renderer.render(&painter, QRectF(0, 0, 16, 16));
    return image;
}

TEST(PreviewNode, PaintsTheLoadingIconAsTheClockTurnsIt)
{
    TestPreview node;
    node.layout();
    node.setEmblem(PreviewNode::EmblemPrimary, true);
    const QColor text = QGuiApplication::palette().color(QPalette::Text);
    for (const bool firstSelected : {false, true}) {
        node.setLoading(false);
        node.setFirstSelected(firstSelected);
        const QImage ground = look(node); // the emblem stays under it
        node.setLoading(true);
        // The clock must not pass a second or many steps while the node is painted.
        bool found = false;
        for (int attempt = 0; attempt < 50 && !found; ++attempt) {
            const int before = QTime::currentTime().msec();
            const QImage actual = look(node);
            const int after = QTime::currentTime().msec();
            EXPECT_NE(actual, ground);
            for (int m = before; m <= after && !found; ++m)
                found = actual == withLoading(ground, node, firstSelected ? QColor(50, 47, 47) : text, m);
        }
        EXPECT_TRUE(found);
    }
}

// --- Loading -------------------------------------------------------------------------------------------------------

TEST(PreviewNode, TurnsAnIconWhileLoading)
{
    GraphView graph;
    auto* node = graph.add(new TestPreview, {50, 60});
    QTimer* const timer = timerOf(*node);
    EXPECT_FALSE(timer->isActive());
    Repaints repaints(graph.view);
    node->setLoading(true);
    EXPECT_TRUE(timer->isActive());
    EXPECT_EQ(timer->interval(), 100);
    EXPECT_FALSE(repaints.take().isEmpty());

    timer->stop(); // a second call does not start it
    node->setLoading(true);
    EXPECT_FALSE(timer->isActive());

    node->setLoading(false);
    repaints.take();
    timer->setInterval(7);
    node->setLoading(true);
    EXPECT_EQ(timer->interval(), 100) << "set at every start";
    repaints.take();
    EXPECT_TRUE(QTest::qWaitFor([&repaints] { return !repaints.take().isEmpty(); })) << "the timer repaints";
    node->setLoading(false);
    EXPECT_FALSE(timer->isActive());
    EXPECT_FALSE(repaints.take().isEmpty());
}

// --- Context menu --------------------------------------------------------------------------------------------------

QMenu* openMenu()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* menu = qobject_cast<QMenu*>(widget);
        if (menu && menu->isVisible())
            return menu;
    }
    return nullptr;
}

class ContextMenu : public testing::Test
{
protected:
    ContextMenu()
        : node(graph.add(new TestPreview, {50, 60}))
    {
    }
    ~ContextMenu() override { delete menu; }

    void open()
    {
        delete menu;
        QGraphicsSceneContextMenuEvent event(QEvent::GraphicsSceneContextMenu);
        event.setScreenPos({300, 200});
        event.ignore();
        graph.scene.sendEvent(node, &event);
        EXPECT_TRUE(event.isAccepted());
        menu = openMenu();
    }

    GraphView graph;
    TestPreview* node;
    QPointer<QMenu> menu;
};

TEST_F(ContextMenu, OffersBothPreviews)
{
    for (int emblem = 0; emblem < 4; ++emblem) {
        node->setEmblem(static_cast<PreviewNode::Emblem>(emblem), true);
        open();
        ASSERT_FALSE(menu.isNull());
        EXPECT_EQ(menu->parent(), nullptr);
        EXPECT_EQ(menu->pos(), QPoint(300, 200));
        ASSERT_EQ(menu->actions().size(), 2);
        const QAction *primary = menu->actions()[0], *secondary = menu->actions()[1];
        EXPECT_EQ(primary->text(), "Primary Preview");
        EXPECT_EQ(secondary->text(), "Secondary Preview");
        EXPECT_TRUE(primary->isCheckable());
        EXPECT_TRUE(secondary->isCheckable());
        EXPECT_EQ(primary->isChecked(), emblem == 1 || emblem == 3);
        EXPECT_EQ(secondary->isChecked(), emblem == 2 || emblem == 3);
    }
}

TEST_F(ContextMenu, TogglesTheEmblems)
{
    QSignalSpy changed(node, SIGNAL(emblemChanged(PreviewNode*, PreviewNode::Emblem)));
    open();
    menu->actions()[0]->trigger();
    EXPECT_EQ(node->emblem(), PreviewNode::EmblemPrimary);
    open();
    menu->actions()[1]->trigger();
    EXPECT_EQ(node->emblem(), PreviewNode::EmblemPrimaryAndSecondary);
    EXPECT_EQ(changed.count(), 2);
}

TEST_F(ContextMenu, StaysAfterItHasClosedAndSurvivesItsNode)
{
    open();
    menu->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::processEvents();
    ASSERT_FALSE(menu.isNull()) << "nothing deletes it";
    graph.scene.clear();
    ASSERT_FALSE(menu.isNull());
    menu->actions()[0]->trigger();
}

TEST(ContextMenuOfADerivedNode, MayBeChangedOrEmptied)
{
    struct Derived : TestPreview {
        void displayingContextMenu(QMenu* menu, QAction* primary, QAction* secondary) override
        {
            EXPECT_EQ(menu->actions(), QList<QAction*>({primary, secondary}));
            if (!empty) {
                menu->removeAction(secondary);
                menu->addAction("More");
                return;
            }
            menu->clear();
            emptied = menu;
        }
        bool empty = false;
        QPointer<QMenu> emptied;
    };
    GraphView graph;
    auto* node = graph.add(new Derived, {50, 60});
    QGraphicsSceneContextMenuEvent event(QEvent::GraphicsSceneContextMenu);
    event.setScreenPos({300, 200});
    graph.scene.sendEvent(node, &event);
    QPointer<QMenu> menu = openMenu();
    ASSERT_FALSE(menu.isNull());
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_EQ(menu->actions()[1]->text(), "More");
    delete menu;

    node->empty = true;
    event.ignore();
    graph.scene.sendEvent(node, &event);
    EXPECT_TRUE(event.isAccepted()) << "also without a menu";
    EXPECT_EQ(openMenu(), nullptr);
    delete node->emptied;
}

TEST_F(ContextMenu, OpensByTheRightButton)
{
    QContextMenuEvent event(QContextMenuEvent::Mouse, {150, 68}, graph.view.viewport()->mapToGlobal({150, 68}));
    QApplication::sendEvent(graph.view.viewport(), &event);
    menu = openMenu();
    ASSERT_FALSE(menu.isNull());
    EXPECT_EQ(menu->actions().size(), 2);
}

// --- Thumbnails ----------------------------------------------------------------------------------------------------

TEST(PreviewNode, AsksTheHostForThumbnails)
{
    TestPreview node;
    ComboBoxInputField* const field = node.addThumbnails("method");
    int asked = 0;
    QObject::connect(
        &node,
        QOverload<PreviewNode*, const QString&, const std::vector<QVariant>&>::of(&PreviewNode::thumbnailsRequested),
        &node, [&](PreviewNode* sender, const QString& name, const std::vector<QVariant>& values) {
            ++asked;
            EXPECT_EQ(sender, &node);
            EXPECT_EQ(name, "method");
            EXPECT_EQ(values, (std::vector<QVariant>{"a", "b"}));
        });
    field->comboBoxThumbnailsRequested();
    EXPECT_EQ(asked, 1);
    node.thumbnailsRequested(field);
    EXPECT_EQ(asked, 2);
}

TEST(PreviewNode, HandsThumbnailsToTheirField)
{
    GraphView graph;
    auto* node = new TestPreview;
    node->addThumbnails("other");
    ComboBoxInputField* const field = node->addThumbnails("method");
    graph.add(node, {20, 20});
    auto* box = widgetOf<Ondrel::ThumbnailComboBox>(*field);
    box->showPopup();
    QImage picture(20, 10, QImage::Format_ARGB32);
    picture.fill(Qt::red);
    const auto image = Ondrel::Image(picture).toPtr();
    node->setRequestedThumbnail("unknown", 1, image);
    node->setRequestedThumbnail("Method", 1, image);
    node->setRequestedThumbnail("method", 1, image);
    EXPECT_TRUE(QTest::qWaitFor([box] {
        const auto thumbnail = box->itemData(1, Qt::DecorationRole).value<QImage>();
        return !thumbnail.isNull() && thumbnail.pixelColor(91, 91) == QColor(Qt::red);
    }));
    box->hidePopup();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST(PreviewNode, SignalsAndSlotsHaveTheirSignatures)
{
    const QMetaObject& meta = PreviewNode::staticMetaObject;
    for (const char* signature : {"thumbnailsRequested(PreviewNode*,QString,std::vector<QVariant>)",
                                  "emblemChanged(PreviewNode*,PreviewNode::Emblem)"})
        EXPECT_GE(meta.indexOfSignal(signature), 0) << signature;
    for (const char* signature : {"toggleEmblemPrimary()", "toggleEmblemSecondary()",
                                  "thumbnailsRequested(ComboBoxInputField*)", "updateHeader()"})
        EXPECT_GE(meta.indexOfSlot(signature), 0) << signature;
}

} // namespace
