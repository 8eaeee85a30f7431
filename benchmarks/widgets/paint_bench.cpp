// The time that each control takes to paint itself into an image.

#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"

#include <ondrel/core/image.h>
#include <ondrel/widgets/colorpickerwidget.h>
#include <ondrel/widgets/colorpushbutton.h>
#include <ondrel/widgets/curveseditorwidget.h>
#include <ondrel/widgets/gradientwidget.h>
#include <ondrel/widgets/histogramwidget.h>
#include <ondrel/widgets/iconpushbutton.h>
#include <ondrel/widgets/lineedit.h>
#include <ondrel/widgets/listcombobox.h>
#include <ondrel/widgets/precisionrangeslider.h>
#include <ondrel/widgets/precisionslider.h>
#include <ondrel/widgets/pushbutton.h>
#include <ondrel/widgets/radialcolorpickerwidget.h>
#include <ondrel/widgets/thumbnailcombobox.h>

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QSignalSpy>

#include <memory>

namespace
{

using Ondrel::PrecisionSlider;

// A widget that has no size of its own is painted as wide as in a node.
template <typename Make>
void paint(benchmark::State& state, Make make)
{
    const std::unique_ptr<QWidget> widget(make());
    if (!widget->testAttribute(Qt::WA_Resized))
        widget->resize(200, 34);
    QImage image(widget->size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    widget->render(&image); // styles and layouts come with the first one
    for (auto _ : state) {
        widget->render(&image);
        benchmark::DoNotOptimize(image.bits());
    }
}

QWidget* rangeSlider()
{
    return new PrecisionSlider("Gain", "0", "100", "40", PrecisionSlider::Integer, PrecisionSlider::Range, nullptr);
}

QWidget* arrowsSlider()
{
    return new PrecisionSlider("Gain", "0", "100", "40", PrecisionSlider::Double, PrecisionSlider::Arrows, nullptr);
}

QWidget* precisionRangeSlider()
{
    return new Ondrel::PrecisionRangeSlider("Levels", "0", "100", "20", "60", nullptr);
}

QWidget* listComboBox()
{
    auto* box = new Ondrel::ListComboBox(nullptr);
    box->addItem("Normal");
    return box;
}

QWidget* thumbnailComboBox()
{
    auto* box = new Ondrel::ThumbnailComboBox(nullptr);
    box->addItem("Paper");
    return box;
}

QWidget* pushButton()
{
    return new Ondrel::PushButton("Apply", nullptr);
}

QWidget* iconPushButton()
{
    auto* button = new Ondrel::IconPushButton("node_primary.svg", nullptr);
    button->setBevel(Ondrel::IconPushButton::BevelDrawn);
    return button;
}

QWidget* lineEdit()
{
    auto* edit = new Ondrel::LineEdit(nullptr);
    edit->setText("value");
    return edit;
}

template <typename Widget>
QWidget* atItsDefaultSize(Widget* widget)
{
    widget->resize(widget->sizeHint());
    return widget;
}

QWidget* colorWheel()
{
    return atItsDefaultSize(new Ondrel::RadialColorPickerWidget(nullptr));
}

QWidget* colorPicker()
{
    return atItsDefaultSize(new Ondrel::ColorPickerWidget(nullptr, 10000, 40000, 60000, 65535, true));
}

QWidget* colorPushButton()
{
    auto* button = new Ondrel::ColorPushButton(true, nullptr);
    button->setColor(Ondrel::Color(60000, 30000, 2000, 30000));
    return button;
}

QWidget* curvesEditor()
{
    auto* editor = new Ondrel::CurvesEditorWidget(nullptr);
    editor->setImage(OndrelBench::syntheticImage(1500, 1000));
    return atItsDefaultSize(editor);
}

QWidget* histogram()
{
    auto* widget = new Ondrel::HistogramWidget(nullptr);
    widget->resize(256, 150);
    QSignalSpy built(widget, SIGNAL(histogramBuilt()));
    widget->update(std::make_shared<const Ondrel::Image>(OndrelBench::syntheticImage(1500, 1000)));
    built.wait(60000); // the count runs on another thread
    return widget;
}

QWidget* gradient(Ondrel::GradientColorInterpolation interpolation)
{
    auto* strip = new Ondrel::GradientWidget(nullptr);
    strip->setStops({{0.0f, 65535, 0, 0, 65535}, {0.5f, 0, 65535, 0, 20000}, {1.0f, 0, 0, 65535, 65535}});
    strip->setColorInterpolation(interpolation);
    return strip;
}

QWidget* gradientRgb()
{
    return gradient(Ondrel::GradientColorInterpolationRGB);
}

QWidget* gradientLch()
{
    return gradient(Ondrel::GradientColorInterpolationLCH);
}

// What the slow path costs when the stops change.
void renderGradientLch(benchmark::State& state)
{
    const std::unique_ptr<QWidget> widget(gradientLch());
    auto& strip = static_cast<Ondrel::GradientWidget&>(*widget);
    strip.resize(320, 15);
    QImage image(strip.size(), QImage::Format_ARGB32_Premultiplied);
    const std::vector<Ondrel::GradientStop> stops = strip.stops();
    for (auto _ : state) {
        strip.setStops(stops);
        strip.render(&image);
        benchmark::DoNotOptimize(image.bits());
    }
}

void sendMouse(QWidget& widget, QEvent::Type type, const QPoint& at)
{
    QMouseEvent event(type, at, type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, Qt::LeftButton, {});
    QApplication::sendEvent(&widget, &event);
}

// A drag of a thousand moves over the wheel of a picker, every control following.
void dragOverPicker(benchmark::State& state)
{
    const std::unique_ptr<QWidget> picker(colorPicker());
    auto& wheel = *picker->findChild<Ondrel::RadialColorPickerWidget*>();
    wheel.resize(204, 192);
    for (auto _ : state) {
        sendMouse(wheel, QEvent::MouseButtonPress, {100, 96});
        for (int i = 0; i < 1000; ++i)
            sendMouse(wheel, QEvent::MouseMove, {40 + i % 120, 30 + i % 97});
        sendMouse(wheel, QEvent::MouseButtonRelease, {100, 96});
    }
}

} // namespace

BENCHMARK_CAPTURE(paint, range, rangeSlider)->Name("PrecisionSlider, range")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, arrows, arrowsSlider)->Name("PrecisionSlider, arrows")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, both, precisionRangeSlider)->Name("PrecisionRangeSlider")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, list, listComboBox)->Name("ListComboBox")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, grid, thumbnailComboBox)->Name("ThumbnailComboBox")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, push, pushButton)->Name("PushButton")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, icon, iconPushButton)->Name("IconPushButton")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, line, lineEdit)->Name("LineEdit")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, wheel, colorWheel)->Name("RadialColorPickerWidget")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, picker, colorPicker)->Name("ColorPickerWidget")->Unit(benchmark::kMillisecond);
BENCHMARK(dragOverPicker)->Name("ColorPickerWidget, drag of 1000 moves")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, swatch, colorPushButton)->Name("ColorPushButton")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, curves, curvesEditor)
    ->Name("CurvesEditorWidget with a histogram")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, histogram, histogram)->Name("HistogramWidget")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, rgb, gradientRgb)->Name("GradientWidget, RGB")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, lch, gradientLch)->Name("GradientWidget, LCH as last rendered")->Unit(benchmark::kMillisecond);
BENCHMARK(renderGradientLch)->Name("GradientWidget, LCH with new stops")->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
