#pragma once

#include <ondrel/ondrel_export.h>

struct jpeg_compress_struct;

// Writes an ICC profile to a JPEG file as the ICC specification (Annex B.4) lays it out: APP2 markers of at most 65519
// bytes of profile each, numbered from 1, with their total number. To be called between jpeg_start_compress() and the
// first scan line. `data` holds `size` bytes and is only read; a size of 0 writes nothing. Errors of libjpeg go to the
// error manager of `cinfo`.
ONDREL_EXPORT void JPEGWriteICCProfile(jpeg_compress_struct* cinfo, const unsigned char* data, unsigned int size);
