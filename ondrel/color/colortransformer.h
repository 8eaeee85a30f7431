#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>

#include <QByteArray>
#include <QImage>

namespace Ondrel
{

// The way of an image to the screen. Any thread, also several at once.
class ONDREL_EXPORT ColorTransformer
{
public:
    // The image in Format_ARGB32_Premultiplied. With display colour management on (see ColorManager) and not declined
    // for this call, it is converted from its own profile, sRGB if that is unknown, to the display's; otherwise its
    // numbers are shown as they are. A colour c with alpha a, both 0 to 65535, becomes c / 65535 * a / 65535 * 255 in
    // single precision, rounded to the nearest integer, ties to even. Null if QImage has no memory for it.
    static QImage toQImage(const Ondrel::Image& image, bool noColorManagement);
};

} // namespace Ondrel

// A copy of the image in another profile. Both profiles are hashes of 32 bytes, shorter ones padded with zeros, longer
// ones cut; the source may also be "Automatic", which is the image's own profile. `intent` is a number of Little CMS.
// Alpha is copied. The result has the destination's hash and no RAW description; between equal hashes, and between two
// Lab profiles, it is a plain copy with the destination's hash. If a profile is unknown or unfit for 16-bit pixels of
// three channels and alpha, it is opaque black. Any thread; does not depend on whether colour management is on.
ONDREL_EXPORT Ondrel::Image ConvertColorSpace(const Ondrel::Image& image, const QByteArray& sourceProfile,
                                              const QByteArray& destinationProfile, unsigned int intent);
