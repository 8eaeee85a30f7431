#include <ondrel/resources/pngchunks_p.h>

#include <cstring>

namespace Ondrel
{
namespace
{

constexpr std::size_t kSignatureSize = 8;
constexpr std::size_t kHeaderSize = 8; // length and type
constexpr std::size_t kChecksumSize = 4;
constexpr std::uint64_t kMostDeflateRatio = 1032;

std::uint32_t bigEndian(const unsigned char* bytes)
{
    return std::uint32_t(bytes[0]) << 24 | std::uint32_t(bytes[1]) << 16 | std::uint32_t(bytes[2]) << 8 | bytes[3];
}

} // namespace

PngChunks walkPngChunks(const std::vector<unsigned char>& data)
{
    PngChunks chunks{true, 0};
    std::size_t position = kSignatureSize;
    while (position <= data.size() && data.size() - position >= kHeaderSize) {
        const std::uint32_t length = bigEndian(data.data() + position);
        const unsigned char* type = data.data() + position + 4;
        position += kHeaderSize;
        if (length > data.size() - position)
            return {false, chunks.imageBytes};
        if (std::memcmp(type, "IDAT", 4) == 0)
            chunks.imageBytes += length;
        if (std::memcmp(type, "IEND", 4) == 0)
            return chunks;
        position += std::size_t(length) + kChecksumSize;
    }
    return chunks;
}

bool canPngDataHold(std::uint64_t imageBytes, std::uint64_t width, std::uint64_t height, unsigned int bitsPerPixel)
{
    return width * height * bitsPerPixel / 8 / kMostDeflateRatio <= imageBytes;
}

} // namespace Ondrel
