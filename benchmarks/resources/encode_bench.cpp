// Encoding 6000 x 4000 pixels to a file. Beside each whole call stands its floor: the library alone, with samples that
// already have the depth of the file.

#include "barelibraries.h"
#include "samplefiles.h"

#include <benchmark/benchmark.h>

#include <QString>

#include <vector>

namespace
{

using OndrelBench::kHeight;
using OndrelBench::kWidth;
using OndrelBench::picture;

constexpr int kTiffCompressions[] = {1 /* none */, 32946 /* Deflate */, 5 /* LZW */, 32773 /* PackBits */};

// The picture in 8 bits, rounded, with `channels` samples a pixel.
std::vector<unsigned char> bytes(unsigned int channels)
{
    std::vector<unsigned char> result;
    result.reserve(std::size_t(kWidth) * kHeight * channels);
    const Ondrel::Image& image = picture();
    for (std::size_t i = 0; i < std::size_t(kWidth) * kHeight * 4; ++i) {
        if (i % 4 < channels)
            result.push_back(static_cast<unsigned char>((image.data[i] + 128) / 257));
    }
    return result;
}

void perPixel(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

void writeJpeg(benchmark::State& state)
{
    const QString path = QString::fromStdString(OndrelBench::filePath("out.jpg"));
    ResourceEngine::ExportJPEGSettings settings;
    settings.quality = 90;
    settings.colorProfile = Ondrel::EmbeddedColorProfile;
    const Ondrel::Image& image = picture();
    for (auto _ : state) {
        if (!ResourceEngine::ExportJPEG(path, image, settings, nullptr, nullptr))
            state.SkipWithError("not written");
    }
    perPixel(state);
}

void writeJpegFloor(benchmark::State& state)
{
    const std::string path = OndrelBench::filePath("floor.jpg");
    const std::vector<unsigned char> rgb = bytes(3);
    for (auto _ : state)
        OndrelBench::bareWriteJpeg(path, rgb, kWidth, kHeight, 90);
    perPixel(state);
}

void writePng(benchmark::State& state)
{
    const QString path = QString::fromStdString(OndrelBench::filePath("out.png"));
    ResourceEngine::ExportPNGSettings settings;
    settings.compressionLevel = 1;
    settings.alpha = 1;
    settings.bitDepth = unsigned(state.range(0));
    settings.colorProfile = Ondrel::EmbeddedColorProfile;
    const Ondrel::Image& image = picture();
    for (auto _ : state) {
        if (!ResourceEngine::ExportPNG(path, image, settings, nullptr, nullptr))
            state.SkipWithError("not written");
    }
    perPixel(state);
}

void writePngFloor(benchmark::State& state)
{
    const std::string path = OndrelBench::filePath("floor.png");
    const bool wide = state.range(0) != 0;
    const std::vector<unsigned char> rgba = wide ? std::vector<unsigned char>() : bytes(4);
    const void* samples = wide ? static_cast<const void*>(picture().data) : rgba.data();
    for (auto _ : state)
        OndrelBench::bareWritePng(path, samples, kWidth, kHeight, wide ? 16 : 8, 1);
    perPixel(state);
}

void writeTiff(benchmark::State& state)
{
    const QString path = QString::fromStdString(OndrelBench::filePath("out.tif"));
    ResourceEngine::ExportTIFFSettings settings;
    settings.alpha = 1;
    settings.bitDepth = unsigned(state.range(0));
    settings.compression = unsigned(state.range(1));
    settings.colorProfile = Ondrel::EmbeddedColorProfile;
    const Ondrel::Image& image = picture();
    for (auto _ : state) {
        if (!ResourceEngine::ExportTIFF(path, image, settings, nullptr, nullptr))
            state.SkipWithError("not written");
    }
    perPixel(state);
}

void writeTiffFloor(benchmark::State& state)
{
    const std::string path = OndrelBench::filePath("floor.tif");
    const bool wide = state.range(0) != 0;
    const std::vector<unsigned char> rgba = wide ? std::vector<unsigned char>() : bytes(4);
    const void* samples = wide ? static_cast<const void*>(picture().data) : rgba.data();
    for (auto _ : state)
        OndrelBench::bareWriteTiff(path, samples, kWidth, kHeight, wide ? 16 : 8, kTiffCompressions[state.range(1)]);
    perPixel(state);
}

void tiffArguments(benchmark::internal::Benchmark* bench)
{
    for (const int wide : {0, 1}) {
        for (const int compression : {0, 2, 3})
            bench->Args({wide, compression});
    }
    bench->ArgNames({"wide", "compression"})->Unit(benchmark::kMillisecond);
}

BENCHMARK(writeJpeg)->Unit(benchmark::kMillisecond);
BENCHMARK(writeJpegFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(writePng)->Arg(0)->Arg(1)->ArgName("wide")->Unit(benchmark::kMillisecond);
BENCHMARK(writePngFloor)->Arg(0)->Arg(1)->ArgName("wide")->Unit(benchmark::kMillisecond);
BENCHMARK(writeTiff)->Apply(tiffArguments);
BENCHMARK(writeTiffFloor)->Apply(tiffArguments);

} // namespace
