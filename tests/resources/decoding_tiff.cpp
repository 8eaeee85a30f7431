#include "decoding.h"

#include <algorithm>
#include <cstring>

namespace OndrelTest
{

namespace
{

TiffPicture layoutOf(TIFF* tiff)
{
    TiffPicture picture{};
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &picture.width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &picture.height);
    TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &picture.photometric);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &picture.bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &picture.sampleFormat);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &picture.samplesPerPixel);
    std::uint16_t count = 0, planar = 0;
    std::uint16_t* extra = nullptr;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &extra);
    picture.extraSamples.assign(extra, extra + count);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &planar);
    picture.planar = planar == PLANARCONFIG_SEPARATE && picture.samplesPerPixel > 1;
    if (TIFFIsTiled(tiff) != 0) {
        TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &picture.tileWidth);
        TIFFGetField(tiff, TIFFTAG_TILELENGTH, &picture.tileLength);
    } else {
        TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &picture.rowsPerStrip);
        picture.rowsPerStrip = std::min(picture.rowsPerStrip, picture.height);
    }
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &picture.compression);
    return picture;
}

// Puts a rectangle of one plane, or of whole pixels, where it belongs.
void place(TiffPicture& picture, const Bytes& block, unsigned int x0, unsigned int y0, unsigned int blockWidth,
           unsigned int blockHeight, unsigned int plane)
{
    const std::size_t sampleBytes = picture.bits / 8u;
    const std::size_t take = picture.planar ? sampleBytes : picture.pixelBytes();
    for (unsigned int y = y0; y < std::min(y0 + blockHeight, picture.height); ++y)
        for (unsigned int x = x0; x < std::min(x0 + blockWidth, picture.width); ++x) {
            const std::size_t pixel = (std::size_t(y) * picture.width + x) * picture.pixelBytes();
            std::memcpy(&picture.samples[pixel + plane * sampleBytes],
                        &block[(std::size_t(y - y0) * blockWidth + (x - x0)) * take], take);
        }
}

void readBlocks(TIFF* tiff, TiffPicture& picture)
{
    const bool tiled = picture.tileWidth != 0;
    const unsigned int blockWidth = tiled ? picture.tileWidth : picture.width,
                       blockHeight = tiled ? picture.tileLength : picture.rowsPerStrip;
    const unsigned int planes = picture.planar ? picture.samplesPerPixel : 1;
    Bytes block(std::size_t(tiled ? TIFFTileSize(tiff) : TIFFStripSize(tiff)));
    std::uint32_t index = 0;
    for (unsigned int plane = 0; plane < planes; ++plane)
        for (unsigned int y = 0; y < picture.height; y += blockHeight)
            for (unsigned int x = 0; x < picture.width; x += blockWidth) {
                if (tiled)
                    TIFFReadEncodedTile(tiff, index++, block.data(), tmsize_t(block.size()));
                else
                    TIFFReadEncodedStrip(tiff, index++, block.data(), tmsize_t(block.size()));
                place(picture, block, x, y, blockWidth, blockHeight, plane);
            }
}

} // namespace

TiffPicture decodeTiff(const Bytes& file)
{
    const TemporaryFolder folder;
    writeFile(folder.path("file.tif"), file);
    TIFF* const tiff = TIFFOpen(qPrintable(folder.path("file.tif")), "r");
    EXPECT_NE(tiff, nullptr);
    if (!tiff)
        return {};
    TiffPicture picture = layoutOf(tiff);
    picture.samples.resize(picture.pixelBytes() * picture.width * picture.height);
    readBlocks(tiff, picture);
    TIFFClose(tiff);
    return picture;
}

} // namespace OndrelTest
