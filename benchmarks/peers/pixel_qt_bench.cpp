#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"

#include <QImage>
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

} // namespace

BENCHMARK_CAPTURE(smoothScale, quarter, kWidth, kHeight, 1500, 1000)
    ->Name("Scale/to 1500x1000/Qt smooth")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(smoothScale, thumbnail, kWidth, kHeight, 182, 121)
    ->Name("Scale/to 182x121/Qt smooth")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(smoothScale, half, kWidth, kHeight, 3000, 2000)
    ->Name("Scale/to 3000x2000/Qt smooth")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(smoothScale, enlarged, 2000, 1333, 3000, 2000)
    ->Name("Scale/2000x1333 to 3000x2000/Qt smooth")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(quarterTurn)->Name("Rotate270/Qt")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(mirror, horizontal, true)->Name("HorizontalMirror/Qt")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(mirror, vertical, false)->Name("VerticalMirror/Qt")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(crop)->Name("Crop/Qt")->UseRealTime()->Unit(benchmark::kMillisecond);
