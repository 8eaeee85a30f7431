#include <ondrel/pixel/scale.h>

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace
{

using Size = std::pair<unsigned int, unsigned int>;

Size percent(const char* aspect, unsigned int w, unsigned int h, float pw, float ph)
{
    Size size(99, 99);
    CalculateScaleSize("Percentage", aspect, w, h, pw, ph, 1, 1, 1.0f, size.first, size.second);
    return size;
}

Size pixels(const char* aspect, unsigned int w, unsigned int h, unsigned int pw, unsigned int ph, float factor = 1.0f)
{
    Size size(99, 99);
    CalculateScaleSize("Pixels", aspect, w, h, 1.0f, 1.0f, pw, ph, factor, size.first, size.second);
    return size;
}

TEST(ScaleSize, PercentagesIgnoreKeepOrFill)
{
    EXPECT_EQ(percent("Ignore", 200, 100, 50, 25), Size(100, 25));
    EXPECT_EQ(percent("Keep", 200, 100, 50, 25), Size(50, 25));
    EXPECT_EQ(percent("Fill", 200, 100, 50, 25), Size(100, 50));
    EXPECT_EQ(percent("keep", 200, 100, 50, 25), Size(100, 50)); // another text than "Keep"
    EXPECT_EQ(percent("", 200, 100, 50, 25), Size(100, 50));
}

TEST(ScaleSize, PercentagesRoundHalvesUp)
{
    EXPECT_EQ(percent("Ignore", 5, 7, 50, 50), Size(3, 4));
    EXPECT_EQ(percent("Ignore", 5, 9, 10, 10), Size(1, 1));
    EXPECT_EQ(percent("Ignore", 4, 4, 10, 10), Size(0, 0));
}

TEST(ScaleSize, PixelsAreTimesTheFactorTruncated)
{
    EXPECT_EQ(pixels("Ignore", 10, 10, 101, 99, 0.5f), Size(50, 49));
    EXPECT_EQ(pixels("Ignore", 10, 10, 300, 200, 2.54f), Size(762, 508));
}

TEST(ScaleSize, PixelsKeepTheAspectInside)
{
    EXPECT_EQ(pixels("Keep", 400, 200, 100, 100), Size(100, 50));
    EXPECT_EQ(pixels("Keep", 200, 400, 100, 100), Size(50, 100));
    EXPECT_EQ(pixels("Keep", 300, 300, 100, 100), Size(100, 100));
    EXPECT_EQ(pixels("Keep", 3, 2, 100, 100), Size(100, 67));
}

TEST(ScaleSize, PixelsFillTheAspectOutside)
{
    EXPECT_EQ(pixels("Fill", 400, 200, 100, 100), Size(200, 100));
    EXPECT_EQ(pixels("Fill", 200, 400, 100, 100), Size(100, 200));
}

TEST(ScaleSize, EachSideIsLimitedByItself)
{
    EXPECT_EQ(pixels("Ignore", 10, 10, 20000, 10000), Size(15000, 10000));
    EXPECT_EQ(pixels("Ignore", 10, 10, 15000, 15001), Size(15000, 15000));
    EXPECT_EQ(percent("Ignore", 6000, 4000, 1000, 100), Size(15000, 4000));
}

TEST(ScaleSize, LimitHoldsBeforeNumbersBecomeTooLargeForTheirType)
{
    EXPECT_EQ(percent("Ignore", 4000000000u, 100, 1e9f, 100), Size(15000, 100));
    EXPECT_EQ(pixels("Ignore", 10, 10, 4294967295u, 5, 1e6f), Size(15000, 15000));
    EXPECT_EQ(percent("Ignore", 100, 100, std::numeric_limits<float>::infinity(), 100), Size(15000, 100));
}

TEST(ScaleSize, NegativeAndUndefinedNumbersGiveNoSize)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(percent("Ignore", 100, 100, -50, 100), Size(0, 100));
    EXPECT_EQ(percent("Ignore", 100, 100, nan, 100), Size(0, 100));
    EXPECT_EQ(percent("Keep", 100, 100, nan, 100), Size(0, 0));
    EXPECT_EQ(percent("Keep", 100, 100, 100, nan), Size(0, 0));
    EXPECT_EQ(percent("Fill", 100, 100, nan, 100), Size(100, 100));
    EXPECT_EQ(percent("Fill", 100, 100, 100, nan), Size(100, 100));
}

TEST(ScaleSize, UnknownUnitsGiveZero)
{
    Size size(99, 99);
    CalculateScaleSize("pixels", "Keep", 10, 10, 100, 100, 50, 50, 1, size.first, size.second);
    EXPECT_EQ(size, Size(0, 0));
}

TEST(ScaleSize, AnEmptyImageGivesZeroInBothDirections)
{
    EXPECT_EQ(pixels("Ignore", 0, 10, 50, 50), Size(0, 0));
    EXPECT_EQ(pixels("Keep", 10, 0, 50, 50), Size(0, 0));
    EXPECT_EQ(percent("Fill", 0, 0, 50, 50), Size(0, 0));
}

} // namespace
