#include "decoding.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>

#include <algorithm>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::Image;

constexpr Hash kNoHash{};

Profile registered(const Hash& hash)
{
    return Profile(ColorManager::copyColorProfileByHash(hash));
}

cmsUInt32Number jpegFormat(unsigned int type, unsigned int channels, bool reversed = false)
{
    return COLORSPACE_SH(type) | CHANNELS_SH(channels) | BYTES_SH(1) | FLAVOR_SH(reversed ? 1u : 0u);
}

Bytes grey(unsigned int width, unsigned int height)
{
    return jpegFile(randomJpeg(width, height, JCS_GRAYSCALE),
                    [](jpeg_compress_struct* jpeg) { writeIcc(jpeg, savedBytes(greyProfile().get())); });
}

Profile cmykTable()
{
    return tableProfile(cmsSigCmykData);
}

Bytes cmyk(J_COLOR_SPACE space, bool adobeMarker)
{
    JpegPicture picture = randomJpeg(19, 13, space);
    picture.adobeMarker = adobeMarker;
    return jpegFile(picture, [](jpeg_compress_struct* jpeg) { writeIcc(jpeg, savedBytes(cmykTable().get())); });
}

TEST(ReadJpeg, RgbInItsOwnProfileIsOnlyWidened)
{
    for (const J_COLOR_SPACE space : {JCS_RGB, JCS_YCbCr})
        for (const bool progressive : {false, true})
            for (const auto& [width, height] : {std::pair(1u, 1u), std::pair(17u, 9u), std::pair(40u, 33u)}) {
                JpegPicture picture = randomJpeg(width, height, space);
                picture.progressive = progressive;
                const Bytes file = jpegFile(picture);
                const ReadResult result = readJpeg(file);
                ASSERT_TRUE(result.ok);
                EXPECT_TRUE(samePixels(result.image, widened(decodeJpeg(file)))) << space << ' ' << progressive;
                EXPECT_EQ(result.image.colorProfile, Ondrel::DefaultColorProfileHash);
            }
}

TEST(ReadJpeg, EverySampleIsWidenedByTruncation)
{
    JpegPicture picture{256, 8, JCS_RGB, {}};
    picture.quality = 100;
    for (unsigned int i = 0; i < 8 * 256; ++i)
        picture.samples.insert(picture.samples.end(), 3, std::uint8_t(i));
    const Bytes file = jpegFile(picture);
    const JpegRows rows = decodeJpeg(file);
    const ReadResult result = readJpeg(file);
    ASSERT_TRUE(result.ok);
    std::array<bool, 256> seen{};
    for (std::size_t i = 0; i < rows.samples.size(); ++i) {
        seen[rows.samples[i]] = true;
        ASSERT_EQ(result.image.data[i / 3 * 4 + i % 3], unsigned(float(rows.samples[i]) / 255.0f * 65535.0f));
    }
    EXPECT_EQ(std::count(seen.begin(), seen.end(), true), 256);
}

TEST(ReadJpeg, AlphaIsOpaque)
{
    for (const Hash& wanted : {Ondrel::EmbeddedColorProfile, kNoHash}) {
        const ReadResult result = readJpeg(jpegFile(randomJpeg(9, 9, JCS_YCbCr)), wanted);
        ASSERT_TRUE(result.ok);
        for (unsigned int i = 0; i < 81; ++i)
            EXPECT_EQ(pixelAt(result.image, i % 9, i / 9)[3], 65535);
    }
}

TEST(ReadJpeg, RgbIsConvertedToTheProfileAskedFor)
{
    const Bytes file = jpegFile(randomJpeg(31, 65, JCS_YCbCr));
    const ReadResult result = readJpeg(file, proPhoto());
    ASSERT_TRUE(result.ok);
    const JpegRows rows = decodeJpeg(file);
    EXPECT_TRUE(samePixels(result.image, transformed(rows.samples, 31, 65, jpegFormat(PT_RGB, 3), sRGB().get(),
                                                     registered(proPhoto()).get())));
    EXPECT_EQ(result.image.colorProfile, proPhoto());
}

TEST(ReadJpeg, AnUnknownProfileAskedForMeansSrgbByATransform)
{
    const Profile own = rgbProfile(1.4, "Own");
    const Bytes file = jpegFile(randomJpeg(31, 15, JCS_YCbCr),
                                [&](jpeg_compress_struct* jpeg) { writeIcc(jpeg, savedBytes(own.get())); });
    const JpegRows rows = decodeJpeg(file);
    const Image expected = transformed(rows.samples, 31, 15, jpegFormat(PT_RGB, 3), reopened(own).get(), sRGB().get());
    for (const Hash& wanted : {kNoHash, Ondrel::NoneColorProfile, wordHash("unknown")}) {
        const ReadResult result = readJpeg(file, wanted);
        ASSERT_TRUE(result.ok);
        EXPECT_TRUE(samePixels(result.image, expected));
        EXPECT_EQ(result.image.colorProfile, Ondrel::DefaultColorProfileHash);
        EXPECT_EQ(hashOf(result.profile), hashOf(own)); // still the file's own
    }
}

