#include "widgetevents.h"

#include <ondrel/core/image.h>
#include <ondrel/widgets/histogramwidget.h>

#include <QSignalSpy>

using namespace Ondrel;

namespace
{

std::shared_ptr<const Image> filled(const QColor& color)
{
    QImage picture(16, 16, QImage::Format_ARGB32);
    picture.fill(color);
    return std::make_shared<Image>(picture);
}

const QColor background(28, 28, 28);

} // namespace

TEST(HistogramWidget, paintsOnlyItsBackgroundBeforeACount)
{
    HistogramWidget widget(nullptr);
    widget.resize(100, 50);
    EXPECT_EQ(widget.focusPolicy(), Qt::NoFocus);
    EXPECT_EQ(widget.sizeHint().width(), 200);
    QImage expected = widget.grab().toImage();
    expected.fill(background);
    EXPECT_EQ(widget.grab().toImage(), expected);
}

TEST(HistogramWidget, showsACount)
{
    HistogramWidget widget(nullptr);
    widget.resize(100, 50);
    widget.setScale(HistogramWidget::Linear);
    QSignalSpy built(&widget, SIGNAL(histogramBuilt()));
    widget.update(filled(QColor(255, 0, 0)));
    ASSERT_TRUE(built.wait()); // the count runs on another thread
    widget.setChannel(HistogramWidget::Red);
    EXPECT_NE(widget.grab().toImage().pixelColor(98, 45), background);
    widget.setChannel(HistogramWidget::Green);
    EXPECT_EQ(widget.grab().toImage().pixelColor(98, 30), background);
    EXPECT_EQ(built.count(), 1);
}

TEST(HistogramWidget, takesImagesWithoutPixelsAndSmallSizes)
{
    HistogramWidget widget(nullptr);
    QSignalSpy built(&widget, SIGNAL(histogramBuilt()));
    for (const QSize& size : {QSize(0, 0), QSize(1, 1), QSize(2, 2)}) {
        widget.resize(size);
        for (const auto& image : {std::shared_ptr<const Image>(), std::make_shared<const Image>(), filled(Qt::white)}) {
            built.clear();
            widget.update(image);
            ASSERT_TRUE(built.count() > 0 || built.wait()); // the count runs on another thread
            widget.grab();
        }
    }
}

TEST(HistogramWidget, mayGoDuringACount)
{
    for (int i = 0; i < 20; ++i) {
        auto widget = std::make_unique<HistogramWidget>(nullptr);
        widget->resize(256, 50);
        widget->update(filled(Qt::white));
        widget.reset();
        QCoreApplication::processEvents();
    }
}

TEST(HistogramWidget, countsTheRunningAndTheLastOfSeveralImages)
{
    HistogramWidget widget(nullptr);
    widget.resize(100, 50);
    QSignalSpy built(&widget, SIGNAL(histogramBuilt()));
    QImage large(4000, 4000, QImage::Format_ARGB32);
    large.fill(Qt::green);
    widget.update(std::make_shared<Image>(large));
    for (int i = 0; i < 4; ++i)
        widget.update(filled(Qt::green));
    widget.update(filled(QColor(255, 0, 0)));
    ASSERT_TRUE(QTest::qWaitFor([&built] { return built.count() == 2; })); // two counts on another thread
    EXPECT_FALSE(built.wait(50));                                          // no third
    widget.setChannel(HistogramWidget::Red);
    EXPECT_NE(widget.grab().toImage().pixelColor(98, 45), background);
}

namespace
{

// The height of the shape in one column of a count of 300 pixels of 100 and one pixel of 200, of 256.
int heightAt(const HistogramWidget& widget, int x)
{
    const QImage image = const_cast<HistogramWidget&>(widget).grab().toImage();
    for (int y = 0; y < image.height(); ++y) {
        if (image.pixelColor(x, y) != background)
            return image.height() - y;
    }
    return 0;
}

} // namespace

TEST(HistogramWidget, drawsASinglePixelAtTheBottomOfALogarithmicScale)
{
    HistogramWidget widget(nullptr);
    widget.resize(256, 100);
    QImage picture(301, 1, QImage::Format_ARGB32);
    picture.fill(QColor(100, 100, 100));
    picture.setPixelColor(7, 0, QColor(200, 200, 200));
    QSignalSpy built(&widget, SIGNAL(histogramBuilt()));
    widget.update(std::make_shared<Image>(picture));
    ASSERT_TRUE(built.wait()); // the count runs on another thread
    widget.setChannel(HistogramWidget::Red);
    EXPECT_GE(heightAt(widget, 100), 98);
    EXPECT_LE(heightAt(widget, 200), 1); // log2(1) is 0
    EXPECT_LE(heightAt(widget, 150), 1);
    widget.setScale(HistogramWidget::Linear);
    EXPECT_GE(heightAt(widget, 100), 98);
    EXPECT_LE(heightAt(widget, 200), 2);
}
