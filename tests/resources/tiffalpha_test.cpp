#include "decoding.h"

#include "tests/support/testimages.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;

TiffPicture withExtra(TiffPicture picture, std::vector<std::uint16_t> kinds)
{
    picture.extraSamples = std::move(kinds);
    return picture;
}

Image readInOwnProfile(const TiffPicture& picture)
{
    ReadResult result = readTiff(tiffFile(picture));
    EXPECT_TRUE(result.ok);
    return std::move(result.image);
}

// The picture without its extra samples.
TiffPicture opaque(const TiffPicture& picture)
{
    TiffPicture colors = picture;
    colors.samplesPerPixel = std::uint16_t(picture.samplesPerPixel - picture.extraSamples.size());
    colors.extraSamples.clear();
    colors.samples.clear();
    for (std::size_t at = 0; at < picture.samples.size(); at += picture.pixelBytes())
        colors.samples.insert(colors.samples.end(), picture.samples.begin() + std::ptrdiff_t(at),
                              picture.samples.begin() + std::ptrdiff_t(at + colors.pixelBytes()));
    return colors;
}

// Pictures of one row whose alphas are given, and whose colours are random.
template <typename Sample>
TiffPicture rowWithAlphas(const std::vector<Sample>& alphas, unsigned int bits)
{
    TiffPicture picture = randomTiff(unsigned(alphas.size()), 1, PHOTOMETRIC_RGB, bits, 4);
    for (std::size_t i = 0; i < alphas.size(); ++i)
        std::memcpy(&picture.samples[(i * 4 + 3) * sizeof(Sample)], &alphas[i], sizeof(Sample));
    return picture;
}

TEST(TiffAlpha, AnUnspecifiedExtraSampleIsNone)
{
    for (const unsigned int bits : {8u, 16u, 32u}) {
        const TiffPicture picture = withExtra(randomTiff(9, 9, PHOTOMETRIC_RGB, bits, 4), {EXTRASAMPLE_UNSPECIFIED});
        EXPECT_TRUE(samePixels(readInOwnProfile(picture), readInOwnProfile(opaque(picture))));
        EXPECT_EQ(pixelAt(readInOwnProfile(picture), 3, 3)[3], 65535);
    }
}

TEST(TiffAlpha, BytesAreWidenedExactly)
{
    std::vector<std::uint8_t> alphas(256);
    for (unsigned int i = 0; i < 256; ++i)
        alphas[i] = std::uint8_t(i);
    const Image image = readInOwnProfile(withExtra(rowWithAlphas(alphas, 8), {EXTRASAMPLE_UNASSALPHA}));
    for (unsigned int i = 0; i < 256; ++i)
        EXPECT_EQ(pixelAt(image, i, 0)[3], i * 257);
}

TEST(TiffAlpha, WordsAreTakenAsTheyAre)
{
    std::vector<std::uint16_t> alphas(65536);
    for (unsigned int i = 0; i < 65536; ++i)
        alphas[i] = std::uint16_t(i);
    const Image image = readInOwnProfile(withExtra(rowWithAlphas(alphas, 16), {EXTRASAMPLE_UNASSALPHA}));
    for (unsigned int i = 0; i < 65536; ++i)
        ASSERT_EQ(pixelAt(image, i, 0)[3], i);
}

