#include <ondrel/color/cmstransform.h>

#include "tests/support/testprofiles.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colorprofiles.h>

#include <lcms2.h>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;

std::size_t filledSlots(const Ondrel::ColorTransformCache& cache)
{
    std::size_t count = 0;
    for (void* const transform : cache)
        count += transform != nullptr;
    return count;
}

TEST(MultithreadedTransform, WorksOnRawBuffersOfAnyFormat)
{
    const Profile from(Ondrel::Create_sRGBColorProfile()), to(Ondrel::CreateProPhotoRGBColorProfile());
    const unsigned int width = 13, height = 700;
    std::vector<unsigned char> source(width * height * 3);
    for (std::size_t i = 0; i < source.size(); ++i)
        source[i] = static_cast<unsigned char>(i * 37);
    std::vector<unsigned short> result(width * height * 3, 7), expected(result);
    Ondrel::ColorTransformCache cache;
    DoMultithreadedCMSTransform(from.get(), TYPE_RGB_8, to.get(), TYPE_RGB_16, 1, &cache, source.data(), 3,
                                result.data(), 6, width, height);
    void* const transform = cmsCreateTransform(from.get(), TYPE_RGB_8, to.get(), TYPE_RGB_16, 1, 0);
    cmsDoTransform(transform, source.data(), expected.data(), width * height);
    cmsDeleteTransform(transform);
    EXPECT_EQ(result, expected);
    EXPECT_GE(filledSlots(cache), 1u);
}

TEST(MultithreadedTransform, LeavesTheFourthChannelOfTheOutputAlone)
{
    const Profile from(Ondrel::Create_sRGBColorProfile()), to(Ondrel::CreateProPhotoRGBColorProfile());
    const Image input = randomImage(11, 9, 1);
    Image output(11, 9);
    output.FastFill(1234);
    Ondrel::ColorTransformCache cache;
    DoMultithreadedCMSTransform(from.get(), to.get(), 0, &cache, input, output);
    for (unsigned int i = 0; i < 99; ++i)
        EXPECT_EQ(output.data[i * 4 + 3], 1234);
}

TEST(MultithreadedTransform, ChoosesTheLabFormatForEachSideByItself)
{
    const Profile sRGB(Ondrel::Create_sRGBColorProfile()), lab(Ondrel::CreateLabColorProfile());
    constexpr unsigned int kLab16 = 0xA009A; // three 16-bit Lab channels and one extra
    const Image input = randomImage(11, 9, 1);
    Image there(11, 9), expected(11, 9), back(11, 9);
    Ondrel::ColorTransformCache toLab, fromLab;
    DoMultithreadedCMSTransform(sRGB.get(), lab.get(), 1, &toLab, input, there);
    void* const transform = cmsCreateTransform(sRGB.get(), TYPE_RGBA_16, lab.get(), kLab16, 1, 0);
    cmsDoTransform(transform, input.data, expected.data, 99);
    cmsDeleteTransform(transform);
    EXPECT_TRUE(samePixels(there, expected));
    DoMultithreadedCMSTransform(lab.get(), sRGB.get(), 1, &fromLab, there, back);
    EXPECT_NEAR(back.data[0], input.data[0], 400);
}

TEST(MultithreadedTransform, ReusesItsTransforms)
{
    const Profile from(Ondrel::Create_sRGBColorProfile()), to(Ondrel::CreateProPhotoRGBColorProfile());
    const Image input = randomImage(50, 50, 1);
    Image output(50, 50);
    Ondrel::ColorTransformCache cache;
    DoMultithreadedCMSTransform(from.get(), to.get(), 0, &cache, input, output);
    const Image first = output;
    // Without profiles no transform can be built: what comes now comes from the cached ones, on this thread at least.
    void*& slot = cache.local();
    const void* const kept = slot;
    DoMultithreadedCMSTransform(from.get(), to.get(), 0, &cache, input, output);
    EXPECT_EQ(cache.local(), kept);
    EXPECT_TRUE(samePixels(output, first));
}

TEST(MultithreadedTransform, ClearingEmptiesTheCache)
{
    const Profile from(Ondrel::Create_sRGBColorProfile()), to(Ondrel::CreateProPhotoRGBColorProfile());
    const Image input = randomImage(50, 50, 1);
    Image output(50, 50);
    Ondrel::ColorTransformCache cache;
    cache.clear();
    DoMultithreadedCMSTransform(from.get(), to.get(), 0, &cache, input, output);
    EXPECT_FALSE(cache.empty());
    cache.clear();
    EXPECT_TRUE(cache.empty());
}

TEST(MultithreadedTransform, ProfilesThatDoNotFitLeaveTheOutput)
{
    const Profile from(Ondrel::Create_sRGBColorProfile()), cmyk = cmykProfile();
    const Image input = randomImage(5, 5, 1);
    Image output(5, 5);
    output.FastFill(77);
    Ondrel::ColorTransformCache cache, other;
    DoMultithreadedCMSTransform(from.get(), cmyk.get(), 0, &cache, input, output);
    DoMultithreadedCMSTransform(nullptr, from.get(), 0, &other, input, output);
    EXPECT_EQ(output.data[0], 77);
}

TEST(MultithreadedTransform, NoPixelsDoNothing)
{
    const Profile from(Ondrel::Create_sRGBColorProfile());
    Ondrel::ColorTransformCache cache;
    Image output;
    DoMultithreadedCMSTransform(from.get(), from.get(), 0, &cache, Image(), output);
    EXPECT_EQ(output.data, nullptr);
}

} // namespace
