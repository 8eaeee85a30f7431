#include <ondrel/pixel/perspective.h>

#include "tests/reference/perspective_reference.h"
#include "tests/support/instructionlevels.h"
#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <ostream>
#include <random>
#include <utility>
#include <vector>

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
using OndrelTest::shrunkImage;
using Matrix = Eigen::Matrix<double, 3, 3>;
using RectF = Ondrel::RectT<float>;
using RectI = Ondrel::RectT<int>;
using Output = std::shared_ptr<const Image>;

constexpr FilterMethod kFilters[] = {FilterMethod::NearestNeighbor, FilterMethod::Bilinear, FilterMethod::Bicubic};
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
const RectI kWhole = RectI::invalid();
const Matrix kIdentity = Matrix::Identity();

Matrix matrix(double a, double b, double c, double d, double e, double f, double g = 0, double h = 0, double i = 1)
{
    Matrix m;
    m << a, b, c, d, e, f, g, h, i;
    return m;
}

Matrix shift(double dx, double dy)
{
    return matrix(1, 0, dx, 0, 1, dy);
}

Matrix stretch(double x, double y)
{
    return matrix(x, 0, 0, 0, y, 0);
}

Image uniform(unsigned int width, unsigned int height, const Pixel& pixel)
{
    Image image(width, height);
    image.Fill(pixel[0], pixel[1], pixel[2], pixel[3]);
    return image;
}

// Opaque pixels numbered from 1 in the red channel, row by row.
Image numbered(unsigned int width, unsigned int height)
{
    Image image(width, height);
    for (unsigned int i = 0; i < width * height; ++i)
        setPixel(image, i % width, i / width, {static_cast<unsigned short>(i + 1), 0, 0, 65535});
    return image;
}

std::vector<int> reds(const Image& image)
{
    std::vector<int> values;
    for (unsigned int i = 0; i < image.width * image.height; ++i)
        values.push_back(image.data[i * 4]);
    return values;
}

Output sharedUniform(unsigned int width, unsigned int height, const Pixel& pixel)
{
    return std::make_shared<const Image>(uniform(width, height, pixel));
}

Image transformed(const Image& image, const Matrix& m, TransformSize size, FilterMethod filter, double scale = 1.0)
{
    Output output;
    Transform(image, kWhole, scale, size, filter, m, output);
    return output ? *output : Image();
}

void expectRect(const RectI& rect, int left, int top, int right, int bottom)
{
    EXPECT_EQ(rect.left(), left);
    EXPECT_EQ(rect.top(), top);
    EXPECT_EQ(rect.right(), right);
    EXPECT_EQ(rect.bottom(), bottom);
}

TEST(TransformSize, ValuesAreThoseThatHostsStore)
{
    EXPECT_EQ(unsigned(TransformSizeKeep), 0u);
    EXPECT_EQ(unsigned(TransformSizeBounding), 1u);
}

TEST(TransformBounds, KeepIsTheSourcesRectangle)
{
    RectF rect(1, 2, 3, 4);
    CalculateTransformOutputBoundingRect(30, 20, 0.5f, TransformSizeKeep, shift(100, 7), rect);
    EXPECT_EQ(rect, RectF(0, 0, 30, 20));
}

TEST(TransformBounds, BoundingHoldsTheFourCornersWithFractions)
{
    RectF rect;
    CalculateTransformOutputBoundingRect(30, 20, 1.0f, TransformSizeBounding, matrix(1, 0.5, -4.25, 0.25, 1, 3), rect);
    EXPECT_EQ(rect.left(), -4.25f);
    EXPECT_EQ(rect.right(), 30.0f + 10.0f - 4.25f);
    EXPECT_EQ(rect.top(), 3.0f);
    EXPECT_EQ(rect.bottom(), 20.0f + 7.5f + 3.0f);
}

TEST(TransformBounds, TheSizeIsThatOfThePictureAtTheScale)
{
    // Corners are divided by the scale, moved by 10, and multiplied again.
    RectF rect;
    CalculateTransformOutputBoundingRect(30, 20, 0.5f, TransformSizeBounding, shift(10, -20), rect);
    EXPECT_EQ(rect.left(), 5.0f);
    EXPECT_EQ(rect.right(), 35.0f);
    EXPECT_EQ(rect.top(), -10.0f);
    EXPECT_EQ(rect.bottom(), 10.0f);
}

