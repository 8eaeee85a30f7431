#include "modesupport.h"

#include <gtest/gtest.h>

#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QScrollBar>

#include <cmath>
#include <limits>
#include <memory>
#include <utility>

namespace
{

using namespace OndrelTest;

TEST(ModeMapping, MapsBetweenRealAndDisplay)
{
    Mode mode;
    mode.setSizes(QSize(1000, 750), QSize(4000, 3000));
    const Mode& constant = mode;
    EXPECT_TRUE(isAt(constant.mapFromRealToDisplay(QPointF(400, 300)), 100, 75));
    EXPECT_TRUE(isAt(constant.mapFromDisplayToReal(QPointF(100, 75)), 400, 300));
    EXPECT_TRUE(isAt(constant.mapFromRealToDisplay(QPointF(-1.5, 0)), -0.375, 0));
    EXPECT_TRUE(isTransform(constant.transformFromRealToDisplay(), QTransform(0.25, 0, 0, 0.25, 0, 0)));
    EXPECT_TRUE(isTransform(constant.transformFromDisplayToReal(), QTransform(4, 0, 0, 4, 0, 0)));

    mode.setSizes(QSize(200, 50), QSize(100, 100));
    EXPECT_TRUE(isAt(constant.mapFromRealToDisplay(QPointF(3, 7)), 6, 3.5));
    EXPECT_TRUE(isAt(constant.mapFromDisplayToReal(QPointF(3, 7)), 1.5, 14));
    EXPECT_TRUE(isTransform(constant.transformFromRealToDisplay(), QTransform(2, 0, 0, 0.5, 0, 0)));
    EXPECT_TRUE(isTransform(constant.transformFromDisplayToReal(), QTransform(0.5, 0, 0, 2, 0, 0)));
}

// The ratio and each product are rounded to float; the point itself is not. Rounding the point first, or an unrounded
// ratio, gives 0.699999988079071 and 0.03326673433184624.
TEST(ModeMapping, RoundsRatiosAndProductsToFloat)
{
    Mode mode;
    mode.setSizes(QSize(1000, 333), QSize(3000, 1001));
    EXPECT_TRUE(isAt(mode.mapFromRealToDisplay(QPointF(2.1, 0.1)), 0.7000000476837158, 0.03326673060655594));
    EXPECT_TRUE(
        isTransform(mode.transformFromRealToDisplay(), QTransform(0.3333333432674408, 0, 0, 0.3326673209667206, 0, 0)));

    mode.setSizes(QSize(3000, 1001), QSize(1000, 333));
    EXPECT_TRUE(isAt(mode.mapFromDisplayToReal(QPointF(2.1, 0.1)), 0.7000000476837158, 0.03326673060655594));
    EXPECT_TRUE(
        isTransform(mode.transformFromDisplayToReal(), QTransform(0.3333333432674408, 0, 0, 0.3326673209667206, 0, 0)));

    mode.setSizes(QSize(10, 10), QSize(10, 10));
    EXPECT_TRUE(isAt(mode.mapFromRealToDisplay(QPointF(16777217, 0.1)), 16777216, 0.1F));
    EXPECT_TRUE(isAt(mode.mapFromDisplayToReal(QPointF(-16777217, 0.1)), -16777216, 0.1F));
}

// Divided as float the ratio would be 0.99999976.
TEST(ModeMapping, DividesSizesInDouble)
{
    Mode mode;
    mode.setSizes(QSize(16777217, 1), QSize(16777219, 1));
    const auto ratio = static_cast<float>(16777217.0 / 16777219.0);
    ASSERT_NE(ratio, 16777217.0F / 16777219.0F);
    EXPECT_TRUE(isAt(mode.mapFromRealToDisplay(QPointF(1, 1)), ratio, 1));
    EXPECT_EQ(mode.transformFromRealToDisplay().m11(), ratio);
    float x = 0, y = 0;
    mode.scaleFromRealToCanvas(x, y);
    EXPECT_EQ(x, ratio);
    EXPECT_EQ(y, 1);
}

TEST(ModeMapping, InvertsTheSizesAndNotTheRoundedRatio)
{
    Mode mode;
    const double realWidth = 4096, displayWidth = 1366;
    const auto inverse = static_cast<float>(realWidth / displayWidth);
    const auto ratio = static_cast<float>(displayWidth / realWidth);
    mode.setSizes(QSize(1366, 1), QSize(4096, 1));
    ASSERT_NE(static_cast<double>(inverse), 1.0 / static_cast<double>(ratio));
    EXPECT_EQ(mode.transformFromDisplayToReal().m11(), inverse);
    EXPECT_EQ(mode.mapFromDisplayToReal(QPointF(1, 0)).x(), inverse);
    EXPECT_EQ(mode.mapFromRealToDisplay(QPointF(1, 0)).x(), ratio);
}

TEST(ModeMapping, NeverMagnifiesLengthsOnTheCanvas)
{
    Mode mode;
    const auto scale = [&mode](const QSize& display, const QSize& real) {
        mode.setSizes(display, real);
        float x = -5, y = -5;
        mode.scaleFromRealToCanvas(x, y);
        return std::make_pair(x, y);
    };
    EXPECT_EQ(scale(QSize(1000, 750), QSize(4000, 3000)), std::make_pair(0.25F, 0.25F));
    EXPECT_EQ(scale(QSize(2000, 600), QSize(1000, 300)), std::make_pair(1.0F, 1.0F));
    EXPECT_TRUE(isAt(mode.mapFromRealToDisplay(QPointF(3, 4)), 6, 8));
    EXPECT_EQ(scale(QSize(100, 200), QSize(100, 100)), std::make_pair(1.0F, 1.0F));
    EXPECT_EQ(scale(QSize(10, 200), QSize(100, 100)), std::make_pair(0.1F, 1.0F));
    EXPECT_EQ(scale(QSize(200, 10), QSize(100, 30)), std::make_pair(1.0F, 0.33333334F));
    // Bounded above only.
    EXPECT_EQ(scale(QSize(0, -50), QSize(100, 100)), std::make_pair(0.0F, -0.5F));
}

TEST(ModeMapping, DividesByZeroWithoutComplaint)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    Mode mode;
    mode.setSizes(QSize(10, 10), QSize(0, 0));
    EXPECT_TRUE(isAt(mode.mapFromRealToDisplay(QPointF(1, -1)), kInfinity, -kInfinity));
    EXPECT_TRUE(isAt(mode.mapFromDisplayToReal(QPointF(1, 1)), 0, 0));
    float x = 0, y = 0;
    mode.scaleFromRealToCanvas(x, y);
    EXPECT_EQ(x, 1);
    EXPECT_EQ(y, 1);
    mode.setSizes(QSize(0, 0), QSize(10, 10));
    EXPECT_TRUE(isAt(mode.mapFromDisplayToReal(QPointF(1, -1)), kInfinity, -kInfinity));
}

