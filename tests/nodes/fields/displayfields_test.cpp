// The fields around the curves editor and the histogram.

#include "fieldsupport.h"

#include <ondrel/nodes/fields/curvesfield.h>
#include <ondrel/nodes/fields/histogramfield.h>
#include <ondrel/widgets/curveseditorwidget.h>
#include <ondrel/widgets/curveswidget.h>
#include <ondrel/widgets/histogramwidget.h>

namespace
{

using namespace OndrelTest;
using Ondrel::Curves;
using Ondrel::CurvesEditorWidget;
using Ondrel::CurvesField;
using Ondrel::CurvesWidget;
using Ondrel::HistogramField;
using Ondrel::HistogramWidget;

Ondrel::Image flat(const QColor& color)
{
    QImage image(20, 20, QImage::Format_ARGB32);
    image.fill(color);
    return Ondrel::Image(image);
}

TEST(CurvesField, IsASquareEditor)
{
    QGraphicsScene scene;
    auto* field = new CurvesField("curves", nullptr);
    EXPECT_EQ(field->name(), "curves");
    EXPECT_EQ(field->displayName(), "");
    EXPECT_EQ(field->anchor(), nullptr);
    EXPECT_EQ(field->minWidth(), 250);
    EXPECT_EQ(field->minHeight(), 250);
    EXPECT_EQ(field->labelWidth(), 0);
    field->setSize(10, 10, 10);
    scene.addItem(field);
    auto* editor = widgetOf<CurvesEditorWidget>(*field);
    EXPECT_EQ(proxyOf(*field)->pos(), QPointF(0, 0));
    EXPECT_EQ(proxyOf(*field)->parentItem(), field);
    EXPECT_EQ(editor->minimumHeight(), 250);
    EXPECT_EQ(editor->maximumHeight(), 250);
    field->setSize(310.75F, 260, 40);
    EXPECT_EQ(editor->minimumWidth(), 310);
    EXPECT_EQ(editor->maximumWidth(), 310);
    EXPECT_EQ(editor->minimumHeight(), 250) << "the height stays";
}

TEST(CurvesField, IsFixedAt250AtFirst)
{
    QGraphicsScene scene;
    auto* field = new CurvesField("curves", nullptr);
    scene.addItem(field);
    auto* editor = widgetOf<CurvesEditorWidget>(*field);
    EXPECT_EQ(editor->minimumSize(), QSize(250, 250));
    EXPECT_EQ(editor->maximumSize(), QSize(250, 250));
}

TEST(CurvesField, ForwardsToItsEditor)
{
    GraphView graph;
    auto* field = graph.add(new CurvesField("curves", nullptr), {20, 20});
    auto* editor = widgetOf<CurvesEditorWidget>(*field);
    QSignalSpy changed(field, SIGNAL(valueChanged()));
    Curves curves = field->curves();
    const auto knots = [](const Curves& c) {
        QList<QPoint> list;
        for (const auto& point : c.all)
            list << QPoint(point.x, point.y);
        return list;
    };
    EXPECT_EQ(knots(curves), knots(editor->curves()));
    const QList<QPoint> before = knots(curves);
    curves.all = {{0, 100}, {30000, 20000}, {65535, 65000}};
    field->setCurves(curves);
    EXPECT_EQ(knots(editor->curves()), QList<QPoint>({{0, 100}, {30000, 20000}, {65535, 65000}}));
    EXPECT_EQ(knots(field->curves()), knots(editor->curves()));
    EXPECT_EQ(changed.count(), 0) << "setting is silent";
    field->resetCurrentChannel();
    EXPECT_EQ(knots(field->curves()), before);
    changed.clear();
    QMetaObject::invokeMethod(editor, "changed");
    EXPECT_EQ(changed.count(), 1);

    QImage look = editor->grab().toImage();
    const auto differs = [&look, editor] {
        const QImage old = look;
        look = editor->grab().toImage();
        return old != look;
    };
    curves.red = {{0, 65535}, {65535, 0}};
    field->setCurves(curves);
    field->showAllChannelCurves(true);
    EXPECT_TRUE(differs());
    field->setChannel(CurvesWidget::Red);
    EXPECT_TRUE(differs());
    field->resetCurrentChannel();
    EXPECT_EQ(field->curves().red.size(), 2U);
    EXPECT_EQ(field->curves().red[0].y, 0) << "the red one is reset";
    EXPECT_EQ(knots(field->curves()), knots(curves));
}

TEST(CurvesField, HandsGradientsAndImageOn)
{
    GraphView graph;
    auto* field = graph.add(new CurvesField("curves", nullptr), {20, 20});
    auto* editor = widgetOf<CurvesEditorWidget>(*field);
    CurvesEditorWidget reference(nullptr);
    reference.setFixedSize(250, 250);
    const auto same = [&] { return editor->grab().toImage() == reference.grab().toImage(); };
    EXPECT_TRUE(same());
    const std::vector<Ondrel::GradientStop> stops{{0.0F, 65535, 0, 0, 65535}, {1.0F, 0, 65535, 0, 65535}};
    field->setChannelGradient(CurvesWidget::Overall, stops);
    EXPECT_FALSE(same());
    reference.setChannelGradient(CurvesWidget::Overall, stops);
    EXPECT_TRUE(same());
    field->setImage(flat(Qt::red));
    reference.setImage(flat(Qt::red));
    EXPECT_TRUE(QTest::qWaitFor(same));
}

TEST(CurvesField, OwnsItsEditor)
{
    expectNoWidgetLeft([] { return new CurvesField("curves", nullptr); });
}

HistogramField* histogram()
{
    return new HistogramField("histogram", HistogramWidget::Red, HistogramWidget::Linear, nullptr);
}

TEST(HistogramField, IsAsHighAsItsWidget)
{
    std::unique_ptr<HistogramField> field(histogram());
    EXPECT_EQ(field->name(), "histogram");
    EXPECT_EQ(field->displayName(), "");
    EXPECT_EQ(field->anchor(), nullptr);
    EXPECT_EQ(field->minWidth(), 182);
    EXPECT_EQ(field->minHeight(), 150);
    EXPECT_EQ(field->labelWidth(), 0);
    field->setCompressedHeight(true);
    EXPECT_EQ(field->minHeight(), 75);
    field->setCompressedHeight(false);
    EXPECT_EQ(field->minHeight(), 150);
    field->setSize(10, 10, 10);
}

TEST(HistogramField, FitsItsWidgetInWidthAndTakesNoFocus)
{
    QGraphicsScene scene;
    HistogramField* const field = histogram();
    scene.addItem(field);
    auto* widget = widgetOf<HistogramWidget>(*field);
    EXPECT_EQ(proxyOf(*field)->pos(), QPointF(0, 0));
    EXPECT_EQ(proxyOf(*field)->parentItem(), field);
    EXPECT_EQ(proxyOf(*field)->focusPolicy(), Qt::NoFocus);
    EXPECT_EQ(widget->focusPolicy(), Qt::NoFocus);
    EXPECT_EQ(widget->minimumSize(), QSize(182, 150));
    EXPECT_EQ(widget->maximumSize(), QSize(182, 150));
    field->setSize(240.75F, 150, 40);
    field->setCompressedHeight(true);
    EXPECT_EQ(widget->minimumSize(), QSize(240, 75));
    EXPECT_EQ(widget->maximumSize(), QSize(240, 75));
    EXPECT_EQ(paintedItem(*field, {260, 160}), painted({260, 160}, [](QPainter&) {})) << "no label beside it";
}

TEST(HistogramField, ShowsAnImage)
{
    QGraphicsScene scene;
    HistogramField* const field = histogram();
    scene.addItem(field);
    auto* widget = widgetOf<HistogramWidget>(*field);
    HistogramWidget reference(nullptr);
    reference.setChannel(HistogramWidget::Red);
    reference.setScale(HistogramWidget::Linear);
    reference.setFixedSize(182, 150);
    QSignalSpy built(field, SIGNAL(histogramBuilt())), builtReference(&reference, SIGNAL(histogramBuilt()));
    const auto image = flat(QColor(200, 30, 30)).toPtr();
    field->setImage(image);
    reference.update(image);
    ASSERT_TRUE(built.count() > 0 || built.wait());
    ASSERT_TRUE(builtReference.count() > 0 || builtReference.wait());
    EXPECT_EQ(built.count(), 1);
    const auto same = [&] { return widget->grab().toImage() == reference.grab().toImage(); };
    EXPECT_TRUE(same());
    reference.setChannel(HistogramWidget::Green);
    EXPECT_FALSE(same());
    field->setChannel(HistogramWidget::Green);
    EXPECT_TRUE(same());

    const auto two = [] {
        QImage picture(20, 20, QImage::Format_ARGB32);
        picture.fill(QColor(0, 200, 0));
        picture.setPixelColor(0, 0, QColor(0, 100, 0));
        return Ondrel::Image(picture).toPtr();
    }();
    field->setImage(two);
    reference.update(two);
    ASSERT_TRUE(QTest::qWaitFor([&] { return built.count() == 2 && builtReference.count() == 2; }));
    EXPECT_TRUE(same());
    reference.setScale(HistogramWidget::Logarithmic);
    EXPECT_FALSE(same());
    field->setScaleMode(HistogramWidget::Logarithmic);
    EXPECT_TRUE(same());
}

TEST(HistogramField, OwnsItsWidget)
{
    expectNoWidgetLeft([] { return histogram(); });
}

} // namespace
