// The time that each control takes to paint itself into an image.

#include "benchmarks/support/figures.h"

#include <ondrel/widgets/iconpushbutton.h>
#include <ondrel/widgets/lineedit.h>
#include <ondrel/widgets/listcombobox.h>
#include <ondrel/widgets/precisionrangeslider.h>
#include <ondrel/widgets/precisionslider.h>
#include <ondrel/widgets/pushbutton.h>
#include <ondrel/widgets/thumbnailcombobox.h>

#include <QApplication>
#include <QImage>

#include <memory>

namespace
{

using Ondrel::PrecisionSlider;

template <typename Make>
void paint(benchmark::State& state, Make make)
{
    const std::unique_ptr<QWidget> widget(make());
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

} // namespace

BENCHMARK_CAPTURE(paint, range, rangeSlider)->Name("PrecisionSlider, range")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, arrows, arrowsSlider)->Name("PrecisionSlider, arrows")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, both, precisionRangeSlider)->Name("PrecisionRangeSlider")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, list, listComboBox)->Name("ListComboBox")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, grid, thumbnailComboBox)->Name("ThumbnailComboBox")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, push, pushButton)->Name("PushButton")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, icon, iconPushButton)->Name("IconPushButton")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paint, line, lineEdit)->Name("LineEdit")->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