// A canvas in a scene that is larger than the viewport, so that the scroll bars are in use.
class ModeView : public ::testing::Test
{
protected:
    void SetUp() override
    {
        view.setFrameShape(QFrame::NoFrame);
        view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.resize(300, 200);
        view.show();
        item = new QGraphicsRectItem(group.get());
        item->setPos(30.5, -20.25);
        scene.addItem(group.get());
        mode.initialize(&view, &scene, item);
        mode.setSizes(QSize(1000, 750), QSize(4000, 3000));
        look(QTransform::fromScale(2, 4), 260, -120);
    }
    void TearDown() override { scene.removeItem(group.get()); }

    void look(const QTransform& transform, int horizontal, int vertical)
    {
        view.setTransform(transform);
        view.horizontalScrollBar()->setValue(horizontal);
        view.verticalScrollBar()->setValue(vertical);
        ASSERT_EQ(view.horizontalScrollBar()->value(), horizontal);
        ASSERT_EQ(view.verticalScrollBar()->value(), vertical);
        ASSERT_LT(view.horizontalScrollBar()->minimum(), view.horizontalScrollBar()->maximum());
        ASSERT_LT(view.verticalScrollBar()->minimum(), view.verticalScrollBar()->maximum());
    }

    QGraphicsScene scene{-100, -50, 1000, 800};
    QGraphicsView view{&scene};
    std::unique_ptr<QGraphicsRectItem> group = std::make_unique<QGraphicsRectItem>();
    QGraphicsRectItem* item = nullptr;
    Mode mode;
};

