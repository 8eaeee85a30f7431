#include "tests/widgets/widgetevents.h"

#include <ondrel/widgets/comboboxpopup.h>
#include <ondrel/widgets/listcombobox.h>
#include <ondrel/widgets/widgethelpers.h>

#include <QAccessible>
#include <QAccessibleInterface>
#include <QListView>
#include <QListWidget>
#include <QPointer>
#include <QScrollBar>
#include <QSignalSpy>

#include <memory>

namespace
{

using namespace OndrelTest;
using Ondrel::ComboBoxPopup;
using Ondrel::ListComboBox;

struct Box : ListComboBox {
    explicit Box(int entries = 5)
        : ListComboBox(nullptr)
    {
        for (int i = 0; i < entries; ++i)
            addItem(QString("Entry %1").arg(i), QString::number(i));
        resize(160, 24);
    }
    using ListComboBox::focusNextPrevChild;

    bool isOpen() const { return popupFrame && popupFrame->isVisible(); }
    QModelIndex index(int row) const { return model()->index(row, 0); }
    QPoint center(int row) { return popup()->view()->visualRect(index(row)).center(); }
    QWidget& list() { return *popup()->view()->viewport(); }
};

// A double-click interval of no length, after which a popup takes clicks.
class ComboBox : public testing::Test
{
protected:
    void SetUp() override { QApplication::setDoubleClickInterval(0); }
    void TearDown() override { QApplication::setDoubleClickInterval(m_interval); }

    // The interval of no length ends in the event loop.
    static void passInterval() { QApplication::processEvents(); }

private:
    int m_interval = QApplication::doubleClickInterval();
};

TEST_F(ComboBox, IsBuiltAsAList)
{
    Box box;
    EXPECT_TRUE(box.testAttribute(Qt::WA_NoSystemBackground));
    EXPECT_EQ(box.minimumContentsLength(), 12);
    EXPECT_NE(qobject_cast<QListWidget*>(box.view()), nullptr);
    EXPECT_EQ(box.view()->verticalScrollMode(), QAbstractItemView::ScrollPerPixel);
    EXPECT_EQ(box.model(), box.view()->model());
    EXPECT_FALSE(box.focusNextPrevChild(true));
    EXPECT_FALSE(box.focusNextPrevChild(false));
}

TEST_F(ComboBox, TheHeightOfTheRows)
{
    Box box(3);
    const int row = box.view()->sizeHintForRow(0);
    EXPECT_EQ(box.popupVisibleItemHeightSum(), 3 * row);
    box.addSeparator();
    EXPECT_EQ(box.popupVisibleItemHeightSum(), 3 * row + 10);
    box.setMaxVisibleItems(2);
    EXPECT_EQ(box.popupVisibleItemHeightSum(), 2 * row);
    EXPECT_EQ(Box(0).popupVisibleItemHeightSum(), 0);
    auto* list = qobject_cast<QListWidget*>(box.view());
    list->setRowHidden(0, true);
    list->setRowHidden(1, true);
    EXPECT_EQ(box.popupVisibleItemHeightSum(), row + 10) << "from the first visible row on";
}

TEST_F(ComboBox, SeparatorsCannotBeChosen)
{
    Box box(1);
    box.addSeparator();
    auto* list = qobject_cast<QListWidget*>(box.view());
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->count(), 2);
    EXPECT_EQ(list->item(1)->flags(), Qt::NoItemFlags);
    EXPECT_EQ(list->sizeHintForRow(1), 10);
    ASSERT_NE(list->itemWidget(list->item(1)), nullptr);
    EXPECT_EQ(list->itemWidget(list->item(1))->objectName(), "node_combobox_dropdown_separator");
}

TEST_F(ComboBox, EntriesAreDisabledAndEnabled)
{
    Box box;
    const Qt::ItemFlags chosen = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    box.setItemEnabled(1, false);
    EXPECT_EQ(box.index(1).flags() & chosen, Qt::NoItemFlags);
    box.setItemEnabled(1, true);
    EXPECT_EQ(box.index(1).flags() & chosen, chosen);
    box.setItemEnabled(-1, false);
    box.setItemEnabled(99, false);
    EXPECT_EQ(box.index(4).flags() & chosen, chosen);
}

TEST_F(ComboBox, ThePopupIsAsWideAsItsEntriesAndTheBox)
{
    Box box;
    EXPECT_EQ(box.calculatePopupSize().width(), 160);
    const QMargins margins = box.view()->contentsMargins();
    EXPECT_EQ(box.calculatePopupSize().height(), box.popupVisibleItemHeightSum() + margins.top() + margins.bottom());
    box.addItem(QString(80, 'W'));
    const int column = box.view()->sizeHintForColumn(0);
    EXPECT_EQ(box.calculatePopupSize().width(), column);
    box.setMaxVisibleItems(2);
    EXPECT_EQ(box.calculatePopupSize().width(), column + box.view()->verticalScrollBar()->sizeHint().width());
}

