#include "stored.h"

#include "values.h"

#include <ondrel/color/colorprofiles.h>
#include <ondrel/resources/resourceengine.h>

namespace Essentials
{
namespace
{

// The description of a picture that is there.
Ondrel::ImageInfo chosenInfo(Ondrel::ResourceId id)
{
    Ondrel::ImageInfo info;
    if (id.id == 0 || !ResourceEngine::Get().CopyImageInfo(id, info) || info.width == 0 || info.height == 0)
        throw Problem(Text::tr("No picture has been chosen."));
    return info;
}

} // namespace

QSize storedSize(const QVariantMap& values)
{
    Ondrel::ImageInfo info;
    const Ondrel::ResourceId id = resource(values, "image");
    if (id.id == 0 || !ResourceEngine::Get().CopyImageInfo(id, info))
        return QSize();
    return QSize(int(info.width), int(info.height));
}

bool convertsToProfile(const QVariantMap& values)
{
    return choice(values, "space", {"Own", "Chosen"}) == 1;
}

ImagePtr storedImage(const QVariantMap& values, bool raw, const Ondrel::RunStatus& status)
{
    const Ondrel::ResourceId id = resource(values, "image");
    const Ondrel::ImageInfo info = chosenInfo(id);
    if (info.rawHasInfo && !raw)
        throw Problem(Text::tr("This is a camera RAW file. Use a node \"RAW Image\" to develop it."));
    if (!info.rawHasInfo && raw)
        throw Problem(Text::tr("This is no camera RAW file. Use a node \"Image\" for it."));
    const bool convert = !raw && convertsToProfile(values);
    const auto profile =
        convert ? Ondrel::QByteArrayToColorProfileHash(profileHash(values, "profile")) : Ondrel::EmbeddedColorProfile;
    ImagePtr image; // empty: the store may write into an image that it is handed
    const bool read = ResourceEngine::Get().CopyImage(id, image, profile, status);
    if (isCancelled(status))
        return nullptr;
    if (!read || !image || !image->data || image->width == 0 || image->height == 0)
        throw Problem(convert ? Text::tr("The picture cannot be read in this profile.")
                              : Text::tr("The picture cannot be read."));
    return image;
}

ImagePtr scaledDown(const ImagePtr& image, double scale)
{
    return scaledTo(image, scaledSize(QSize(int(image->width), int(image->height)), scale));
}

ImagePtr scaledTo(const ImagePtr& image, const QSize& size)
{
    if (size == QSize(int(image->width), int(image->height)))
        return image;
    return std::make_shared<const Image>(
        Scale(*image, unsigned(size.width()), unsigned(size.height()), Ondrel::FilterMethod::Bilinear));
}

} // namespace Essentials
