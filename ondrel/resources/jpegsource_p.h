#pragma once

#include <ondrel/resources/jpegboundary_p.h>

#include <vector>

namespace Ondrel
{

// A JPEG file opened up to its header, with APP1 and APP2 saved. The bytes must outlive it.
struct JpegSource {
    // Whether data that end before the picture does are an error; libjpeg otherwise fills up with grey.
    enum class Ending { Grey, Error };

    JpegErrors errors;
    jpeg_progress_mgr progress{};
    jpeg_decompress_struct jpeg{};

    explicit JpegSource(Ending ending);
    JpegSource(const JpegSource&) = delete;
    JpegSource& operator=(const JpegSource&) = delete;
    ~JpegSource() { jpeg_destroy_decompress(&jpeg); }

    [[nodiscard]] bool readHeader(const std::vector<unsigned char>& data);
    // After this, output_width and its siblings are known. A progressive file is read to its end.
    [[nodiscard]] bool start();
    // Reads the next `count` rows into consecutive places of `stride` bytes, at least the size of a row.
    [[nodiscard]] bool readRows(unsigned char* rows, std::size_t stride, unsigned int count);
    [[nodiscard]] bool finish();
};

} // namespace Ondrel
