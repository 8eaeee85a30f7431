#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"

#include <memory>
#include <vips/vips.h>

namespace
{

using namespace OndrelBench;

struct Unref {
    void operator()(VipsImage* image) const { g_object_unref(image); }
};
using OwnedImage = std::unique_ptr<VipsImage, Unref>;

OwnedImage viewOf(const Ondrel::Image& image)
{
    static const int started = VIPS_INIT("ondrel_bench_peers");
    vips_concurrency_set(1);
    VipsImage* view = started == 0 ? vips_image_new_from_memory(image.data, image.sizeBytes, int(image.width),
                                                                int(image.height), 4, VIPS_FORMAT_USHORT)
                                   : nullptr;
    VipsImage* tagged = nullptr;
    if (view) {
        vips_copy(view, &tagged, "interpretation", VIPS_INTERPRETATION_RGB16, nullptr);
        g_object_unref(view);
    }
    return OwnedImage(tagged);
}

// Premultiplied, reduced, divided by alpha again and stored with 16 bits: what a scale is here.
OwnedImage reduced(const OwnedImage& view, double shrinkX, double shrinkY, VipsKernel kernel)
{
    VipsImage* step = nullptr;
    if (vips_premultiply(view.get(), &step, nullptr))
        return nullptr;
    const OwnedImage premultiplied(step);
    if (vips_reduce(premultiplied.get(), &step, shrinkX, shrinkY, "kernel", kernel, nullptr))
        return nullptr;
    const OwnedImage small(step);
    if (vips_unpremultiply(small.get(), &step, nullptr))
        return nullptr;
    const OwnedImage straight(step);
    if (vips_cast_ushort(straight.get(), &step, nullptr))
        return nullptr;
    return OwnedImage(step);
}

void reduce(benchmark::State& state, unsigned int width, unsigned int height, unsigned int toWidth,
            unsigned int toHeight, VipsKernel kernel)
{
    const Ondrel::Image source = syntheticImage(width, height);
    for (auto _ : state) {
        const OwnedImage view = viewOf(source);
        const OwnedImage pipeline =
            view ? reduced(view, double(width) / toWidth, double(height) / toHeight, kernel) : nullptr;
        std::size_t size = 0;
        void* const pixels = pipeline ? vips_image_write_to_memory(pipeline.get(), &size) : nullptr;
        if (!pixels)
            state.SkipWithError("libvips refused the work");
        g_free(pixels);
    }
    report(state, std::size_t(width) * height, 8);
}

} // namespace

BENCHMARK_CAPTURE(reduce, quarter, kWidth, kHeight, 1500, 1000, VIPS_KERNEL_LINEAR)
    ->Name("Scale/bilinear to 1500x1000/libvips linear")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(reduce, thumbnail, kWidth, kHeight, 182, 121, VIPS_KERNEL_LINEAR)
    ->Name("Scale/bilinear to 182x121/libvips linear")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(reduce, half, kWidth, kHeight, 3000, 2000, VIPS_KERNEL_CUBIC)
    ->Name("Scale/bicubic to 3000x2000/libvips cubic")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
