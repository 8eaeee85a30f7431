#pragma once

#include <ondrel/resources/resourceid.h>

#include <QString>

namespace Host
{

struct Import {
    Ondrel::ResourceId id; // none if the file cannot be read
    QString note;          // what was mended, in a sentence; empty if nothing was
};

// Adds a PNG, JPEG or TIFF file, or a camera RAW file, to the store, and makes the registered profiles fit for use
// (see settleProfiles()). Files that the store would refuse or show wrongly are mended in memory; the file itself and
// its name in the store stay as they are, so that a project that names it has it mended again:
//
//   a JPEG with a big-endian or a mirroring Exif orientation, a TIFF with any orientation: turned upright
//   a grey PNG: its samples are put into red, green and blue
//   a grey or CMYK JPEG without a profile that fits: given one (see importprofiles.h)
//   an RGB JPEG with a profile that is none or does not fit: read as sRGB
//   a TIFF of a kind that the library does not read: as libtiff shows it, with 8 bits a colour
//
// No pixel value changes in turning. The store has the file's whole path. Blocks; any thread.
Import importImage(const QString& file);
Import importRawImage(const QString& file);

// Whether the name ends as those of camera RAW files do. Many of these files can be read as a picture too, which is
// then the small preview in them.
bool hasRawName(const QString& file);

} // namespace Host
