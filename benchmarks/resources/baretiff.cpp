#include "barelibraries.h"

#include <lcms2.h>
#include <tiffio.h>

#include <cstddef>
#include <cstring>

namespace OndrelBench
{

bool bareReadTiff(const std::string& fileName, Ondrel::Image& image)
{
    TIFF* tiff = TIFFOpen(fileName.c_str(), "rm");
    if (!tiff)
        return false;
    std::uint16_t bits = 8, samples = 3;
    std::uint32_t rowsPerStrip = 1;
    TIFFGetField(tiff, TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetField(tiff, TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetField(tiff, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
    cmsHPROFILE srgb = cmsCreate_sRGBProfile();
    const cmsUInt32Number format =
        COLORSPACE_SH(PT_RGB) | CHANNELS_SH(3) | EXTRA_SH(samples - 3u) | BYTES_SH(bits / 8u);
    cmsHTRANSFORM transform = cmsCreateTransform(srgb, format, srgb, TYPE_RGBA_16, INTENT_PERCEPTUAL, 0);
    std::vector<unsigned char> strip(std::size_t(TIFFStripSize(tiff)));
    for (std::uint32_t s = 0; s < TIFFNumberOfStrips(tiff); ++s) {
        TIFFReadEncodedStrip(tiff, s, strip.data(), tmsize_t(strip.size()));
        cmsDoTransform(transform, strip.data(), image.data + std::size_t(s) * rowsPerStrip * image.width * 4,
                       image.width * rowsPerStrip);
    }
    cmsDeleteTransform(transform);
    cmsCloseProfile(srgb);
    TIFFClose(tiff);
    return true;
}

bool bareWriteTiff(const std::string& fileName, const void* rgba, unsigned int width, unsigned int height, int bits,
                   int compression)
{
    TIFF* tiff = TIFFOpen(fileName.c_str(), "w");
    if (!tiff)
        return false;
    const std::uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 4);
    TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 1);
    const std::size_t rowBytes = std::size_t(width) * unsigned(bits) / 2;
    std::vector<unsigned char> row(rowBytes);
    for (unsigned int y = 0; y < height; ++y) {
        std::memcpy(row.data(), static_cast<const unsigned char*>(rgba) + y * rowBytes, rowBytes);
        TIFFWriteEncodedStrip(tiff, y, row.data(), tmsize_t(rowBytes));
    }
    const bool written = TIFFWriteDirectory(tiff) == 1;
    TIFFClose(tiff);
    return written;
}

} // namespace OndrelBench
