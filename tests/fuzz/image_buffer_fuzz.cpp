// Bytes into the image buffer reader; what it accepts must be written back byte for byte.

#include "checks.h"

#include <ondrel/resources/imagebuffer.h>

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::vector<unsigned char> bytes(data, data + size);
    std::shared_ptr<const Ondrel::Image> image;
    if (!ReadImageBuffer(bytes, image))
        return 0;
    std::vector<unsigned char> written;
    WriteImageBuffer(image, written);
    OndrelFuzz::require(written.size() == bytes.size() &&
                            std::equal(written.begin() + 1, written.end(), bytes.begin() + 1),
                        "what was read is written again");
    return 0;
}
