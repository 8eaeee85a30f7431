// Encoding 6000 x 4000 pixels to a file. Beside each whole call stands its floor: the library alone, with samples that
// already have the depth of the file.

#include "barelibraries.h"
#include "samplefiles.h"

#include <benchmark/benchmark.h>

#include <QString>

#include <vector>

namespace
{

using namespace OndrelBench;

struct TiffCompression {
    const char* name;
    unsigned int setting;
    int tag;
};
constexpr TiffCompression kTiffCompressions[] = {{"uncompressed", 0, 1}, {"LZW", 2, 5}, {"PackBits", 3, 32773}};

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

void writeJpeg(benchmark::State& state)
{
    const QString path = QString::fromStdString(filePath("out.jpg"));
    ResourceEngine::ExportJPEGSettings settings;
    settings.quality = 90;
    settings.colorProfile = Ondrel::EmbeddedColorProfile;
    const Ondrel::Image& image = picture();
    for (auto _ : state) {
        if (!ResourceEngine::ExportJPEG(path, image, settings, nullptr, nullptr))
            state.SkipWithError("not written");
    }
    report(state, kPixels, 8);
}

void writeJpegFloor(benchmark::State& state)
{
    const std::string path = filePath("floor.jpg");
    const std::vector<unsigned char> rgb = bytes(3);
    for (auto _ : state)
        bareWriteJpeg(path, rgb, kWidth, kHeight, 90);
    report(state, kPixels, 8);
}

void writePng(benchmark::State& state, unsigned int bitDepth)
{
    const QString path = QString::fromStdString(filePath("out.png"));
    ResourceEngine::ExportPNGSettings settings;
    settings.compressionLevel = 1;
    settings.alpha = 1;
    settings.bitDepth = bitDepth;
    settings.colorProfile = Ondrel::EmbeddedColorProfile;
    const Ondrel::Image& image = picture();
    for (auto _ : state) {
        if (!ResourceEngine::ExportPNG(path, image, settings, nullptr, nullptr))
            state.SkipWithError("not written");
    }
    report(state, kPixels, 8);
}

void writePngFloor(benchmark::State& state, unsigned int bitDepth)
{
    const std::string path = filePath("floor.png");
    const bool wide = bitDepth != 0;
    const std::vector<unsigned char> rgba = wide ? std::vector<unsigned char>() : bytes(4);
    const void* samples = wide ? static_cast<const void*>(picture().data) : rgba.data();
    for (auto _ : state)
        bareWritePng(path, samples, kWidth, kHeight, wide ? 16 : 8, 1);
    report(state, kPixels, 8);
}

void writeTiff(benchmark::State& state, unsigned int bitDepth, TiffCompression compression)
{
    const QString path = QString::fromStdString(filePath("out.tif"));
    ResourceEngine::ExportTIFFSettings settings;
    settings.alpha = 1;
    settings.bitDepth = bitDepth;
    settings.compression = compression.setting;
    settings.colorProfile = Ondrel::EmbeddedColorProfile;
    const Ondrel::Image& image = picture();
    for (auto _ : state) {
        if (!ResourceEngine::ExportTIFF(path, image, settings, nullptr, nullptr))
            state.SkipWithError("not written");
    }
    report(state, kPixels, 8);
}

void writeTiffFloor(benchmark::State& state, unsigned int bitDepth, TiffCompression compression)
{
    const std::string path = filePath("floor.tif");
    const bool wide = bitDepth != 0;
    const std::vector<unsigned char> rgba = wide ? std::vector<unsigned char>() : bytes(4);
    const void* samples = wide ? static_cast<const void*>(picture().data) : rgba.data();
    for (auto _ : state)
        bareWriteTiff(path, samples, kWidth, kHeight, wide ? 16 : 8, compression.tag);
    report(state, kPixels, 8);
}

const bool added = [] {
    add("ExportJPEG, quality 90", writeJpeg);
    add("ExportJPEG, quality 90/floor", writeJpegFloor);
    for (const unsigned int bitDepth : {0u, 1u}) {
        const std::string bits = bitDepth ? ", 16 bits" : ", 8 bits";
        add("ExportPNG" + bits, writePng, bitDepth);
        add("ExportPNG" + bits + "/floor", writePngFloor, bitDepth);
        for (const TiffCompression& compression : kTiffCompressions) {
            const std::string name = "ExportTIFF" + bits + ", " + compression.name;
            add(name, writeTiff, bitDepth, compression);
            add(name + "/floor", writeTiffFloor, bitDepth, compression);
        }
    }
    return true;
}();

} // namespace