TEST_F(ModeView, ScalesBetweenSceneAndDisplay)
{
    EXPECT_TRUE(isAt(mode.scaleFromSceneToDisplay(QPointF(3, 5)), 6, 20));
    EXPECT_TRUE(isAt(mode.scaleFromDisplayToScene(QPointF(6, 20)), 3, 5));
    EXPECT_TRUE(isAt(mode.mapFromSceneToDisplay(QPointF(40.5, -19.25)), 20, 4));
    EXPECT_TRUE(isAt(mode.mapFromDisplayToScene(QPointF(20, 4)), 40.5, -19.25));
}

TEST_F(ModeView, KeepsDoublePrecisionInTheScene)
{
    view.setTransform(QTransform::fromScale(3, 0.7));
    EXPECT_TRUE(isAt(mode.scaleFromSceneToDisplay(QPointF(0.1, 0.3)), 0.1 * 3.0, 0.3 * 0.7));
    ASSERT_NE(5 / 3.0, 5 * (1 / 3.0));
    ASSERT_NE(17 / 0.7, 17 * (1 / 0.7));
    EXPECT_TRUE(isAt(mode.scaleFromDisplayToScene(QPointF(5, 17)), 5 / 3.0, 17 / 0.7));
    EXPECT_TRUE(isAt(mode.mapFromSceneToDisplay(QPointF(0.1, 0.3)), (0.1 - 30.5) * 3.0, (0.3 + 20.25) * 0.7));
    EXPECT_TRUE(isAt(mode.mapFromDisplayToScene(QPointF(5, 17)), 5 / 3.0 + 30.5, 17 / 0.7 - 20.25));
}

TEST_F(ModeView, MapsBetweenSceneAndReal)
{
    EXPECT_TRUE(isAt(mode.mapFromSceneToReal(QPointF(40.5, -19.25)), 80, 16));
    EXPECT_TRUE(isAt(mode.mapFromRealToScene(QPointF(80, 16)), 40.5, -19.25));
    // Rounded to float between real and display only.
    mode.setSizes(QSize(1000, 333), QSize(3000, 1001));
    EXPECT_TRUE(isAt(mode.mapFromRealToScene(QPointF(2.1, 0.1)), 0.7000000476837158 / 2 + 30.5,
                     0.03326673060655594 / 4 - 20.25));
    mode.setSizes(QSize(3000, 1001), QSize(1000, 333));
    item->setPos(0, 0);
    EXPECT_TRUE(isAt(mode.mapFromSceneToReal(QPointF(1.05, 0.025)), 0.7000000476837158, 0.03326673060655594));
}

// The view scale is the entries m11 and m22, whatever else the transform has.
TEST_F(ModeView, ReadsTheScaleEntriesOfAnyTransform)
{
    view.setTransform(QTransform(2, 0.5, 0.25, 4, 8, 16));
    EXPECT_TRUE(isAt(mode.scaleFromSceneToDisplay(QPointF(3, 5)), 6, 20));
    EXPECT_TRUE(isAt(mode.scaleFromDisplayToScene(QPointF(6, 20)), 3, 5));
    view.setTransform(QTransform::fromScale(-2, 4));
    EXPECT_TRUE(isAt(mode.scaleFromSceneToDisplay(QPointF(3, 5)), -6, 20));
}

