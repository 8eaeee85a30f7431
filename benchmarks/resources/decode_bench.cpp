// Decoding 6000 x 4000 pixels. Beside each whole call stands its floor: the library alone, and the mapping of the
// result.

#include "barelibraries.h"
#include "samplefiles.h"

#include <benchmark/benchmark.h>

#include <QString>

#include <memory>

namespace
{

using namespace OndrelBench;
using Record = std::shared_ptr<ResourceEngine::ImageInfo>;

Record jpegFile()
{
    return fileRecord("picture.jpg", [](const QString& path) {
        ResourceEngine::ExportJPEGSettings settings;
        settings.quality = 90;
        settings.colorProfile = Ondrel::EmbeddedColorProfile;
        return ResourceEngine::ExportJPEG(path, picture(), settings, nullptr, nullptr);
    });
}

Record pngFile(unsigned int bitDepth)
{
    return fileRecord(bitDepth ? "picture16.png" : "picture8.png", [bitDepth](const QString& path) {
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
    return fileRecord(tiffName(bitDepth), [bitDepth](const QString& path) {
        ResourceEngine::ExportTIFFSettings settings;
        settings.bitDepth = bitDepth;
        settings.colorProfile = Ondrel::EmbeddedColorProfile;
        return ResourceEngine::ExportTIFF(path, picture(), settings, nullptr, nullptr);
    });
}

void readJpeg(benchmark::State& state)
{
    const Record file = jpegFile();
    for (auto _ : state) {
        Ondrel::Image image;
        if (!ResourceEngine::ReadJPEG(file, image, nullptr, Ondrel::EmbeddedColorProfile))
            state.SkipWithError("not read");
    }
    report(state, kPixels, 8);
}

void readJpegFloor(benchmark::State& state)
{
    const Record file = jpegFile();
    std::vector<unsigned char> row;
    for (auto _ : state) {
        bareReadJpeg(file->data, row);
        benchmark::DoNotOptimize(Ondrel::Image(kWidth, kHeight).data);
    }
    report(state, kPixels, 8);
}

void readPng(benchmark::State& state, unsigned int bitDepth)
{
    const Record file = pngFile(bitDepth);
    for (auto _ : state) {
        Ondrel::Image image;
        if (!ResourceEngine::ReadPNG(file, image, nullptr))
            state.SkipWithError("not read");
    }
    report(state, kPixels, 8);
}

void readPngFloor(benchmark::State& state, unsigned int bitDepth)
{
    const Record file = pngFile(bitDepth);
    for (auto _ : state) {
        Ondrel::Image image(kWidth, kHeight);
        bareReadPng(file->data, image);
    }
    report(state, kPixels, 8);
}

void readTiff(benchmark::State& state, unsigned int bitDepth)
{
    const Record file = tiffFile(bitDepth);
    for (auto _ : state) {
        Ondrel::Image image;
        if (!ResourceEngine::ReadTIFF(file, image, nullptr, Ondrel::EmbeddedColorProfile))
            state.SkipWithError("not read");
    }
    report(state, kPixels, 8);
}

void readTiffFloor(benchmark::State& state, unsigned int bitDepth)
{
    tiffFile(bitDepth);
    const std::string path = filePath(tiffName(bitDepth));
    for (auto _ : state) {
        Ondrel::Image image(kWidth, kHeight);
        bareReadTiff(path, image);
    }
    report(state, kPixels, 8);
}

const bool added = [] {
    add("ReadJPEG", readJpeg);
    add("ReadJPEG/floor", readJpegFloor);
    for (const unsigned int bitDepth : {0u, 1u}) {
        const std::string bits = bitDepth ? ", 16 bits" : ", 8 bits";
        add("ReadPNG" + bits, readPng, bitDepth);
        add("ReadPNG" + bits + "/floor", readPngFloor, bitDepth);
        add("ReadTIFF" + bits, readTiff, bitDepth);
        add("ReadTIFF" + bits + "/floor", readTiffFloor, bitDepth);
    }
    return true;
}();

} // namespace
