#include "filter.h"
#include "nodes.h"
#include "profiles.h"
#include "values.h"

#include <ondrel/color/colortransformer.h>

namespace Essentials
{
namespace
{

class ColourProfileNode : public Filter
{
protected:
    ImagePtr process(const Work& work) const override
    {
        const QByteArray profile = profileHash(work.values, "profile");
        if (!isPixelProfile(work.image->colorProfile))
            throw Problem(Text::tr("The picture's own profile is not known."));
        if (!isPixelProfile(Ondrel::QByteArrayToColorProfileHash(profile)))
            throw Problem(Text::tr("Pictures cannot be converted to this profile."));
        return std::make_shared<const Image>(
            ConvertColorSpace(*work.image, "Automatic", profile, intentOf(work.values)));
    }
};

} // namespace

Host::NodeEntry colourProfileNode()
{
    return entryOf<ColourProfileNode>("Colour Profile");
}

} // namespace Essentials
