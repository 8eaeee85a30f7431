#include <ondrel/pixel/temperature.h>

#include "tests/reference/temperature_reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <ostream>
#include <random>
#include <thread>
#include <vector>

namespace
{

using OndrelReference::temperatureTable;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

struct Rgb {
    float r, g, b;
    bool operator==(const Rgb& o) const { return r == o.r && g == o.g && b == o.b; }
};

std::ostream& operator<<(std::ostream& out, const Rgb& c)
{
    return out << c.r << ", " << c.g << ", " << c.b;
}

Rgb colour(double kelvin)
{
    Rgb c{-1, -1, -1};
    TemperatureToRGB(kelvin, c.r, c.g, c.b);
    return c;
}

Rgb row(int kelvin)
{
    const auto& r = temperatureTable()[std::size_t(kelvin - 1667)];
    return {r[0], r[1], r[2]};
}

Rgb multipliers(const Rgb& daylight, float kelvin, float tint)
{
    const float values[3] = {daylight.r, daylight.g, daylight.b};
    Rgb c{-1, -1, -1};
    TemperatureToRGBWB(values, kelvin, tint, c.r, c.g, c.b);
    return c;
}

struct Balance {
    int kelvin, tint;
    bool operator==(const Balance& o) const { return kelvin == o.kelvin && tint == o.tint; }
};

std::ostream& operator<<(std::ostream& out, const Balance& b)
{
    return out << b.kelvin << " K, tint " << b.tint;
}

Balance balance(float r, float g, float b)
{
    Balance found{-7, -7};
    RGBToTemperature(r, g, b, found.kelvin, found.tint);
    return found;
}

Balance searched(float r, float g, float b)
{
    Balance found{-7, -7};
    OndrelReference::rgbToTemperature(r, g, b, found.kelvin, found.tint);
    return found;
}

TEST(TemperatureToRGB, GivesTheRowsThatHostsKnow)
{
    EXPECT_EQ(colour(1667), (Rgb{1.0f, 0.695487f, 0.387081f}));
    EXPECT_EQ(colour(2000), (Rgb{1.0f, 0.415198f, 0.0997809f}));
    EXPECT_EQ(colour(4000), (Rgb{1.0f, 0.674368f, 0.357304f}));
    EXPECT_EQ(colour(5000), (Rgb{1.0f, 0.830093f, 0.613194f}));
    EXPECT_EQ(colour(6500), (Rgb{0.999355f, 1.0f, 0.998494f}));
    EXPECT_EQ(colour(10000), (Rgb{0.58734f, 0.720797f, 1.0f}));
    EXPECT_EQ(colour(25000), (Rgb{0.352199f, 0.52803f, 1.0f}));
}

TEST(TemperatureToRGB, IsConstantOutsideTheRange)
{
    const Rgb warmest{1.0f, 0.695487f, 0.387081f}, coldest{0.352199f, 0.52803f, 1.0f};
    for (const double kelvin : {1667.0, 1666.9, 1000.0, 0.0, -5000.0, -1e300, -HUGE_VAL})
        EXPECT_EQ(colour(kelvin), warmest) << kelvin;
    for (const double kelvin : {25000.0, 25000.5, 25001.0, 100000.0, 1e300, HUGE_VAL})
        EXPECT_EQ(colour(kelvin), coldest) << kelvin;
}

TEST(TemperatureToRGB, TakesTheRowBelowWithoutInterpolation)
{
    EXPECT_EQ(colour(6500.9), row(6500));
    EXPECT_EQ(colour(6501.0), row(6501));
    EXPECT_EQ(colour(1667.999), row(1667));
    EXPECT_EQ(colour(1668.0), row(1668));
    EXPECT_EQ(colour(24999.999), row(24999));
    EXPECT_FALSE(row(6500) == row(6501));
}

TEST(TemperatureToRGB, EveryRowIsTheDaylightPolynomial)
{
    for (int kelvin = 1667; kelvin <= 25000; ++kelvin)
        ASSERT_EQ(colour(kelvin), row(kelvin)) << kelvin;
}

TEST(TemperatureToRGB, TheLargestChannelIsOneAndNoneIsNegative)
{
    for (int kelvin = 1667; kelvin <= 25000; ++kelvin) {
        const Rgb c = colour(kelvin);
        ASSERT_EQ(std::max({c.r, c.g, c.b}), 1.0f) << kelvin;
        ASSERT_GT(std::min({c.r, c.g, c.b}), 0.0f) << kelvin;
    }
}

TEST(TemperatureToRGB, NotANumberGivesSomeRow)
{
    const Rgb c = colour(double(kNaN));
    EXPECT_EQ(std::max({c.r, c.g, c.b}), 1.0f);
}

TEST(TemperatureToRGBWB, GreenIsOneAndTheOthersAreRelativeToIt)
{
    // Row 6500 has green 1, so the division by green changes nothing.
    const Rgb c = multipliers({2.0f, 1.0f, 1.5f}, 6500.0f, 1000.0f);
    EXPECT_EQ(c, (Rgb{2.0f / 0.999355f, 1.0f, 1.5f / 0.998494f}));
}

TEST(TemperatureToRGBWB, TheTintDividesGreenBeforeTheInversion)
{
    // Tint 500 doubles green, so that its multiplier halves and the two others double.
    const Rgb neutral = multipliers({2.0f, 1.0f, 1.5f}, 6500.0f, 1000.0f);
    EXPECT_EQ(multipliers({2.0f, 1.0f, 1.5f}, 6500.0f, 500.0f), (Rgb{neutral.r * 2.0f, 1.0f, neutral.b * 2.0f}));
    EXPECT_EQ(multipliers({2.0f, 1.0f, 1.5f}, 6500.0f, 2000.0f), (Rgb{neutral.r * 0.5f, 1.0f, neutral.b * 0.5f}));
}

TEST(TemperatureToRGBWB, WithoutAMultiplierForGreenAllAreZero)
{
    EXPECT_EQ(multipliers({2.0f, 0.0f, 1.5f}, 5000.0f, 1000.0f), (Rgb{0, 0, 0}));
    EXPECT_EQ(multipliers({2.0f, 1.0f, 1.5f}, 5000.0f, 0.0f), (Rgb{0, 0, 0}));      // green is infinite
    EXPECT_EQ(multipliers({2.0f, 1.0f, 1.5f}, 5000.0f, kInfinity), (Rgb{0, 0, 0})); // green is 0
}

TEST(TemperatureToRGBWB, AChannelWithoutDaylightStaysZero)
{
    const Rgb c = multipliers({0.0f, 1.0f, 0.0f}, 5000.0f, 1000.0f);
    EXPECT_EQ(c, (Rgb{0, 1, 0}));
}

TEST(TemperatureToRGBWB, TheTemperatureIsTruncatedAndLimited)
{
    const Rgb daylight{2.1f, 0.9f, 1.4f};
    EXPECT_EQ(multipliers(daylight, 5000.75f, 900.0f), multipliers(daylight, 5000.0f, 900.0f));
    EXPECT_EQ(multipliers(daylight, 100.0f, 900.0f), multipliers(daylight, 1667.0f, 900.0f));
    EXPECT_EQ(multipliers(daylight, 1e9f, 900.0f), multipliers(daylight, 25000.0f, 900.0f));
}

TEST(TemperatureToRGBWB, IsTheFormulaForRandomValues)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> kelvin(1000.0f, 26000.0f), tint(-100.0f, 2500.0f), light(0.0f, 4.0f);
    for (int i = 0; i < 20000; ++i) {
        const float daylight[3] = {light(random), light(random), light(random)};
        const float k = kelvin(random), t = tint(random);
        Rgb expected{};
        OndrelReference::temperatureToRGBWB(daylight, k, t, expected.r, expected.g, expected.b);
        ASSERT_EQ(multipliers({daylight[0], daylight[1], daylight[2]}, k, t), expected) << k << " K, tint " << t;
    }
}

