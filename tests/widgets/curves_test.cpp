#include "widgetevents.h"

#include <ondrel/widgets/curveswidget.h>

#include <QSignalSpy>

using namespace Ondrel;
using namespace OndrelTest;

namespace
{

struct Shown : CurvesWidget {
    Shown()
        : CurvesWidget(nullptr)
    {
        resize(320, 320);
    }
    std::vector<CubicBezierSpline::Point> knots(Channel channel = Overall) const { return cubicSplineKnots(channel); }
};

Curves diagonals()
{
    const std::vector<CubicBezierSpline::Point> line = {{0, 0}, {65535, 65535}};
    return {line, line, line, line};
}

Curves withMiddle()
{
    Curves curves = diagonals();
    curves.all = {{0, 0}, {32767, 32767}, {65535, 65535}};
    return curves;
}

} // namespace

TEST(CurvesWidget, setsCurvesInSilence)
{
    Shown widget;
    QSignalSpy changed(&widget, SIGNAL(knotsChanged()));
    widget.setCurves(withMiddle());
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(widget.knots().size(), 3u);
    EXPECT_EQ(widget.knots(CurvesWidget::Red).size(), 2u);
    widget.resetCurrentChannel();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(widget.knots().size(), 2u);
    EXPECT_EQ(widget.sizeHint(), QSize(320, 320));
    EXPECT_EQ(widget.focusPolicy(), Qt::ClickFocus);
}

TEST(CurvesWidget, addsAKnotAndDragsItAtOnce)
{
    Shown widget;
    QSignalSpy changed(&widget, SIGNAL(knotsChanged()));
    press(widget, {160, 80});
    EXPECT_EQ(changed.count(), 1);
    ASSERT_EQ(widget.knots().size(), 3u);
    EXPECT_EQ(widget.knots()[1].x, 32767);
    EXPECT_EQ(widget.knots()[1].y, 49151);
    move(widget, {100, 80});
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(widget.knots()[1].x, 20479);
    release(widget, {100, 80});
    EXPECT_EQ(changed.count(), 2); // where it was
    move(widget, {50, 50});
    EXPECT_EQ(changed.count(), 2);
}

TEST(CurvesWidget, addsAKnotAtTheBottomInSilence)
{
    Shown widget;
    QSignalSpy changed(&widget, SIGNAL(knotsChanged()));
    press(widget, {160, 320});
    EXPECT_EQ(widget.knots().size(), 3u);
    EXPECT_EQ(changed.count(), 0);
    release(widget, {160, 319});
    EXPECT_EQ(widget.knots()[1].y, 204);
    press(widget, {60, 0});
    EXPECT_EQ(widget.knots()[1].y, 65535);
}

TEST(CurvesWidget, losesAKnotDraggedAcrossItsNeighbour)
{
    Shown widget;
    widget.setCurves(withMiddle());
    QSignalSpy changed(&widget, SIGNAL(knotsChanged()));
    press(widget, {160, 160});
    const int before = changed.count();
    move(widget, {330, 160});
    EXPECT_EQ(widget.knots().size(), 2u);
    EXPECT_EQ(changed.count(), before + 1);
    move(widget, {200, 100});
    ASSERT_EQ(widget.knots().size(), 3u);
    EXPECT_EQ(widget.knots()[1].x, 40959);
    move(widget, {330, 160});
    release(widget, {330, 160});
    EXPECT_EQ(widget.knots().size(), 2u);
}

TEST(CurvesWidget, endsADragAtAChangeOfChannel)
{
    Shown widget;
    QSignalSpy changed(&widget, SIGNAL(knotsChanged()));
    press(widget, {160, 80});
    widget.setChannel(CurvesWidget::Green);
    EXPECT_EQ(widget.channel(), CurvesWidget::Green);
    move(widget, {100, 10});
    release(widget, {100, 10});
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(widget.knots()[1].x, 32767);
    EXPECT_EQ(widget.knots(CurvesWidget::Green).size(), 2u);
}

TEST(CurvesWidget, deletesTheSelectedKnotOfThree)
{
    Shown widget;
    widget.setCurves(withMiddle());
    QSignalSpy changed(&widget, SIGNAL(knotsChanged()));
    QTest::keyClick(&widget, Qt::Key_Delete); // none selected
    EXPECT_EQ(changed.count(), 0);
    QTest::mouseClick(&widget, Qt::LeftButton, {}, {160, 10});
    const int before = changed.count();
    QTest::keyClick(&widget, Qt::Key_A);
    EXPECT_EQ(changed.count(), before);
    QTest::keyClick(&widget, Qt::Key_Backspace);
    EXPECT_EQ(changed.count(), before + 1);
    EXPECT_EQ(widget.knots().size(), 2u);
    QTest::mouseClick(&widget, Qt::LeftButton, {}, {0, 319});
    const int selected = changed.count();
    QTest::keyClick(&widget, Qt::Key_Delete);
    EXPECT_EQ(changed.count(), selected);
    EXPECT_EQ(widget.knots().size(), 2u);
}

TEST(CurvesWidget, swallowsEveryKey)
{
    Shown widget;
    for (const int key : {Qt::Key_Tab, Qt::Key_Escape, Qt::Key_Return, Qt::Key_A}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::ControlModifier);
        event.ignore();
        QApplication::sendEvent(&widget, &event);
        EXPECT_TRUE(event.isAccepted());
    }
}

