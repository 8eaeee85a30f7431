#pragma once

#include <ondrel/ondrel_export.h>

#include <QByteArray>
#include <QString>

#include <array>
#include <vector>

// A profile is a cmsHPROFILE of Little CMS, as a plain pointer. What Create... and Copy... return is closed by the
// caller with cmsCloseProfile. Failure is null or empty. All functions may be called from any thread.

namespace Ondrel
{

// The profiles that need no file. ProPhoto RGB (ISO 22028-2 primaries, D50) has a gamma of 1.8; the linear forms have
// the primaries of their namesakes and a gamma of 1; Lab is CIELAB with a D50 white, ICC version 2.
ONDREL_EXPORT void* CreateProPhotoRGBColorProfile();
ONDREL_EXPORT void* CreateLinearProPhotoRGBColorProfile();
ONDREL_EXPORT void* Create_sRGBColorProfile();
ONDREL_EXPORT void* CreateLinear_sRGBColorProfile();
ONDREL_EXPORT void* CreateLabColorProfile();

// The profiles that a colour service of the platform knows, as bytes: none on Linux, where profiles are files.
ONDREL_EXPORT std::vector<std::vector<unsigned char>> EnumerateSystemColorProfiles();

// The description in American English, as ASCII, at most 511 characters; a null string if the bytes are no profile.
ONDREL_EXPORT QString GetICCProfileName(const unsigned char* data, unsigned long size);

// Replaces `data` by the profile's bytes as Little CMS writes them. They equal those of a fresh handle only as long as
// no tag was read from the handle and no transform built from it.
ONDREL_EXPORT void GetICCProfileData(void* profile, std::vector<unsigned char>& data);

// An independent handle with the same content; null for null.
ONDREL_EXPORT void* CopyICCProfile(void* profile);

// "Perceptual" 0, "Relative Colorimetric" 1, "Saturation" 2, "Absolute Colorimetric" 3 (the numbers of Little CMS);
// any other text, also in another case, gives 0.
ONDREL_EXPORT unsigned int renderingIntentFromString(const QString& name);

// The first 32 bytes, padded with zeros.
ONDREL_EXPORT std::array<unsigned char, 32> QByteArrayToColorProfileHash(const QByteArray& bytes);

} // namespace Ondrel
