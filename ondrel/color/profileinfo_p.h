#pragma once

#include <ondrel/color/colormanager.h>
#include <ondrel/color/lcms_p.h>

#include <QString>
#include <QStringList>

#include <array>
#include <vector>

namespace Ondrel
{

// A text of a profile in American English, at most 510 bytes of it, read as UTF-8; empty if there is none. Reads from a
// handle of its own: once a tag was read from a handle, Little CMS saves other bytes from it.
QString readProfileInfo(const std::vector<unsigned char>& data, cmsInfoType info);

// The name of a profile without a description: its hash up to the first zero, as Latin-1, and its type.
QString nameWithoutDescription(const std::array<unsigned char, 32>& hash, ColorManager::ColorProfile::Type type);

// All regular files below a directory, in QDir's order, a directory's files in its place; whatever their names. Each
// directory is visited once, however many links lead to it, down to 64 levels.
QStringList profileFilesBelow(const QString& directory);

} // namespace Ondrel
