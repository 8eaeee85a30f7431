#include <ondrel/color/lcms_p.h>
#include <ondrel/resources/librawhandle_p.h>
#include <ondrel/resources/raw.h>
#include <ondrel/resources/rawdecoder_p.h>

#include <utility>

namespace
{

void describe(const LibRaw& raw, Ondrel::ImageInfo& info)
{
    info.width = raw.imgdata.sizes.width;
    info.height = raw.imgdata.sizes.height;
    GetRawInfo(raw, info.rawIsMosaic, info.rawFilters, info.rawHasInfo, info.rawPreMultipliers,
               info.rawCameraMultipliers, info.rawIdentityMatrix, info.rawToneCurve);
}

bool validate(const std::shared_ptr<ResourceEngine::ImageInfo>& info, void** profile)
{
    const auto raw = Ondrel::openRaw(info->data);
    if (!raw || !Ondrel::librawSucceeds([&] { return raw->unpack(); }))
        return false;
    Ondrel::ImageInfo described = info->info;
    describe(*raw, described);
    // LibRaw turns an angle in degrees into its code, which is at most 6, only with a picture.
    if (raw->imgdata.sizes.flip > 6 && !Ondrel::librawSucceeds([&] { return raw->raw2image_ex(0); }))
        return false;
    const int flip = raw->imgdata.sizes.flip;
    if (flip == 5 || flip == 6)
        std::swap(described.width, described.height);
    info->info = std::move(described);
    if (profile)
        *profile = GetRawColorProfile(*raw);
    return true;
}

} // namespace

namespace Ondrel
{

RawDecoder& rawDecoder()
{
    static RawDecoder decoder{validate, ProcessRaw};
    return decoder;
}

} // namespace Ondrel
