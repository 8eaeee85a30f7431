#pragma once

#include "decoding.h"

#include <functional>

// The encoders as the tests call them, and what is read back from their files by the C libraries alone.
namespace OndrelTest
{

// A progress callback that keeps what it is told, and asks to stop at one of its calls.
struct Progress {
    int stopAtCall = -1; // from 0; never if negative
    std::vector<int> percents = {};

    static bool report(int percent, void* progress);
};

// All exports as one interface: `progress` may be null. Those to memory do not look at `file`, and fill `data`.
struct Exporter {
    const char* name;
    bool toMemory;
    std::function<bool(const QString& file, Bytes& data, const Ondrel::Image& image, const Hash& profile,
                       Progress* progress)>
        run;
};
const std::vector<Exporter>& exporters(); // PNG, JPEG, TIFF; TIFF to memory
Exporter cmykExporter();                  // takes the size of the image and makes samples of its own

ResourceEngine::ExportPNGSettings pngSettings(const Hash& profile, unsigned int alpha, unsigned int bitDepth);
ResourceEngine::ExportTIFFSettings tiffSettings(const Hash& profile, unsigned int alpha, unsigned int bitDepth);

// A random image of the standard profile.
Ondrel::Image standardImage(unsigned int width, unsigned int height);

// An image of 256 x 256 that holds every value, differently in each channel: red is y * 256 + x.
Ondrel::Image everyValue();

// What a PNG file holds, as it holds it.
struct PngContent {
    PngPicture picture{};
    std::string iccName;
    Bytes icc;                  // empty if there is none
    unsigned int otherInfo = 0; // sRGB, gAMA, cHRM, tRNS flags of libpng
};
PngContent decodePng(const Bytes& file);

// The content of a JPEG file's APP2 markers.
std::vector<Bytes> iccMarkers(const Bytes& jpegFile);

// The ICC tag of a TIFF file, empty if there is none.
Bytes iccTag(const Bytes& tiffFile);

// Calls use() on the open file.
void withTiff(const Bytes& file, const std::function<void(TIFF*)>& use);

} // namespace OndrelTest
