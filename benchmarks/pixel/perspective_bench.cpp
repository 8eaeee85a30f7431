#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"
#include "tests/reference/perspective_reference.h"

#include <cstring>
#include <ondrel/pixel/perspective.h>

namespace
{

using namespace OndrelBench;
using Ondrel::FilterMethod;
using Ondrel::Image;
using Ondrel::RectT;
using Matrix = Eigen::Matrix<double, 3, 3>;
using Output = std::shared_ptr<const Image>;

constexpr float kAngle = 17.0f;

// A matrix for the synthetic image, the size of the result and the way to sample it.
struct Task {
    Matrix matrix;
    TransformSize size;
    FilterMethod filter;
};

Matrix rotation()
{
    return OndrelReference::rotationMatrix(QSize(int(kWidth), int(kHeight)), kAngle);
}

// As a tall building is set upright: the upper edge grows wider than the lower one.
Matrix perspective()
{
    Matrix matrix;
    matrix << 1.0, 0.05, -120.0, 0.02, 1.0, -40.0, 1e-5, 2e-5, 1.0;
    return matrix;
}

Matrix reduction()
{
    return Eigen::Vector3d(0.4, 0.4, 1.0).asDiagonal();
}

// The source is read and the result written; the larger of the two counts.
void reportTask(benchmark::State& state, const Image& result)
{
    const std::size_t to = std::size_t(result.width) * result.height;
    const std::size_t larger = std::max(kPixels, to);
    report(state, larger, 8 * (kPixels + to) / larger);
}

void transform(benchmark::State& state, const Task& task)
{
    const Image source = syntheticImage(kWidth, kHeight);
    Output output;
    for (auto _ : state) {
        output.reset();
        Transform(source, RectT<int>::invalid(), 1.0, task.size, task.filter, task.matrix, output);
        benchmark::DoNotOptimize(output->data);
    }
    reportTask(state, *output);
}

void transformLiteral(benchmark::State& state, const Task& task)
{
    const Image source = syntheticImage(kWidth, kHeight);
    Output output;
    for (auto _ : state) {
        output.reset();
        OndrelReference::transform(source, RectT<int>::invalid(), 1.0, task.size == TransformSizeBounding, task.filter,
                                   task.matrix, output);
        benchmark::DoNotOptimize(output->data);
    }
    reportTask(state, *output);
}

// A result of this size mapped, and as much of it filled as the source has pixels.
void transformFloor(benchmark::State& state, const Task& task)
{
    const Image source = syntheticImage(kWidth, kHeight);
    Output output;
    Transform(source, RectT<int>::invalid(), 1.0, task.size, FilterMethod::NearestNeighbor, task.matrix, output);
    for (auto _ : state) {
        Image result(output->width, output->height);
        std::memcpy(result.data, source.data, std::min(result.sizeBytes, source.sizeBytes));
        benchmark::DoNotOptimize(result.data);
    }
    reportTask(state, *output);
}

// The part that a brush of 64 pixels has touched.
void dirtyRectangle(benchmark::State& state, const Matrix& matrix)
{
    const Image source = syntheticImage(kWidth, kHeight);
    Output output;
    Transform(source, RectT<int>::invalid(), 1.0, TransformSizeKeep, FilterMethod::NearestNeighbor, matrix, output);
    for (auto _ : state) {
        Transform(source, RectT<int>(3000, 2000, 64, 64), 1.0, TransformSizeKeep, FilterMethod::Bilinear, matrix,
                  output);
        benchmark::DoNotOptimize(output->data);
    }
    report(state, 64 * 64, 16);
}

void rotate(benchmark::State& state)
{
    const Image source = syntheticImage(kWidth, kHeight);
    for (auto _ : state) {
        const Image result = Rotate(source, kAngle, RotateSize::RotateSizeInscribed, FilterMethod::Bilinear);
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

void addTransform(const std::string& name, const Task& task)
{
    const auto add = [&](const std::string& form, auto function) {
        benchmark::RegisterBenchmark((name + form).c_str(), function, task)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    };
    add("", transform);
    add("/literal", transformLiteral);
    add("/floor", transformFloor);
}

const bool added = [] {
    using Size = TransformSize;
    addTransform("Transform/rotation bilinear", {rotation(), Size::TransformSizeBounding, FilterMethod::Bilinear});
    addTransform("Transform/perspective bilinear", {perspective(), Size::TransformSizeKeep, FilterMethod::Bilinear});
    addTransform("Transform/rotation bicubic", {rotation(), Size::TransformSizeBounding, FilterMethod::Bicubic});
    addTransform("Transform/rotation nearest",
                 {rotation(), Size::TransformSizeBounding, FilterMethod::NearestNeighbor});
    addTransform("Transform/reduction bilinear", {reduction(), Size::TransformSizeBounding, FilterMethod::Bilinear});
    return true;
}();

} // namespace

BENCHMARK_CAPTURE(dirtyRectangle, identity, Matrix::Identity())
    ->Name("Transform/64x64 of 6000x4000")
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(rotate)->Name("Rotate/inscribed bilinear")->UseRealTime()->Unit(benchmark::kMillisecond);
