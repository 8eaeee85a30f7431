#include "widgetevents.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/widgets/colorpickerwidget.h>
#include <ondrel/widgets/precisionslider.h>
#include <ondrel/widgets/radialcolorpickerwidget.h>

#include <lcms2.h>

#include <QComboBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>

#include <array>
#include <cmath>
#include <memory>

using namespace Ondrel;
using namespace OndrelTest;

namespace
{

const char* const kSliders[] = {"redSlider",       "greenSlider", "blueSlider", "hueSlider",  "saturationSlider",
                                "lightnessSlider", "labLSlider",  "labASlider", "labBSlider", "alphaSlider"};

struct Picker : ColorPickerWidget {
    explicit Picker(unsigned short r = 65535, unsigned short g = 0, unsigned short b = 0, unsigned short a = 65535,
                    bool showAlpha = true)
        : ColorPickerWidget(nullptr, r, g, b, a, showAlpha)
        , changed(this, SIGNAL(valueChanged(const Ondrel::Color&, const QVariant&)))
    {
    }
    PrecisionSlider& slider(const char* name) const { return *findChild<PrecisionSlider*>(QLatin1String(name)); }
    double number(const char* name) const { return slider(name).valueAsString().toDouble(); }
    QSignalSpy changed;
};

void key(QWidget& widget)
{
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

} // namespace

TEST(ColorPickerWidget, opensWithItsColorEverywhere)
{
    const Picker picker;
    EXPECT_EQ(picker.number("hueSlider"), 0);
    EXPECT_EQ(picker.number("saturationSlider"), 1);
    EXPECT_EQ(picker.number("lightnessSlider"), 0.5);
    EXPECT_GT(picker.number("labASlider"), 40000); // red is far from neutral
    double hue = -1, saturation = -1, lightness = -1;
    picker.findChild<RadialColorPickerWidget*>()->color(hue, saturation, lightness);
    EXPECT_EQ(hue, 0);
    EXPECT_EQ(saturation, 1);
    EXPECT_EQ(lightness, 0.5);
    EXPECT_EQ(picker.changed.count(), 0);
}

TEST(ColorPickerWidget, setsColorsInSilence)
{
    Picker picker;
    picker.setColor(Color(1, 2, 3, 4));
    EXPECT_EQ(picker.changed.count(), 0);
    EXPECT_EQ(picker.number("redSlider"), 1);
    EXPECT_EQ(picker.number("greenSlider"), 2);
    EXPECT_EQ(picker.number("blueSlider"), 3);
    EXPECT_EQ(picker.number("alphaSlider"), 4);
}

TEST(ColorPickerWidget, saysEachChangeOfASliderOnce)
{
    Picker picker(1000, 20000, 60000, 65535);
    picker.setUserData(42);
    int expected = 0;
    for (const char* name : kSliders) {
        picker.slider(name).setValue(QStringLiteral("0.5"));
        if (QByteArray(name).startsWith("lab") || QByteArray(name).startsWith("alpha"))
            picker.slider(name).setValue(QStringLiteral("30000"));
        expected = picker.changed.count();
        picker.slider(name).setValue(QStringLiteral("1"));
        EXPECT_EQ(picker.changed.count(), expected + 1) << name;
        const Color color = picker.changed.last().at(0).value<Color>();
        EXPECT_EQ(color.red, picker.number("redSlider")) << name;
        EXPECT_EQ(color.blue, picker.number("blueSlider")) << name;
        EXPECT_EQ(picker.changed.last().at(1).toInt(), 42);
    }
}

TEST(ColorPickerWidget, takesGreyWithoutChroma)
{
    Picker picker(30000, 30000, 30000);
    EXPECT_EQ(picker.number("hueSlider"), 0);
    EXPECT_EQ(picker.number("saturationSlider"), 0);
    picker.slider("lightnessSlider").setValue(QStringLiteral("0.25"));
    for (const char* name : {"redSlider", "greenSlider", "blueSlider"})
        EXPECT_EQ(picker.number(name), 16383); // cut, not rounded
}

TEST(ColorPickerWidget, keepsAlphaWhereItIsHidden)
{
    Picker picker(1, 2, 3, 777, false);
    EXPECT_TRUE(picker.slider("alphaSlider").isHidden());
    picker.slider("redSlider").setValue(QStringLiteral("9"));
    ASSERT_EQ(picker.changed.count(), 1);
    EXPECT_EQ(picker.changed[0].at(0).value<Color>().alpha, 777);
}

TEST(ColorPickerWidget, countsUnknownPagesAsRgb)
{
    Picker picker;
    auto* combo = picker.findChild<QComboBox*>(QStringLiteral("colorSpaceComboBox"));
    picker.setColorSpacePage(ColorPickerWidget::CIELab);
    EXPECT_EQ(combo->currentIndex(), 2);
    picker.replaceColorspaceComboBox();
    combo = picker.findChild<QComboBox*>(QStringLiteral("colorSpaceComboBox"));
    EXPECT_EQ(combo->currentIndex(), 2);
    EXPECT_EQ(combo->itemText(2), QStringLiteral("CIELab"));
    picker.setColorSpacePage(ColorPickerWidget::ColorSpacePage(3));
    EXPECT_EQ(picker.colorSpacePage(), ColorPickerWidget::RGB);
    EXPECT_EQ(combo->currentIndex(), 0);
}

TEST(ColorPickerWidget, saysAMoveOnTheWheelOnce)
{
    Picker picker;
    auto& wheel = *picker.findChild<RadialColorPickerWidget*>();
    wheel.resize(204, 192);
    press(wheel, {20, 95});
    EXPECT_EQ(picker.changed.count(), 1);
    for (int i = 0; i < 100; ++i)
        move(wheel, {20 + i, 95});
    EXPECT_EQ(picker.changed.count(), 101);
    release(wheel, {20, 95});
    EXPECT_EQ(picker.changed.count(), 102);
    EXPECT_GT(picker.number("greenSlider"), picker.number("blueSlider"));
}

TEST(ColorPickerWidget, cancelsTheEyeDropperByAnyKey)
{
    Picker picker;
    QSignalSpy started(&picker, SIGNAL(eyeDropperStarted())), completed(&picker, SIGNAL(eyeDropperCompleted()));
    showActive(picker);
    picker.findChild<QPushButton*>(QStringLiteral("eyeDropperButton"))->click();
    EXPECT_TRUE(picker.isEyeDropperActive());
    EXPECT_EQ(QWidget::mouseGrabber(), &picker);
    EXPECT_EQ(QWidget::keyboardGrabber(), &picker);
    EXPECT_EQ(started.count(), 1);
    key(picker);
    EXPECT_FALSE(picker.isEyeDropperActive());
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    EXPECT_EQ(completed.count(), 1);
    EXPECT_EQ(picker.number("redSlider"), 65535);
    key(picker);
    EXPECT_EQ(completed.count(), 1);
}

TEST(ColorPickerWidget, letsGoOfTheGrabsWhenItIsDeleted)
{
    QWidget other;
    showActive(other);
    auto picker = std::make_unique<Picker>();
    picker->setGrabMouseAndKeyboardWidget(&other);
    picker->beginEyeDropper();
    EXPECT_EQ(QWidget::mouseGrabber(), &other);
    picker.reset();
    EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
    key(other);
}

// The nearest 16-bit samples of the standard formula, which has its halves rounded up.
TEST(ColorPickerWidget, roundsTheColorsOfHslToSamples)
{
    Picker picker;
    picker.slider("hueSlider").setValue(QStringLiteral("30"));
    picker.slider("saturationSlider").setValue(QStringLiteral("0.25"));
    picker.slider("lightnessSlider").setValue(QStringLiteral("0.3"));
    // chroma 0.15, second 0.075, base 0.225
    EXPECT_EQ(picker.number("redSlider"), std::round(0.375 * 65535));
    EXPECT_EQ(picker.number("greenSlider"), std::round(0.3 * 65535));
    EXPECT_EQ(picker.number("blueSlider"), std::round(0.225 * 65535));
    picker.slider("hueSlider").setValue(QStringLiteral("400")); // no such sector: the base alone
    for (const char* name : {"redSlider", "greenSlider", "blueSlider"})
        EXPECT_EQ(picker.number(name), std::round(0.225 * 65535)) << name;
}

TEST(ColorPickerWidget, survivesNumbersBeyondAllSamples)
{
    Picker picker;
    for (const char* text : {"1e300", "-1e300", "nan", "9e9"}) {
        picker.slider("saturationSlider").setValue(QLatin1String(text));
        picker.slider("lightnessSlider").setValue(QLatin1String(text));
        picker.slider("hueSlider").setValue(QLatin1String(text));
    }
    picker.setColor(Color(1, 2, 3, 4));
    EXPECT_EQ(picker.number("redSlider"), 1);
}

TEST(ColorPickerWidget, movesTheLabPageAsLittleCmsConverts)
{
    const auto close = [](cmsHPROFILE profile) { cmsCloseProfile(profile); };
    using Profile = std::unique_ptr<void, decltype(close)>;
    std::vector<unsigned char> display;
    ColorManager::displayProfileAsICCProfile(display);
    const Profile lab(CreateLabColorProfile(), close);
    const Profile rgb(display.empty() ? Create_sRGBColorProfile()
                                      : cmsOpenProfileFromMem(display.data(), cmsUInt32Number(display.size())),
                      close);
    const auto transform = [&](cmsHPROFILE from, cmsUInt32Number in, cmsHPROFILE to, cmsUInt32Number out,
                               const std::array<cmsUInt16Number, 3>& pixel) {
        std::array<cmsUInt16Number, 3> result = {};
        const auto handle =
            cmsCreateTransform(from, in, to, out, ColorManager::getDisplayRenderingIntent(), cmsFLAGS_NOCACHE);
        cmsDoTransform(handle, pixel.data(), result.data(), 1);
        cmsDeleteTransform(handle);
        return result;
    };
    Picker picker(1000, 40000, 60000);
    const auto there = transform(rgb.get(), TYPE_RGB_16, lab.get(), TYPE_Lab_16, {1000, 40000, 60000});
    EXPECT_EQ(picker.number("labLSlider"), there[0]);
    EXPECT_EQ(picker.number("labASlider"), there[1]);
    EXPECT_EQ(picker.number("labBSlider"), there[2]);

    picker.slider("labLSlider").setValue(QStringLiteral("45000"));
    const auto back = transform(lab.get(), TYPE_Lab_16, rgb.get(), TYPE_RGB_16, {45000, there[1], there[2]});
    EXPECT_EQ(picker.number("redSlider"), back[0]);
    EXPECT_EQ(picker.number("greenSlider"), back[1]);
    EXPECT_EQ(picker.number("blueSlider"), back[2]);
}
