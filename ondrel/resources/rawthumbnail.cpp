#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/librawhandle_p.h>
#include <ondrel/resources/resourceengine.h>
#include <ondrel/resources/samples_p.h>

#include <algorithm>
#include <utility>

namespace
{

// A preview that LibRaw gives incomplete ends in black.
bool imageFromBitmap(const libraw_thumbnail_t& bitmap, Ondrel::Image& image)
{
    const std::size_t pixels = std::size_t(bitmap.twidth) * bitmap.theight;
    if (pixels >= Ondrel::kPixelLimit)
        return false;
    Ondrel::Image decoded(bitmap.twidth, bitmap.theight);
    const auto* in = reinterpret_cast<const unsigned char*>(bitmap.thumb);
    const std::size_t held = in ? bitmap.tlength : 0;
    for (std::size_t i = 0; i < pixels; ++i) {
        for (std::size_t channel = 0; channel < 3; ++channel)
            if (i * 3 + channel < held)
                decoded.data[i * 4 + channel] = Ondrel::sampleFromByte(in[i * 3 + channel]);
        decoded.data[i * 4 + 3] = 65535;
    }
    image = std::move(decoded);
    return true;
}

} // namespace

bool ResourceEngine::ImportRawThumbnail(const QString& fileName, Ondrel::Image& image)
{
    auto info = std::make_shared<ImageInfo>();
    info->fileName = fileName.toStdString();
    if (!LoadDataFromFile(info->fileName, info))
        return false;
    auto raw = Ondrel::openRaw(info->data);
    if (!raw || !Ondrel::librawSucceeds([&] { return raw->unpack_thumb(); }))
        return false;
    const libraw_thumbnail_t& thumbnail = raw->imgdata.thumbnail;
    if (thumbnail.tformat == LIBRAW_THUMBNAIL_BITMAP && thumbnail.tcolors == 3)
        return imageFromBitmap(thumbnail, image);
    if (thumbnail.tformat != LIBRAW_THUMBNAIL_JPEG || !thumbnail.thumb)
        return false;
    std::vector<unsigned char> jpeg(thumbnail.thumb, thumbnail.thumb + thumbnail.tlength);
    raw.reset(); // it reads from the bytes that are replaced here
    info->data = std::move(jpeg);
    info->format = FormatJPEG;
    constexpr std::array<unsigned char, 32> noProfile{}; // registered nowhere, so that it comes out in sRGB
    return ReadJPEG(info, image, nullptr, noProfile);
}