TEST(ReadJpeg, GreyNeedsAGreyProfileAndReportsNone)
{
    const Bytes file = grey(23, 14);
    const JpegRows rows = decodeJpeg(file);
    for (const auto& [wanted, given] :
         {std::pair(proPhoto(), proPhoto()), {kNoHash, Ondrel::DefaultColorProfileHash}}) {
        const Profile to = registered(given);
        const ReadResult result = readJpeg(file, wanted);
        ASSERT_TRUE(result.ok);
        EXPECT_EQ(result.profile, nullptr);
        EXPECT_EQ(result.image.colorProfile, given);
        EXPECT_TRUE(samePixels(result.image,
                               transformed(rows.samples, 23, 14, jpegFormat(PT_GRAY, 1), reopened(greyProfile()).get(),
                                           given == proPhoto() ? to.get() : sRGB().get())));
    }
}

TEST(ReadJpeg, GreyInItsOwnProfileComesOutInSrgb)
{
    const Bytes file = grey(23, 14);
    const ReadResult result = readJpeg(file);
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(result.image.colorProfile, Ondrel::DefaultColorProfileHash);
    EXPECT_TRUE(samePixels(result.image, readJpeg(file, kNoHash).image));
}

TEST(ReadJpeg, GreyWithoutProfileIsRefused)
{
    const ReadResult result = readJpeg(jpegFile(randomJpeg(9, 9, JCS_GRAYSCALE)));
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.profile, nullptr);
}

TEST(ReadJpeg, CmykIsConvertedByItsProfileAndReversedBehindAnAdobeMarker)
{
    for (const auto& [space, adobe] : {std::pair(JCS_CMYK, false), {JCS_CMYK, true}, {JCS_YCCK, true}})
        for (const Hash& wanted : {Ondrel::EmbeddedColorProfile, kNoHash}) {
            const Bytes file = cmyk(space, adobe);
            const JpegRows rows = decodeJpeg(file);
            ASSERT_EQ(rows.space, space);
            ASSERT_EQ(rows.adobeMarker, adobe);
            const ReadResult result = readJpeg(file, wanted);
            ASSERT_TRUE(result.ok);
            EXPECT_EQ(result.profile, nullptr);
            EXPECT_EQ(result.image.colorProfile, Ondrel::DefaultColorProfileHash);
            EXPECT_TRUE(samePixels(result.image, transformed(rows.samples, 19, 13, jpegFormat(PT_CMYK, 4, adobe),
                                                             reopened(cmykTable()).get(), sRGB().get())));
        }
}

TEST(ReadJpeg, CmykWithoutProfileIsRefused)
{
    EXPECT_FALSE(readJpeg(jpegFile(randomJpeg(9, 9, JCS_CMYK))).ok);
    EXPECT_FALSE(readJpeg(jpegFile(randomJpeg(9, 9, JCS_YCCK))).ok);
}

TEST(ReadJpeg, OtherColorSpacesAreRefused)
{
    EXPECT_FALSE(readJpeg(jpegFile(randomJpeg(9, 9, JCS_UNKNOWN))).ok);
}

TEST(ReadJpeg, ReplacesAnImageThatHeldSomethingElse)
{
    Image image = randomImage(40, 40, 1);
    image.rawFilters = 7;
    const Bytes file = jpegFile(randomJpeg(9, 8, JCS_RGB));
    ASSERT_TRUE(ResourceEngine::ReadJPEG(recordOf(file), image, nullptr, Ondrel::EmbeddedColorProfile));
    EXPECT_TRUE(samePixels(image, widened(decodeJpeg(file))));
    EXPECT_EQ(image.rawFilters, 0u);
}

TEST(ReadJpeg, DataThatIsNoJpegIsRefusedWithLibjpegsMessage)
{
    testing::internal::CaptureStderr();
    EXPECT_FALSE(readJpeg({0x12, 0x34, 0x56}).ok);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Not a JPEG file: starts with 0x12 0x34\n");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(readJpeg({}).ok);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Empty input file\n");
}

TEST(ReadJpeg, AnEndBeforeTheLastRowLeavesWhatLibjpegMakesOfIt)
{
    Bytes file = jpegFile(randomJpeg(32, 64, JCS_YCbCr));
    file.resize(file.size() / 2);
    const ReadResult result = readJpeg(file);
    ASSERT_TRUE(result.ok);
    EXPECT_TRUE(samePixels(result.image, widened(decodeJpeg(file))));
}

// The file with its last scan sent `times` more.
Bytes withRepeatedLastScan(const Bytes& file, unsigned int times)
{
    const Bytes startOfScan = {0xFF, 0xDA};
    const auto begin = std::find_end(file.begin(), file.end(), startOfScan.begin(), startOfScan.end());
    const Bytes scan(begin, file.end() - 2);
    Bytes result(file.begin(), file.end() - 2);
    for (unsigned int i = 0; i < times; ++i)
        result.insert(result.end(), scan.begin(), scan.end());
    result.insert(result.end(), {0xFF, 0xD9});
    return result;
}

TEST(ReadJpeg, OneThousandScansAreReadAndNoMore)
{
    JpegPicture picture = randomJpeg(8, 8, JCS_YCbCr);
    picture.progressive = true;
    const Bytes file = jpegFile(picture);
    const Bytes startOfScan = {0xFF, 0xDA};
    unsigned int scans = 0;
    for (auto at = file.begin();
         (at = std::search(at, file.end(), startOfScan.begin(), startOfScan.end())) != file.end(); ++at)
        ++scans;
    ASSERT_EQ(scans, 10u);
    EXPECT_TRUE(readJpeg(withRepeatedLastScan(file, 1000 - scans)).ok);
    EXPECT_FALSE(readJpeg(withRepeatedLastScan(file, 1001 - scans)).ok);
    EXPECT_FALSE(readJpeg(withRepeatedLastScan(file, 20000)).ok);
}

} // namespace
