#pragma once

#include "tests/support/testprofiles.h"

#include <ondrel/resources/resourceengine.h>

#include <QString>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

#include <jpeglib.h>
#include <png.h>
#include <tiffio.h>

// Image files that the tests make with libpng, libjpeg and libtiff themselves. All are reproducible: the same arguments
// give the same bytes. A mistake in a description ends the process with the library's message.
namespace OndrelTest
{

// ---- Records and files

// What the decoders take: a record that holds these bytes.
std::shared_ptr<ResourceEngine::ImageInfo> recordOf(const Bytes& data);

Bytes randomBytes(std::size_t count, unsigned int seed);
void append(Bytes& bytes, const Bytes& more);
Bytes bigEndian(unsigned int value); // four bytes
Bytes readFile(const QString& name);
void writeFile(const QString& name, const Bytes& data);

// A folder that vanishes with the object.
class TemporaryFolder
{
public:
    TemporaryFolder() {} // user-provided, so that it can be a const member

    QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }

private:
    QTemporaryDir m_folder;
};

// ---- PNG

struct PngPicture {
    unsigned int width, height;
    int colorType; // PNG_COLOR_TYPE_...
    int bitDepth;
    Bytes rows; // as the file packs them: 16-bit samples big-endian, each row from a byte of its own
    bool interlaced = false;
    std::vector<png_color> palette = {}; // for PNG_COLOR_TYPE_PALETTE

    unsigned int channels() const;
    std::size_t rowBytes() const;
    unsigned int sample(unsigned int x, unsigned int y, unsigned int channel) const; // as the file holds it
};

PngPicture randomPng(unsigned int width, unsigned int height, int colorType, int bitDepth, unsigned int seed = 1);

// `chunks` may add to the header.
using PngChunks = std::function<void(png_struct*, png_info*)>;
Bytes pngFile(const PngPicture& picture, const PngChunks& chunks = {});

// One chunk as a file holds it, and a file with it behind the header chunk.
Bytes pngChunk(const char* type, const Bytes& data);
Bytes withPngChunk(const Bytes& file, const Bytes& chunk);

// ---- JPEG

struct JpegPicture {
    unsigned int width, height;
    J_COLOR_SPACE space; // of the file
    Bytes samples;       // interleaved; RGB for a YCbCr file, CMYK for a YCCK one
    bool progressive = false;
    bool adobeMarker = true; // for a CMYK file; YCCK cannot do without
    int quality = 90;
};

int jpegChannels(J_COLOR_SPACE space);
JpegPicture randomJpeg(unsigned int width, unsigned int height, J_COLOR_SPACE space, unsigned int seed = 1);

// `markers` is called between the start of the file and the first row.
using JpegMarkers = std::function<void(jpeg_compress_struct*)>;
Bytes jpegFile(const JpegPicture& picture, const JpegMarkers& markers = {});

// An APP2 marker that holds `part` of a profile, and a whole profile in `count` such markers.
void writeIccMarker(jpeg_compress_struct* jpeg, unsigned int number, unsigned int total, const Bytes& part);
void writeIcc(jpeg_compress_struct* jpeg, const Bytes& profile, unsigned int count = 1);

// The content of an APP1 marker: one directory of entries, `offset` bytes behind the byte order mark.
struct ExifEntry {
    unsigned int tag, type, count, value;
};
Bytes exif(const std::vector<ExifEntry>& entries, unsigned int offset = 8);
Bytes exifOrientation(unsigned int value);
Bytes bigEndianExifOrientation(unsigned int value);
void writeExif(jpeg_compress_struct* jpeg, const Bytes& content);

// ---- TIFF

struct TiffPicture {
    unsigned int width, height;
    std::uint16_t photometric, bits, sampleFormat, samplesPerPixel;
    Bytes samples; // interleaved, in the machine's byte order
    std::vector<std::uint16_t> extraSamples = {};
    bool planar = false;
    unsigned int tileWidth = 0, tileLength = 0; // tiles if not 0
    unsigned int rowsPerStrip = 0;              // 0: one strip, without the tag
    std::uint16_t compression = COMPRESSION_NONE;

    std::size_t pixelBytes() const { return std::size_t(samplesPerPixel) * bits / 8; }
};

// Float samples lie between 0 and 1. The alphas of 16-bit and float pictures are 0 or 1 now and then.
TiffPicture randomTiff(unsigned int width, unsigned int height, unsigned int photometric, unsigned int bits,
                       unsigned int samplesPerPixel, unsigned int seed = 1);

// `tags` may add to the directory. `mode` as for TIFFOpen: byte order, BigTIFF.
using TiffTags = std::function<void(TIFF*)>;
Bytes tiffFile(const TiffPicture& picture, const TiffTags& tags = {}, const char* mode = "w");

void setIccTag(TIFF* tiff, const Bytes& profile);

// Keeps libtiff's messages about files that are damaged on purpose out of the test log.
class QuietTiff
{
public:
    QuietTiff();
    ~QuietTiff();
    QuietTiff(const QuietTiff&) = delete;
    QuietTiff& operator=(const QuietTiff&) = delete;

private:
    TIFFErrorHandler m_error, m_warning;
};

} // namespace OndrelTest
