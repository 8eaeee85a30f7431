#include "fieldsupport.h"

#include <ondrel/nodes/fields/colorfield.h>
#include <ondrel/widgets/colorpickerwidget.h>
#include <ondrel/widgets/colorpushbutton.h>
#include <ondrel/widgets/precisionslider.h>

namespace
{

using namespace OndrelTest;
using Ondrel::Color;
using Ondrel::ColorField;
using Ondrel::ColorPickerWidget;
using Ondrel::ColorPushButton;

ColorPickerWidget* openPicker()
{
    for (QWidget* widget : QApplication::allWidgets()) {
        auto* picker = qobject_cast<ColorPickerWidget*>(widget);
        if (picker && picker->isVisible())
            return picker;
    }
    return nullptr;
}

TEST(ColorField, MeasuresItsLabelAnd150)
{
    ColorField field("tint", nullptr, "Tint", true);
    EXPECT_EQ(field.name(), "tint");
    EXPECT_EQ(field.displayName(), "Tint");
    EXPECT_EQ(field.anchor(), nullptr);
    EXPECT_EQ(field.labelWidth(), fieldTextWidth("Tint"));
    EXPECT_EQ(field.minWidth(), fieldTextWidth("Tint") + 150);
    EXPECT_EQ(field.color(), Color(0, 0, 0, 65535));
    EXPECT_EQ(proxyOf(field), nullptr);
}

TEST(ColorField, ShowsAButtonBehindItsLabel)
{
    QGraphicsScene scene;
    auto* field = new ColorField("tint", nullptr, "Tint", true);
    scene.addItem(field);
    auto* button = widgetOf<ColorPushButton>(*field);
    EXPECT_EQ(proxyOf(*field)->parentItem(), field);
    EXPECT_EQ(proxyOf(*field)->pos(), QPointF(fieldTextWidth("Tint"), 0));
    EXPECT_EQ(button->minimumWidth(), static_cast<int>(field->minWidth()));
    EXPECT_EQ(button->maximumWidth(), static_cast<int>(field->minWidth()));
    EXPECT_EQ(field->minHeight(), button->height());
    EXPECT_EQ(button->height(), std::max(button->sizeHint().height(), button->minimumHeight()));
}

TEST(ColorField, FitsItsButtonBehindTheLabelColumn)
{
    QGraphicsScene scene;
    auto* field = new ColorField("tint", nullptr, "Tint", true);
    field->setSize(300, 24, 80); // without a proxy nothing happens
    scene.addItem(field);
    auto* button = widgetOf<ColorPushButton>(*field);
    field->setSize(300, 24, 80);
    EXPECT_EQ(proxyOf(*field)->pos(), QPointF(84, 0));
    EXPECT_EQ(button->minimumWidth(), 216);
    EXPECT_EQ(button->maximumWidth(), 216);
    field->setSize(301.75F, 24, 81);
    EXPECT_EQ(proxyOf(*field)->pos(), QPointF(85, 0));
    EXPECT_EQ(button->minimumWidth(), 216) << "216.75 is cut";
    EXPECT_EQ(button->width(), 216);
    EXPECT_EQ(proxyOf(*field)->size().width(), 216);
    EXPECT_EQ(button->maximumWidth(), 216);
}

TEST(ColorField, KeepsItsColorAndIsSilentWhenItIsSet)
{
    QGraphicsScene scene;
    auto* field = new ColorField("tint", nullptr, "Tint", true);
    QSignalSpy changed(field, SIGNAL(valueChanged()));
    field->setColor(Color(1, 2, 3, 4));
    EXPECT_EQ(field->color(), Color(1, 2, 3, 4));
    scene.addItem(field);
    EXPECT_EQ(widgetOf<ColorPushButton>(*field)->color(), Color(1, 2, 3, 4));
    QMetaObject::invokeMethod(field, "setColor", Q_ARG(Color, Color(5, 6, 7, 8)));
    EXPECT_EQ(field->color(), Color(5, 6, 7, 8));
    EXPECT_EQ(changed.count(), 0);
}

TEST(ColorField, RaisesOneSignalWhenTheUserPicksAColor)
{
    for (const bool showAlpha : {true, false}) {
        GraphView graph;
        auto* field = graph.add(new ColorField("tint", nullptr, "Tint", showAlpha), {50, 50});
        field->setSize(300, 24, 80);
        QSignalSpy changed(field, SIGNAL(valueChanged()));
        widgetOf<ColorPushButton>(*field)->displayColorPicker();
        ColorPickerWidget* const picker = openPicker();
        ASSERT_TRUE(picker);
        EXPECT_EQ(picker->findChild<Ondrel::PrecisionSlider*>("alphaSlider") != nullptr &&
                      picker->findChild<Ondrel::PrecisionSlider*>("alphaSlider")->isVisible(),
                  showAlpha);
        picker->findChild<Ondrel::PrecisionSlider*>("redSlider")->setValue(QString("500"));
        EXPECT_EQ(changed.count(), 1);
        EXPECT_EQ(field->color().red, 500);
        picker->window()->close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST(ColorField, OwnsItsButton)
{
    expectNoWidgetLeft([] { return new ColorField("tint", nullptr, "Tint", true); });
}

} // namespace
