#include "testfiles.h"

#include "tests/support/testimages.h"

#include <ondrel/resources/imagebuffer.h>

#include <cstring>
#include <memory>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;
using Shared = std::shared_ptr<const Image>;

Bytes header(std::uint32_t width, std::uint32_t height, unsigned char format = 0)
{
    Bytes bytes(9, format);
    std::memcpy(&bytes[1], &width, 4);
    std::memcpy(&bytes[5], &height, 4);
    return bytes;
}

Bytes dump(const Image& image)
{
    Bytes bytes = header(image.width, image.height);
    const std::size_t size = std::size_t(image.width) * image.height * 8;
    bytes.resize(9 + size);
    std::memcpy(&bytes[9], image.data, size);
    return bytes;
}

Bytes written(Shared image)
{
    Bytes bytes(3, 7); // replaced, not appended to
    WriteImageBuffer(std::move(image), bytes);
    return bytes;
}

TEST(ImageBuffer, HoldsFormatSizeAndSamples)
{
    const Image image = randomImage(5, 3, 1);
    EXPECT_EQ(written(image.toPtr()), dump(image));
}

TEST(ImageBuffer, AnImageWithoutPixelsIsItsHeader)
{
    EXPECT_EQ(written(Image().toPtr()), header(0, 0));
    EXPECT_EQ(written(Image(0, 7).toPtr()), header(0, 7));
}

TEST(ImageBuffer, TheSizeOfTheSamplesWrapsAtFourGibibytes)
{
    EXPECT_EQ(written(std::make_shared<const Image>(65536u, 16384u)), header(65536, 16384));
}

TEST(ImageBuffer, AnImageShrunkInPlaceIsWrittenByItsSize)
{
    const Image image = shrunkImage(5, 3, 1);
    EXPECT_EQ(written(image.toPtr()), dump(image));
}

TEST(ImageBuffer, ComesBackWithoutProfile)
{
    Image image = randomImage(5, 3, 1);
    image.colorProfile.fill(7);
    image.rawFilters = 5;
    Shared read;
    ASSERT_TRUE(ReadImageBuffer(written(image.toPtr()), read));
    EXPECT_TRUE(samePixels(*read, image));
    EXPECT_EQ(read->colorProfile, Hash{});
    EXPECT_EQ(read->rawFilters, 0u);
}

TEST(ImageBuffer, TheFormatByteIsNotLookedAt)
{
    const Image image = randomImage(5, 3, 1);
    Bytes bytes = dump(image);
    bytes[0] = 0xA5;
    Shared read;
    ASSERT_TRUE(ReadImageBuffer(bytes, read));
    EXPECT_TRUE(samePixels(*read, image));
}

TEST(ImageBuffer, FewerThanNineBytesLeaveThePointerAlone)
{
    const Shared before = Image(2, 2).toPtr();
    for (std::size_t size = 0; size < 9; ++size) {
        Shared read = before;
        EXPECT_FALSE(ReadImageBuffer(Bytes(size), read));
        EXPECT_EQ(read, before);
    }
}

TEST(ImageBuffer, AWrongSizeGivesABlankImageOfTheStatedSize)
{
    const Image image = randomImage(5, 3, 1);
    for (const int difference : {-120, -8, -1, 1, 8}) {
        Bytes bytes = dump(image);
        bytes.resize(std::size_t(int(bytes.size()) + difference), 0xFF);
        const Shared before = Image(2, 2).toPtr();
        Shared read = before;
        EXPECT_FALSE(ReadImageBuffer(bytes, read));
        ASSERT_NE(read, before);
        EXPECT_TRUE(samePixels(*read, Image(5, 3)));
    }
}

TEST(ImageBuffer, AHeaderAloneIsAnImageOnlyWithoutPixels)
{
    Shared read;
    EXPECT_TRUE(ReadImageBuffer(header(0, 0), read));
    EXPECT_TRUE(ReadImageBuffer(header(0, 9), read));
    EXPECT_EQ(read->height, 9u);
    EXPECT_FALSE(ReadImageBuffer(header(1, 1), read));
}

TEST(ImageBuffer, SizesAreComparedWithoutWrapping)
{
    // 2^33 and 2^65 bytes: in 32 or 64 bits both would be none, which is what follows the header.
    for (const Bytes& bytes : {header(65536, 16384), header(0x80000000, 0x80000000), header(~0u, ~0u)}) {
        const Shared before = Image(2, 2).toPtr();
        Shared read = before;
        EXPECT_FALSE(ReadImageBuffer(bytes, read));
        EXPECT_NE(read, before);
    }
}

} // namespace