TEST(TransformBounds, CornersAreDividedByTheirThirdCoordinate)
{
    // w = 1 + x / 32: the right edge at 32 comes to 16, and its lower end from 16 to 8.
    RectF rect;
    CalculateTransformOutputBoundingRect(32, 16, 1.0f, TransformSizeBounding, matrix(1, 0, 0, 0, 1, 0, 0.03125, 0, 1),
                                         rect);
    EXPECT_EQ(rect.left(), 0.0f);
    EXPECT_EQ(rect.right(), 16.0f);
    EXPECT_EQ(rect.top(), 0.0f);
    EXPECT_EQ(rect.bottom(), 16.0f);
}

TEST(TransformBounds, ABoxOfNegativeCornersEndsAtTheSmallestPositiveFloat)
{
    RectF rect;
    CalculateTransformOutputBoundingRect(3, 2, 1.0f, TransformSizeBounding, shift(-10, -20), rect);
    EXPECT_EQ(rect.left(), -10.0f);
    EXPECT_EQ(rect.top(), -20.0f);
    EXPECT_EQ(rect.right(), std::numeric_limits<float>::min());
    EXPECT_EQ(rect.bottom(), std::numeric_limits<float>::min());
}

TEST(TransformBounds, AnyOtherSizeLeavesTheRectangle)
{
    RectF rect(1, 2, 3, 4);
    for (const unsigned int size : {2u, 77u, 0xFFFFFFFFu})
        CalculateTransformOutputBoundingRect(30, 20, 1.0f, static_cast<TransformSize>(size), kIdentity, rect);
    EXPECT_EQ(rect, RectF(1, 2, 3, 4));
}

TEST(Transform, TheIdentityOfTheNearestNeighbourIsTheSourceWithoutMetadata)
{
    Image source = randomImage(23, 17, 1);
    source.colorProfile.fill(9);
    source.rawFilters = 5;
    source.rawHasInfo = true;
    for (const TransformSize size : {TransformSizeKeep, TransformSizeBounding}) {
        Output output;
        expectRect(Transform(source, kWhole, 1.0, size, FilterMethod::NearestNeighbor, kIdentity, output), 0, 0, 23,
                   17);
        ASSERT_TRUE(output);
        EXPECT_TRUE(samePixels(*output, source));
        EXPECT_EQ(output->colorProfile, Image().colorProfile);
        EXPECT_EQ(output->rawFilters, 0u);
        EXPECT_FALSE(output->rawHasInfo);
    }
}

TEST(TransformBilinear, TheIdentityMixesFourPixelsAndTransparentOnesOutside)
{
    const Image result =
        transformed(uniform(3, 2, {65535, 0, 0, 65535}), kIdentity, TransformSizeKeep, FilterMethod::Bilinear);
    EXPECT_EQ(pixelAt(result, 0, 0), (Pixel{65535, 0, 0, 65535}));
    EXPECT_EQ(pixelAt(result, 1, 0), (Pixel{65535, 0, 0, 65535}));
    EXPECT_EQ(pixelAt(result, 2, 0), (Pixel{65535, 0, 0, 32767}));
    EXPECT_EQ(pixelAt(result, 0, 1), (Pixel{65535, 0, 0, 32767}));
    EXPECT_EQ(pixelAt(result, 2, 1), (Pixel{65535, 0, 0, 16383}));
}

TEST(TransformBilinear, TheIdentityIsTheMeanOfTheBlockRightAndBelow)
{
    Image source = uniform(3, 3, {0, 0, 0, 65535});
    setPixel(source, 1, 1, {65535, 0, 0, 65535});
    const Image result = transformed(source, kIdentity, TransformSizeKeep, FilterMethod::Bilinear);
    EXPECT_EQ(pixelAt(result, 0, 0)[0], 16383);
    EXPECT_EQ(pixelAt(result, 1, 0)[0], 16383);
    EXPECT_EQ(pixelAt(result, 0, 1)[0], 16383);
    EXPECT_EQ(pixelAt(result, 1, 1)[0], 16383);
    EXPECT_EQ(pixelAt(result, 2, 1)[0], 0);
    EXPECT_EQ(pixelAt(result, 1, 2)[0], 0);
}

TEST(TransformBilinear, HalfAPixelTheOtherWayIsTheSource)
{
    // Moved by -1/2, the middle of each output pixel lies on the middle of its source pixel.
    const Image source = numbered(4, 3);
    Image result = transformed(source, shift(0.5, 0.5), TransformSizeKeep, FilterMethod::Bilinear);
    for (unsigned int i = 0; i < 12; ++i) {
        EXPECT_NEAR(result.data[i * 4], source.data[i * 4], 1);
        EXPECT_EQ(result.data[i * 4 + 3], 65535);
    }
}

