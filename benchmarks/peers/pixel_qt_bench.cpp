#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"

#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>
#include <QTransform>
#include <cstring>

namespace
{

using namespace OndrelBench;

QImage qtImage(unsigned int width, unsigned int height)
{
    const Ondrel::Image source = syntheticImage(width, height);
    QImage image(int(width), int(height), QImage::Format_RGBA64);
    std::memcpy(image.bits(), source.data, source.sizeBytes);
    return image;
}

// Qt premultiplies by itself, so alpha counts as it does here.
void smoothScale(benchmark::State& state, unsigned int width, unsigned int height, int toWidth, int toHeight)
{
    const QImage source = qtImage(width, height);
    for (auto _ : state) {
        const QImage result = source.scaled(toWidth, toHeight, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        benchmark::DoNotOptimize(result.constBits());
    }
    report(state, std::size_t(width) * height, 8);
}

void quarterTurn(benchmark::State& state)
{
    const QImage source = qtImage(kWidth, kHeight);
    for (auto _ : state) {
        const QImage result = source.transformed(QTransform().rotate(90));
        benchmark::DoNotOptimize(result.constBits());
    }
    report(state, kPixels, 16);
}

void mirror(benchmark::State& state, bool horizontal)
{
    const QImage source = qtImage(kWidth, kHeight);
    for (auto _ : state) {
        const QImage result = source.mirrored(horizontal, !horizontal);
        benchmark::DoNotOptimize(result.constBits());
    }
    report(state, kPixels, 16);
}

void crop(benchmark::State& state)
{
    const QImage source = qtImage(kWidth, kHeight);
    for (auto _ : state) {
        const QImage result = source.copy(1, 1, int(kWidth) - 2, int(kHeight) - 2);
        benchmark::DoNotOptimize(result.constBits());
    }
    report(state, kPixels, 16);
}

void smoothTransform(benchmark::State& state, const QTransform& transform)
{
    // Qt transforms 32-bit pixels alone, of 8 bits each, and others by way of them.
    const QImage source = qtImage(kWidth, kHeight).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        const QImage result = source.transformed(transform, Qt::SmoothTransformation);
        benchmark::DoNotOptimize(result.constBits());
    }
    report(state, kPixels, 8);
}

void gradient(benchmark::State& state, const QGradient& gradient)
{
    QImage image(int(kWidth), int(kHeight), QImage::Format_ARGB32_Premultiplied);
    image.fill(1);
    const QBrush brush(gradient);
    for (auto _ : state) {
        QPainter painter(&image);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(image.rect(), brush);
        painter.end();
        benchmark::DoNotOptimize(image.constBits());
    }
    report(state, kPixels, 4);
}

// The geometry and the stops of the benchmarks of this library's gradients.
template <typename Gradient>
Gradient withStops(Gradient gradient)
{
    gradient.setColorAt(0.0, QColor(4, 8, 117));
    gradient.setColorAt(0.3, QColor(233, 117, 2));
    gradient.setColorAt(1.0, QColor(255, 253, 233, 78));
    return gradient;
}

const QLinearGradient kLinear = withStops(QLinearGradient(0.1 * kWidth, 0.2 * kHeight, 0.9 * kWidth, 0.8 * kHeight));
const QRadialGradient kRadial =
    withStops(QRadialGradient(0.5 * kWidth, 0.5 * kHeight, 0.5 * kWidth, 0.6 * kWidth, 0.55 * kHeight));

} // namespace

BENCHMARK_CAPTURE(smoothTransform, rotation, QTransform().rotate(-17))
    ->Name("Transform/rotation bilinear/Qt 8 bits")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(smoothTransform, perspective, QTransform(1.0, 0.02, 1e-5, 0.05, 1.0, 2e-5, -120.0, -40.0, 1.0))
    ->Name("Transform/perspective bilinear/Qt 8 bits")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(gradient, linear, kLinear)
    ->Name("GradientLinear/Qt 8 bits")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(gradient, radial, kRadial)
    ->Name("GradientRadial/Qt 8 bits, a circle")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(smoothScale, quarter, kWidth, kHeight, 1500, 1000)
    ->Name("Scale/bilinear to 1500x1000/Qt smooth")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(smoothScale, thumbnail, kWidth, kHeight, 182, 121)
    ->Name("Scale/bilinear to 182x121/Qt smooth")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(smoothScale, half, kWidth, kHeight, 3000, 2000)
    ->Name("Scale/bicubic to 3000x2000/Qt smooth")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(smoothScale, enlarged, 2000, 1333, 3000, 2000)
    ->Name("Scale/bicubic 2000x1333 to 3000x2000/Qt smooth")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(quarterTurn)->Name("Rotate270/Qt")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(mirror, horizontal, true)->Name("HorizontalMirror/Qt")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(mirror, vertical, false)->Name("VerticalMirror/Qt")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(crop)->Name("Crop/Qt")->UseRealTime()->Unit(benchmark::kMillisecond);
