// The fast form of projective transforms against the literal one, bit by bit.

#include "tests/reference/perspective_reference.h"
#include "tests/support/instructionlevels.h"
#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <Eigen/LU>
#include <cmath>
#include <limits>
#include <ondrel/pixel/perspective.h>
#include <ondrel/pixel/transformsamples_p.h>
#include <ondrel/pixel/transformtile_p.h>
#include <random>

namespace
{

using Ondrel::FilterMethod;
using Ondrel::Image;
using Ondrel::RectT;
using OndrelTest::forEveryInstructionLevel;
using OndrelTest::randomImage;
using OndrelTest::samePixels;
using OndrelTest::shrunkImage;
using Matrix = Eigen::Matrix<double, 3, 3>;
using Output = std::shared_ptr<const Image>;

constexpr FilterMethod kFilters[] = {FilterMethod::NearestNeighbor, FilterMethod::Bilinear, FilterMethod::Bicubic};

Matrix matrixOf(double a, double b, double c, double d, double e, double f, double g, double h, double i)
{
    Matrix m;
    m << a, b, c, d, e, f, g, h, i;
    return m;
}

struct Call {
    RectT<int> region = RectT<int>::invalid();
    double scale = 1.0;
    TransformSize size = TransformSizeKeep;
};

// `before` is what the output holds before the call.
void expectSame(const Image& source, const Call& call, const Matrix& matrix, const Output& before = nullptr)
{
    RectT<float> bounds;
    CalculateTransformOutputBoundingRect(source.width, source.height, float(call.scale), call.size, matrix, bounds);
    if (!(bounds.width() >= 0 && bounds.height() >= 0 && bounds.width() * bounds.height() < 300000.0f &&
          std::abs(bounds.left()) < 1e6f && std::abs(bounds.top()) < 1e6f))
        return; // more than a test has time for
    for (const FilterMethod filter : kFilters) {
        Output expected = before;
        const RectT<int> expectedRect = OndrelReference::transform(
            source, call.region, call.scale, call.size == TransformSizeBounding, filter, matrix, expected);
        Output result = before ? before->toPtr() : nullptr;
        const RectT<int> rect = Transform(source, call.region, call.scale, call.size, filter, matrix, result);
        EXPECT_TRUE(rect == expectedRect);
        EXPECT_TRUE(samePixels(*result, *expected))
            << source.width << " x " << source.height << " to " << result->width << " x " << result->height
            << ", filter " << unsigned(filter) << ", scale " << call.scale << ", matrix\n"
            << matrix(0, 0) << " " << matrix(0, 1) << " " << matrix(0, 2) << "\n"
            << matrix(1, 0) << " " << matrix(1, 1) << " " << matrix(1, 2) << "\n"
            << matrix(2, 0) << " " << matrix(2, 1) << " " << matrix(2, 2);
    }
}

Image someImage(unsigned int seed)
{
    std::mt19937 random(seed);
    const auto side = [&random] { return unsigned(std::exp2(double(random() % 7500) / 1000.0)); };
    const unsigned int width = side(), height = side();
    return seed % 3 ? randomImage(width, height, seed) : shrunkImage(width, height, seed);
}

TEST(PerspectiveFast, RotationsByAllAngles)
{
    forEveryInstructionLevel([] {
        for (int angle = 0; angle < 360; angle += 17) {
            const Image source = someImage(unsigned(angle));
            const Matrix matrix =
                OndrelReference::rotationMatrix(QSize(int(source.width), int(source.height)), float(angle));
            expectSame(source, {RectT<int>::invalid(), 1.0, TransformSizeBounding}, matrix);
            expectSame(source, {RectT<int>::invalid(), 1.0, TransformSizeKeep}, matrix);
        }
    });
}

// Only what is kept of the turned picture is made, unless the canvas reaches beyond it.
TEST(PerspectiveFast, RotatedImagesOfAllModes)
{
    forEveryInstructionLevel([] {
        for (unsigned int i = 0; i < 60; ++i) {
            const Image source = someImage(i + 100);
            const float angle = float(i * i) * 1.37f - 400.0f;
            for (const RotateSize mode : {RotateSizeKeep, RotateSizeBounding, RotateSizeInscribed}) {
                const FilterMethod filter = kFilters[i % 3];
                EXPECT_TRUE(samePixels(Rotate(source, angle, mode, filter),
                                       OndrelReference::rotate(source, angle, mode, filter)))
                    << source.width << " x " << source.height << " by " << angle << ", mode " << mode;
            }
        }
    });
}

TEST(PerspectiveFast, ReductionsAndEnlargements)
{
    forEveryInstructionLevel([] {
        for (const double factor : {1.4, 1.4999, 1.5, 1.5001, 2.0, 2.9, 3.0, 6.1, 12.0, 23.9, 24.1, 50.0, 0.9, 0.3})
            for (const double skew : {0.0, 0.1}) {
                const Matrix matrix =
                    matrixOf(1 / factor, skew / factor, 0.3, -skew / factor, 1.1 / factor, 0.2, 0, 0, 1);
                expectSame(randomImage(150, 131, unsigned(factor * 10)),
                           {RectT<int>::invalid(), 1.0, TransformSizeBounding}, matrix);
            }
    });
}

TEST(PerspectiveFast, RandomProjections)
{
    forEveryInstructionLevel([] {
        std::mt19937 random(11);
        std::uniform_real_distribution<double> around(-1.0, 1.0);
        for (unsigned int i = 0; i < 80; ++i) {
            const Image source = someImage(i);
            const double side = std::max(source.width, source.height);
            // From gentle to a horizon across the picture and behind it.
            const double tilt = std::exp2(double(i % 8) - 6.0) / side;
            Matrix matrix = Matrix::Identity() + 0.7 * Matrix::NullaryExpr([&] { return around(random); });
            matrix(0, 2) *= side;
            matrix(1, 2) *= side;
            matrix(2, 0) *= tilt;
            matrix(2, 1) *= tilt;
            if (i % 5 == 0)
                matrix = -matrix;
            const double scale = i % 4 == 0 ? 1.0 : std::exp2(around(random) * 2.0);
            expectSame(source, {RectT<int>::invalid(), scale, i % 2 ? TransformSizeKeep : TransformSizeBounding},
                       matrix);
        }
    });
}

TEST(PerspectiveFast, NearlySingularMatrices)
{
    forEveryInstructionLevel([] {
        const Image source = randomImage(23, 19, 4);
        for (const double d : {1e-2, 1e-4, 1e-8, 1e-11, 1.1e-12, 0.9e-12, 0.0, -1e-11}) {
            expectSame(source, {}, matrixOf(1, 1, 3, 1, 1 + d, 2, 0, 0, 1));
            expectSame(source, {}, matrixOf(1, 0, 3, 0, d, 20, 0, 0, 1));
            expectSame(source, {}, matrixOf(1, 0.2, 3, 0, 1, 20, 1e-3, 1e-3, d));
        }
    });
}

TEST(PerspectiveFast, RefreshedRegionsOfAnOutput)
{
    forEveryInstructionLevel([] {
        std::mt19937 random(5);
        const Image source = randomImage(140, 90, 3);
        const Output before = std::make_shared<const Image>(randomImage(140, 90, 8));
        for (int i = 0; i < 40; ++i) {
            const auto some = [&random](int n) { return int(random() % unsigned(n)); };
            Call call;
            call.region = RectT<int>(some(200) - 40, some(140) - 30, some(150), some(90));
            const double turn = i % 4 == 0 ? 0.0 : 0.02 * some(9);
            expectSame(source, call, matrixOf(1, turn, some(5), -turn, 1.1, -0.4 * some(5), 1e-4 * some(4), 0, 1),
                       before);
        }
    });
}

TEST(PerspectiveFast, TransparentAndOpaqueSources)
{
    forEveryInstructionLevel([] {
        for (const std::uint16_t alpha : std::initializer_list<std::uint16_t>{0, 1, 2, 32768, 65534, 65535}) {
            Image source = randomImage(61, 47, alpha);
            for (unsigned int i = 0; i < 61 * 47; ++i)
                source.data[i * 4 + 3] = alpha;
            for (const double factor : {0.6, 1.0, 2.2})
                expectSame(source, {}, matrixOf(factor, 0.2, 1.5, -0.1, factor, 0.7, 0.001, 0, 1));
        }
    });
}

TEST(PerspectiveFast, PositionsThatAreNotFiniteOrFarAwayAreOutside)
{
    forEveryInstructionLevel([] {
        const Image source = randomImage(21, 17, 3);
        const double inf = std::numeric_limits<double>::infinity();
        for (const double odd : {inf, -inf, std::nan(""), 1e300, -1e300, 1e-300, 1e18, -3e9, 2147483647.5, 4e-9})
            for (int place = 0; place < 9; ++place) {
                Matrix matrix = matrixOf(1, 0.1, 2, -0.1, 1, 3, 1e-4, 1e-4, 1);
                matrix(place / 3, place % 3) = odd;
                expectSame(source, {}, matrix);
                expectSame(source, {RectT<int>::invalid(), 0.5, TransformSizeBounding}, matrix);
            }
    });
}

// Every sample value, through the conversion that replaces a division.
TEST(PerspectiveFast, SamplesBecomeTheQuotientThatADivisionGives)
{
    forEveryInstructionLevel([] {
        std::vector<std::uint16_t> pixels(65536 * 4);
        for (std::size_t i = 0; i < 65536; ++i) {
            pixels[i * 4] = std::uint16_t(i);
            pixels[i * 4 + 3] = i % 2 ? std::uint16_t(65535) : std::uint16_t(65535 - i);
        }
        std::vector<float> floats(65536 * 4);
        Ondrel::ScaleRows::premultiply(pixels.data(), 65536, floats.data());
        for (std::size_t i = 0; i < 65536; ++i) {
            ASSERT_EQ(floats[i * 4 + 3], float(pixels[i * 4 + 3]) / 65535.0f) << i;
            ASSERT_EQ(floats[i * 4], float(i) / 65535.0f * floats[i * 4 + 3]) << i;
        }
    });
}

// What is claimed of a tile holds for each of its pixels, as they are computed.
TEST(PerspectiveFast, TilesClaimNothingThatIsNotSo)
{
    std::mt19937 random(17);
    std::uniform_real_distribution<double> around(-1.0, 1.0);
    int known = 0, single = 0;
    for (int i = 0; i < 4000; ++i) {
        Matrix m =
            Matrix::Identity() * std::exp2(around(random)) + 0.4 * Matrix::NullaryExpr([&] { return around(random); });
        m(0, 2) *= 1000;
        m(1, 2) *= 1000;
        m(2, 0) *= 1e-3;
        m(2, 1) *= 1e-3;
        const double left = std::floor(around(random) * 1000), top = std::floor(around(random) * 1000);
        const Ondrel::TileBounds bounds = Ondrel::tileBounds(m, left, top, left + 9, top + 7);
        known += bounds.isKnown;
        single += bounds.takesOneSample;
        for (int y = 0; y <= 7 && bounds.isKnown; ++y)
            for (int x = 0; x <= 9; ++x) {
                Ondrel::TransformSamples::PlaceRow places, below;
                project(m, left + x, top + y, 2, places);
                project(m, left + x, top + y + 1, 1, below);
                ASSERT_TRUE(places.x[0] >= bounds.minX && places.x[0] <= bounds.maxX);
                ASSERT_TRUE(places.y[0] >= bounds.minY && places.y[0] <= bounds.maxY);
                if (bounds.takesOneSample && x < 9 && y < 7) {
                    ASSERT_LE(std::abs(places.x[1] - places.x[0]), 1.5);
                    ASSERT_LE(std::abs(places.y[1] - places.y[0]), 1.5);
                    ASSERT_LE(std::abs(below.x[0] - places.x[0]), 1.5);
                    ASSERT_LE(std::abs(below.y[0] - places.y[0]), 1.5);
                }
            }
    }
    EXPECT_GT(known, 1000);
    EXPECT_GT(single, 300);
    EXPECT_LT(single, known);
}

// Steps of 1.6 by a matrix so small that products of its entries are a few of the smallest numbers there are.
TEST(PerspectiveFast, TilesOfTinyMatricesClaimNothing)
{
    const double tiny = 3.584e-162;
    const Matrix m = matrixOf(1.6 * tiny, 0, 0, 0, tiny, 0, 0, 0, tiny);
    EXPECT_FALSE(Ondrel::tileBounds(m, 0, 0, 9, 7).takesOneSample);
    EXPECT_TRUE(Ondrel::tileBounds(m / tiny, 0, 0, 9, 7).isKnown);
    EXPECT_FALSE(Ondrel::tileBounds(m / tiny, 0, 0, 9, 7).takesOneSample);
}

} // namespace