TEST(TransformBilinear, TransparentPixelsDoNotBleedTheirColour)
{
    Image source = uniform(2, 2, {0, 65535, 0, 0});
    setPixel(source, 0, 0, {65535, 0, 0, 65535});
    const Image result = transformed(source, kIdentity, TransformSizeKeep, FilterMethod::Bilinear);
    EXPECT_EQ(pixelAt(result, 0, 0), (Pixel{65535, 0, 0, 16383}));
    EXPECT_EQ(pixelAt(result, 1, 1), (Pixel{0, 0, 0, 0}));
}

TEST(TransformBicubic, TheIdentityOvershootsBesideAnEdgeAndIsClipped)
{
    // Half way between pixels the weights are -1/16, 9/16, 9/16, -1/16.
    Image source(8, 8);
    source.Fill(0, 0, 0, 65535);
    source.Fill(65535, 32768, 0, 65535, 4, 0, 4, 8);
    const Image result = transformed(source, kIdentity, TransformSizeKeep, FilterMethod::Bicubic);
    EXPECT_EQ(pixelAt(result, 1, 3), (Pixel{0, 0, 0, 65535}));
    EXPECT_EQ(pixelAt(result, 2, 3)[0], 0); // -1/16 is clipped
    EXPECT_NEAR(pixelAt(result, 3, 3)[0], 32767, 1);
    EXPECT_EQ(pixelAt(result, 4, 3)[0], 65535); // 17/16 is clipped
    EXPECT_NEAR(pixelAt(result, 4, 3)[1], 32768 * 17 / 16, 2);
    EXPECT_NEAR(pixelAt(result, 3, 3)[1], 16384, 2);
}

TEST(Transform, KeepLosesWhatLeavesTheOutput)
{
    const Image source = numbered(4, 2);
    EXPECT_EQ(reds(transformed(source, shift(1, 0), TransformSizeKeep, FilterMethod::NearestNeighbor)),
              (std::vector<int>{0, 1, 2, 3, 0, 5, 6, 7}));
    EXPECT_EQ(reds(transformed(source, shift(-2, 1), TransformSizeKeep, FilterMethod::NearestNeighbor)),
              (std::vector<int>{0, 0, 0, 0, 3, 4, 0, 0}));
}

TEST(Transform, BoundingFollowsTheCornersToPositiveAndNegativeCoordinates)
{
    const Image source = numbered(4, 2);
    Output output;
    expectRect(
        Transform(source, kWhole, 1.0, TransformSizeBounding, FilterMethod::NearestNeighbor, shift(10, 5), output), 0,
        0, 4, 2);
    EXPECT_TRUE(samePixels(*output, source));
    expectRect(
        Transform(source, kWhole, 1.0, TransformSizeBounding, FilterMethod::NearestNeighbor, shift(-2, -1), output), 0,
        0, 4, 2);
    EXPECT_TRUE(samePixels(*output, source));
}

