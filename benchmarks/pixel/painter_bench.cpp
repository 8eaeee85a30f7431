#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"
#include "tests/reference/painter_reference.h"

#include <cstring>
#include <ondrel/pixel/painter.h>

namespace
{

using namespace OndrelBench;
using Ondrel::Image;

constexpr unsigned short kRadius = 100;
constexpr QPoint kFrom(1000, 2000);
constexpr QPoint kAcross(4000, 2000);
constexpr QPoint kSlanting(3400, 3800);
constexpr std::size_t kSwept = 3200 * 2 * kRadius;

OndrelReference::Brush literalBrush()
{
    OndrelReference::Brush brush;
    brush.red = 60000;
    brush.green = 20000;
    brush.blue = 1000;
    brush.alpha = 40000;
    brush.radius = kRadius;
    brush.hardness = 0.5f;
    brush.buildMask();
    return brush;
}

PixelPainter painterOn(Image& image)
{
    PixelPainter painter(&image);
    painter.setBrush(60000, 20000, 1000, 40000, kRadius, 0.5f, 4.0, 0.3);
    return painter;
}

void line(benchmark::State& state, QPoint to)
{
    Image image = syntheticImage(kWidth, kHeight);
    PixelPainter painter = painterOn(image);
    for (auto _ : state)
        benchmark::DoNotOptimize(painter.drawLine(kFrom, to));
    report(state, kSwept, 16);
}

void lineLiteral(benchmark::State& state, QPoint to)
{
    Image image = syntheticImage(kWidth, kHeight);
    const OndrelReference::Brush brush = literalBrush();
    const Ondrel::RectT<int> area = painterOn(image).drawLine(kFrom, to);
    for (auto _ : state)
        OndrelReference::sweep(image, brush, kFrom, to, area);
    report(state, kSwept, 16);
}

// The pixels under a horizontal line, copied to where they are.
void lineFloor(benchmark::State& state)
{
    Image image = syntheticImage(kWidth, kHeight);
    std::vector<std::uint16_t> row(3200 * 4);
    for (auto _ : state) {
        for (int y = 0; y < 2 * kRadius; ++y) {
            std::uint16_t* const at = image.data + (std::size_t(y + 1900) * kWidth + 900) * 4;
            std::memcpy(row.data(), at, row.size() * 2);
            benchmark::ClobberMemory();
            std::memcpy(at, row.data(), row.size() * 2);
        }
    }
    report(state, kSwept, 16);
}

void point(benchmark::State& state)
{
    Image image = syntheticImage(kWidth, kHeight);
    const PixelPainter painter = painterOn(image);
    for (auto _ : state)
        painter.drawPoint(kFrom);
    report(state, 4 * kRadius * kRadius, 16);
}

void pointLiteral(benchmark::State& state)
{
    Image image = syntheticImage(kWidth, kHeight);
    const OndrelReference::Brush brush = literalBrush();
    for (auto _ : state)
        OndrelReference::stamp(image, brush, kFrom.x(), kFrom.y(), true);
    report(state, 4 * kRadius * kRadius, 16);
}

void compose(benchmark::State& state)
{
    Image image = syntheticImage(kWidth, kHeight);
    const Image source = syntheticImage(2000, 1333);
    PixelPainter painter(&image);
    for (auto _ : state)
        painter.drawImage(100, 100, source);
    report(state, 2000 * 1333, 24);
}

void composeLiteral(benchmark::State& state)
{
    Image image = syntheticImage(kWidth, kHeight);
    const Image source = syntheticImage(2000, 1333);
    for (auto _ : state)
        OndrelReference::compose(image, 100, 100, source, 1.0f);
    report(state, 2000 * 1333, 24);
}

} // namespace

BENCHMARK_CAPTURE(line, across, kAcross)->Name("drawLine/across")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(lineLiteral, across, kAcross)
    ->Name("drawLine/across/literal")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(lineFloor)->Name("drawLine/across/floor")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(line, slanting, kSlanting)->Name("drawLine/slanting")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(lineLiteral, slanting, kSlanting)
    ->Name("drawLine/slanting/literal")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(point)->Name("drawPoint")->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(pointLiteral)->Name("drawPoint/literal")->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(compose)->Name("drawImage")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(composeLiteral)->Name("drawImage/literal")->UseRealTime()->Unit(benchmark::kMillisecond);
