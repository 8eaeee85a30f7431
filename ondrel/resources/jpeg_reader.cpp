#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/lcms_p.h>
#include <ondrel/pixel/geometry.h>
#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/jpegmarkers_p.h>
#include <ondrel/resources/jpegsource_p.h>
#include <ondrel/resources/resourceengine.h>
#include <ondrel/resources/samples_p.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace Ondrel
{
namespace
{

using Hash = std::array<unsigned char, 32>;

constexpr unsigned int kBandRows = 16;

struct JpegColours {
    J_COLOR_SPACE output;
    unsigned int type;     // Little CMS pixel type
    unsigned int channels; // of the output
    bool reversed;         // Adobe's CMYK is stored inverted
};

std::optional<JpegColours> jpegColours(const jpeg_decompress_struct& jpeg)
{
    switch (jpeg.jpeg_color_space) {
    case JCS_GRAYSCALE:
        return JpegColours{JCS_GRAYSCALE, PT_GRAY, 1, false};
    case JCS_RGB:
    case JCS_YCbCr:
        return JpegColours{JCS_RGB, PT_RGB, 3, false};
    case JCS_CMYK:
    case JCS_YCCK:
        return JpegColours{JCS_CMYK, PT_CMYK, 4, jpeg.saw_Adobe_marker != 0};
    default:
        return std::nullopt;
    }
}

OwnedProfile sourceProfile(jpeg_saved_marker_ptr markers)
{
    const std::vector<unsigned char> icc = jpegIccProfile(markers);
    return icc.empty() ? OwnedProfile(Create_sRGBColorProfile()) : openProfile(icc);
}

// What becomes of the samples: the profile that the image is tagged with, the one that is handed out, and the
// transform, null if the samples are only widened.
struct Conversion {
    Hash hash{};
    OwnedProfile reported;
    OwnedTransform transform;
};

std::optional<Conversion> makeConversion(const JpegColours& colours, OwnedProfile source, const Hash& wanted,
                                         bool reportProfile)
{
    Conversion conversion;
    if (reportProfile && colours.type == PT_RGB)
        conversion.reported.reset(CopyICCProfile(source.get()));
    if (colours.type == PT_RGB && wanted == EmbeddedColorProfile) {
        conversion.hash = ColorManager::buildColorProfileHash(source.get());
        return conversion;
    }
    OwnedProfile output(ColorManager::copyColorProfileByHash(wanted));
    if (!output)
        output.reset(Create_sRGBColorProfile());
    conversion.hash = ColorManager::buildColorProfileHash(output.get());
    const cmsUInt32Number format = COLORSPACE_SH(colours.type) | CHANNELS_SH(colours.channels) | BYTES_SH(1) |
                                   FLAVOR_SH(colours.reversed ? 1u : 0u);
    conversion.transform.reset(
        cmsCreateTransform(source.get(), format, output.get(), TYPE_RGBA_16, INTENT_PERCEPTUAL, 0));
    if (!conversion.transform)
        return std::nullopt;
    return conversion;
}

// Decodes and converts in bands of rows, so that only one of them is held beside the image.
bool readPicture(JpegSource& source, cmsHTRANSFORM transform, Image& image)
{
    const std::size_t stride = std::size_t(source.jpeg.output_width) * unsigned(source.jpeg.output_components);
    std::vector<unsigned char> band(stride * kBandRows);
    for (unsigned int y = 0; y < image.height; y += kBandRows) {
        const unsigned int rows = std::min(kBandRows, image.height - y);
        if (!source.readRows(band.data(), stride, rows))
            return false;
        const std::size_t pixels = std::size_t(image.width) * rows;
        std::uint16_t* out = image.data + std::size_t(y) * image.width * 4;
        if (transform) {
            std::fill(out, out + pixels * 4, std::uint16_t(65535)); // the transform leaves alpha alone
            cmsDoTransform(transform, band.data(), out, cmsUInt32Number(pixels));
        } else {
            samplesFromBytes(band.data(), pixels * 4, out);
        }
    }
    return source.finish();
}

// Decodes without keeping pixels. False if the data end before the picture does.
bool isComplete(const std::vector<unsigned char>& data)
{
    JpegSource source(JpegSource::Ending::Error);
    if (!source.readHeader(data) || !source.start())
        return false;
    std::vector<unsigned char> row(std::size_t(source.jpeg.output_width) * unsigned(source.jpeg.output_components));
    for (unsigned int y = 0; y < source.jpeg.output_height; ++y) {
        if (!source.readRows(row.data(), row.size(), 1))
            return false;
    }
    return true;
}

bool isReadable(const jpeg_decompress_struct& jpeg, const std::vector<unsigned char>& data)
{
    return isDecodableSize(jpeg.image_width, jpeg.image_height) &&
           (isSizeOnTrust(jpeg.image_width, jpeg.image_height, data.size()) || isComplete(data));
}

Image oriented(Image image, JpegOrientation orientation)
{
    switch (orientation) {
    case JpegOrientation::Turned180:
        return Rotate180(image);
    case JpegOrientation::Clockwise:
        return Rotate270(image, RotateSizeBounding);
    case JpegOrientation::CounterClockwise:
        return Rotate90(image, RotateSizeBounding);
    case JpegOrientation::Upright:
        break;
    }
    return image;
}

} // namespace
} // namespace Ondrel

bool ResourceEngine::ReadJPEG(const std::shared_ptr<ImageInfo>& info, Ondrel::Image& image, void** profile,
                              const std::array<unsigned char, 32>& colorProfile)
{
    using namespace Ondrel;
    JpegSource source(JpegSource::Ending::Grey);
    if (!source.readHeader(info->data))
        return false;
    const std::optional<JpegColours> colours = jpegColours(source.jpeg);
    if (!colours || !isDecodableSize(source.jpeg.image_width, source.jpeg.image_height))
        return false;
    OwnedProfile own = sourceProfile(source.jpeg.marker_list);
    if (!own || cmsGetColorSpace(own.get()) != _cmsICCcolorSpace(int(colours->type)))
        return false;
    const JpegOrientation orientation = jpegOrientation(source.jpeg.marker_list);
    std::optional<Conversion> conversion = makeConversion(*colours, std::move(own), colorProfile, profile != nullptr);
    if (!conversion || !isReadable(source.jpeg, info->data))
        return false;
    // Samples that are only widened come with a fourth one of 255, so that image and file have the same layout.
    source.jpeg.out_color_space = conversion->transform ? colours->output : JCS_EXT_RGBA;
    if (!source.start())
        return false;
    Image decoded(source.jpeg.output_width, source.jpeg.output_height);
    if (!readPicture(source, conversion->transform.get(), decoded))
        return false;
    image = oriented(std::move(decoded), orientation);
    image.colorProfile = conversion->hash;
    if (profile && conversion->reported)
        *profile = conversion->reported.release();
    return true;
}