TEST(CurvesWidget, worksInAScene)
{
    auto* widget = new Shown;
    SceneHost host(widget, 0.5);
    QSignalSpy changed(widget, SIGNAL(knotsChanged()));
    host.click({160, 80});
    EXPECT_GE(changed.count(), 1);
    ASSERT_EQ(widget->knots().size(), 3u);
    EXPECT_NEAR(widget->knots()[1].x, 32767, 500);
}

TEST(CurvesWidget, paintsBackgroundGridAndCurve)
{
    Shown widget;
    widget.setChannel(CurvesWidget::Red);
    QImage image = widget.grab().toImage();
    EXPECT_EQ(image.pixelColor(20, 60), QColor(28, 28, 28));
    EXPECT_EQ(image.pixelColor(20, 40), QColor(56, 56, 56));
    EXPECT_EQ(image.pixelColor(80, 20), QColor(56, 56, 56));
    const QColor curve = image.pixelColor(100, 219);
    EXPECT_GT(curve.red(), 100); // the current curve is on top of the others
    EXPECT_LT(curve.blue(), 90);

    QImage picture(8, 8, QImage::Format_ARGB32);
    picture.fill(Qt::white);
    const Image white(picture);
    widget.setImage(white);
    EXPECT_NE(widget.grab().toImage(), image);
    widget.setImage(Image());
    EXPECT_EQ(widget.grab().toImage(), image);
}

TEST(CurvesWidget, survivesCurvesAndSizesOfAnyKind)
{
    const std::vector<std::vector<CubicBezierSpline::Point>> lists = {
        {}, {{5, 5}}, {{60000, 1}, {5, 2}}, {{7, 7}, {7, 9}}, {{-100000, -5}, {200000, 900000}}};
    for (const auto& knots : lists) {
        for (const QSize& size : {QSize(0, 0), QSize(1, 1), QSize(40, 30)}) {
            Shown widget;
            widget.setCurves({knots, knots, knots, knots});
            widget.resize(size);
            widget.grab();
            press(widget, {0, 0});
            move(widget, {4000, -4000});
            release(widget, {1, 1});
            QTest::keyClick(&widget, Qt::Key_Delete);
            widget.grab();
            EXPECT_LE(widget.knots().size(), knots.size() + 1);
        }
    }
}

TEST(CurvesWidget, fillsTheSelectedKnotWhereTheKeysGo)
{
    Shown widget;
    showActive(widget);
    widget.setCurves(withMiddle());
    widget.setFocus(Qt::OtherFocusReason);
    ASSERT_TRUE(widget.hasFocus());
    press(widget, {100, 10}); // a new knot, off the diagonal
    release(widget, {100, 10});
    // Of an outline of 6 pixels the middle shows what is below.
    const QColor filled = widget.grab().toImage().pixelColor(100, 10);
    EXPECT_EQ(filled, QColor(Qt::white));
    widget.clearFocus();
    EXPECT_NE(widget.grab().toImage().pixelColor(100, 10), filled);
}

TEST(CurvesWidget, hidesItsKnotsWhenItIsDisabled)
{
    Shown widget;
    const QImage enabled = widget.grab().toImage();
    widget.setEnabled(false);
    const QImage disabled = widget.grab().toImage();
    EXPECT_GT(enabled.pixelColor(2, 319).blue(), 150); // the rim of the first knot, beside the curve
    EXPECT_LT(disabled.pixelColor(2, 319).blue(), 100);
}

TEST(CurvesWidget, drawsTheOtherCurvesUnlessToldNotTo)
{
    Shown widget;
    Curves curves = diagonals();
    curves.green = {{0, 40000}, {65535, 40000}};
    widget.setCurves(curves);
    const int y = 320 - int(40000 / 65535.0f * 320); // where the flat curve lies
    const auto greenAt = [&](const QImage& image) {
        return std::max(image.pixelColor(10, y).green(), image.pixelColor(10, y - 1).green());
    };
    EXPECT_GT(greenAt(widget.grab().toImage()), 100);
    widget.showAllChannelCurves(false);
    EXPECT_LE(greenAt(widget.grab().toImage()), 56);
    widget.setChannel(CurvesWidget::Green);
    EXPECT_GT(greenAt(widget.grab().toImage()), 100); // the current one is always there
}

TEST(CurvesWidget, paintsTheHistogramOfItsChannelAsTallAsItsHighestBin)
{
    Shown widget;
    QImage picture(16, 16, QImage::Format_ARGB32);
    picture.fill(QColor(0, 255, 0));
    widget.setImage(Image(picture));
    widget.setChannel(CurvesWidget::Green);
    // All counts are in the last bin, so the shape is a ramp within the last 320 / 255 pixels.
    const QColor below(28, 28, 28);
    EXPECT_EQ(widget.grab().toImage().pixelColor(316, 90), below);
    EXPECT_NE(widget.grab().toImage().pixelColor(319, 300), below);
    widget.setChannel(CurvesWidget::Red); // all in the first
    EXPECT_NE(widget.grab().toImage().pixelColor(0, 300), below);
    EXPECT_EQ(widget.grab().toImage().pixelColor(4, 90), below);
}
