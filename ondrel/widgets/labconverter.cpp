#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/lcms_p.h>
#include <ondrel/widgets/labconverter_p.h>

namespace Ondrel
{

struct LabConverter::Transforms {
    OwnedTransform rgbToLab, labToRgb;
};

namespace
{

OwnedProfile displayProfile()
{
    std::vector<unsigned char> data;
    ColorManager::displayProfileAsICCProfile(data);
    OwnedProfile profile = openProfile(data);
    return profile ? std::move(profile) : OwnedProfile(Create_sRGBColorProfile());
}

bool convert(const OwnedTransform& transform, const LabConverter::Pixel* in, LabConverter::Pixel* out,
             std::size_t count)
{
    if (!transform)
        return false;
    cmsDoTransform(transform.get(), in, out, static_cast<cmsUInt32Number>(count));
    return true;
}

} // namespace

LabConverter::LabConverter()
    : m_transforms(std::make_unique<Transforms>())
{
}

LabConverter::~LabConverter() = default;

void LabConverter::prepare()
{
    const bool rested = !m_timer.isValid() || m_timer.elapsed() > 9999;
    m_timer.start();
    if (!rested && m_transforms->rgbToLab && m_transforms->labToRgb)
        return;
    const OwnedProfile display = displayProfile();
    const OwnedProfile lab(CreateLabColorProfile());
    const unsigned int intent = ColorManager::getDisplayRenderingIntent();
    m_transforms->rgbToLab.reset(
        cmsCreateTransform(display.get(), TYPE_RGB_16, lab.get(), TYPE_Lab_16, intent, cmsFLAGS_NOCACHE));
    m_transforms->labToRgb.reset(
        cmsCreateTransform(lab.get(), TYPE_Lab_16, display.get(), TYPE_RGB_16, intent, cmsFLAGS_NOCACHE));
    ++m_builds;
}

bool LabConverter::toLab(const Pixel* rgb, Pixel* lab, std::size_t count) const
{
    return convert(m_transforms->rgbToLab, rgb, lab, count);
}

bool LabConverter::toRgb(const Pixel* lab, Pixel* rgb, std::size_t count) const
{
    return convert(m_transforms->labToRgb, lab, rgb, count);
}

} // namespace Ondrel