TEST_F(ModeView, TakesTheItemsPositionInItsParent)
{
    group->setPos(1000, 2000);
    EXPECT_TRUE(isAt(mode.mapFromSceneToDisplay(QPointF(40.5, -19.25)), 20, 4));
    EXPECT_TRUE(isAt(mode.mapFromDisplayToScene(QPointF(20, 4)), 40.5, -19.25));
    EXPECT_TRUE(isTransform(mode.transformFromDisplayToView(), QTransform(1, 0, 0, 1, -199, 39)));
}

TEST_F(ModeView, FollowsItemAndView)
{
    item->setPos(10, 20);
    EXPECT_TRUE(isAt(mode.mapFromSceneToDisplay(QPointF(11, 22)), 2, 8));
    view.setTransform(QTransform::fromScale(0.5, 0.25));
    EXPECT_TRUE(isAt(mode.mapFromSceneToDisplay(QPointF(12, 28)), 1, 2));
}

TEST_F(ModeView, RoundsViewPointsToWholePixels)
{
    EXPECT_TRUE(isAt(mode.mapFromViewToDisplay(QPointF(10, 11)), 209, -28));
    EXPECT_TRUE(isAt(mode.mapFromViewToDisplay(QPointF(10.4, 10.6)), 209, -28));
    EXPECT_TRUE(isAt(mode.mapFromViewToReal(QPointF(10.4, 10.6)), 836, -112));
    EXPECT_TRUE(isAt(mode.mapFromViewToDisplay(QPointF(0.5, -0.4)), 200, -39));
    EXPECT_TRUE(isAt(mode.mapFromViewToDisplay(QPointF(-1.6, 2.5)), 197, -36));
    for (const QPointF& point : {QPointF(-0.5, -1.5), QPointF(0.49, 7.51), QPointF(-0.51, 299.5)}) {
        const QPointF scenePoint = view.mapToScene(point.toPoint());
        const QPointF display = mode.mapFromSceneToDisplay(scenePoint);
        const QPointF real = mode.mapFromSceneToReal(scenePoint);
        EXPECT_TRUE(isAt(mode.mapFromViewToDisplay(point), display.x(), display.y()));
        EXPECT_TRUE(isAt(mode.mapFromViewToReal(point), real.x(), real.y()));
    }
}

TEST_F(ModeView, AnswersWholePixelsOfTheView)
{
    EXPECT_TRUE(isAt(mode.mapFromDisplayToView(QPointF(209, -28)), 10, 11));
    EXPECT_TRUE(isAt(mode.mapFromDisplayToView(QPointF(209.8, -27.6)), 11, 11));
    EXPECT_TRUE(isAt(mode.mapFromDisplayToView(QPointF(0, 0)), -199, 39));
    EXPECT_TRUE(isAt(mode.mapFromRealToView(QPointF(836, -112)), 10, 11));
    EXPECT_TRUE(isAt(mode.mapFromRealToView(QPointF(839.2, -110.4)), 11, 11));
}

TEST_F(ModeView, BuildsTheTransformToTheView)
{
    EXPECT_TRUE(isTransform(mode.transformFromDisplayToView(), QTransform(1, 0, 0, 1, -199, 39)));
    EXPECT_TRUE(isTransform(mode.transformFromRealToView(), QTransform(0.25, 0, 0, 0.25, -199, 39)));
    mode.setSizes(QSize(2000, 375), QSize(1000, 3000));
    EXPECT_TRUE(isTransform(mode.transformFromDisplayToView(), QTransform(1, 0, 0, 1, -199, 39)));
    EXPECT_TRUE(isTransform(mode.transformFromRealToView(), QTransform(2, 0, 0, 0.125, -199, 39)));

    look(QTransform::fromScale(2, 4), 0, 0);
    EXPECT_TRUE(isTransform(mode.transformFromDisplayToView(), QTransform(1, 0, 0, 1, 61, -81)));
}

