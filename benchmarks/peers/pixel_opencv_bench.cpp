#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"

#include <ondrel/pixel/gaussianblur.h>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <string>

namespace
{

using namespace OndrelBench;

// On one thread, but for the blur. OpenCV takes alpha for a fourth colour: it leaves out the premultiplying that is
// part of the work here.
cv::Mat viewOf(const Ondrel::Image& image)
{
    cv::setNumThreads(1);
    return cv::Mat(int(image.height), int(image.width), CV_16UC4, image.data);
}

void resize(benchmark::State& state, unsigned int width, unsigned int height, cv::Size size, int method)
{
    const Ondrel::Image source = syntheticImage(width, height);
    const cv::Mat view = viewOf(source);
    for (auto _ : state) {
        cv::Mat result;
        cv::resize(view, result, size, 0, 0, method);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, std::size_t(width) * height, 8);
}

void rotate(benchmark::State& state, cv::RotateFlags turn)
{
    const Ondrel::Image source = syntheticImage(kWidth, kHeight);
    const cv::Mat view = viewOf(source);
    for (auto _ : state) {
        cv::Mat result;
        cv::rotate(view, result, turn);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

void flip(benchmark::State& state, int code)
{
    const Ondrel::Image source = syntheticImage(kWidth, kHeight);
    const cv::Mat view = viewOf(source);
    for (auto _ : state) {
        cv::Mat result;
        cv::flip(view, result, code);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

// A blur as this library makes it with some radius: the number of taps and the sigma. Of 16-bit samples OpenCV makes
// fixed-point sums.
struct Kernel {
    int taps;
    double sigma;

    explicit Kernel(float radius)
        : taps(GaussianSampleSize(radius, radius).width())
        , sigma((double(radius) + 1) / 3.0348542587702925)
    {
    }
};

void blur(benchmark::State& state, Kernel kernel)
{
    const Ondrel::Image source = syntheticImage(kWidth, kHeight);
    const cv::Mat view = viewOf(source);
    cv::setNumThreads(-1);
    for (auto _ : state) {
        cv::Mat result;
        cv::GaussianBlur(view, result, cv::Size(kernel.taps, kernel.taps), kernel.sigma, kernel.sigma,
                         cv::BORDER_REPLICATE);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

void blurSeparable(benchmark::State& state, Kernel kernel)
{
    const Ondrel::Image source = syntheticImage(kWidth, kHeight);
    const cv::Mat view = viewOf(source);
    cv::setNumThreads(-1);
    const cv::Mat weights = cv::getGaussianKernel(kernel.taps, kernel.sigma, CV_32F);
    for (auto _ : state) {
        cv::Mat result;
        cv::sepFilter2D(view, result, -1, weights, weights, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

const bool added = [] {
    for (const float radius : {5.0f, 29.0f, 100.0f}) {
        const Kernel kernel(radius);
        const std::string name = "GaussianBlur_CPU/" + std::to_string(kernel.taps) + " taps/OpenCV ";
        benchmark::RegisterBenchmark((name + "fixed point, all cores").c_str(), blur, kernel)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((name + "sepFilter2D, all cores").c_str(), blurSeparable, kernel)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    }
    return true;
}();

} // namespace

BENCHMARK_CAPTURE(resize, quarter, kWidth, kHeight, cv::Size(1500, 1000), cv::INTER_AREA)
    ->Name("Scale/bilinear to 1500x1000/OpenCV area, no alpha")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(resize, thumbnail, kWidth, kHeight, cv::Size(182, 121), cv::INTER_AREA)
    ->Name("Scale/bilinear to 182x121/OpenCV area, no alpha")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(resize, enlarged, 2000, 1333, cv::Size(3000, 2000), cv::INTER_CUBIC)
    ->Name("Scale/bicubic 2000x1333 to 3000x2000/OpenCV cubic, no alpha")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(rotate, clockwise, cv::ROTATE_90_CLOCKWISE)
    ->Name("Rotate270/OpenCV")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(rotate, half, cv::ROTATE_180)->Name("Rotate180/OpenCV")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(flip, horizontal, 1)->Name("HorizontalMirror/OpenCV")->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(flip, vertical, 0)->Name("VerticalMirror/OpenCV")->UseRealTime()->Unit(benchmark::kMillisecond);
