#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/profileconversion_p.h>

namespace Ondrel
{

bool convertPixels(Image& image, void* source, void* destination)
{
    if (!source || !destination)
        return false;
    const OwnedTransform transform(
        cmsCreateTransform(source, TYPE_RGBA_16, destination, TYPE_RGBA_16, INTENT_PERCEPTUAL, 0));
    if (!transform)
        return false;
    if (holdsAllPixels(image))
        cmsDoTransform(transform.get(), image.data, image.data, cmsUInt32Number(image.width * image.height));
    return true;
}

} // namespace Ondrel
