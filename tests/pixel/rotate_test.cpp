#include <ondrel/pixel/perspective.h>

#include "tests/reference/perspective_reference.h"
#include "tests/support/instructionlevels.h"
#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <utility>

namespace
{

using Ondrel::FilterMethod;
using Ondrel::Image;
using OndrelTest::forEveryInstructionLevel;
using OndrelTest::Pixel;
using OndrelTest::pixelAt;
using OndrelTest::randomImage;
using OndrelTest::samePixels;
using OndrelTest::setPixel;

constexpr FilterMethod kFilters[] = {FilterMethod::NearestNeighbor, FilterMethod::Bilinear, FilterMethod::Bicubic};
constexpr RotateSize kModes[] = {RotateSizeKeep, RotateSizeBounding, RotateSizeInscribed};
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

Image opaque(unsigned int width, unsigned int height)
{
    Image image(width, height);
    image.Fill(65535, 30000, 1, 65535);
    return image;
}

TEST(CalculateRotateSize, KeepIsTheSizeForEveryAngle)
{
    for (const float angle : {0.0f, 33.0f, 90.0f, 180.0f, -77.0f, 1e6f})
        EXPECT_EQ(CalculateRotateSize(QSize(100, 50), angle, RotateSizeKeep), QSize(100, 50)) << angle;
}

TEST(CalculateRotateSize, QuarterTurnsExchangeTheSidesAndHalfTurnsDoNot)
{
    for (const RotateSize mode : {RotateSizeBounding, RotateSizeInscribed}) {
        for (const float angle : {90.0f, 270.0f, -90.0f, -270.0f, 450.0f, -450.0f})
            EXPECT_EQ(CalculateRotateSize(QSize(100, 50), angle, mode), QSize(50, 100)) << angle;
        for (const float angle : {0.0f, -0.0f, 180.0f, -180.0f, 360.0f, -360.0f, 720.0f, 540.0f, -720.0f})
            EXPECT_EQ(CalculateRotateSize(QSize(100, 50), angle, mode), QSize(100, 50)) << angle;
    }
}

TEST(CalculateRotateSize, ModesThatAreNoneGiveNothingButForWholeTurns)
{
    EXPECT_EQ(CalculateRotateSize(QSize(100, 50), 45, static_cast<RotateSize>(3)), QSize(0, 0));
    EXPECT_EQ(CalculateRotateSize(QSize(100, 50), 45, static_cast<RotateSize>(0xFFFFFFFF)), QSize(0, 0));
    EXPECT_EQ(CalculateRotateSize(QSize(100, 50), 90, static_cast<RotateSize>(3)), QSize(50, 100));
}

TEST(CalculateRotateSize, WithoutASideThereIsNothing)
{
    for (const RotateSize mode : kModes)
        for (const QSize& size : {QSize(0, 0), QSize(0, 5), QSize(5, 0), QSize(-3, 5), QSize(5, -3), QSize()})
            EXPECT_EQ(CalculateRotateSize(size, 30, mode), QSize(0, 0));
}

TEST(CalculateRotateSize, BoundingIsTheTruncatedBoxOfTheTurnedCorners)
{
    EXPECT_EQ(CalculateRotateSize(QSize(100, 100), 45, RotateSizeBounding), QSize(141, 141)); // 141.42
    EXPECT_EQ(CalculateRotateSize(QSize(100, 50), 45, RotateSizeBounding), QSize(106, 106));  // 106.07
    EXPECT_EQ(CalculateRotateSize(QSize(100, 50), 10, RotateSizeBounding), QSize(107, 66));   // 107.16, 66.61
    EXPECT_EQ(CalculateRotateSize(QSize(100, 50), 60, RotateSizeBounding), QSize(93, 111));   // 93.30, 111.60
}

TEST(CalculateRotateSize, InscribedTouchesTheLongerSideWithTwoCorners)
{
    EXPECT_EQ(CalculateRotateSize(QSize(100, 100), 45, RotateSizeInscribed), QSize(70, 70)); // 50 / 0.7071
    EXPECT_EQ(CalculateRotateSize(QSize(100, 50), 45, RotateSizeInscribed), QSize(35, 35));
    EXPECT_EQ(CalculateRotateSize(QSize(100, 50), 20, RotateSizeInscribed), QSize(73, 26)); // 25 / sin, 25 / cos
    EXPECT_EQ(CalculateRotateSize(QSize(50, 100), 20, RotateSizeInscribed), QSize(26, 73));
    EXPECT_EQ(CalculateRotateSize(QSize(100, 50), 200, RotateSizeInscribed), QSize(73, 26));
    EXPECT_EQ(CalculateRotateSize(QSize(100, 50), 70, RotateSizeInscribed), QSize(26, 73)); // wider than high: / sin
}

TEST(CalculateRotateSize, InscribedTouchesAllSidesForSmallAngles)
{
    EXPECT_EQ(CalculateRotateSize(QSize(100, 50), 10, RotateSizeInscribed), QSize(95, 33)); // 95.56, 33.92
    EXPECT_EQ(CalculateRotateSize(QSize(50, 100), 10, RotateSizeInscribed), QSize(33, 95));
    EXPECT_EQ(CalculateRotateSize(QSize(100, 50), 1, RotateSizeInscribed), QSize(99, 48));
    EXPECT_EQ(CalculateRotateSize(QSize(100, 50), 350, RotateSizeInscribed), QSize(95, 33));
    EXPECT_EQ(CalculateRotateSize(QSize(100, 50), 80, RotateSizeInscribed), QSize(33, 95));
}

TEST(CalculateRotateSize, NegativeAnglesAreTheEqualPositiveOnes)
{
    for (const RotateSize mode : kModes)
        for (const float angle : {90.0f, 45.0f, 11.0f, 170.0f, 359.0f, 180.0f})
            EXPECT_EQ(CalculateRotateSize(QSize(100, 50), -angle, mode),
                      CalculateRotateSize(QSize(100, 50), 360.0f - angle, mode))
                << angle;
}

TEST(CalculateRotateSize, AnglesThatAreNotNumbersAreHarmless)
{
    for (const float angle : {kNaN, kInfinity, -kInfinity, 3e38f, -3e38f})
        for (const RotateSize mode : kModes) {
            const QSize size = CalculateRotateSize(QSize(100, 50), angle, mode);
            EXPECT_GE(size.width(), 0);
            EXPECT_LE(size.width(), 112);
            EXPECT_GE(size.height(), 0);
            EXPECT_LE(size.height(), 112);
        }
}

TEST(CalculateRotateSize, HugeSizesAreHarmless)
{
    const int most = std::numeric_limits<int>::max();
    for (const QSize& huge : {QSize(most, most), QSize(most, 1), QSize(1, most)})
        for (const RotateSize mode : kModes)
            for (const float angle : {0.0f, 1.0f, 45.0f, 90.0f, 123.0f}) {
                const QSize size = CalculateRotateSize(huge, angle, mode);
                EXPECT_GE(size.width(), 0);
                EXPECT_GE(size.height(), 0);
            }
}

TEST(Rotate, QuarterAndHalfTurnsMovePixels)
{
    const Image source = randomImage(7, 4, 1);
    for (const FilterMethod filter : kFilters)
        for (const RotateSize mode : kModes) {
            for (const float angle : {90.0f, -270.0f, 450.0f})
                EXPECT_TRUE(samePixels(Rotate(source, angle, mode, filter), Rotate90(source, mode))) << angle;
            for (const float angle : {180.0f, -180.0f, 540.0f})
                EXPECT_TRUE(samePixels(Rotate(source, angle, mode, filter), Rotate180(source))) << angle;
            for (const float angle : {270.0f, -90.0f, 630.0f})
                EXPECT_TRUE(samePixels(Rotate(source, angle, mode, filter), Rotate270(source, mode))) << angle;
        }
}

TEST(Rotate, AnAngleOfZeroStillResamples)
{
    const Image source = randomImage(9, 6, 1);
    for (const float angle : {0.0f, 360.0f, -360.0f})
        for (const RotateSize mode : kModes) {
            EXPECT_TRUE(samePixels(Rotate(source, angle, mode, FilterMethod::NearestNeighbor), source));
            for (const FilterMethod filter : {FilterMethod::Bilinear, FilterMethod::Bicubic}) {
                std::shared_ptr<const Image> expected;
                Transform(source, Ondrel::RectT<int>::invalid(), 1.0, TransformSizeBounding, filter,
                          Eigen::Matrix<double, 3, 3>::Identity(), expected);
                const Image result = Rotate(source, angle, mode, filter);
                EXPECT_TRUE(samePixels(result, *expected));
                EXPECT_FALSE(samePixels(result, source));
            }
        }
}

TEST(Rotate, TheResultHasTheCalculatedSizeAndNoMetadata)
{
    Image source = randomImage(40, 23, 1);
    source.colorProfile.fill(3);
    source.rawFilters = 5;
    for (const float angle : {0.0f, 12.0f, 45.0f, 90.0f, 100.0f, 180.0f, 222.0f, -33.0f})
        for (const RotateSize mode : kModes)
            for (const FilterMethod filter : kFilters) {
                const Image result = Rotate(source, angle, mode, filter);
                const QSize size = CalculateRotateSize(QSize(40, 23), angle, mode);
                EXPECT_EQ(QSize(int(result.width), int(result.height)), size) << angle;
                EXPECT_EQ(result.colorProfile, Image().colorProfile);
                EXPECT_EQ(result.rawFilters, 0u);
            }
}

TEST(Rotate, PositiveAnglesTurnCounterClockwise)
{
    // A mark at the middle of the right edge goes up.
    Image source(41, 41);
    source.Fill(0, 0, 0, 65535);
    source.Fill(65535, 65535, 65535, 65535, 36, 18, 5, 5);
    const auto middleRow = [](const Image& image) {
        double sum = 0, weighted = 0;
        for (unsigned int y = 0; y < image.height; ++y)
            for (unsigned int x = 0; x < image.width; ++x) {
                const Pixel p = pixelAt(image, x, y);
                const double v = double(p[0]) * p[3];
                sum += v;
                weighted += v * y;
            }
        return weighted / sum;
    };
    for (const FilterMethod filter : kFilters) {
        EXPECT_LT(middleRow(Rotate(source, 80, RotateSizeKeep, filter)), 5.0);
        EXPECT_GT(middleRow(Rotate(source, -80, RotateSizeKeep, filter)), 35.0);
    }
}

TEST(Rotate, KeepLeavesTheCornersTransparentAndInscribedNothing)
{
    const Image source = opaque(60, 40);
    for (const FilterMethod filter : kFilters) {
        const Image kept = Rotate(source, 30, RotateSizeKeep, filter);
        for (const auto& [x, y] : {std::pair(0u, 0u), std::pair(59u, 0u), std::pair(0u, 39u), std::pair(59u, 39u)})
            EXPECT_EQ(pixelAt(kept, x, y)[3], 0) << x << ", " << y;
        EXPECT_EQ(pixelAt(kept, 30, 20)[3], 65535);
        const Image inner = Rotate(source, 20, RotateSizeInscribed, filter);
        for (unsigned int y = 3; y + 3 < inner.height; ++y)
            for (unsigned int x = 3; x + 3 < inner.width; ++x)
                ASSERT_EQ(pixelAt(inner, x, y)[3], 65535) << x << ", " << y;
    }
}

TEST(Rotate, ATurnedPictureNarrowerThanTheCanvasIsSetInItsMiddle)
{
    // The box of 100 x 50 at 60 degrees is 93 x 111: three columns stay free at the left, four at the right.
    const Image source = opaque(100, 50);
    for (const FilterMethod filter : kFilters) {
        const Image result = Rotate(source, 60, RotateSizeKeep, filter);
        ASSERT_EQ(result.width, 100u);
        ASSERT_EQ(result.height, 50u);
        for (unsigned int y = 0; y < 50; ++y)
            for (const unsigned int x : {0u, 1u, 2u, 96u, 97u, 98u, 99u})
                ASSERT_EQ(pixelAt(result, x, y), (Pixel{0, 0, 0, 0})) << x << ", " << y;
        EXPECT_TRUE(samePixels(result, OndrelReference::rotate(source, 60, RotateSizeKeep, filter)));
    }
}

// A box around both, the line and the turned line, would have 1.6 thousand million pixels.
TEST(Rotate, ALongLineTurnedAcrossItsCanvasLeavesItsMiddle)
{
    Image line(40000, 2);
    line.Fill(1000, 2000, 3000, 65535);
    const Image turned = Rotate(line, 89.9f, RotateSizeKeep, Ondrel::FilterMethod::NearestNeighbor);
    ASSERT_EQ(turned.width, 40000u);
    ASSERT_EQ(turned.height, 2u);
    EXPECT_EQ(pixelAt(turned, 20000, 0), (Pixel{1000, 2000, 3000, 65535}));
    EXPECT_EQ(pixelAt(turned, 19900, 0), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(pixelAt(turned, 20100, 1), (Pixel{0, 0, 0, 0}));
}

TEST(Rotate, WithoutPixelsThereIsNothing)
{
    for (const Image& source : {Image(), Image(0, 5), Image(5, 0)})
        for (const RotateSize mode : kModes)
            for (const float angle : {0.0f, 30.0f, 90.0f, 180.0f, 270.0f})
                EXPECT_EQ(Rotate(source, angle, mode, FilterMethod::Bilinear).data, nullptr);
    const Image none = Rotate(randomImage(9, 9, 1), 30, static_cast<RotateSize>(3), FilterMethod::Bilinear);
    EXPECT_EQ(none.width, 0u);
    EXPECT_EQ(none.height, 0u);
    EXPECT_EQ(none.data, nullptr);
}

TEST(Rotate, AnglesThatAreNotNumbersAreHarmless)
{
    const Image source = randomImage(9, 7, 1);
    for (const float angle : {kNaN, kInfinity, -kInfinity, 3e38f, -3e38f, 1e-40f, -1e-40f})
        for (const RotateSize mode : kModes)
            for (const FilterMethod filter : kFilters) {
                const Image result = Rotate(source, angle, mode, filter);
                EXPECT_LE(result.width, 12u);
                EXPECT_LE(result.height, 12u);
            }
}

TEST(RotateReference, SizesOfEveryAngle)
{
    for (const QSize& size : {QSize(1, 1), QSize(100, 50), QSize(50, 100), QSize(3, 777), QSize(6000, 4000)})
        for (float angle = -400.5f; angle < 400.0f; angle += 3.25f)
            for (const RotateSize mode : {RotateSizeKeep, RotateSizeBounding}) {
                ASSERT_EQ(CalculateRotateSize(size, angle, mode), OndrelReference::rotateSize(size, angle, mode))
                    << size.width() << " x " << size.height() << " at " << angle;
            }
}

TEST(RotateReference, EveryModeFilterAndSize)
{
    for (const auto& [w, h] : {std::pair(1u, 1u), std::pair(2u, 9u), std::pair(33u, 20u), std::pair(21u, 44u)}) {
        const Image source = randomImage(w, h, w);
        for (const float angle : {0.0f, 3.0f, 17.0f, 44.9f, 58.0f, 101.0f, 200.5f, 289.0f, -12.5f, -300.0f})
            for (const RotateSize mode : kModes)
                for (const FilterMethod filter : kFilters) {
                    const Image expected = OndrelReference::rotate(source, angle, mode, filter);
                    forEveryInstructionLevel([&, w = w, h = h] {
                        EXPECT_TRUE(samePixels(Rotate(source, angle, mode, filter), expected))
                            << w << " x " << h << " at " << angle << ", mode " << mode << ", filter "
                            << unsigned(filter);
                    });
                }
    }
}

} // namespace
