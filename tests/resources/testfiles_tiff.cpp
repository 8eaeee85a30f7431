#include "testfiles.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace OndrelTest
{

namespace
{

void setLayout(TIFF* tiff, const TiffPicture& picture)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, picture.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, picture.height);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, picture.photometric);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, picture.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, picture.samplesPerPixel);
    if (picture.sampleFormat != SAMPLEFORMAT_UINT)
        TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, picture.sampleFormat);
    if (!picture.extraSamples.empty())
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, int(picture.extraSamples.size()), picture.extraSamples.data());
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, picture.planar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, picture.compression);
    if (picture.tileWidth != 0) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, picture.tileWidth);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, picture.tileLength);
    } else if (picture.rowsPerStrip != 0) {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, picture.rowsPerStrip);
    }
}

// A rectangle of the picture, of one sample in each pixel or of all; what lies outside the picture is 0xEE.
Bytes block(const TiffPicture& picture, unsigned int x0, unsigned int y0, unsigned int width, unsigned int height,
            unsigned int plane)
{
    const std::size_t sampleBytes = picture.bits / 8u;
    const std::size_t take = picture.planar ? sampleBytes : picture.pixelBytes();
    Bytes result(take * width * height, 0xEE);
    for (unsigned int y = y0; y < std::min(y0 + height, picture.height); ++y)
        for (unsigned int x = x0; x < std::min(x0 + width, picture.width); ++x) {
            const std::size_t pixel = (std::size_t(y) * picture.width + x) * picture.pixelBytes();
            std::copy_n(&picture.samples[pixel + plane * sampleBytes], take,
                        &result[(std::size_t(y - y0) * width + (x - x0)) * take]);
        }
    return result;
}

void writeTiles(TIFF* tiff, const TiffPicture& picture)
{
    const unsigned int planes = picture.planar ? picture.samplesPerPixel : 1;
    std::uint32_t index = 0;
    for (unsigned int plane = 0; plane < planes; ++plane)
        for (unsigned int y = 0; y < picture.height; y += picture.tileLength)
            for (unsigned int x = 0; x < picture.width; x += picture.tileWidth) {
                Bytes tile = block(picture, x, y, picture.tileWidth, picture.tileLength, plane);
                TIFFWriteEncodedTile(tiff, index++, tile.data(), tmsize_t(tile.size()));
            }
}

void writeStrips(TIFF* tiff, const TiffPicture& picture)
{
    const unsigned int planes = picture.planar ? picture.samplesPerPixel : 1;
    const unsigned int rows = picture.rowsPerStrip == 0 ? picture.height : picture.rowsPerStrip;
    std::uint32_t index = 0;
    for (unsigned int plane = 0; plane < planes; ++plane)
        for (unsigned int y = 0; y < picture.height; y += rows) {
            Bytes strip = block(picture, 0, y, picture.width, std::min(rows, picture.height - y), plane);
            TIFFWriteEncodedStrip(tiff, index++, strip.data(), tmsize_t(strip.size()));
        }
}

} // namespace

TiffPicture randomTiff(unsigned int width, unsigned int height, unsigned int photometric, unsigned int bits,
                       unsigned int samplesPerPixel, unsigned int seed)
{
    TiffPicture picture{width,
                        height,
                        std::uint16_t(photometric),
                        std::uint16_t(bits),
                        std::uint16_t(bits == 32 ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_UINT),
                        std::uint16_t(samplesPerPixel),
                        {}};
    picture.samples = randomBytes(picture.pixelBytes() * width * height, seed);
    std::mt19937 random(seed);
    if (bits == 32)
        for (std::size_t i = 0; i < picture.samples.size(); i += 4) {
            const unsigned int kind = random() % 8;
            const float value = kind == 0 ? 0.0f : kind == 1 ? 1.0f : float(random() % 100000) / 100000.0f;
            std::memcpy(&picture.samples[i], &value, 4);
        }
    return picture;
}

Bytes tiffFile(const TiffPicture& picture, const TiffTags& tags, const char* mode)
{
    const TemporaryFolder folder;
    TIFF* const tiff = TIFFOpen(qPrintable(folder.path("file.tif")), mode);
    setLayout(tiff, picture);
    if (tags)
        tags(tiff);
    if (picture.tileWidth != 0)
        writeTiles(tiff, picture);
    else
        writeStrips(tiff, picture);
    TIFFClose(tiff);
    return readFile(folder.path("file.tif"));
}

void setIccTag(TIFF* tiff, const Bytes& profile)
{
    TIFFSetField(tiff, TIFFTAG_ICCPROFILE, std::uint32_t(profile.size()), profile.data());
}

QuietTiff::QuietTiff()
    : m_error(TIFFSetErrorHandler(nullptr))
    , m_warning(TIFFSetWarningHandler(nullptr))
{
}

QuietTiff::~QuietTiff()
{
    TIFFSetErrorHandler(m_error);
    TIFFSetWarningHandler(m_warning);
}

} // namespace OndrelTest
