#include <ondrel/resources/rawdecoder_p.h>
#include <ondrel/resources/resourceengine.h>

#include <utility>

namespace
{

void setSize(ResourceEngine::ImageInfo& info, const Ondrel::Image& decoded)
{
    info.info.width = decoded.width;
    info.info.height = decoded.height;
}

} // namespace

bool ResourceEngine::ValidatePNG(const std::shared_ptr<ImageInfo>& info, void** profile)
{
    Ondrel::Image decoded;
    if (!ReadPNG(info, decoded, profile))
        return false;
    setSize(*info, decoded);
    return true;
}

bool ResourceEngine::ValidateJPEG(const std::shared_ptr<ImageInfo>& info, void** profile)
{
    Ondrel::Image decoded;
    if (!ReadJPEG(info, decoded, profile, Ondrel::EmbeddedColorProfile))
        return false;
    setSize(*info, decoded);
    return true;
}

bool ResourceEngine::ValidateTIFF(const std::shared_ptr<ImageInfo>& info, void** profile)
{
    Ondrel::Image decoded;
    if (!ReadTIFF(info, decoded, profile, Ondrel::EmbeddedColorProfile))
        return false;
    setSize(*info, decoded);
    return true;
}

bool ResourceEngine::ValidateImage(const std::shared_ptr<ImageInfo>& info, void** profile)
{
    using Validate = bool (*)(const std::shared_ptr<ImageInfo>&, void**);
    constexpr std::pair<Format, Validate> formats[] = {
        {FormatPNG, &ValidatePNG}, {FormatJPEG, &ValidateJPEG}, {FormatTIFF, &ValidateTIFF}};
    for (const auto& [format, validate] : formats) {
        if (validate(info, profile)) {
            info->format = format;
            return true;
        }
    }
    return false;
}

bool ResourceEngine::ValidateRawImage(std::shared_ptr<ImageInfo> info, void** profile)
{
    const auto validate = Ondrel::rawDecoder().validate;
    return validate && validate(info, profile);
}
