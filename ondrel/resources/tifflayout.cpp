#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/tifflayout_p.h>

namespace Ondrel
{
namespace
{

constexpr unsigned int kMostChannels = 15; // four and three bits of the format word
constexpr unsigned int kMostExtras = 7;

std::uint16_t shortTag(TIFF* tiff, std::uint32_t tag, std::uint16_t fallback)
{
    std::uint16_t value = fallback;
    return TIFFGetFieldDefaulted(tiff, tag, &value) ? value : fallback;
}

bool readExtraSamples(TIFF* tiff, std::uint16_t samplesPerPixel, TiffLayout& layout)
{
    std::uint16_t count = 0;
    std::uint16_t* kinds = nullptr;
    if (!TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds))
        count = 0;
    if (count >= samplesPerPixel || count > kMostExtras)
        return false;
    layout.extras = count;
    layout.channels = std::uint16_t(samplesPerPixel - count);
    if (count > 0 && kinds && kinds[0] == EXTRASAMPLE_ASSOCALPHA)
        layout.alpha = TiffAlpha::Associated;
    if (count > 0 && kinds && kinds[0] == EXTRASAMPLE_UNASSALPHA)
        layout.alpha = TiffAlpha::Unassociated;
    return layout.channels <= kMostChannels;
}

unsigned int separatedType(unsigned int channels)
{
    switch (channels) {
    case 1:
        return PT_GRAY;
    case 4:
        return PT_CMYK;
    default:
        return PT_MCH1 + channels - 1;
    }
}

bool isSubsampled(TIFF* tiff)
{
    std::uint16_t horizontal = 0, vertical = 0;
    return !TIFFGetFieldDefaulted(tiff, TIFFTAG_YCBCRSUBSAMPLING, &horizontal, &vertical) || horizontal != 1 ||
           vertical != 1;
}

bool readColours(TIFF* tiff, TiffLayout& layout)
{
    std::uint16_t photometric = 0;
    if (!TIFFGetFieldDefaulted(tiff, TIFFTAG_PHOTOMETRIC, &photometric))
        return false;
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
        layout.type = PT_GRAY;
        layout.reversed = true;
        return true;
    case PHOTOMETRIC_MINISBLACK:
        layout.type = PT_GRAY;
        return true;
    case PHOTOMETRIC_RGB:
        layout.type = PT_RGB;
        return true;
    case PHOTOMETRIC_SEPARATED:
        layout.type = separatedType(layout.channels);
        return true;
    case PHOTOMETRIC_YCBCR:
        layout.type = PT_YCbCr;
        return !isSubsampled(tiff);
    case PHOTOMETRIC_ICCLAB:
        layout.type = PT_LabV2;
        return true;
    case PHOTOMETRIC_LOGLUV:
        layout.type = PT_YUV;
        layout.sampleBytes = 2;
        return TIFFSetField(tiff, TIFFTAG_SGILOGDATAFMT, SGILOGDATAFMT_16BIT) == 1;
    default:
        return false;
    }
}

bool readSampleFormat(TIFF* tiff, TiffLayout& layout)
{
    const std::uint16_t format = shortTag(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    layout.isFloat = format == SAMPLEFORMAT_IEEEFP;
    return format == SAMPLEFORMAT_UINT || (layout.isFloat && layout.sampleBytes == 4);
}

} // namespace

cmsUInt32Number TiffLayout::lcmsFormat() const
{
    return BYTES_SH(unsigned(sampleBytes)) | CHANNELS_SH(unsigned(channels)) | EXTRA_SH(unsigned(extras)) |
           PLANAR_SH(planar ? 1u : 0u) | COLORSPACE_SH(type) | FLAVOR_SH(reversed ? 1u : 0u) |
           FLOAT_SH(isFloat ? 1u : 0u);
}

std::optional<TiffLayout> readTiffLayout(TIFF* tiff)
{
    TiffLayout layout;
    layout.fileBits = shortTag(tiff, TIFFTAG_BITSPERSAMPLE, 1);
    if (layout.fileBits != 8 && layout.fileBits != 16 && layout.fileBits != 32)
        return std::nullopt;
    layout.sampleBytes = std::uint16_t(layout.fileBits / 8);
    const std::uint16_t planarConfig = shortTag(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    if (planarConfig != PLANARCONFIG_CONTIG && planarConfig != PLANARCONFIG_SEPARATE)
        return std::nullopt;
    const std::uint16_t samplesPerPixel = shortTag(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    layout.planar = planarConfig == PLANARCONFIG_SEPARATE && samplesPerPixel > 1;
    if (!readExtraSamples(tiff, samplesPerPixel, layout) || !readColours(tiff, layout) ||
        !readSampleFormat(tiff, layout))
        return std::nullopt;
    if (!TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &layout.width) ||
        !TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &layout.height) || !isDecodableSize(layout.width, layout.height))
        return std::nullopt;
    return layout;
}

} // namespace Ondrel