TEST(TiffAlpha, FloatsAreRoundedAndClamped)
{
    constexpr float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
    const std::pair<float, unsigned int> cases[] = {
        {0.0f, 0},    {1.0f, 65535}, {0.5f, 32768},     {-0.0f, 0},        {-1.0f, 0},     {1.5f, 65535},
        {-inf, 0},    {inf, 65535},  {nan, 0},          {-nan, 0},         {1e30f, 65535}, {-1e30f, 0},
        {7.6e-6f, 0}, {7.7e-6f, 1},  {0.99999f, 65534}, {0.99993f, 65530}, {3e9f, 65535},  {1e-45f, 0}};
    std::vector<float> alphas;
    for (const auto& [value, expected] : cases)
        alphas.push_back(value);
    const Image image = readInOwnProfile(withExtra(rowWithAlphas(alphas, 32), {EXTRASAMPLE_UNASSALPHA}));
    for (unsigned int i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(pixelAt(image, i, 0)[3], cases[i].second) << cases[i].first;
}

TEST(TiffAlpha, FloatsAreRoundedInDoublePrecision)
{
    std::vector<float> alphas;
    for (unsigned int i = 0; i < 60000; ++i)
        alphas.push_back((float(i) + 0.5f) / 65535.0f); // as near to a half as a float can be
    const Image image = readInOwnProfile(withExtra(rowWithAlphas(alphas, 32), {EXTRASAMPLE_UNASSALPHA}));
    for (unsigned int i = 0; i < alphas.size(); ++i)
        ASSERT_EQ(pixelAt(image, i, 0)[3], std::lround(double(alphas[i]) * 65535.0)) << i;
}

TEST(TiffAlpha, UnassociatedLeavesColorsAlone)
{
    for (const unsigned int bits : {8u, 16u, 32u}) {
        const TiffPicture picture = withExtra(randomTiff(19, 9, PHOTOMETRIC_RGB, bits, 4), {EXTRASAMPLE_UNASSALPHA});
        const Image image = readInOwnProfile(picture), colors = readInOwnProfile(opaque(picture));
        for (unsigned int i = 0; i < 19 * 9; ++i)
            for (unsigned int c = 0; c < 3; ++c)
                EXPECT_EQ(image.data[i * 4 + c], colors.data[i * 4 + c]);
    }
}

TEST(TiffAlpha, AssociatedIsDividedOut)
{
    for (const unsigned int bits : {8u, 16u, 32u}) {
        const TiffPicture picture = withExtra(randomTiff(60, 40, PHOTOMETRIC_RGB, bits, 4), {EXTRASAMPLE_ASSOCALPHA});
        const Image image = readInOwnProfile(picture), colors = readInOwnProfile(opaque(picture));
        const Image alphas = readInOwnProfile(withExtra(picture, {EXTRASAMPLE_UNASSALPHA}));
        for (unsigned int i = 0; i < 60 * 40; ++i) {
            const std::uint16_t alpha = alphas.data[i * 4 + 3];
            EXPECT_EQ(image.data[i * 4 + 3], alpha);
            const float inverse = alpha == 0 ? 0.0f : 1.0f / (float(alpha) * 1.5259022e-5f);
            for (unsigned int c = 0; c < 3; ++c)
                ASSERT_EQ(image.data[i * 4 + c],
                          std::min(std::round(float(colors.data[i * 4 + c]) * inverse), 65535.0f))
                    << bits << ' ' << i;
        }
    }
}

TEST(TiffAlpha, AssociatedColorsWithoutAlphaAreBlack)
{
    TiffPicture picture{2, 1, PHOTOMETRIC_RGB, 8, SAMPLEFORMAT_UINT, 4, {200, 100, 50, 0, 255, 255, 255, 255}};
    const Image image = readInOwnProfile(withExtra(picture, {EXTRASAMPLE_ASSOCALPHA}));
    EXPECT_EQ(pixelAt(image, 0, 0), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(pixelAt(image, 1, 0), (Pixel{65535, 65535, 65535, 65535}));
}

TEST(TiffAlpha, EveryAssociatedAlphaOfWordsIsDividedOut)
{
    std::vector<std::uint16_t> alphas(65536);
    for (unsigned int i = 0; i < 65536; ++i)
        alphas[i] = std::uint16_t(i);
    const TiffPicture picture = withExtra(rowWithAlphas(alphas, 16), {EXTRASAMPLE_ASSOCALPHA});
    const Image expected = tiffPixels(picture, tiffFormat(picture, PT_RGB), sRGB().get(), reopened(sRGB()).get());
    EXPECT_TRUE(samePixels(readInOwnProfile(picture), expected));
}

TEST(TiffAlpha, TheFirstExtraSampleDecides)
{
    const TiffPicture picture = randomTiff(9, 9, PHOTOMETRIC_RGB, 8, 5);
    const Image none = readInOwnProfile(withExtra(picture, {EXTRASAMPLE_UNSPECIFIED, EXTRASAMPLE_UNASSALPHA}));
    EXPECT_EQ(pixelAt(none, 4, 4)[3], 65535);
    const Image first = readInOwnProfile(withExtra(picture, {EXTRASAMPLE_UNASSALPHA, EXTRASAMPLE_UNSPECIFIED}));
    EXPECT_EQ(pixelAt(first, 4, 4)[3], picture.samples[(4 * 9 + 4) * 5 + 3] * 257);
}

TEST(TiffAlpha, IsFoundInEveryLayout)
{
    for (const int kind : {EXTRASAMPLE_ASSOCALPHA, EXTRASAMPLE_UNASSALPHA})
        for (const unsigned int extra : {1u, 2u, 3u})
            for (const unsigned int bits : {8u, 16u, 32u})
                for (const bool planar : {false, true}) {
                    TiffPicture picture = randomTiff(21, 19, PHOTOMETRIC_RGB, bits, 3 + extra);
                    picture.extraSamples.assign(extra, std::uint16_t(kind));
                    picture.planar = planar;
                    const Image expected =
                        tiffPixels(picture, tiffFormat(picture, PT_RGB), sRGB().get(), reopened(sRGB()).get());
                    picture.rowsPerStrip = 4;
                    EXPECT_TRUE(samePixels(readInOwnProfile(picture), expected)) << bits << ' ' << planar;
                    picture.tileWidth = picture.tileLength = 16;
                    EXPECT_TRUE(samePixels(readInOwnProfile(picture), expected)) << bits << ' ' << planar;
                }
}

TEST(TiffAlpha, BelongsToGreyToo)
{
    TiffPicture picture{2, 1, PHOTOMETRIC_MINISBLACK, 8, SAMPLEFORMAT_UINT, 2, {255, 100, 0, 200}};
    const ReadResult result = readTiff(tiffFile(withExtra(picture, {EXTRASAMPLE_UNASSALPHA})));
    ASSERT_TRUE(result.ok);
    EXPECT_EQ(pixelAt(result.image, 0, 0), (Pixel{65535, 65535, 65535, 25700}));
    EXPECT_EQ(pixelAt(result.image, 1, 0), (Pixel{0, 0, 0, 51400}));
}

} // namespace
