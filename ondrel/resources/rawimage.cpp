#include <ondrel/color/colormanager.h>
#include <ondrel/color/lcms_p.h>
#include <ondrel/pixel/perspective.h>
#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/librawhandle_p.h>
#include <ondrel/resources/raw.h>
#include <ondrel/resources/rawscale_p.h>
#include <ondrel/resources/resourceengine.h>

#include <algorithm>
#include <cstring>
#include <iostream>

namespace
{

using Ondrel::Image;

struct Turn {
    float angle;
    std::uint32_t code; // as Image::rawRotation
};

// The transpositions, which no camera writes, are not applied.
Turn turnOf(int flip)
{
    switch (flip) {
    case 3:
        return {180.0f, 1};
    case 5:
        return {90.0f, 3};
    case 6:
        return {270.0f, 2};
    default:
        return {0.0f, 0};
    }
}

// Raw colour, as the sensor gave it, but for the black level. Whether the steps succeed is not asked: without a picture
// from LibRaw the image stays black.
void unpack(LibRaw& raw)
{
    auto& params = raw.imgdata.params;
    params.output_bps = 16;
    params.use_camera_wb = 0;
    params.use_camera_matrix = 0;
    params.output_color = 0;
    static_cast<void>(Ondrel::librawSucceeds([&] { return raw.unpack(); }));
    static_cast<void>(Ondrel::librawSucceeds([&] { return raw.raw2image_ex(1); }));
}

Image copyPicture(const libraw_data_t& data)
{
    const auto& sizes = data.sizes;
    const std::size_t pixels = std::size_t(sizes.width) * sizes.height;
    if (pixels >= Ondrel::kPixelLimit)
        return {};
    Image image(sizes.width, sizes.height);
    const std::size_t held = std::size_t(sizes.iwidth) * sizes.iheight;
    if (pixels > 0 && data.image)
        std::memcpy(image.data, data.image, std::min(pixels, held) * sizeof *data.image);
    return image;
}

// Moves the photosites of the second green from sample 3, which becomes alpha, to that of the first.
void mergeGreens(unsigned int filters, Image& image)
{
    if (!Ondrel::holdsAllPixels(image))
        return;
    for (unsigned int row = 0; row < image.height; ++row) {
        std::uint16_t* const pixels = image.data + std::size_t(row) * image.width * 4;
        for (unsigned int phase = 0; phase < 2; ++phase) {
            if (((filters >> ((((row << 1) & 14) | phase) << 1)) & 3) != 3)
                continue;
            for (std::size_t column = phase; column < image.width; column += 2)
                pixels[column * 4 + 1] = pixels[column * 4 + 3];
        }
    }
}

void spreadGrey(Image& image)
{
    if (!Ondrel::holdsAllPixels(image))
        return;
    const std::size_t samples = std::size_t(image.width) * image.height * 4;
    for (std::size_t i = 0; i < samples; i += 4)
        image.data[i + 1] = image.data[i + 2] = image.data[i];
}

std::array<unsigned char, 32> profileHash(const LibRaw& raw)
{
    const Ondrel::OwnedProfile profile(GetRawColorProfile(raw));
    return profile ? Ondrel::ColorManager::buildColorProfileHash(profile.get()) : Ondrel::DefaultRawColorProfileHash;
}

void describe(const LibRaw& raw, Image& image)
{
    std::shared_ptr<const std::vector<Ondrel::CubicBezierSpline::Point>> toneCurve;
    GetRawInfo(raw, image.rawIsMosaic, image.rawFilters, image.rawHasInfo, image.rawPreMultipliers,
               image.rawCameraMultipliers, image.rawIdentityMatrix, toneCurve);
    image.rawToneCurve = std::const_pointer_cast<std::vector<Ondrel::CubicBezierSpline::Point>>(toneCurve);
    static_assert(sizeof image.rawXTrans == sizeof raw.imgdata.idata.xtrans);
    std::memcpy(image.rawXTrans, raw.imgdata.idata.xtrans, sizeof image.rawXTrans);
}

} // namespace

Ondrel::Image ProcessRaw(Ondrel::ResourceId id, const Ondrel::RunStatus&)
{
    ResourceEngine::Format format{};
    std::vector<unsigned char> data;
    std::string fileName;
    ResourceEngine::Get().CopyData(id, format, data, fileName);
    const auto raw = Ondrel::openRaw(data);
    if (!raw) {
        std::cerr << "Warning: Resource system is storing an invalid image resource." << std::endl;
        return {};
    }
    unpack(*raw);
    Image image = copyPicture(raw->imgdata);
    // What is not needed any more goes before the rotation, which holds two images.
    raw->free_image();
    raw->recycle_datastream();
    std::vector<unsigned char>().swap(data);

    mergeGreens(raw->imgdata.idata.filters, image);
    Ondrel::ScaleColors(raw->imgdata.color.black, raw->imgdata.color.maximum, image);
    const Turn turn = turnOf(raw->imgdata.sizes.flip);
    if (raw->imgdata.sizes.flip != 0)
        image = Rotate(image, turn.angle, RotateSizeBounding, Ondrel::FilterMethod::NearestNeighbor);
    if (raw->imgdata.idata.colors == 1)
        spreadGrey(image);
    image.colorProfile = profileHash(*raw); // from here on: the rotation drops what describes the image
    describe(*raw, image);
    image.rawRotation = turn.code;
    return image;
}