TEST(Transform, ABoxOfNegativeCornersReachesToZero)
{
    const Image result =
        transformed(numbered(3, 1), shift(-10, 0), TransformSizeBounding, FilterMethod::NearestNeighbor);
    EXPECT_EQ(result.width, 10u);
    EXPECT_EQ(result.height, 1u);
    EXPECT_EQ(reds(result), (std::vector<int>{1, 2, 3, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(Transform, SizesAreTruncated)
{
    const Image source = numbered(5, 5);
    EXPECT_EQ(transformed(source, stretch(1.39, 0.79), TransformSizeBounding, FilterMethod::Bilinear).width, 6u);
    EXPECT_EQ(transformed(source, stretch(1.39, 0.79), TransformSizeBounding, FilterMethod::Bilinear).height, 3u);
    EXPECT_EQ(transformed(source, stretch(0.19, 1), TransformSizeBounding, FilterMethod::Bilinear).data, nullptr);
}

TEST(TransformNearest, RoundsHalvesUpward)
{
    // Doubled, output x lies at (x + 0.5) / 2 - 0.5 = -0.25, 0.25, 0.75, ... in the source; moved by a quarter more at
    // -0.5, 0, 0.5, 1.
    EXPECT_EQ(
        reds(transformed(numbered(4, 1), matrix(2, 0, 0.5, 0, 1, 0), TransformSizeKeep, FilterMethod::NearestNeighbor)),
        (std::vector<int>{1, 1, 2, 2}));
}

TEST(TransformNearest, CopiesTransparentPixelsWhole)
{
    const Image result =
        transformed(uniform(2, 2, {100, 200, 300, 0}), kIdentity, TransformSizeKeep, FilterMethod::NearestNeighbor);
    EXPECT_EQ(pixelAt(result, 1, 1), (Pixel{100, 200, 300, 0}));
}

TEST(Transform, AThirdOfTheWidthTakesSamplesAcrossTheWholePixel)
{
    // Output pixel 1 covers 4 to 7 in the source: samples at 4.75 and 6.25, not one at 5.5.
    for (const FilterMethod filter : {FilterMethod::Bilinear, FilterMethod::Bicubic}) {
        const int expected[12] = {0, 0, 0, 0, 8191, 24575, 24575, 8191, 0, 0, 0, 0};
        for (unsigned int column = 0; column < 12; ++column) {
            Image source = uniform(12, 8, {0, 0, 0, 65535});
            source.Fill(65535, 65535, 65535, 65535, column, 0, 1, 8);
            const Image result = transformed(source, stretch(1.0 / 3.0, 1), TransformSizeKeep, filter);
            EXPECT_NEAR(pixelAt(result, 1, 3)[0], expected[column], 1) << column;
            EXPECT_EQ(pixelAt(result, 1, 3)[3], 65535);
        }
    }
}

TEST(Transform, HalvingSupersamplesEveryPixel)
{
    // Bicubic shows it: without supersampling its weights would reach beyond the four pixels.
    Image source = uniform(8, 8, {0, 0, 0, 65535});
    setPixel(source, 3, 3, {65535, 65535, 65535, 65535});
    const Image result = transformed(source, stretch(0.5, 0.5), TransformSizeBounding, FilterMethod::Bicubic);
    ASSERT_EQ(result.width, 4u);
    EXPECT_EQ(pixelAt(result, 1, 1)[0], 16383); // pixels 3 and 4 in each direction
    EXPECT_EQ(pixelAt(result, 0, 1)[0], 0);
    EXPECT_EQ(pixelAt(result, 2, 1)[0], 0);
    EXPECT_EQ(pixelAt(result, 1, 0)[0], 0);
}

TEST(Transform, AReductionOfUpToOneAndAHalfTakesOneSample)
{
    // An impulse beside the two pixels that one sample mixes is seen only by a supersampled pixel.
    const auto seen = [](double reduction) {
        for (unsigned int column = 0; column < 40; ++column) {
            Image source = uniform(40, 8, {0, 0, 0, 65535});
            source.Fill(65535, 65535, 65535, 65535, column, 0, 1, 8);
            const Image result =
                transformed(source, stretch(1 / reduction, 1), TransformSizeKeep, FilterMethod::Bilinear);
            const double centre = (10 + 1.0) * reduction - 0.5; // of output pixel 10
            if (pixelAt(result, 10, 3)[0] > 0 && std::fabs(column - centre) > 1.0)
                return true;
        }
        return false;
    };
    EXPECT_FALSE(seen(1.25));
    EXPECT_FALSE(seen(1.4999));
    EXPECT_TRUE(seen(1.5001));
    EXPECT_TRUE(seen(1.75));
}

TEST(Transform, TurnedPicturesAreSupersampledByTheirCornersDistance)
{
    // At 45 degrees a step of 2 pixels is 1.41 on each axis, a step of 2.2 is 1.56.
    const auto m = [](double reduction) {
        const double c = std::sqrt(0.5) / reduction;
        return matrix(c, c, 0, -c, c, 20);
    };
    Image source = uniform(60, 60, {0, 0, 0, 65535});
    for (unsigned int y = 0; y < 60; ++y)
        for (unsigned int x = y % 2; x < 60; x += 2)
            setPixel(source, x, y, {65535, 65535, 65535, 65535});
    for (const double reduction : {2.0, 2.2}) {
        const Image expected = [&] {
            Output output;
            OndrelReference::transform(source, kWhole, 1.0, false, FilterMethod::Bicubic, m(reduction), output);
            return *output;
        }();
        EXPECT_TRUE(samePixels(transformed(source, m(reduction), TransformSizeKeep, FilterMethod::Bicubic), expected));
    }
}

TEST(TransformRegion, RefreshesThatPartAloneInPlace)
{
    const Image source = numbered(6, 5);
    for (const FilterMethod filter : kFilters) {
        Output output = sharedUniform(6, 5, {7, 7, 7, 7});
        const Image* const before = output.get();
        expectRect(Transform(source, RectI(1, 2, 3, 2), 1.0, TransformSizeKeep, filter, kIdentity, output), 1, 2, 4, 4);
        EXPECT_EQ(output.get(), before);
        const Image whole = transformed(source, kIdentity, TransformSizeKeep, filter);
        for (unsigned int y = 0; y < 5; ++y)
            for (unsigned int x = 0; x < 6; ++x) {
                const bool inside = x >= 1 && x < 4 && y >= 2 && y < 4;
                EXPECT_EQ(pixelAt(*output, x, y), inside ? pixelAt(whole, x, y) : (Pixel{7, 7, 7, 7}))
                    << x << ", " << y << ", filter " << unsigned(filter);
            }
    }
}

TEST(TransformRegion, IsCutToTheOutput)
{
    const Image source = numbered(6, 5);
    Output output = sharedUniform(6, 5, {7, 7, 7, 7});
    expectRect(Transform(source, RectI(4, -3, 30, 5), 1.0, TransformSizeKeep, FilterMethod::NearestNeighbor, kIdentity,
                         output),
               4, 0, 6, 2);
    EXPECT_EQ(reds(*output), (std::vector<int>{7, 7, 7, 7, 5, 6, 7, 7, 7, 7, 11, 12, 7, 7, 7,
                                               7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7,  7,  7, 7, 7}));
}

TEST(TransformRegion, OutsideTheOutputWritesNothing)
{
    const Image source = numbered(6, 5);
    for (const RectI& region : {RectI(20, 20, 5, 5), RectI(-9, -9, 5, 5), RectI(2, 2, 0, 3), RectI(0, 0, 0, 0)}) {
        Output output = sharedUniform(6, 5, {7, 7, 7, 7});
        const RectI written =
            Transform(source, region, 1.0, TransformSizeKeep, FilterMethod::Bilinear, kIdentity, output);
        EXPECT_TRUE(written.width() == 0 || written.height() == 0);
        EXPECT_FALSE(written.isInvalid());
        EXPECT_TRUE(samePixels(*output, uniform(6, 5, {7, 7, 7, 7})));
    }
}

TEST(TransformRegion, OfAnOutputThatIsMissingOrOfAnotherSizeIsTheWhole)
{
    const Image source = numbered(6, 5);
    Output output;
    expectRect(
        Transform(source, RectI(1, 1, 2, 2), 1.0, TransformSizeKeep, FilterMethod::NearestNeighbor, kIdentity, output),
        0, 0, 6, 5);
    ASSERT_TRUE(output);
    EXPECT_TRUE(samePixels(*output, source));

    for (const auto& [w, h] : {std::pair(5u, 5u), std::pair(6u, 4u), std::pair(5u, 6u), std::pair(0u, 0u)}) {
        const Output other = sharedUniform(w, h, {7, 7, 7, 7});
        output = other;
        expectRect(Transform(source, RectI(1, 1, 2, 2), 1.0, TransformSizeKeep, FilterMethod::NearestNeighbor,
                             kIdentity, output),
                   0, 0, 6, 5);
        EXPECT_NE(output, other);
        EXPECT_TRUE(samePixels(*output, source));
        EXPECT_TRUE(samePixels(*other, uniform(w, h, {7, 7, 7, 7})));
    }
}

TEST(TransformRegion, AnInvalidOneReplacesTheOutputAndLeavesTheOldOne)
{
    const Image source = numbered(6, 5);
    const Output old = sharedUniform(6, 5, {7, 7, 7, 7});
    for (const RectI& region : {RectI::invalid(), RectI(3, 3, -1, 2), RectI(3, 3, 2, -1)}) {
        Output output = old;
        expectRect(Transform(source, region, 1.0, TransformSizeKeep, FilterMethod::NearestNeighbor, kIdentity, output),
                   0, 0, 6, 5);
        EXPECT_NE(output, old);
        EXPECT_TRUE(samePixels(*output, source));
        EXPECT_TRUE(samePixels(*old, uniform(6, 5, {7, 7, 7, 7})));
    }
}

TEST(TransformRegion, WhatComesFromOutsideStaysByTheNearestNeighbourAndIsClearedByTheOthers)
{
    const Image source = numbered(4, 2);
    Output output = sharedUniform(4, 2, {7, 7, 7, 7});
    Transform(source, RectI(-9, -9, 90, 90), 1.0, TransformSizeKeep, FilterMethod::NearestNeighbor, shift(2, 0),
              output);
    EXPECT_EQ(reds(*output), (std::vector<int>{7, 7, 1, 2, 7, 7, 5, 6}));
    EXPECT_EQ(pixelAt(*output, 0, 0), (Pixel{7, 7, 7, 7}));
    for (const FilterMethod filter : {FilterMethod::Bilinear, FilterMethod::Bicubic}) {
        output = sharedUniform(8, 2, {7, 7, 7, 7});
        Image wide(8, 2);
        wide.Fill(65535, 65535, 65535, 65535);
        Transform(wide, RectI(-9, -9, 90, 90), 1.0, TransformSizeKeep, filter, shift(4, 0), output);
        EXPECT_EQ(pixelAt(*output, 0, 0), (Pixel{0, 0, 0, 0}));
        EXPECT_EQ(pixelAt(*output, 1, 1), (Pixel{0, 0, 0, 0}));
        EXPECT_EQ(pixelAt(*output, 5, 0), (Pixel{65535, 65535, 65535, 65535}));
    }
}

TEST(Transform, TheScaleIsThatOfSourceAndOutput)
{
    // The picture at half its size, moved by 4 of its full pixels, moves by 2.
    EXPECT_EQ(reds(transformed(numbered(6, 1), shift(4, 0), TransformSizeKeep, FilterMethod::NearestNeighbor, 0.5)),
              (std::vector<int>{0, 0, 1, 2, 3, 4}));
    EXPECT_EQ(reds(transformed(numbered(6, 1), shift(4, 0), TransformSizeKeep, FilterMethod::NearestNeighbor, 2.0)),
              (std::vector<int>{0, 0, 0, 0, 0, 0}));
}

TEST(Transform, AScaleOfZeroGivesTheInvalidRectangleAndLeavesTheOutput)
{
    const Image source = numbered(6, 5);
    for (const double zero : {0.0, -0.0}) {
        Output none;
        EXPECT_TRUE(Transform(source, kWhole, zero, TransformSizeBounding, FilterMethod::Bilinear, kIdentity, none) ==
                    RectI::invalid());
        EXPECT_FALSE(none);
        const Output old = sharedUniform(6, 5, {7, 7, 7, 7});
        for (const RectI& region : {kWhole, RectI(1, 1, 2, 2)}) {
            Output output = old;
            EXPECT_TRUE(Transform(source, region, zero, TransformSizeKeep, FilterMethod::Bilinear, kIdentity, output) ==
                        RectI::invalid());
            EXPECT_EQ(output, old);
            EXPECT_TRUE(samePixels(*output, uniform(6, 5, {7, 7, 7, 7})));
        }
    }
}

TEST(Transform, ASingularMatrixStillGivesTheSize)
{
    const Image source = numbered(6, 5);
    for (const Matrix& m : {Matrix(Matrix::Zero()), stretch(0, 1), matrix(1, 1, 0, 1, 1, 0), stretch(1e-7, 1e-7)})
        for (const FilterMethod filter : kFilters) {
            const Image result = transformed(source, m, TransformSizeKeep, filter);
            EXPECT_EQ(result.width, 6u);
            EXPECT_EQ(result.height, 5u);
        }
    const Image flat = transformed(source, matrix(1, 1, 0, 1, 1, 0), TransformSizeBounding, FilterMethod::Bilinear);
    EXPECT_EQ(flat.width, 11u);
    EXPECT_EQ(flat.height, 11u);
}

TEST(Transform, ASmallDeterminantIsInvertedAboveTheLimit)
{
    // Of a determinant of 1e-10: the source is enlarged back from a hundred-thousandth.
    const Image source = numbered(6, 5);
    const Matrix small = matrix(1, 0, 0, 0, 1, 0, 0, 0, 1e-4) * 1e-2; // 1e-2 * 1e-2 * 1e-6 = 1e-10
    const Image result = transformed(source, small, TransformSizeKeep, FilterMethod::NearestNeighbor);
    EXPECT_EQ(pixelAt(result, 0, 0)[0], 1); // all lies near the corner
    const Image none = transformed(source, small * 1e-1, TransformSizeKeep, FilterMethod::NearestNeighbor); // 1e-13
    EXPECT_EQ(none.width, 6u);
}

TEST(Transform, ImagesWithoutPixels)
{
    for (const Image& source : {Image(), Image(0, 5), Image(5, 0)})
        for (const TransformSize size : {TransformSizeKeep, TransformSizeBounding})
            for (const FilterMethod filter : kFilters) {
                Output output;
                Transform(source, kWhole, 1.0, size, filter, kIdentity, output);
                EXPECT_TRUE(!output || output->data == nullptr);
            }
}

TEST(Transform, LeavesItsSourceAlone)
{
    const Image source = randomImage(20, 20, 3), before = source;
    for (const FilterMethod filter : kFilters)
        transformed(source, matrix(1.1, 0.2, 3, 0.1, 0.9, 1, 0.001, 0.002, 1), TransformSizeBounding, filter);
    EXPECT_TRUE(samePixels(source, before));
}

TEST(Transform, SenselessArgumentsAreHarmless)
{
    const Image source = randomImage(7, 6, 3);
    std::vector<Matrix> matrices = {stretch(1e5, 1e5),
                                    stretch(1e300, 1),
                                    shift(1e30, -1e30),
                                    shift(3e9, 3e9),
                                    matrix(1, 0, 0, 0, 1, 0, 1, 1, -5),
                                    matrix(1, 0, 0, 0, 1, 0, -0.25, 0, 1),
                                    matrix(0, 0, 0, 0, 0, 0, 0, 0, 1)};
    for (int i = 0; i < 9; ++i)
        for (const double value : {kNaN, kInfinity, -kInfinity}) {
            matrices.push_back(kIdentity);
            matrices.back()(i / 3, i % 3) = value;
        }
    const int far = std::numeric_limits<int>::max(), near = std::numeric_limits<int>::min();
    const RectI regions[] = {kWhole, RectI(1, 1, 2, 2), RectI(QPoint(near, near), QPoint(far, far)),
                             RectI(far, far, 0, 0), RectI(near, near, 0, 0)};
    for (const Matrix& m : matrices)
        for (const double scale : {1.0, -1.0, 1e-300, 1e300, 1e-30, kNaN, kInfinity})
            for (const RectI& region : regions)
                for (const FilterMethod filter : kFilters)
                    for (const TransformSize size : {TransformSizeKeep, TransformSizeBounding}) {
                        Output output = sharedUniform(7, 6, {7, 7, 7, 7});
                        const RectI written = Transform(source, region, scale, size, filter, m, output);
                        ASSERT_TRUE(output);
                        ASSERT_EQ(output->sizeBytes, std::uint64_t(output->width) * output->height * 8);
                        if (written.width() > 0 && written.height() > 0) {
                            ASSERT_GE(written.left(), 0);
                            ASSERT_GE(written.top(), 0);
                            ASSERT_LE(unsigned(written.right()), output->width + 1);
                            ASSERT_LE(unsigned(written.bottom()), output->height + 1);
                        }
                    }
}

TEST(Transform, FiltersAndSizesThatAreNoneAreHarmless)
{
    const Image source = randomImage(7, 6, 3);
    for (const unsigned int value : {3u, 77u, 0xFFFFFFFFu}) {
        Output output;
        Transform(source, kWhole, 1.0, TransformSizeKeep, static_cast<FilterMethod>(value), kIdentity, output);
        Transform(source, kWhole, 1.0, static_cast<TransformSize>(value), FilterMethod::Bilinear, kIdentity, output);
    }
}

// The fast forms against the literal one, bit by bit, on every instruction level.

struct Case {
    const Image& source;
    RectI region;
    double scale;
    bool bounding;
    FilterMethod filter;
    Matrix m;
};

std::ostream& operator<<(std::ostream& out, const Case& c)
{
    return out << c.source.width << " x " << c.source.height << ", region " << c.region.left() << " " << c.region.top()
               << " " << c.region.right() << " " << c.region.bottom() << ", scale " << c.scale << ", bounding "
               << c.bounding << ", filter " << unsigned(c.filter) << "\n"
               << c.m;
}

// `before`: the output that is refreshed, or null.
void expectAsTheReference(const Case& c, const Output& before = nullptr)
{
    Output expected = before;
    const RectI written = OndrelReference::transform(c.source, c.region, c.scale, c.bounding, c.filter, c.m, expected);
    forEveryInstructionLevel([&] {
        Output result = before ? before->toPtr() : nullptr;
        const RectI rect = Transform(c.source, c.region, c.scale,
                                     c.bounding ? TransformSizeBounding : TransformSizeKeep, c.filter, c.m, result);
        ASSERT_TRUE(result);
        EXPECT_TRUE(samePixels(*result, *expected)) << c;
        EXPECT_TRUE(rect == written) << c;
    });
}

unsigned int next(std::mt19937& random)
{
    return unsigned(random());
}

// A picture of a few pixels to a few hundred.
Image randomSource(std::mt19937& random)
{
    const auto side = [&random] { return 1 + unsigned(std::exp2(double(next(random) % 6500) / 1000.0)); };
    const unsigned int w = side(), h = side();
    return next(random) % 3 ? randomImage(w, h, next(random)) : shrunkImage(w, h, next(random));
}

double between(std::mt19937& random, double low, double high)
{
    return low + (high - low) * double(next(random)) / 4294967295.0;
}

// A turn, a stretch from 1/16 to 4, a shear and a shift.
Matrix affine(std::mt19937& random, const Image& image)
{
    const double angle = between(random, 0, 6.283), sx = std::exp2(between(random, -4, 2)),
                 sy = std::exp2(between(random, -4, 2)), shear = between(random, -0.5, 0.5);
    const double c = std::cos(angle), s = std::sin(angle);
    return matrix(c * sx, s * sy + shear, between(random, -0.5, 0.5) * image.width, -s * sx, c * sy,
                  between(random, -0.5, 0.5) * image.height);
}

TEST(TransformReference, TurnsStretchesAndShears)
{
    std::mt19937 random(7);
    for (int i = 0; i < 90; ++i) {
        const Image source = randomSource(random);
        expectAsTheReference({source, kWhole, 1.0, i % 2 == 0, kFilters[i % 3], affine(random, source)});
    }
}

TEST(TransformReference, RotationsByEveryDegree)
{
    const Image source = randomImage(45, 31, 5);
    for (int degree = 0; degree < 360; degree += 7)
        for (const FilterMethod filter : kFilters)
            expectAsTheReference({source, kWhole, 1.0, degree % 2 == 0, filter,
                                  OndrelReference::rotationMatrix(QSize(45, 31), float(degree))});
}

TEST(TransformReference, PerspectivesWithAndWithoutAHorizonInThePicture)
{
    std::mt19937 random(8);
    for (int i = 0; i < 120; ++i) {
        const Image source = randomSource(random);
        Matrix m = affine(random, source);
        const double tilt = i % 4 == 0 ? 3.0 : 0.5; // the horizon w = 0 crosses the picture in some
        m(2, 0) = between(random, -tilt, tilt) / source.width;
        m(2, 1) = between(random, -tilt, tilt) / source.height;
        expectAsTheReference({source, kWhole, 1.0, false, kFilters[i % 3], m});
    }
}

TEST(TransformReference, ReductionsAroundTheChangesOfLevel)
{
    const Image source = randomImage(97, 61, 11);
    for (const double reduction : {1.0, 1.4, 1.49, 1.5, 1.51, 2.0, 2.9, 3.0, 3.1, 5.9, 6.0, 6.1, 11.9, 12.1, 20.0})
        for (const FilterMethod filter : {FilterMethod::Bilinear, FilterMethod::Bicubic})
            for (const double other : {1.0, reduction}) {
                expectAsTheReference({source, kWhole, 1.0, true, filter, stretch(1 / reduction, 1 / other)});
                expectAsTheReference({source, kWhole, 1.0, false, filter, stretch(1 / other, 1 / reduction)});
            }
}

TEST(TransformReference, Enlargements)
{
    for (const auto& [w, h] : {std::pair(1u, 1u), std::pair(9u, 1u), std::pair(1u, 9u), std::pair(6u, 7u)})
        for (const double factor : {2.0, 7.3, 31.0})
            for (const FilterMethod filter : kFilters)
                expectAsTheReference({randomImage(w, h, w + h), kWhole, 1.0, true, filter, stretch(factor, factor)});
}

TEST(TransformReference, Scales)
{
    std::mt19937 random(9);
    for (int i = 0; i < 60; ++i) {
        const Image source = randomSource(random);
        const double scales[] = {0.5, 0.25, 2.0, 0.75, 1.25};
        const bool bounding = i % 2 == 0;
        const Matrix m = affine(random, source);
        expectAsTheReference({source, kWhole, scales[i % 5], bounding, kFilters[i % 3], m});
    }
}

TEST(TransformReference, RegionsOfAnOutput)
{
    std::mt19937 random(10);
    for (int i = 0; i < 150; ++i) {
        const Image source = randomImage(5 + next(random) % 60, 5 + next(random) % 60, next(random));
        const int w = int(source.width), h = int(source.height);
        const RectI region(int(next(random) % 90) - 20, int(next(random) % 90) - 20, int(next(random) % 50),
                           int(next(random) % 50));
        const auto before = std::make_shared<const Image>(randomImage(source.width, source.height, next(random)));
        Matrix m = affine(random, source);
        if (i % 3 == 0)
            m = kIdentity;
        else if (i % 3 == 1)
            m = OndrelReference::rotationMatrix(QSize(w, h), float(next(random) % 360));
        expectAsTheReference({source, region, 1.0, false, kFilters[i % 3], m}, before);
        expectAsTheReference({source, region, i % 2 ? 0.5 : 2.0, false, kFilters[(i + 1) % 3], m}, before);
    }
}

TEST(TransformReference, RegionsOfABoundingBoxWithFractions)
{
    std::mt19937 random(12);
    const Image source = randomImage(40, 30, 2);
    for (int degree = 3; degree < 360; degree += 17) {
        const Matrix m = OndrelReference::rotationMatrix(QSize(40, 30), float(degree));
        for (const FilterMethod filter : kFilters) {
            Output before;
            OndrelReference::transform(source, kWhole, 1.0, true, filter, m, before);
            const auto noise = std::make_shared<const Image>(randomImage(before->width, before->height, next(random)));
            const RectI region(int(next(random) % 40) - 5, int(next(random) % 30) - 5, int(next(random) % 30),
                               int(next(random) % 30));
            expectAsTheReference({source, region, 1.0, true, filter, m}, noise);
        }
    }
}

} // namespace
