#include "benchmarks/support/figures.h"
#include "tests/reference/gradient_reference.h"

#include <cstring>
#include <ondrel/pixel/gradient.h>

namespace
{

using namespace OndrelBench;
using Ondrel::GradientStop;
using Ondrel::Image;
using Ondrel::RectT;
using Stops = std::vector<GradientStop>;
using Knots = std::vector<Ondrel::CubicBezierSpline::Point>;

const Stops kStops = {
    {0.0f, 1000, 2000, 30000, 65535}, {0.3f, 60000, 30000, 500, 65535}, {1.0f, 65535, 65000, 60000, 20000}};
const Knots kNoCurve;
const Knots kCurve = {{0, 0}, {30000, 20000}, {65535, 65535}};
constexpr GradientLinearGeometry kAcross = {0.1f, 0.2f, 0.9f, 0.8f};
constexpr GradientRadialGeometry kUpright = {0.5f, 0.5f, 0.5f, 0.45f, 0.0f, 0.0f, 0.0f};
constexpr GradientRadialGeometry kAround = {0.5f, 0.5f, 0.5f, 0.45f, 0.3f, 0.1f, 0.05f};

const RectT<int>& wholeImage()
{
    static const RectT<int> rect(0, 0, int(kWidth), int(kHeight));
    return rect;
}

// An image whose pages are there, as that of a mask that is drawn again.
Image canvas()
{
    Image image(kWidth, kHeight);
    image.FastFill(1);
    return image;
}

void linear(benchmark::State& state, const Knots& curve)
{
    Image image = canvas();
    for (auto _ : state) {
        GradientLinear(image, wholeImage(), kAcross, kStops, Ondrel::GradientColorInterpolationRGB, curve);
        benchmark::DoNotOptimize(image.data);
    }
    report(state, kPixels, 8);
}

void radial(benchmark::State& state, const GradientRadialGeometry& geometry, const Knots& curve)
{
    Image image = canvas();
    for (auto _ : state) {
        GradientRadial(image, wholeImage(), geometry, kStops, Ondrel::GradientColorInterpolationRGB, curve);
        benchmark::DoNotOptimize(image.data);
    }
    report(state, kPixels, 8);
}

void linearLiteral(benchmark::State& state, const Knots& curve)
{
    Image image = canvas();
    for (auto _ : state) {
        OndrelReference::gradient(image, wholeImage(), OndrelReference::linearPosition(image, kAcross), kStops, curve);
        benchmark::DoNotOptimize(image.data);
    }
    report(state, kPixels, 8);
}

void radialLiteral(benchmark::State& state, const GradientRadialGeometry& geometry, const Knots& curve)
{
    Image image = canvas();
    for (auto _ : state) {
        OndrelReference::gradient(image, wholeImage(), OndrelReference::radialPosition(image, geometry), kStops, curve);
        benchmark::DoNotOptimize(image.data);
    }
    report(state, kPixels, 8);
}

// The bytes of all pixels stored.
void floorOfGradients(benchmark::State& state)
{
    Image image = canvas();
    for (auto _ : state) {
        std::memset(image.data, int(state.iterations() & 127), image.sizeBytes);
        benchmark::DoNotOptimize(image.data);
    }
    report(state, kPixels, 8);
}

} // namespace

BENCHMARK_CAPTURE(linear, plain, kNoCurve)->Name("GradientLinear")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(linearLiteral, plain, kNoCurve)
    ->Name("GradientLinear/literal")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(floorOfGradients)->Name("GradientLinear/floor")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(radial, upright, kUpright, kNoCurve)
    ->Name("GradientRadial")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(radialLiteral, upright, kUpright, kNoCurve)
    ->Name("GradientRadial/literal")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(floorOfGradients)->Name("GradientRadial/floor")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(radial, turned, kAround, kNoCurve)
    ->Name("GradientRadial, turned, focal point aside")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(radialLiteral, turned, kAround, kNoCurve)
    ->Name("GradientRadial, turned, focal point aside/literal")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(floorOfGradients)
    ->Name("GradientRadial, turned, focal point aside/floor")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(linear, curve, kCurve)
    ->Name("GradientLinear with a curve")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(linearLiteral, curve, kCurve)
    ->Name("GradientLinear with a curve/literal")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
