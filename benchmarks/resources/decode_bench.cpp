// Decoding 6000 x 4000 pixels. Beside each whole call stands its floor: the library alone, and the mapping of the
// result.

#include "barelibraries.h"
#include "samplefiles.h"

#include <benchmark/benchmark.h>

#include <QString>

#include <memory>

namespace
{

using OndrelBench::kHeight;
using OndrelBench::kWidth;
using OndrelBench::picture;
using Record = std::shared_ptr<ResourceEngine::ImageInfo>;

Record jpegFile()
{
    return OndrelBench::fileRecord("picture.jpg", [](const QString& path) {
        ResourceEngine::ExportJPEGSettings settings;
        settings.quality = 90;
        settings.colorProfile = Ondrel::EmbeddedColorProfile;
        return ResourceEngine::ExportJPEG(path, picture(), settings, nullptr, nullptr);
    });
}

Record pngFile(unsigned int bitDepth)
{
    return OndrelBench::fileRecord(bitDepth ? "picture16.png" : "picture8.png", [bitDepth](const QString& path) {
        ResourceEngine::ExportPNGSettings settings;
        settings.compressionLevel = 1;
        settings.bitDepth = bitDepth;
        settings.colorProfile = Ondrel::EmbeddedColorProfile;
        return ResourceEngine::ExportPNG(path, picture(), settings, nullptr, nullptr);
    });
}

const char* tiffName(unsigned int bitDepth)
{
    return bitDepth ? "picture16.tif" : "picture8.tif";
}

Record tiffFile(unsigned int bitDepth)
{
    return OndrelBench::fileRecord(tiffName(bitDepth), [bitDepth](const QString& path) {
        ResourceEngine::ExportTIFFSettings settings;
        settings.bitDepth = bitDepth;
        settings.colorProfile = Ondrel::EmbeddedColorProfile;
        return ResourceEngine::ExportTIFF(path, picture(), settings, nullptr, nullptr);
    });
}

void perPixel(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

void mapResult(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(Ondrel::Image(kWidth, kHeight).data);
    perPixel(state);
}

void readJpeg(benchmark::State& state)
{
    const Record file = jpegFile();
    for (auto _ : state) {
        Ondrel::Image image;
        if (!ResourceEngine::ReadJPEG(file, image, nullptr, Ondrel::EmbeddedColorProfile))
            state.SkipWithError("not read");
    }
    perPixel(state);
}

void readJpegFloor(benchmark::State& state)
{
    const Record file = jpegFile();
    std::vector<unsigned char> row;
    for (auto _ : state) {
        OndrelBench::bareReadJpeg(file->data, row);
        benchmark::DoNotOptimize(Ondrel::Image(kWidth, kHeight).data);
    }
    perPixel(state);
}

void readPng(benchmark::State& state)
{
    const Record file = pngFile(unsigned(state.range(0)));
    for (auto _ : state) {
        Ondrel::Image image;
        if (!ResourceEngine::ReadPNG(file, image, nullptr))
            state.SkipWithError("not read");
    }
    perPixel(state);
}

void readPngFloor(benchmark::State& state)
{
    const Record file = pngFile(unsigned(state.range(0)));
    for (auto _ : state) {
        Ondrel::Image image(kWidth, kHeight);
        OndrelBench::bareReadPng(file->data, image);
    }
    perPixel(state);
}

void readTiff(benchmark::State& state)
{
    const Record file = tiffFile(unsigned(state.range(0)));
    for (auto _ : state) {
        Ondrel::Image image;
        if (!ResourceEngine::ReadTIFF(file, image, nullptr, Ondrel::EmbeddedColorProfile))
            state.SkipWithError("not read");
    }
    perPixel(state);
}

void readTiffFloor(benchmark::State& state)
{
    tiffFile(unsigned(state.range(0)));
    const std::string path = OndrelBench::filePath(tiffName(unsigned(state.range(0))));
    for (auto _ : state) {
        Ondrel::Image image(kWidth, kHeight);
        OndrelBench::bareReadTiff(path, image);
    }
    perPixel(state);
}

BENCHMARK(mapResult)->Unit(benchmark::kMillisecond);
BENCHMARK(readJpeg)->Unit(benchmark::kMillisecond);
BENCHMARK(readJpegFloor)->Unit(benchmark::kMillisecond);
BENCHMARK(readPng)->Arg(0)->Arg(1)->ArgName("wide")->Unit(benchmark::kMillisecond);
BENCHMARK(readPngFloor)->Arg(0)->Arg(1)->ArgName("wide")->Unit(benchmark::kMillisecond);
BENCHMARK(readTiff)->Arg(0)->Arg(1)->ArgName("wide")->Unit(benchmark::kMillisecond);
BENCHMARK(readTiffFloor)->Arg(0)->Arg(1)->ArgName("wide")->Unit(benchmark::kMillisecond);

} // namespace
