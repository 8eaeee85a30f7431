#include "widgetevents.h"

#include <ondrel/widgets/gradientwidget.h>

using namespace Ondrel;
using namespace OndrelTest;

TEST(GradientWidget, runsInItsDirection)
{
    const struct {
        GradientWidget::Direction direction;
        QPoint dark, light;
    } cases[] = {{GradientWidget::LeftToRight, {2, 20}, {37, 20}},
                 {GradientWidget::RightToLeft, {37, 20}, {2, 20}},
                 {GradientWidget::TopToBottom, {20, 2}, {20, 37}},
                 {GradientWidget::BottomToTop, {20, 37}, {20, 2}}};
    for (const auto& c : cases) {
        for (const auto interpolation : {GradientColorInterpolationRGB, GradientColorInterpolationLCH}) {
            GradientWidget widget(nullptr);
            widget.resize(40, 40);
            widget.setDirection(c.direction);
            widget.setColorInterpolation(interpolation);
            const QImage image = widget.grab().toImage();
            EXPECT_LT(image.pixelColor(c.dark).green(), 40) << c.direction << interpolation;
            EXPECT_GT(image.pixelColor(c.light).green(), 215) << c.direction << interpolation;
        }
    }
}

TEST(GradientWidget, hintsALongStrip)
{
    GradientWidget widget(nullptr);
    EXPECT_EQ(widget.focusPolicy(), Qt::NoFocus);
    EXPECT_EQ(widget.minimumSizeHint(), QSize(200, 15));
    widget.setDirection(GradientWidget::BottomToTop);
    EXPECT_EQ(widget.minimumSizeHint(), QSize(15, 200));
}

TEST(GradientWidget, completesItsStops)
{
    GradientWidget widget(nullptr);
    ASSERT_EQ(widget.stops().size(), 2u);
    widget.setStops({{0.5f, 65535, 0, 0, 65535}});
    const auto stops = widget.stops();
    ASSERT_EQ(stops.size(), 2u);
    EXPECT_EQ(stops[0].position, 0.0f);
    EXPECT_EQ(stops[1].position, 1.0f);
    widget.resize(40, 15);
    EXPECT_EQ(widget.grab().toImage().pixelColor(20, 7), QColor(255, 0, 0));
    widget.setStops({});
    widget.grab();
}

TEST(GradientWidget, showsABoardUnderTranslucentStops)
{
    GradientWidget widget(nullptr);
    widget.resize(64, 32);
    widget.setStops({{0.0f, 0, 0, 0, 0}, {1.0f, 0, 0, 0, 0}});
    const QImage image = widget.grab().toImage();
    QList<int> greys;
    for (int x = 2; x < 64; x += 4)
        greys << image.pixelColor(x, 2).red();
    EXPECT_TRUE(greys.contains(129));
    EXPECT_TRUE(greys.contains(208));
}

TEST(GradientWidget, rendersAgainAfterEachChange)
{
    GradientWidget widget(nullptr);
    widget.setColorInterpolation(GradientColorInterpolationLCH);
    for (const int length : {200, 50, 120}) {
        widget.resize(length, 15);
        const QImage image = widget.grab().toImage();
        EXPECT_LT(image.pixelColor(1, 7).red(), 40);
        EXPECT_GT(image.pixelColor(length - 2, 7).red(), 215);
    }
    widget.setStops({{0.0f, 65535, 0, 0, 65535}, {1.0f, 65535, 0, 0, 65535}});
    EXPECT_NEAR(widget.grab().toImage().pixelColor(60, 7).green(), 0, 3);
    widget.resize(0, 0);
    widget.grab();
    widget.resize(1, 1);
    widget.grab();
}

namespace
{

struct CountsPaints : GradientWidget {
    CountsPaints()
        : GradientWidget(nullptr)
    {
    }
    int paints = 0;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        GradientWidget::paintEvent(event);
    }
};

} // namespace

TEST(GradientWidget, paintsAgainOnlyForAnotherDirectionOrInterpolation)
{
    CountsPaints widget;
    widget.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));
    QCoreApplication::processEvents();
    const int before = widget.paints;
    widget.setDirection(GradientWidget::LeftToRight);
    widget.setColorInterpolation(GradientColorInterpolationRGB);
    QCoreApplication::processEvents();
    EXPECT_EQ(widget.paints, before);
    widget.setDirection(GradientWidget::BottomToTop);
    QTRY_COMPARE(widget.paints, before + 1);
    widget.setColorInterpolation(GradientColorInterpolationLCH);
    QTRY_COMPARE(widget.paints, before + 2);
}