TEST_F(ModeView, BuildsTheTransformThroughAShearedView)
{
    look(QTransform(2, 0.5, 0.25, 4, 8, 16), 100, 200);
    EXPECT_TRUE(
        isTransform(mode.transformFromDisplayToView(), QTransform(1, 0.25, 0.0625, 1, 63.9375 - 100, -49.75 - 200)));
    mode.setSizes(QSize(1000, 750), QSize(2000, 3000));
    EXPECT_TRUE(isTransform(mode.transformFromRealToView(),
                            QTransform(0.5, 0.125, 0.015625, 0.25, 63.9375 - 100, -49.75 - 200)));
}

TEST_F(ModeView, MultipliesTheFactorsFromTheLeft)
{
    look(QTransform::fromScale(1.3, 0.7), 117, 41);
    mode.setSizes(QSize(1000, 333), QSize(3000, 1001));
    item->setPos(0.1, 12345.6);
    const QTransform expected = QTransform::fromScale(1 / 1.3, 1 / 0.7) * QTransform::fromTranslate(0.1, 12345.6) *
                                view.transform() * QTransform::fromTranslate(-117, -41);
    EXPECT_TRUE(isTransform(mode.transformFromDisplayToView(), expected));
    const QTransform real = QTransform::fromScale(0.3333333432674408, 0.3326673209667206) * expected;
    const QTransform actual = mode.transformFromRealToView();
    // One rounding more or less, by where the product begins; ratios that are not rounded to float differ by 1e-8.
    EXPECT_NEAR(actual.m11(), real.m11(), 1e-15);
    EXPECT_NEAR(actual.m22(), real.m22(), 1e-15);
    EXPECT_NEAR(actual.dx(), real.dx(), 1e-11);
    EXPECT_NEAR(actual.dy(), real.dy(), 1e-11);
}

TEST_F(ModeView, AgreesWithTheTransformUpToWholePixels)
{
    const QTransform rotated = QTransform::fromScale(1.3, 1.7) * QTransform(0.96, 0.28, -0.28, 0.96, 0, 0);
    for (const QTransform& transform : {QTransform::fromScale(2, 4), QTransform::fromScale(1.3, 1.7), rotated}) {
        for (const QPoint& scroll : {QPoint(0, 0), QPoint(37, 101), QPoint(311, 250)}) {
            look(transform, scroll.x(), scroll.y());
            for (const QPointF& point : {QPointF(0, 0), QPointF(209.8, -27.6), QPointF(512.25, 333.7)}) {
                const QPointF exact = mode.transformFromDisplayToView().map(point);
                const QPointF whole = mode.mapFromDisplayToView(point);
                EXPECT_NEAR(whole.x(), exact.x(), 0.5 + 1e-9);
                EXPECT_NEAR(whole.y(), exact.y(), 0.5 + 1e-9);
                EXPECT_EQ(whole.x(), std::floor(whole.x()));
                EXPECT_EQ(whole.y(), std::floor(whole.y()));
                const QPointF exactReal = mode.transformFromRealToView().map(point);
                const QPointF wholeReal = mode.mapFromRealToView(point);
                EXPECT_NEAR(wholeReal.x(), exactReal.x(), 0.5 + 1e-4);
                EXPECT_NEAR(wholeReal.y(), exactReal.y(), 0.5 + 1e-4);
            }
        }
    }
}

// A scene smaller than the viewport is centred by an indent that no scroll bar shows: the transform leaves it out.
TEST_F(ModeView, LeavesTheIndentOfASmallSceneOutOfTheTransform)
{
    scene.setSceneRect(0, 0, 100, 50);
    view.setTransform(QTransform());
    item->setPos(10, 5);
    ASSERT_EQ(view.horizontalScrollBar()->value(), 0);
    ASSERT_EQ(view.verticalScrollBar()->value(), 0);
    EXPECT_TRUE(isTransform(mode.transformFromDisplayToView(), QTransform(1, 0, 0, 1, 10, 5)));
    const QPoint centred = view.mapFromScene(QPointF(10, 5));
    EXPECT_GT(centred.x(), 10);
    EXPECT_TRUE(isAt(mode.mapFromDisplayToView(QPointF(0, 0)), centred.x(), centred.y()));
}

} // namespace
