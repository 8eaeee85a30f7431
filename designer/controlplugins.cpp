#include "controlplugins.h"
#include "controlplugin.h"

#include <ondrel/widgets/colorpickerwidget.h>
#include <ondrel/widgets/colorpushbutton.h>
#include <ondrel/widgets/curveseditorwidget.h>
#include <ondrel/widgets/curveswidget.h>
#include <ondrel/widgets/gradientwidget.h>
#include <ondrel/widgets/histogramwidget.h>
#include <ondrel/widgets/iconpushbutton.h>
#include <ondrel/widgets/imagelistview.h>
#include <ondrel/widgets/lineedit.h>
#include <ondrel/widgets/listcombobox.h>
#include <ondrel/widgets/precisionrangeslider.h>
#include <ondrel/widgets/precisionslider.h>
#include <ondrel/widgets/pushbutton.h>
#include <ondrel/widgets/radialcolorpickerwidget.h>
#include <ondrel/widgets/thumbnailcombobox.h>

#include <utility>

using namespace Ondrel;

namespace
{

QWidget* makeSlider(QWidget* parent)
{
    return new PrecisionSlider("Value", "0", "100", "50", PrecisionSlider::Integer, PrecisionSlider::Range, parent);
}

template <typename Widget>
QWidget* make(QWidget* parent)
{
    return new Widget(parent);
}

} // namespace

OndrelControls::OndrelControls(QObject* parent)
    : QObject(parent)
{
    const auto add = [this](const char* className, const char* header, const char* summary,
                            ControlPlugin::Maker maker) {
        m_widgets.append(new ControlPlugin(className, header, summary, std::move(maker), this));
    };
    add("PrecisionSlider", "precisionslider.h", "A number that is dragged or typed", makeSlider);
    add("PrecisionRangeSlider", "precisionrangeslider.h", "The two ends of an interval",
        [](QWidget* parent) { return new PrecisionRangeSlider("Range", "0", "255", "0", "255", parent); });
    add("ListComboBox", "listcombobox.h", "A choice of texts", make<ListComboBox>);
    add("ThumbnailComboBox", "thumbnailcombobox.h", "A choice of pictures", make<ThumbnailComboBox>);
    add("ImageListView", "imagelistview.h", "A grid of pictures", make<ImageListView>);
    add("PushButton", "pushbutton.h", "A button on a node",
        [](QWidget* parent) { return new PushButton("Button", parent); });
    add("IconPushButton", "iconpushbutton.h", "A button with an SVG icon",
        [](QWidget* parent) { return new IconPushButton(QString(), parent); });
    add("LineEdit", "lineedit.h", "A line of text", make<LineEdit>);
    add("ColorPushButton", "colorpushbutton.h", "A swatch that opens a colour picker",
        [](QWidget* parent) { return new ColorPushButton(true, parent); });
    add("ColorPickerWidget", "colorpickerwidget.h", "A colour in RGB, HSL or CIELab",
        [](QWidget* parent) { return new ColorPickerWidget(parent, 0, 0, 0, 65535, true); });
    add("RadialColorPickerWidget", "radialcolorpickerwidget.h", "A wheel of hues", make<RadialColorPickerWidget>);
    add("GradientWidget", "gradientwidget.h", "A strip with a gradient", make<GradientWidget>);
    add("CurvesWidget", "curveswidget.h", "A tone curve", make<CurvesWidget>);
    add("CurvesEditorWidget", "curveseditorwidget.h", "A tone curve with gradients along its axes",
        make<CurvesEditorWidget>);
    add("HistogramWidget", "histogramwidget.h", "The histogram of an image", make<HistogramWidget>);
}

QList<QDesignerCustomWidgetInterface*> OndrelControls::customWidgets() const
{
    return m_widgets;
}
