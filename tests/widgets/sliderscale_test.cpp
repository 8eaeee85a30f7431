#include <ondrel/widgets/sliderscale_p.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace
{

using Ondrel::SliderScale;

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

const SliderScale kWhole{true, 0, 100};
const SliderScale kDouble{false, -1000000000, 3000000000};

TEST(SliderScale, TruncatesTowardsZero)
{
    EXPECT_EQ(Ondrel::truncatedToInt64(2.9), 2);
    EXPECT_EQ(Ondrel::truncatedToInt64(-2.9), -2);
    EXPECT_EQ(Ondrel::truncatedToInt64(std::nan("")), 0);
    EXPECT_EQ(Ondrel::truncatedToInt64(1e300), kHighest);
    EXPECT_EQ(Ondrel::truncatedToInt64(-1e300), kLowest);
    EXPECT_EQ(Ondrel::truncatedToInt64(std::numeric_limits<double>::infinity()), kHighest);
    EXPECT_EQ(Ondrel::truncatedToInt64(-9223372036854775808.0), kLowest);
    EXPECT_EQ(Ondrel::truncatedToInt64(9223372036854775808.0), kHighest);
}

TEST(SliderScale, FixedPointKeepsNineDecimals)
{
    EXPECT_EQ(kDouble.parse("0.1"), 100000000);
    EXPECT_EQ(kDouble.parse("-1.5"), -1500000000);
    EXPECT_EQ(kDouble.parse("0.0000000019"), 1);
    EXPECT_EQ(kDouble.parse("-0.0000000019"), -1);
    EXPECT_EQ(kDouble.parse(""), 0);
    EXPECT_EQ(kDouble.parse("nan"), 0);
    EXPECT_EQ(kDouble.parse("inf"), kHighest);
    EXPECT_EQ(kDouble.parse("word"), 0);
}

TEST(SliderScale, WholeNumbersAreDecimal)
{
    EXPECT_EQ(kWhole.parse("12"), 12);
    EXPECT_EQ(kWhole.parse("0x10"), 0);
    EXPECT_EQ(kWhole.parse("010"), 10);
    EXPECT_EQ(kWhole.parse("9223372036854775807"), kHighest);
    EXPECT_EQ(kWhole.parse("9223372036854775808"), 0);
    EXPECT_EQ(kWhole.parse("word"), 0);
}

TEST(SliderScale, ShowsSixSignificantDigits)
{
    EXPECT_EQ(kDouble.text(1234567891), "1.23457");
    EXPECT_EQ(kDouble.text(100000000), "0.1");
    EXPECT_EQ(kDouble.text(1234567000000000), "1.23457e+06");
    EXPECT_EQ(kWhole.text(1234567891), "1234567891");
    EXPECT_EQ(kWhole.text(kLowest), "-9223372036854775808");
}

TEST(SliderScale, FractionsOfTheRange)
{
    EXPECT_EQ(kWhole.range(), 100);
    EXPECT_EQ(kDouble.range(), 4);
    EXPECT_EQ(kWhole.fractionOf(25), 0.25);
    EXPECT_EQ(kDouble.fractionOf(0), 0.25);
    EXPECT_EQ(kWhole.fractionOf(150), 1.5);
    EXPECT_TRUE(std::isnan((SliderScale{true, 4, 4}.fractionOf(4))));
    EXPECT_TRUE(std::isnan((SliderScale{false, 4, 4}.fractionOf(4))));
}

TEST(SliderScale, ValuesAtFractionsAreTruncated)
{
    EXPECT_EQ(kWhole.valueAt(0.29), 28) << "100 * 0.29 is just below 29";
    EXPECT_EQ(kWhole.valueAt(-1), 0);
    EXPECT_EQ(kWhole.valueAt(2), 100);
    EXPECT_EQ(kDouble.valueAt(0.5), 1000000000);
    EXPECT_EQ((SliderScale{true, -100, 0}.valueAt(0.295)), -71) << "the distance from the minimum is truncated";
}

TEST(SliderScale, LimitsBothEnds)
{
    EXPECT_EQ(kWhole.limited(-1), 0);
    EXPECT_EQ(kWhole.limited(101), 100);
    EXPECT_EQ(kWhole.limited(7), 7);
}

TEST(SliderScale, StepsOfTheMouse)
{
    EXPECT_EQ(kWhole.dragStep(-3), -3);
    EXPECT_EQ(kDouble.dragStep(3), 30000000);
    EXPECT_EQ(kDouble.dragStep(214), 2140000000);
    EXPECT_EQ(kDouble.dragStep(215), 2150000000 - 4294967296) << "the product has 32 bits";
    EXPECT_EQ(kDouble.dragStep(-215), 4294967296 - 2150000000);
    EXPECT_EQ(kWhole.clickStep(), 1);
    EXPECT_EQ(kDouble.clickStep(), 100000000);
}

TEST(SliderScale, TheWidestRangeIsDefined)
{
    const SliderScale all{true, kLowest, kHighest};
    EXPECT_EQ(all.limited(5), 5);
    EXPECT_EQ(all.valueAt(0), kLowest);
    EXPECT_EQ(Ondrel::wrappingSum(kHighest, 1), kLowest);
    EXPECT_EQ(Ondrel::wrappingDifference(kLowest, 1), kHighest);
}

} // namespace