TEST_F(ComboBox, ClicksWithinTheDoubleClickIntervalSelectNothing)
{
    QApplication::setDoubleClickInterval(60000);
    Box box;
    showActive(box);
    box.showPopup();
    ASSERT_TRUE(box.isOpen());
    QSignalSpy selected(box.popup(), SIGNAL(itemSelected(QModelIndex)));
    QTest::mouseClick(&box.list(), Qt::LeftButton, {}, box.center(3));
    box.popup()->itemActivatedOrClicked(box.index(2));
    QTest::mouseRelease(box.popup(), Qt::LeftButton, {}, {1, 1});
    EXPECT_EQ(selected.count(), 0);
    EXPECT_TRUE(box.isOpen());
    EXPECT_EQ(box.currentIndex(), 0);
    QTest::mousePress(box.popup(), Qt::LeftButton, {}, {1, 1});
    EXPECT_FALSE(box.isOpen()) << "a press outside of the list always closes";
    EXPECT_EQ(box.currentIndex(), 0);
}

TEST_F(ComboBox, ALaterClickSelectsAndCloses)
{
    Box box;
    showActive(box);
    QSignalSpy changed(&box, SIGNAL(currentIndexChanged(int)));
    box.showPopup();
    EXPECT_EQ(box.view()->currentIndex().row(), 0);
    EXPECT_TRUE(box.view()->hasFocus());
    QPointer<ComboBoxPopup> first = box.popup();
    EXPECT_EQ(box.popup(), first) << "made once while it is open";
    passInterval();
    QTest::mouseClick(&box.list(), Qt::LeftButton, {}, box.center(3));
    EXPECT_EQ(box.currentIndex(), 3);
    EXPECT_EQ(changed.count(), 1);
    EXPECT_FALSE(box.isOpen());
    QTRY_VERIFY2(first.isNull(), "a closed popup is deleted by the event loop");
    box.showPopup();
    EXPECT_TRUE(box.isOpen());
    EXPECT_EQ(box.view()->currentIndex().row(), 3);
    box.hidePopup();
    EXPECT_TRUE(box.hasFocus());
}

TEST_F(ComboBox, DisabledEntriesAndSeparatorsStayUnchosen)
{
    Box box;
    box.addSeparator();
    box.setItemEnabled(2, false);
    showActive(box);
    box.showPopup();
    passInterval();
    QSignalSpy selected(box.popup(), SIGNAL(itemSelected(QModelIndex)));
    QTest::mouseClick(&box.list(), Qt::LeftButton, {}, box.center(2));
    QTest::mouseClick(&box.list(), Qt::LeftButton, {}, box.center(5));
    box.popup()->itemActivatedOrClicked(box.index(5));
    box.popup()->itemActivatedOrClicked(QModelIndex());
    EXPECT_EQ(selected.count(), 0);
    EXPECT_TRUE(box.isOpen());
    box.popup()->itemActivatedOrClicked(box.index(1));
    EXPECT_EQ(selected.count(), 1);
    EXPECT_EQ(box.currentIndex(), 1);
}

TEST_F(ComboBox, ALaterReleaseOnTheFrameCloses)
{
    Box box;
    showActive(box);
    box.showPopup();
    passInterval();
    QTest::mouseRelease(box.popup(), Qt::LeftButton, {}, {1, 1});
    EXPECT_FALSE(box.isOpen());
    EXPECT_EQ(box.currentIndex(), 0);
}

TEST_F(ComboBox, WorksByKeyboardAlone)
{
    Box box;
    showActive(box);
    box.setFocus();
    QTest::keyClick(&box, Qt::Key_Space);
    ASSERT_TRUE(box.isOpen());
    passInterval();
    QTest::keyClick(box.view(), Qt::Key_Down);
    QTest::keyClick(box.view(), Qt::Key_Down);
    QTest::keyClick(box.view(), Qt::Key_Return);
    EXPECT_EQ(box.currentIndex(), 2);
    EXPECT_FALSE(box.isOpen());
    EXPECT_TRUE(box.hasFocus());
    QTest::keyClick(&box, Qt::Key_Down);
    EXPECT_EQ(box.currentIndex(), 3);
}

