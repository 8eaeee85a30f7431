#include <ondrel/color/softproof.h>

#include <ondrel/color/cmsrows_p.h>
#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/lcms_p.h>
#include <ondrel/color/proofnotice_p.h>

#include <new>

namespace
{

using Hash = std::array<unsigned char, 32>;

Ondrel::Image blackFrame(const Ondrel::Image& image)
{
    Ondrel::Image result(image.width, image.height);
    result.Fill(0, 0, 0, 65535);
    result.colorProfile = image.colorProfile;
    return result;
}

unsigned int proofFlags(bool gamutCheck, bool blackPointCompensation)
{
    unsigned int flags = cmsFLAGS_SOFTPROOFING;
    if (gamutCheck)
        flags |= cmsFLAGS_GAMUTCHECK;
    if (blackPointCompensation)
        flags |= cmsFLAGS_BLACKPOINTCOMPENSATION;
    return flags;
}

// A context of the call's own, so that pure red as the alarm colour does not change that of the process.
Ondrel::OwnedContext contextWithRedAlarm()
{
    Ondrel::OwnedContext context(cmsCreateContext(nullptr, nullptr));
    if (!context)
        throw std::bad_alloc();
    const cmsUInt16Number codes[cmsMAXCHANNELS] = {65535};
    cmsSetAlarmCodesTHR(context.get(), codes);
    return context;
}

} // namespace

Ondrel::Image SoftProof(const Ondrel::Image& image, const QByteArray& proofProfile, unsigned int intent,
                        bool gamutCheck, bool blackPointCompensation)
{
    using Ondrel::ColorManager;
    using Ondrel::OwnedProfile;
    Hash displayHash{};
    const OwnedProfile source(ColorManager::copyColorProfileByHash(image.colorProfile));
    const OwnedProfile display(ColorManager::copyDisplayProfile(displayHash));
    const OwnedProfile proof(ColorManager::copyColorProfileByHash(Ondrel::QByteArrayToColorProfileHash(proofProfile)));
    if (!source || !proof)
        return blackFrame(image);
    if (!display) {
        Ondrel::Image notice = Ondrel::proofNotice(image.width, image.height);
        notice.colorProfile = Ondrel::DefaultColorProfileHash;
        return notice;
    }

    Ondrel::Image result(image.width, image.height);
    result.colorProfile = displayHash;
    const unsigned int displayIntent = ColorManager::getDisplayRenderingIntent();
    const unsigned int flags = proofFlags(gamutCheck, blackPointCompensation);
    // The context goes before the transforms that were made in it. Little CMS 2 frees the memory of a context that it
    // no longer knows by the process's own functions, which are those that a context without plug-ins has used all
    // along.
    Ondrel::ColorTransformCache cache;
    const Ondrel::OwnedContext context = contextWithRedAlarm();
    const auto makeTransform = [&] {
        return cmsCreateProofingTransformTHR(context.get(), source.get(), Ondrel::imagePixelFormat(source.get()),
                                             display.get(), TYPE_RGBA_16, proof.get(), displayIntent, intent, flags);
    };
    if (!Ondrel::convertImage(makeTransform, cache, image, result))
        return blackFrame(image);
    return result;
}