TEST(RGBToTemperature, EveryRowHasItsOwnTemperatureAndNoTint)
{
    for (int kelvin = 1667; kelvin <= 25000; ++kelvin) {
        const Rgb c = row(kelvin);
        ASSERT_EQ(balance(c.r, c.g, c.b), (Balance{kelvin, 1000}));
    }
}

TEST(RGBToTemperature, LooksAtRatiosAlone)
{
    const Rgb c = row(5432);
    for (const float factor : {0.0625f, 0.5f, 4.0f, 65536.0f})
        EXPECT_EQ(balance(c.r * factor, c.g * factor, c.b * factor), (Balance{5432, 1000}));
}

TEST(RGBToTemperature, TheTintIsTruncatedAndLimited)
{
    const Rgb c = row(10000);
    EXPECT_EQ(balance(c.r, c.g * 2.0f, c.b), (Balance{10000, 500}));
    EXPECT_EQ(balance(c.r, c.g * 0.5f, c.b), (Balance{10000, 2000}));
    EXPECT_EQ(balance(c.r, c.g * 8.0f, c.b), (Balance{10000, 125}));
    EXPECT_EQ(balance(c.r, c.g * 16.0f, c.b), (Balance{10000, 100})); // 62.5
    EXPECT_EQ(balance(c.r, c.g * 1e6f, c.b), (Balance{10000, 100}));
    EXPECT_EQ(balance(c.r, c.g * 0.25f, c.b), (Balance{10000, 2000}));
    EXPECT_EQ(balance(c.r, 0.0f, c.b), (Balance{10000, 2000}));
    EXPECT_EQ(balance(c.r, c.g * 64.0f / 63.0f, c.b), searched(c.r, c.g * 64.0f / 63.0f, c.b)); // 984.375
    EXPECT_EQ(balance(c.r, c.g * 64.0f / 63.0f, c.b).tint, 984);
}