TEST_F(ComboBox, DeleteReachesTheScene)
{
    struct Scene : QGraphicsScene {
        void keyPressEvent(QKeyEvent* event) override
        {
            QGraphicsScene::keyPressEvent(event);
            ignoredDelete |= event->key() == Qt::Key_Delete && !event->isAccepted();
        }
        bool ignoredDelete = false;
    } scene;
    QGraphicsView view(&scene);
    auto* box = new Box;
    scene.addWidget(box);
    showActive(view);
    box->setFocus();
    ASSERT_NE(scene.focusItem(), nullptr);
    QTest::keyClick(view.viewport(), Qt::Key_Delete);
    EXPECT_TRUE(scene.ignoredDelete);

    QKeyEvent event(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
    event.accept();
    static_cast<QObject*>(box)->event(&event);
    EXPECT_FALSE(event.isAccepted());
}

TEST_F(ComboBox, SelectsInASceneAtEveryZoom)
{
    for (const double zoom : {0.5, 1.0, 2.0}) {
        auto* box = new Box;
        SceneHost host(box, zoom, {20, 20});
        box->showPopup();
        ASSERT_TRUE(box->isOpen());
        QGraphicsProxyWidget* const proxy = box->popup()->graphicsProxyWidget();
        ASSERT_NE(proxy, nullptr);
        EXPECT_EQ(proxy->zValue(), 999);
        EXPECT_EQ(proxy->parentItem(), nullptr);
        passInterval();
        const QPoint entry = box->list().mapTo(box->popup(), box->center(3));
        QTest::mouseClick(host.view.viewport(), Qt::LeftButton, {}, host.view.mapFromScene(proxy->mapToScene(entry)));
        EXPECT_EQ(box->currentIndex(), 3) << zoom;
        EXPECT_FALSE(box->isOpen());
    }
}

TEST_F(ComboBox, WorksByKeyboardAloneInAScene)
{
    auto* box = new Box;
    SceneHost host(box);
    host.proxy->setFocus();
    box->setFocus();
    QTest::keyClick(host.view.viewport(), Qt::Key_Space);
    ASSERT_TRUE(box->isOpen());
    passInterval();
    QTest::keyClick(host.view.viewport(), Qt::Key_Down);
    QTest::keyClick(host.view.viewport(), Qt::Key_Return);
    EXPECT_EQ(box->currentIndex(), 1);
    EXPECT_FALSE(box->isOpen());
}

TEST_F(ComboBox, MayBeDeletedWhileThePopupIsOpen)
{
    for (const bool inScene : {false, true}) {
        auto* box = new Box;
        QPointer<Box> alive = box;
        auto host = inScene ? std::make_unique<SceneHost>(box) : nullptr;
        if (!inScene)
            showActive(*box);
        box->showPopup();
        ASSERT_TRUE(box->isOpen());
        if (inScene)
            host.reset();
        else
            delete box;
        EXPECT_TRUE(alive.isNull());
    }
}

TEST_F(ComboBox, SurvivesTheLossOfThePopup)
{
    auto* box = new Box;
    SceneHost host(box);
    box->showPopup();
    delete box->popup()->graphicsProxyWidget();
    EXPECT_FALSE(box->isOpen());
    box->hidePopup();
    EXPECT_EQ(box->count(), 0) << "the list went with the popup";
}

TEST(ComboBoxHelpers, IndexByData)
{
    Box box;
    Ondrel::SetComboBoxIndexByData(&box, 3);
    EXPECT_EQ(box.currentIndex(), 3) << "compared as variants";
    Ondrel::SetComboBoxIndexByData(&box, "2");
    EXPECT_EQ(box.currentIndex(), 2);
    Ondrel::SetComboBoxIndexByData(&box, "none");
    EXPECT_EQ(box.currentIndex(), 2);
}

TEST(ComboBoxHelpers, ProxyOfParents)
{
    EXPECT_EQ(Ondrel::WidgetParentGraphicsProxyWidget(nullptr), nullptr);
    QWidget plain;
    EXPECT_EQ(Ondrel::WidgetParentGraphicsProxyWidget(&plain), nullptr);
    QGraphicsScene scene;
    auto* node = new QWidget;
    auto* child = new QWidget(node);
    QGraphicsProxyWidget* const proxy = scene.addWidget(node);
    EXPECT_EQ(Ondrel::WidgetParentGraphicsProxyWidget(child), proxy);
    EXPECT_EQ(Ondrel::WidgetParentGraphicsProxyWidget(node), proxy);
}

TEST(ComboBoxHelpers, IsAComboBoxToAScreenReader)
{
    Box box;
    box.setCurrentIndex(2);
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&box);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::ComboBox);
    EXPECT_EQ(accessible->text(QAccessible::Value), "Entry 2");
}

} // namespace
