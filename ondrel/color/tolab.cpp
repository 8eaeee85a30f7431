#include <ondrel/color/cmsrows_p.h>
#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/lcms_p.h>
#include <ondrel/core/pixelsinblock_p.h>

namespace Ondrel
{

std::vector<float> ColorManager::toLab(const Ondrel::Image& image)
{
    constexpr std::size_t grainRows = 32;
    OwnedProfile source(copyColorProfileByHash(image.colorProfile));
    if (!source)
        source.reset(Create_sRGBColorProfile());
    const OwnedProfile lab(CreateLabColorProfile());

    std::vector<float> result(std::size_t{image.width} * image.height * 3);
    const PixelConversion conversion = {source.get(), imagePixelFormat(source.get()), lab.get(), TYPE_Lab_FLT,
                                        INTENT_PERCEPTUAL};
    ColorTransformCache cache;
    convertRows(transformMaker(conversion), cache, image.width, pixelsInBlock(image), grainRows,
                [&](void* transform, std::size_t first, std::size_t last) {
                    forEachPiece(first, transform ? last : first, [&](std::size_t at, std::size_t count) {
                        cmsDoTransform(transform, image.data + at * 4, result.data() + at * 3,
                                       static_cast<cmsUInt32Number>(count));
                    });
                });
    return result;
}

} // namespace Ondrel
