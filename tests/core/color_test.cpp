#include <ondrel/core/color.h>

#include <gtest/gtest.h>

#include <QVariant>

#include <random>
#include <thread>
#include <vector>

namespace
{

using Ondrel::Color;

Color rgba(unsigned short r, unsigned short g, unsigned short b, unsigned short a)
{
    Color color;
    color.setRed(r);
    color.setGreen(g);
    color.setBlue(b);
    color.setAlpha(a);
    return color;
}

const Color kOpaqueBlack = rgba(0, 0, 0, 65535);

TEST(Color, DefaultIsOpaqueBlack)
{
    const Color color;
    EXPECT_EQ(color.red, 0);
    EXPECT_EQ(color.green, 0);
    EXPECT_EQ(color.blue, 0);
    EXPECT_EQ(color.alpha, 65535);
}

TEST(Color, SettersChangeTheirOwnField)
{
    const Color color = rgba(1, 2, 3, 4);
    EXPECT_EQ(color.red, 1);
    EXPECT_EQ(color.green, 2);
    EXPECT_EQ(color.blue, 3);
    EXPECT_EQ(color.alpha, 4);
    EXPECT_TRUE(color == Color(1, 2, 3, 4));
    EXPECT_TRUE(color != Color(1, 2, 3, 5));
    EXPECT_FALSE(color == Color(9, 2, 3, 4));
}

TEST(Color, NameIsFourNumbersJoinedByCommas)
{
    EXPECT_EQ(rgba(65535, 65535, 65535, 65535).name(), "65535,65535,65535,65535");
    EXPECT_EQ(rgba(1, 20, 300, 0).name(), "1,20,300,0");
}

TEST(Color, ThreePartsAreOpaque)
{
    EXPECT_EQ(Color("1,2,3"), rgba(1, 2, 3, 65535));
}

TEST(Color, FurtherPartsAreIgnored)
{
    EXPECT_EQ(Color("1,2,3,4,5"), rgba(1, 2, 3, 4));
}

TEST(Color, FewerThanThreePartsAreOpaqueBlack)
{
    EXPECT_EQ(Color(""), kOpaqueBlack);
    EXPECT_EQ(Color(QString()), kOpaqueBlack);
    EXPECT_EQ(Color("1,2"), kOpaqueBlack);
    EXPECT_EQ(Color(",,,,"), kOpaqueBlack);
}

TEST(Color, EmptyPartsAreSkippedBeforeCounting)
{
    EXPECT_EQ(Color("1,,2,,3"), rgba(1, 2, 3, 65535));
    EXPECT_EQ(Color(",1,2,3,4"), rgba(1, 2, 3, 4));
}

TEST(Color, WhatIsNoNumberIsZero)
{
    EXPECT_EQ(Color("a,2,3"), rgba(0, 2, 3, 65535));
    EXPECT_EQ(Color("-1,2,3"), rgba(0, 2, 3, 65535));
    EXPECT_EQ(Color("1.5,2,3"), rgba(0, 2, 3, 65535));
    EXPECT_EQ(Color("0x10,2,3"), rgba(0, 2, 3, 65535));
    EXPECT_EQ(Color("4294967296,2,3"), rgba(0, 2, 3, 65535));
    EXPECT_EQ(Color("1,2,3,x"), rgba(1, 2, 3, 0));
}

TEST(Color, BlanksAndAPlusSignAreAccepted)
{
    EXPECT_EQ(Color(" 1, 2 ,+3"), rgba(1, 2, 3, 65535));
}

TEST(Color, LargeNumbersAreCutTo16Bits)
{
    EXPECT_EQ(Color("65536,0,0").red, 0);
    EXPECT_EQ(Color("65537,0,0").red, 1);
    EXPECT_EQ(Color("4294967295,0,0").red, 65535);
}

TEST(Color, ParsingReplacesAllFourChannels)
{
    Color color = rgba(9, 9, 9, 9);
    color.parseName("1,2,3");
    EXPECT_EQ(color, rgba(1, 2, 3, 65535));
    color.parseName("nonsense");
    EXPECT_EQ(color, kOpaqueBlack);
}

TEST(Color, EveryValueSurvivesItsTextForm)
{
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
        const auto v = [&random] { return static_cast<unsigned short>(random()); };
        const Color color = rgba(v(), v(), v(), v());
        ASSERT_EQ(Color(color.name()), color);
    }
}

TEST(Color, TravelsInAVariantUnderItsName)
{
    const QVariant variant = rgba(1, 2, 3, 4);
    EXPECT_STREQ(variant.typeName(), "Ondrel::Color");
    EXPECT_EQ(variant.value<Color>(), rgba(1, 2, 3, 4));
    const QVariant copy = variant;
    EXPECT_EQ(copy.value<Color>(), rgba(1, 2, 3, 4));
    EXPECT_EQ(QMetaType::type("Ondrel::Color"), variant.userType());
}

TEST(Color, RegistersItsTypeFromManyThreadsAtOnce)
{
    std::vector<std::thread> threads;
    for (unsigned short i = 0; i < 8; ++i)
        threads.emplace_back([i] {
            const QVariant variant = rgba(i, 0, 0, 0);
            EXPECT_EQ(variant.value<Color>().red, i);
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST(Color, QColorHasTheSameChannels)
{
    const QColor color = Ondrel::ColorToQColor(rgba(65535, 32768, 1, 40000));
    EXPECT_TRUE(color.isValid());
    const double step = 1.0 / 65535;
    EXPECT_NEAR(color.redF(), 1.0, step);
    EXPECT_NEAR(color.greenF(), 32768 / 65535.0, step);
    EXPECT_NEAR(color.blueF(), 1 / 65535.0, step);
    EXPECT_NEAR(color.alphaF(), 40000 / 65535.0, step);
}

TEST(Color, IsPlainData)
{
    EXPECT_TRUE(std::is_trivially_copyable_v<Color>);
    EXPECT_EQ(sizeof(Color), 8u);
}

} // namespace
