#include "filter.h"
#include "nodes.h"
#include "profiles.h"
#include "values.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/softproof.h>

namespace Essentials
{
namespace
{

class SoftProofNode : public Filter
{
protected:
    ImagePtr process(const Work& work) const override
    {
        const QByteArray profile = profileHash(work.values, "profile");
        if (!Ondrel::ColorManager::isColorManagementEnabled())
            throw Problem(Text::tr("A proof needs color management, which is off."));
        if (!isPixelProfile(work.image->colorProfile))
            throw Problem(Text::tr("The picture's own profile is not known."));
        if (!isPixelProfile(Ondrel::QByteArrayToColorProfileHash(profile)))
            throw Problem(Text::tr("There is no proof for this profile."));
        Image proof =
            SoftProof(*work.image, profile, intentOf(work.values), choice(work.values, "gamut", {"Hide", "Show"}) == 1,
                      choice(work.values, "blackpoint", {"Keep", "Adapt"}) == 1);
        if (proof.colorProfile != Ondrel::ColorManager::displayProfileAsHash())
            throw Problem(Text::tr("There is no proof for this profile."));
        return std::make_shared<const Image>(std::move(proof));
    }
};

} // namespace

Host::NodeEntry softProofNode()
{
    return entryOf<SoftProofNode>("Soft Proof");
}

} // namespace Essentials
