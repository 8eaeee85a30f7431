#include "tests/reference/scale_reference.h"
#include "tests/support/instructionlevels.h"
#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

using Ondrel::Image;
using OndrelTest::pixelAt;
using OndrelTest::randomImage;
using OndrelTest::samePixels;

TEST(ScaleSubImageFast, AnyZeroGivesNothing)
{
    const Image source = randomImage(8, 8, 1);
    for (int zero = 0; zero < 4; ++zero) {
        const unsigned int a[4] = {zero == 0 ? 0u : 8u, zero == 1 ? 0u : 8u, zero == 2 ? 0u : 4u, zero == 3 ? 0u : 4u};
        const Image result = ScaleSubImageFast(source, a[0], a[1], a[2], a[3]);
        EXPECT_EQ(result.width, 0u);
        EXPECT_EQ(result.height, 0u);
    }
    EXPECT_EQ(ScaleSubImageFast(Image(0, 4), 4, 4, 4, 4).height, 0u);
    EXPECT_EQ(ScaleSubImageFast(Image(4, 0), 4, 4, 4, 4).width, 0u);
}

TEST(ScaleSubImageFast, AMatchingWidthGivesTheWholeSourceEvenIfItIsNotSquare)
{
    const Image source = randomImage(300, 120, 1);
    EXPECT_TRUE(samePixels(ScaleSubImageFast(source, 200, 50, 200, 200), source));
    const Image narrow = randomImage(200, 50, 2);
    EXPECT_TRUE(samePixels(ScaleSubImageFast(narrow, 1000, 10, 200, 200), narrow));
}

TEST(ScaleSubImageFast, ResultCarriesNoMetadata)
{
    Image source = randomImage(30, 20, 1);
    source.colorProfile.fill(9);
    source.rawFilters = 3;
    const Image result = ScaleSubImageFast(source, 30, 20, 7, 5);
    EXPECT_EQ(result.colorProfile, (std::array<unsigned char, 32>{}));
    EXPECT_EQ(result.rawFilters, 0u);
}

TEST(ScaleSubImageFast, TiesGoToTheEvenPixel)
{
    // 9 to 4: the step is 9 / 4.5 = 2 exactly, positions 0.5, 2.5, 4.5, 6.5.
    Image source(9, 1);
    for (unsigned int x = 0; x < 9; ++x)
        OndrelTest::setPixel(source, x, 0, {static_cast<unsigned short>(x), 0, 0, 65535});
    const Image result = ScaleSubImageFast(source, 9, 1, 4, 1);
    const unsigned short expected[4] = {0, 2, 4, 6};
    for (unsigned int x = 0; x < 4; ++x)
        EXPECT_EQ(pixelAt(result, x, 0)[0], expected[x]);
}

TEST(ScaleSubImageFast, AgreesWithTheLiteralForm)
{
    OndrelTest::forEveryInstructionLevel([] {
        std::mt19937 random(7);
        for (int i = 0; i < 400; ++i) {
            const auto size = [&random] { return 1 + random() % 70; };
            const Image source = i % 3 ? randomImage(unsigned(size()), unsigned(size()), unsigned(i))
                                       : OndrelTest::shrunkImage(unsigned(size()), unsigned(size()), unsigned(i));
            const auto subW = unsigned(size()), subH = unsigned(size()), w = unsigned(size()), h = unsigned(size());
            EXPECT_TRUE(samePixels(ScaleSubImageFast(source, subW, subH, w, h),
                                   OndrelReference::scaleSubImageFast(source, subW, subH, w, h)))
                << source.width << "x" << source.height << " " << subW << " " << subH << " " << w << " " << h;
        }
    });
}

} // namespace
