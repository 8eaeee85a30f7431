#pragma once

#include <ondrel/ondrel_export.h>

#include <QByteArray>
#include <QString>

#include <array>
#include <vector>

namespace Ondrel
{
ONDREL_EXPORT void* CreateProPhotoRGBColorProfile();
ONDREL_EXPORT void* CreateLinearProPhotoRGBColorProfile();
ONDREL_EXPORT void* Create_sRGBColorProfile();
ONDREL_EXPORT void* CreateLinear_sRGBColorProfile();
ONDREL_EXPORT void* CreateLabColorProfile();
ONDREL_EXPORT std::vector<std::vector<unsigned char>> EnumerateSystemColorProfiles();
ONDREL_EXPORT QString GetICCProfileName(const unsigned char* data, unsigned long size);
ONDREL_EXPORT void GetICCProfileData(void* profile, std::vector<unsigned char>& data);
ONDREL_EXPORT void* CopyICCProfile(void* profile);
ONDREL_EXPORT unsigned int renderingIntentFromString(const QString& name);
ONDREL_EXPORT std::array<unsigned char, 32> QByteArrayToColorProfileHash(const QByteArray& bytes);
} // namespace Ondrel
