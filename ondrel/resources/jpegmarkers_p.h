#pragma once

#include <ondrel/resources/jpegboundary_p.h>

#include <ondrel/ondrel_export.h>

#include <vector>

// What the reader takes from the saved markers of a JPEG file.

namespace Ondrel
{

enum class JpegOrientation { Upright, Turned180, Clockwise, CounterClockwise }; // how the picture is to be turned

// From the Exif block: tag 274 of its first directory, little-endian blocks only. Mirrored orientations, anything
// damaged and a big-endian block, whose offsets read as nonsense, give Upright.
ONDREL_EXPORT JpegOrientation jpegOrientation(jpeg_saved_marker_ptr markers);

// The ICC profile that the APP2 markers carry in numbered chunks (ICC.1, Annex B.4). Empty unless all
// chunks state the same number of chunks, and each of these is there exactly once.
ONDREL_EXPORT std::vector<unsigned char> jpegIccProfile(jpeg_saved_marker_ptr markers);

} // namespace Ondrel
