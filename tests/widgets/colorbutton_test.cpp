#include "widgetevents.h"

#include <ondrel/widgets/colorpushbutton.h>
#include <ondrel/widgets/precisionslider.h>

#include <QMenu>
#include <QSignalSpy>

using namespace Ondrel;
using namespace OndrelTest;

namespace
{

// The picker whose menu is open; pickers on their way out are hidden.
ColorPickerWidget* openPicker()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        auto* menu = qobject_cast<QMenu*>(window);
        if (menu && menu->isVisible())
            return menu->findChild<ColorPickerWidget*>();
    }
    return nullptr;
}

double number(const ColorPickerWidget& picker, const char* slider)
{
    return picker.findChild<PrecisionSlider*>(QLatin1String(slider))->valueAsString().toDouble();
}

} // namespace

TEST(ColorPushButton, keepsItsColorInSilence)
{
    ColorPushButton button(true, nullptr);
    QSignalSpy changed(&button, SIGNAL(valueChanged(const Ondrel::Color&)));
    EXPECT_EQ(button.color().red, 0);
    EXPECT_EQ(button.color().alpha, 65535);
    EXPECT_GE(button.minimumHeight(), 22);
    button.setColor(QColor(255, 0, 0, 128));
    EXPECT_EQ(button.color().red, 65535);
    EXPECT_NEAR(button.color().alpha, 32896, 1);
    EXPECT_EQ(button.qColor().red(), 255);
    EXPECT_EQ(changed.count(), 0);
}

TEST(ColorPushButton, opensAtThePageThatWasLeft)
{
    ColorPushButton button(true, nullptr);
    showActive(button);
    button.click();
    ColorPickerWidget* picker = openPicker();
    ASSERT_TRUE(picker);
    picker->setColorSpacePage(ColorPickerWidget::HSL);
    qobject_cast<QMenu*>(picker->window())->close();
    EXPECT_FALSE(openPicker());
    button.click();
    picker = openPicker();
    ASSERT_TRUE(picker);
    EXPECT_EQ(picker->colorSpacePage(), ColorPickerWidget::HSL);
    picker->window()->close();
}

TEST(ColorPushButton, passesColorsBothWays)
{
    ColorPushButton button(true, nullptr);
    showActive(button);
    button.click();
    ColorPickerWidget* picker = openPicker();
    ASSERT_TRUE(picker);
    QSignalSpy colors(&button, SIGNAL(valueChanged(const Ondrel::Color&)));
    QSignalSpy qColors(&button, SIGNAL(valueChanged(const QColor&)));
    button.setColor(Color(100, 200, 300, 400));
    EXPECT_EQ(number(*picker, "greenSlider"), 200);
    EXPECT_EQ(number(*picker, "alphaSlider"), 400);
    EXPECT_EQ(colors.count(), 0);
    picker->findChild<PrecisionSlider*>(QStringLiteral("redSlider"))->setValue(QStringLiteral("500"));
    EXPECT_EQ(colors.count(), 1);
    EXPECT_EQ(qColors.count(), 1);
    EXPECT_EQ(button.color().red, 500);
    picker->window()->close();
}

TEST(ColorPushButton, comesBackAfterTheEyeDropper)
{
    ColorPushButton button(true, nullptr);
    showActive(button);
    button.setColor(Color(100, 200, 300, 65535));
    button.click();
    QPointer<ColorPickerWidget> picker = openPicker();
    ASSERT_TRUE(picker);
    picker->beginEyeDropper();
    EXPECT_FALSE(openPicker());
    ASSERT_TRUE(picker); // alive without its menu
    EXPECT_TRUE(picker->isEyeDropperActive());
    picker->endEyeDropper();
    ColorPickerWidget* again = openPicker();
    ASSERT_TRUE(again);
    EXPECT_NE(again, picker.data());
    EXPECT_EQ(number(*again, "blueSlider"), 300);
    again->window()->close();
}

TEST(ColorPushButton, mayGoWhileItsPopupOrEyeDropperIsOpen)
{
    for (const bool dropper : {false, true}) {
        auto button = std::make_unique<ColorPushButton>(true, nullptr);
        showActive(*button);
        button->click();
        ASSERT_TRUE(openPicker());
        if (dropper)
            openPicker()->beginEyeDropper();
        button.reset();
        EXPECT_FALSE(openPicker());
        EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST(ColorPushButton, showsTheBoardInTheLowerRightHalfOnly)
{
    ColorPushButton button(true, nullptr);
    button.resize(80, 40);
    button.setColor(QColor(255, 0, 0, 128));
    const QImage image = button.grab().toImage();
    EXPECT_EQ(image.pixelColor(12, 10), QColor(255, 0, 0));
    EXPECT_EQ(image.pixelColor(22, 10), QColor(255, 0, 0));
    const QColor a = image.pixelColor(60, 30), b = image.pixelColor(68, 30);
    EXPECT_NE(a, b);
    EXPECT_GT(a.green(), 50);
    EXPECT_GT(b.green(), 50);
}
