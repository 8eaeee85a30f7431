#include "fieldsupport.h"

#include <ondrel/core/color.h>
#include <ondrel/nodes/fields/rangesliderfield.h>
#include <ondrel/nodes/fields/sliderfield.h>
#include <ondrel/resources/resourceid.h>
#include <ondrel/widgets/precisionrangeslider.h>
#include <ondrel/widgets/precisionslider.h>

namespace
{

using namespace OndrelTest;
using Ondrel::PrecisionRangeSlider;
using Ondrel::PrecisionSlider;
using Ondrel::RangeSliderInputField;
using Ondrel::SliderInputField;
using RangeValue = PrecisionRangeSlider::RangeValue;

SliderInputField* slider(PrecisionSlider::NumberMode mode = PrecisionSlider::Integer,
                         PrecisionSlider::DisplayStyle style = PrecisionSlider::Range, const QString& value = "50")
{
    return new SliderInputField("radius", nullptr, "Radius", "0", "100", value, mode, style);
}

RangeSliderInputField* rangeSlider()
{
    return new RangeSliderInputField("levels", nullptr, "Levels", "0", "255", "10", "200");
}

// A field of the kind, shown, and its widget.
template <typename Widget, typename Field>
struct Shown {
    explicit Shown(Field* made)
        : field(graph.add(made, {50, 50}))
        , widget(widgetOf<Widget>(*field))
    {
    }
    GraphView graph;
    Field* field;
    Widget* widget;
};
using ShownSlider = Shown<PrecisionSlider, SliderInputField>;
using ShownRange = Shown<PrecisionRangeSlider, RangeSliderInputField>;

TEST(SliderInputField, ShowsItsNameInsideTheSlider)
{
    for (const auto style : {PrecisionSlider::Range, PrecisionSlider::Arrows}) {
        ShownSlider shown(slider(PrecisionSlider::Integer, style));
        EXPECT_EQ(shown.field->anchor(), nullptr);
        EXPECT_EQ(shown.field->displayName(), "Radius");
        EXPECT_EQ(shown.field->labelWidth(), 0);
        EXPECT_EQ(shown.field->minWidth(), shown.widget->minimumSizeHint().width());
        EXPECT_EQ(shown.field->minHeight(), shown.widget->minimumSizeHint().height());
        EXPECT_EQ(proxyOf(*shown.field)->pos(), QPointF(0, 0));
        shown.field->setSize(200, 40, 90);
        EXPECT_EQ(paintedItem(*shown.field, {220, 60}), painted({220, 60}, [](QPainter&) {})) << "no label beside it";

        PrecisionSlider reference("Radius", "0", "100", "50", PrecisionSlider::Integer, style, nullptr);
        EXPECT_EQ(shown.widget->minimumSizeHint(), reference.minimumSizeHint()) << "mode, style and caption are kept";
    }
}

TEST(SliderInputField, HasNoLabelWidthWhateverItsName)
{
    for (const char* name : {"", "R", "A very long name of a slider"}) {
        SliderInputField field("x", nullptr, name, "0", "1", "0", PrecisionSlider::Integer, PrecisionSlider::Range);
        EXPECT_EQ(field.labelWidth(), 0);
    }
}

TEST(SliderInputField, FitsItsSliderInBothDirections)
{
    std::unique_ptr<SliderInputField> early(slider());
    early->setSize(10, 10, 10);
    ShownSlider shown(slider());
    shown.field->setSize(210.75F, 33.5F, 90);
    EXPECT_EQ(shown.widget->minimumSize(), QSize(210, 33));
    EXPECT_EQ(shown.widget->maximumSize(), QSize(210, 33));
    EXPECT_EQ(shown.widget->size(), QSize(210, 33));
    EXPECT_EQ(proxyOf(*shown.field)->size(), QSizeF(210, 33));
    shown.field->setSize(180, 28, 90);
    EXPECT_EQ(shown.widget->size(), QSize(180, 28)) << "it shrinks as well";
    EXPECT_EQ(proxyOf(*shown.field)->size(), QSizeF(180, 28));
    EXPECT_EQ(proxyOf(*shown.field)->pos(), QPointF(0, 0));
}

TEST(SliderInputField, RaisesOneSignalForEachChange)
{
    for (const auto mode : {PrecisionSlider::Integer, PrecisionSlider::Double}) {
        ShownSlider shown(slider(mode));
        QSignalSpy changed(shown.field, SIGNAL(valueChanged()));
        shown.field->setValue("7");
        EXPECT_EQ(shown.field->value(), "7");
        EXPECT_EQ(changed.count(), 1);
        shown.field->setValue("7");
        EXPECT_EQ(changed.count(), 1) << "no change, no signal";
        shown.widget->setValue(QString("9"));
        EXPECT_EQ(changed.count(), 2);
        EXPECT_EQ(shown.field->value(), "9");
    }
}

TEST(SliderInputField, LeavesNumbersToTheSlider)
{
    std::unique_ptr<SliderInputField> whole(slider());
    EXPECT_EQ(whole->value(), "50");
    whole->setValue("3.7");
    EXPECT_EQ(whole->value(), "3");
    std::unique_ptr<SliderInputField> fraction(slider(PrecisionSlider::Double, PrecisionSlider::Range, "0.123456789"));
    PrecisionSlider reference("Radius", "0", "100", "0.123456789", PrecisionSlider::Double, PrecisionSlider::Range,
                              nullptr);
    EXPECT_EQ(fraction->value(), reference.valueAsString());
}

TEST(SliderInputField, HandsGradientAndPostfixOn)
{
    ShownSlider shown(slider(PrecisionSlider::Integer, PrecisionSlider::Arrows));
    PrecisionSlider reference("Radius", "0", "100", "50", PrecisionSlider::Integer, PrecisionSlider::Arrows, nullptr);
    shown.field->setPostfix("pixels");
    reference.setPostfix("pixels");
    EXPECT_EQ(shown.widget->minimumSizeHint(), reference.minimumSizeHint());
    EXPECT_EQ(shown.field->minWidth(), reference.minimumSizeHint().width());

    ShownSlider range(slider());
    range.field->setSize(200, 40, 0);
    const QImage before = range.widget->grab().toImage();
    range.field->setGradient({{0.0, Qt::red}, {1.0, Qt::blue}});
    EXPECT_NE(range.widget->grab().toImage(), before);
}

TEST(SliderInputField, OwnsItsSlider)
{
    expectNoWidgetLeft([] { return slider(); });
}

TEST(RangeSliderInputField, ShowsItsNameInsideTheSlider)
{
    ShownRange shown(rangeSlider());
    EXPECT_EQ(shown.field->anchor(), nullptr);
    EXPECT_EQ(shown.field->labelWidth(), 0);
    EXPECT_EQ(shown.field->minWidth(), shown.widget->minimumSizeHint().width());
    EXPECT_EQ(shown.field->minHeight(), shown.widget->minimumSizeHint().height());
    EXPECT_EQ(proxyOf(*shown.field)->pos(), QPointF(0, 0));
    shown.field->setSize(200, 40, 90);
    EXPECT_EQ(paintedItem(*shown.field, {220, 60}), painted({220, 60}, [](QPainter&) {}));
}

TEST(RangeSliderInputField, FitsItsSliderInBothDirections)
{
    std::unique_ptr<RangeSliderInputField> early(rangeSlider());
    early->setSize(10, 10, 10);
    ShownRange shown(rangeSlider());
    shown.field->setSize(210.75F, 53.5F, 90);
    EXPECT_EQ(shown.widget->minimumSize(), QSize(210, 53));
    EXPECT_EQ(shown.widget->maximumSize(), QSize(210, 53));
    EXPECT_EQ(shown.widget->size(), QSize(210, 53));
    EXPECT_EQ(proxyOf(*shown.field)->size(), QSizeF(210, 53));
    shown.field->setSize(180, 48, 90);
    EXPECT_EQ(shown.widget->size(), QSize(180, 48)) << "it shrinks as well";
    EXPECT_EQ(proxyOf(*shown.field)->size(), QSizeF(180, 48));
}

TEST(RangeSliderInputField, RaisesOneSignalForEachChange)
{
    ShownRange shown(rangeSlider());
    EXPECT_EQ(shown.field->value().left, "10");
    EXPECT_EQ(shown.field->value().right, "200");
    QSignalSpy changed(shown.field, SIGNAL(valueChanged()));
    shown.field->setValue(RangeValue{"20", "30"});
    EXPECT_EQ(shown.field->value().left, "20");
    EXPECT_EQ(shown.field->value().right, "30");
    EXPECT_EQ(changed.count(), 1);
    shown.widget->setValue("21", "30");
    EXPECT_EQ(changed.count(), 2);
}

TEST(RangeSliderInputField, HandsItsGradientsOn)
{
    ShownRange shown(rangeSlider());
    shown.field->setSize(200, 60, 0);
    const QImage before = shown.widget->grab().toImage();
    shown.field->setGrooveGradient({{0.0, Qt::red}, {1.0, Qt::blue}});
    const QImage groove = shown.widget->grab().toImage();
    EXPECT_NE(groove, before);
    shown.field->setBarGradient({{0.0, Qt::yellow}, {1.0, Qt::green}});
    EXPECT_NE(shown.widget->grab().toImage(), groove);
}

TEST(RangeSliderInputField, HasItsStyleSheetIfThereIsOne)
{
    QGraphicsScene scene;
    auto* styled = rangeSlider();
    scene.addItem(styled);
    EXPECT_EQ(widgetOf<PrecisionRangeSlider>(*styled)->styleSheet(), styleSheet("slider.css"));
    const NoDataDirectory nothing;
    auto* plain = rangeSlider();
    scene.addItem(plain);
    EXPECT_EQ(widgetOf<PrecisionRangeSlider>(*plain)->styleSheet(), QString());
}

TEST(RangeSliderInputField, OwnsItsSlider)
{
    expectNoWidgetLeft([] { return rangeSlider(); });
}

TEST(Fields, HaveTheirValuesRegisteredByName)
{
    EXPECT_STREQ(QMetaType::typeName(qMetaTypeId<RangeValue>()), "Ondrel::PrecisionRangeSlider::RangeValue");
    EXPECT_STREQ(QMetaType::typeName(qMetaTypeId<Ondrel::Color>()), "Ondrel::Color");
    EXPECT_STREQ(QMetaType::typeName(qMetaTypeId<Ondrel::ResourceId>()), "Ondrel::ResourceId");
}

} // namespace
