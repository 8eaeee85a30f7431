#include "tests/widgets/widgetevents.h"

#include <ondrel/widgets/comboboxpopup.h>
#include <ondrel/widgets/listcombobox.h>
#include <ondrel/widgets/widgethelpers.h>

#include <QScreen>

#include <cmath>

namespace
{

using namespace OndrelTest;
using Ondrel::CalculateComboBoxPopupGeometry;

constexpr QSize kPopup(120, 90);

QComboBox* box()
{
    auto* result = new QComboBox;
    result->resize(100, 24);
    return result;
}

QRect listRect(QWidget& comboBox)
{
    QStyleOptionComboBox option;
    option.initFrom(&comboBox);
    return comboBox.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxListBoxPopup, &comboBox);
}

TEST(PopupGeometry, RightUnderThePlainBox)
{
    const std::unique_ptr<QComboBox> comboBox(box());
    QFrame popup;
    comboBox->move(50, 60);
    comboBox->show();
    const QPoint corner = comboBox->mapToGlobal(QPoint(0, 0));
    const QRect list = listRect(*comboBox);
    EXPECT_EQ(CalculateComboBoxPopupGeometry(comboBox.get(), &popup, kPopup),
              QRect(corner + QPoint(list.left(), list.height()), kPopup));
    EXPECT_EQ(popup.graphicsProxyWidget(), nullptr);
}

TEST(PopupGeometry, StaysOnTheScreen)
{
    const std::unique_ptr<QComboBox> comboBox(box());
    QFrame popup;
    comboBox->show();
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    comboBox->move(screen.right() - 40, 100);
    const QRect right = CalculateComboBoxPopupGeometry(comboBox.get(), &popup, kPopup);
    EXPECT_EQ(right.right(), screen.right());
    EXPECT_EQ(right.top(), comboBox->mapToGlobal(QPoint(0, 0)).y() + listRect(*comboBox).height());
    comboBox->move(100, screen.bottom() - 60);
    const QRect bottom = CalculateComboBoxPopupGeometry(comboBox.get(), &popup, kPopup);
    EXPECT_EQ(bottom.bottom(), screen.bottom());
    EXPECT_EQ(bottom.size(), kPopup);
}

TEST(PopupGeometry, SurvivesABoxOutsideOfAllScreens)
{
    const std::unique_ptr<QComboBox> comboBox(box());
    QFrame popup;
    comboBox->move(-5000, -5000);
    EXPECT_EQ(CalculateComboBoxPopupGeometry(comboBox.get(), &popup, kPopup).size(), kPopup);
}

TEST(PopupGeometry, SurvivesASceneWithoutViews)
{
    QGraphicsScene scene;
    QComboBox* const comboBox = box();
    scene.addWidget(comboBox);
    QFrame popup;
    EXPECT_EQ(CalculateComboBoxPopupGeometry(comboBox, &popup, kPopup).size(), kPopup);
}

// The popup belongs to the scene from then on.
QRect inScene(QComboBox* comboBox)
{
    return CalculateComboBoxPopupGeometry(comboBox, new QFrame(nullptr, Qt::Popup), kPopup);
}

TEST(PopupGeometry, RightUnderTheBoxAtEveryZoom)
{
    for (const double zoom : {0.5, 1.0, 2.0}) {
        QComboBox* const comboBox = box();
        SceneHost host(comboBox, zoom, {30, 20});
        comboBox->resize(100, 24);
        const QRect rect = inScene(comboBox);
        const double slack = 2; // the height of the box in the view comes from rounded coordinates of the scene
        EXPECT_NEAR(rect.left(), 30 + listRect(*comboBox).left() / zoom, slack) << zoom;
        EXPECT_NEAR(rect.top(), 20 + comboBox->height(), slack) << zoom;
        EXPECT_EQ(rect.size(), kPopup);
    }
}

TEST(PopupGeometry, StaysInTheView)
{
    for (const double zoom : {0.5, 1.0, 2.0}) {
        const double width = 600 / zoom;
        const double height = 400 / zoom;
        QComboBox* const comboBox = box();
        SceneHost host(comboBox, zoom, {width - 50, 20});
        comboBox->resize(100, 24);
        host.scene.setSceneRect(0, 0, width, height);
        host.view.setFrameShape(QFrame::NoFrame);
        QApplication::processEvents();
        const QRectF visible = host.view.mapToScene(host.view.viewport()->rect()).boundingRect();
        const QRect right = inScene(comboBox);
        EXPECT_NEAR(right.left() + right.width(), visible.right(), 2) << zoom;
        EXPECT_NEAR(right.top(), 20 + comboBox->height(), 2) << zoom;
        host.proxy->setPos(20, height - 60);
        const QRect bottom = inScene(comboBox);
        EXPECT_NEAR(bottom.top() + bottom.height(), visible.bottom(), 2) << zoom;
        EXPECT_NEAR(bottom.left(), 20, 2) << zoom;
        host.proxy->setPos(0, 0);
        const QRect corner = inScene(comboBox);
        EXPECT_NEAR(corner.left(), 0, 2) << zoom;
    }
}

TEST(PopupGeometry, ThePopupLiesAboveAllOfTheScene)
{
    QComboBox* const comboBox = box();
    SceneHost host(comboBox);
    auto* popup = new QFrame(nullptr, Qt::Popup);
    CalculateComboBoxPopupGeometry(comboBox, popup, kPopup);
    QGraphicsProxyWidget* const proxy = popup->graphicsProxyWidget();
    ASSERT_NE(proxy, nullptr);
    EXPECT_EQ(proxy->scene(), &host.scene);
    EXPECT_EQ(proxy->zValue(), 999);
    EXPECT_EQ(proxy->parentItem(), nullptr);
    CalculateComboBoxPopupGeometry(comboBox, popup, kPopup);
    EXPECT_EQ(popup->graphicsProxyWidget(), proxy) << "added once";
}

} // namespace