TEST(RGBToTemperature, TheLowestTemperatureWinsATie)
{
    // The ratio half way between two neighbouring rows, where that is a float as far from the one as from the other.
    int ties = 0;
    for (int kelvin = 4200; kelvin < 25000; ++kelvin) {
        const Rgb below = row(kelvin), above = row(kelvin + 1);
        const float low = below.b / below.r, high = above.b / above.r;
        const float target = low + (high - low) * 0.5f;
        if (std::fabs(target - low) != std::fabs(target - high))
            continue;
        ++ties;
        ASSERT_EQ(balance(1.0f, 1.0f, target).kelvin, kelvin);
    }
    EXPECT_GT(ties, 1000);
}

TEST(RGBToTemperature, BelowFourThousandKelvinBothBranchesAreSearched)
{
    // Ratios that occur in warm light twice: at a low temperature and at a higher one.
    int low = 0, high = 0;
    for (float target = 0.0805f; target < 0.39f; target += 0.00037f) {
        const Balance found = balance(1.0f, 0.5f, target);
        ASSERT_EQ(found, searched(1.0f, 0.5f, target)) << target;
        (found.kelvin < 2100 ? low : high)++;
    }
    EXPECT_GT(low, 20);
    EXPECT_GT(high, 20);
}

TEST(RGBToTemperature, FindsWhatASearchOfAllRowsFinds)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<float> ratio(0.0f, 3.2f), green(0.01f, 4.0f), near(-3.0f, 3.0f);
    for (int i = 0; i < 4000; ++i) {
        const float r = green(random), g = green(random), b = r * ratio(random);
        ASSERT_EQ(balance(r, g, b), searched(r, g, b)) << r << " " << g << " " << b;
        // A few steps of a float beside the ratio of a row.
        const Rgb c = row(1667 + int(random() % 23334));
        const float beside = c.b / c.r * (1.0f + near(random) * 1.2e-7f);
        ASSERT_EQ(balance(1.0f, 1.0f, beside), searched(1.0f, 1.0f, beside)) << beside;
    }
}

TEST(RGBToTemperature, RatiosBeyondTheTableGiveItsEnds)
{
    EXPECT_EQ(balance(1.0f, 1.0f, 3.0f).kelvin, 25000);
    // So far away the differences of the last rows round to the same float, and the lowest of them is taken.
    EXPECT_EQ(balance(1.0f, 1.0f, 5000.0f), searched(1.0f, 1.0f, 5000.0f));
    EXPECT_LT(balance(1.0f, 1.0f, 5000.0f).kelvin, 25000);
    EXPECT_EQ(balance(1.0f, 1.0f, 0.0f), searched(1.0f, 1.0f, 0.0f));
    EXPECT_EQ(balance(1.0f, 1.0f, -5000.0f), searched(1.0f, 1.0f, -5000.0f));
}

TEST(RGBToTemperature, NothingIsFoundTenThousandAwayFromEveryRow)
{
    EXPECT_EQ(balance(1.0f, 1.0f, 20000.0f).kelvin, 0);
    EXPECT_EQ(balance(1.0f, 1.0f, -20000.0f).kelvin, 0);
    for (float target = 9998.0f; target < 10006.0f; target += 0.25f) {
        EXPECT_EQ(balance(1.0f, 1.0f, target), searched(1.0f, 1.0f, target)) << target;
        EXPECT_EQ(balance(1.0f, 1.0f, -target), searched(1.0f, 1.0f, -target)) << -target;
    }
    EXPECT_GT(balance(1.0f, 1.0f, 10002.5f).kelvin, 24000); // 2.839 is the ratio of the coldest row
    EXPECT_EQ(balance(1.0f, 1.0f, 10003.0f).kelvin, 0);
}

TEST(RGBToTemperature, StaysInItsRangeForAnyFloats)
{
    const float values[] = {0.0f, -0.0f, 1.0f, -1.0f, 1e-40f, 3e38f, -3e38f, kInfinity, -kInfinity, kNaN};
    for (const float r : values)
        for (const float g : values)
            for (const float b : values) {
                const Balance found = balance(r, g, b);
                EXPECT_TRUE(found.kelvin == 0 || (found.kelvin >= 1667 && found.kelvin <= 25000)) << found;
                EXPECT_GE(found.tint, 100);
                EXPECT_LE(found.tint, 2000);
                EXPECT_EQ(found.kelvin, searched(r, g, b).kelvin) << r << " " << g << " " << b;
            }
}

TEST(RGBToTemperature, IsTheSameOnManyThreads)
{
    const Rgb c = row(7777);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 50; ++i)
                wrong += !(balance(c.r, c.g, c.b) == Balance{7777, 1000}) || !(colour(7777.5) == c);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong.load(), 0);
}

} // namespace
