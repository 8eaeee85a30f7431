#pragma once

#include <ondrel/ondrel_export.h>

struct jpeg_compress_struct;
ONDREL_EXPORT void JPEGWriteICCProfile(jpeg_compress_struct* cinfo, const unsigned char* data, unsigned int size);
