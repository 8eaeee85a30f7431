#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/imagebuffer.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace
{

constexpr std::size_t kHeaderSize = 9;
constexpr std::uint64_t kBlankLimit = std::uint64_t(64) << 20;

std::uint32_t readNumber(const unsigned char* bytes)
{
    std::uint32_t number;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

} // namespace

bool ReadImageBuffer(const std::vector<unsigned char>& data, std::shared_ptr<const Ondrel::Image>& image)
{
    if (data.size() < kHeaderSize)
        return false;
    const std::uint32_t width = readNumber(data.data() + 1);
    const std::uint32_t height = readNumber(data.data() + 5);
    const bool decodable = std::uint64_t(width) * height < Ondrel::kPixelLimit;
    const std::uint64_t pixelSize = decodable ? std::uint64_t(width) * height * 8 : 0;
    const std::uint64_t present = data.size() - kHeaderSize;
    if (!decodable || (pixelSize > present && pixelSize > kBlankLimit)) {
        image = std::make_shared<Ondrel::Image>();
        return false;
    }
    const auto result = std::make_shared<Ondrel::Image>(width, height);
    image = result;
    if (pixelSize != present)
        return false;
    if (pixelSize > 0)
        std::memcpy(result->data, data.data() + kHeaderSize, std::size_t(pixelSize));
    return true;
}

void WriteImageBuffer(std::shared_ptr<const Ondrel::Image> image, std::vector<unsigned char>& data)
{
    data.clear();
    if (!image)
        return;
    const std::uint32_t pixelSize = image->width * image->height * 8;
    data.resize(kHeaderSize + pixelSize);
    data[0] = 0;
    std::memcpy(data.data() + 1, &image->width, sizeof image->width);
    std::memcpy(data.data() + 5, &image->height, sizeof image->height);
    // Sides that were set beyond the block leave zeros at the end.
    const auto held = std::size_t(std::min<std::uint64_t>(pixelSize, image->sizeBytes));
    if (held > 0)
        std::memcpy(data.data() + kHeaderSize, image->data, held);
}
