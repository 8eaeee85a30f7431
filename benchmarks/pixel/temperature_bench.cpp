#include "tests/reference/temperature_reference.h"

#include <benchmark/benchmark.h>

#include <ondrel/pixel/temperature.h>

namespace
{

using Search = void (*)(float, float, float, int&, int&);

// Lights of all temperatures, by turns.
void search(benchmark::State& state, Search form)
{
    float rgb[64][3];
    for (int i = 0; i < 64; ++i)
        TemperatureToRGB(1700 + 360 * i, rgb[i][0], rgb[i][1], rgb[i][2]);
    int kelvin = 0, tint = 0, i = 0;
    for (auto _ : state) {
        form(rgb[i][0], rgb[i][1] * 0.9f, rgb[i][2] * 1.01f, kelvin, tint);
        benchmark::DoNotOptimize(kelvin);
        benchmark::DoNotOptimize(tint);
        i = (i + 1) % 64;
    }
}

} // namespace

BENCHMARK_CAPTURE(search, fast, &RGBToTemperature)->Name("RGBToTemperature")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(search, literal, &OndrelReference::rgbToTemperature)
    ->Name("RGBToTemperature/literal")
    ->Unit(benchmark::kMicrosecond);
