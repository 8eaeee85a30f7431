#include <ondrel/pixel/gaussianblur.h>
#include <ondrel/pixel/pixelfetch.h>

#include "tests/reference/gaussianblur_reference.h"
#include "tests/support/instructionlevels.h"
#include "tests/support/rowengines.h"
#include "tests/support/testimages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace
{

using Ondrel::Image;
using OndrelReference::Outside;
using OndrelTest::forEveryInstructionLevel;
using OndrelTest::Pixel;
using OndrelTest::pixelAt;
using OndrelTest::randomImage;
using OndrelTest::samePixels;
using OndrelTest::setPixel;
using OndrelTest::shrunkImage;
using OndrelTest::withMetadata;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr GaussianEdge kEdges[] = {GaussianEdge::Clamp, GaussianEdge::Blank, GaussianEdge::Repeat};
const Ondrel::RunStatus kNoStatus;

Image blurred(const Image& image, float radiusX, float radiusY, GaussianEdge edge)
{
    return GaussianBlur_CPU(image, radiusX, radiusY, edge, kNoStatus);
}

// On every instruction level.
void expectAsTheReference(const Image& image, float radiusX, float radiusY, GaussianEdge edge)
{
    const Image expected = OndrelReference::gaussianBlur(image, radiusX, radiusY, Outside(unsigned(edge)));
    forEveryInstructionLevel([&] {
        EXPECT_TRUE(samePixels(blurred(image, radiusX, radiusY, edge), expected))
            << image.width << " x " << image.height << ", radii " << radiusX << " and " << radiusY << ", edge "
            << unsigned(edge);
    });
}

Image uniform(unsigned int width, unsigned int height, std::uint16_t value)
{
    Image image(width, height);
    image.FastFill(value);
    return image;
}

void expectMetadataOf(const Image& source, const Image& result)
{
    EXPECT_EQ(result.colorProfile, source.colorProfile);
    EXPECT_EQ(result.rawIsMosaic, source.rawIsMosaic);
    EXPECT_EQ(result.rawFilters, source.rawFilters);
    EXPECT_EQ(result.rawHasInfo, source.rawHasInfo);
    EXPECT_EQ(result.rawRotation, source.rawRotation);
    EXPECT_EQ(result.rawToneCurve, source.rawToneCurve);
}

// A canvas with the picture at (x, y); what the canvas holds elsewhere is up to `outside`.
template <typename Fetch>
Image extended(const Image& image, unsigned int margin, Fetch outside)
{
    Image canvas(image.width + 2 * margin, image.height + 2 * margin);
    for (unsigned int y = 0; y < canvas.height; ++y)
        for (unsigned int x = 0; x < canvas.width; ++x) {
            unsigned short rgba[4];
            outside(image, int(x) - int(margin), int(y) - int(margin), rgba);
            setPixel(canvas, x, y, {rgba[0], rgba[1], rgba[2], rgba[3]});
        }
    return canvas;
}

Image middleOf(const Image& canvas, unsigned int margin)
{
    Image out(canvas.width - 2 * margin, canvas.height - 2 * margin);
    for (unsigned int y = 0; y < out.height; ++y)
        for (unsigned int x = 0; x < out.width; ++x)
            setPixel(out, x, y, pixelAt(canvas, x + margin, y + margin));
    return out;
}

TEST(GaussianEdge, ValuesAreThoseThatHostsStore)
{
    EXPECT_EQ(unsigned(GaussianEdge::Clamp), 0u);
    EXPECT_EQ(unsigned(GaussianEdge::Blank), 1u);
    EXPECT_EQ(unsigned(GaussianEdge::Repeat), 2u);
}

TEST(GaussianSampleSize, GivesTheTapsOfEachDirection)
{
    EXPECT_EQ(GaussianSampleSize(0, 0), QSize(3, 3));
    EXPECT_EQ(GaussianSampleSize(100, 100), QSize(201, 201));
    EXPECT_EQ(GaussianSampleSize(100, 0), QSize(201, 3));
    EXPECT_EQ(GaussianSampleSize(0, 100), QSize(3, 201));
    EXPECT_EQ(GaussianSampleSize(0.25f, 2.7f), QSize(5, 9));
    EXPECT_EQ(GaussianSampleSize(-0.5f, 3.0f), QSize(3, 9));
    EXPECT_EQ(GaussianSampleSize(1, 2), QSize(5, 7));
}

TEST(GaussianSampleSize, IsTheSizeOfTheWeights)
{
    for (float radius = -0.9f; radius < 400.0f; radius += 0.37f)
        EXPECT_EQ(GaussianSampleSize(radius, 0).width(), int(OndrelReference::gaussianWeights(radius + 1.0f).size()))
            << radius;
}

TEST(GaussianSampleSize, IsNeverEven)
{
    for (const float radius : {-1e30f, -50.0f, -3.3f, -1.0f, -0.01f, 0.0f, 0.3f, 1e3f, 1e8f, 1.5e9f, 3e9f, 1e30f,
                               kInfinity, -kInfinity, kNaN}) {
        const QSize size = GaussianSampleSize(radius, radius);
        EXPECT_NE(size.width() % 2, 0) << radius;
        EXPECT_EQ(size.width(), size.height()) << radius;
    }
}

TEST(GaussianBlur, RadiiZeroCopyPixelsAndAllMetadata)
{
    const Image source = withMetadata(9, 5);
    for (const GaussianEdge edge : kEdges)
        for (const float zero : {0.0f, -0.0f}) {
            const Image result = blurred(source, zero, 0.0f, edge);
            EXPECT_TRUE(samePixels(result, source));
            expectMetadataOf(source, result);
        }
}

TEST(GaussianBlur, AnyOtherRadiusDropsTheMetadata)
{
    const Image source = withMetadata(9, 5);
    for (const auto& [rx, ry] : {std::pair(1.0f, 1.0f), std::pair(0.0f, 1.0f), std::pair(1.0f, 0.0f),
                                 std::pair(-1.0f, 0.5f), std::pair(0.5f, -2.0f)})
        expectMetadataOf(Image(), blurred(source, rx, ry, GaussianEdge::Clamp));
}

TEST(GaussianBlur, RadiusZeroInOneDirectionLeavesThatDirectionAsItIs)
{
    const Image source = randomImage(31, 17, 3);
    for (const GaussianEdge edge : kEdges) {
        // A radius of -1 takes no pass at all.
        EXPECT_TRUE(samePixels(blurred(source, 0.0f, -1.0f, edge), source));
        EXPECT_TRUE(samePixels(blurred(source, -1.0f, 0.0f, edge), source));
        EXPECT_TRUE(samePixels(blurred(source, 2.0f, 0.0f, edge), blurred(source, 2.0f, -1.0f, edge)));
        EXPECT_TRUE(samePixels(blurred(source, 0.0f, 2.0f, edge), blurred(source, -1.0f, 2.0f, edge)));
    }
}

TEST(GaussianBlur, RadiiOfMinusOneAndLessTakeNoPassAndKeepTheMetadata)
{
    const Image source = withMetadata(6, 7);
    for (const float radius : {-1.0f, -1.5f, -1000.0f, -3e38f, -kInfinity}) {
        const Image result = blurred(source, radius, radius, GaussianEdge::Blank);
        EXPECT_TRUE(samePixels(result, source));
        expectMetadataOf(source, result);
    }
}

TEST(GaussianBlur, ASinglePixelSpreadsAsTheLoweredGaussian)
{
    // Radius 1: weights (100^-(i/2)^2 - 0.01) / sum = 0.1910989, 0.6178022, 0.1910989.
    Image source(7, 1);
    setPixel(source, 3, 0, {65535, 10000, 1, 65535});
    const Image result = blurred(source, 1.0f, -1.0f, GaussianEdge::Clamp);
    EXPECT_EQ(pixelAt(result, 1, 0), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(pixelAt(result, 2, 0), (Pixel{12524, 1911, 0, 12524}));
    EXPECT_EQ(pixelAt(result, 3, 0), (Pixel{40488, 6178, 1, 40488}));
    EXPECT_EQ(pixelAt(result, 4, 0), (Pixel{12524, 1911, 0, 12524}));
    EXPECT_EQ(pixelAt(result, 5, 0), (Pixel{0, 0, 0, 0}));
}

TEST(GaussianBlur, TouchesNothingBeyondTheRadius)
{
    for (const int radius : {1, 2, 5, 20, 33}) {
        Image source(101, 101);
        setPixel(source, 50, 50, {65535, 65535, 65535, 65535});
        const Image result = blurred(source, float(radius), float(radius), GaussianEdge::Blank);
        for (int i = 0; i < 101; ++i)
            if (std::abs(i - 50) > radius) {
                EXPECT_EQ(pixelAt(result, unsigned(i), 50), (Pixel{0, 0, 0, 0}));
                EXPECT_EQ(pixelAt(result, 50, unsigned(i)), (Pixel{0, 0, 0, 0}));
            }
        EXPECT_GT(pixelAt(result, 51, 50)[0], 0);
        EXPECT_GT(pixelAt(result, 50, 51)[0], 0);
    }
}

TEST(GaussianBlur, SamplesAreRoundedBetweenTheDirections)
{
    // Across, 0.62 rounds to 1, and again downward. The product 0.38 alone would round to 0.
    Image source(5, 5);
    setPixel(source, 2, 2, {1, 0, 0, 1});
    const Image result = blurred(source, 1.0f, 1.0f, GaussianEdge::Clamp);
    EXPECT_EQ(pixelAt(result, 2, 2), (Pixel{1, 0, 0, 1}));
    EXPECT_EQ(pixelAt(result, 1, 2), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(pixelAt(result, 2, 1), (Pixel{0, 0, 0, 0}));
}

TEST(GaussianBlur, AlphaIsBlurredLikeAColourAndDoesNotWeightThem)
{
    Image source(3, 1);
    setPixel(source, 1, 0, {50000, 0, 0, 0}); // transparent red
    const Image result = blurred(source, 1.0f, -1.0f, GaussianEdge::Clamp);
    EXPECT_EQ(pixelAt(result, 0, 0), (Pixel{9555, 0, 0, 0}));
    EXPECT_EQ(pixelAt(result, 1, 0), (Pixel{30890, 0, 0, 0}));
}

TEST(GaussianBlur, UniformImagesStayAsTheyAreForWholeRadii)
{
    for (const std::uint16_t value : std::initializer_list<std::uint16_t>{0, 1, 32768, 65534, 65535})
        for (const float radius : {1.0f, 2.0f, 3.0f, 7.0f, 30.0f, 100.0f})
            for (const GaussianEdge edge : {GaussianEdge::Clamp, GaussianEdge::Repeat})
                EXPECT_TRUE(samePixels(blurred(uniform(40, 23, value), radius, radius, edge), uniform(40, 23, value)))
                    << value << ", radius " << radius;
}

TEST(GaussianBlur, UniformImagesGetBrighterByFractionalRadii)
{
    const std::pair<float, std::uint16_t> brighter[] = {
        {0.25f, 33385}, {0.5f, 33293}, {1.5f, 33053}, {2.7f, 32888}, {3.0f, 32768}};
    for (const auto& [radius, value] : brighter)
        for (const GaussianEdge edge : {GaussianEdge::Clamp, GaussianEdge::Repeat})
            EXPECT_TRUE(samePixels(blurred(uniform(40, 23, 32768), radius, radius, edge), uniform(40, 23, value)))
                << radius;
    EXPECT_TRUE(samePixels(blurred(uniform(9, 9, 65500), 0.25f, 0.25f, GaussianEdge::Clamp), uniform(9, 9, 65535)));
}

TEST(GaussianBlur, BlankEdgesLoseColourAndAlpha)
{
    // The share of the weights that lies inside: 0.8089011 at an edge, its square in a corner.
    const Image result = blurred(uniform(9, 9, 65535), 1.0f, 1.0f, GaussianEdge::Blank);
    EXPECT_EQ(pixelAt(result, 4, 4), (Pixel{65535, 65535, 65535, 65535}));
    EXPECT_EQ(pixelAt(result, 0, 4), (Pixel{53011, 53011, 53011, 53011}));
    EXPECT_EQ(pixelAt(result, 4, 8), (Pixel{53011, 53011, 53011, 53011}));
    EXPECT_EQ(pixelAt(result, 8, 8), (Pixel{42881, 42881, 42881, 42881}));
}

TEST(GaussianBlur, EveryEdgeIsThePictureExtendedThatWay)
{
    const Image source = randomImage(13, 9, 5);
    for (const auto& [rx, ry] : {std::pair(1.0f, 4.0f), std::pair(6.5f, 2.0f), std::pair(20.0f, 30.0f)}) {
        const unsigned int margin = 40;
        const auto inner = [&, rx = rx, ry = ry](const Image& canvas) {
            return middleOf(blurred(canvas, rx, ry, GaussianEdge::Blank), margin);
        };
        EXPECT_TRUE(samePixels(blurred(source, rx, ry, GaussianEdge::Clamp),
                               inner(extended(source, margin, GetPixelRGBAClamp))));
        EXPECT_TRUE(samePixels(blurred(source, rx, ry, GaussianEdge::Blank),
                               inner(extended(source, margin, GetPixelRGBABlank))));
        EXPECT_TRUE(samePixels(blurred(source, rx, ry, GaussianEdge::Repeat),
                               inner(extended(source, margin, GetPixelRGBARepeat))));
    }
}

TEST(GaussianBlur, RepetitionReachesAnyNumberOfTiles)
{
    for (const auto& [w, h] : {std::pair(1u, 1u), std::pair(2u, 3u), std::pair(3u, 1u), std::pair(7u, 2u)})
        for (const float radius : {2.0f, 9.0f, 50.0f, 333.3f})
            expectAsTheReference(randomImage(w, h, w + h), radius, radius, GaussianEdge::Repeat);
}

TEST(GaussianBlur, AnAskedStopGivesAnEmptyImageButForRadiiZero)
{
    const int stop = 1;
    const Image source = withMetadata(9, 5);
    for (const GaussianEdge edge : kEdges)
        for (const auto& [rx, ry] : {std::pair(1.0f, 2.0f), std::pair(0.0f, 2.0f), std::pair(-1.0f, -1.0f)}) {
            for (const Image& result : {GaussianBlur_CPU(source, rx, ry, edge, Ondrel::RunStatus{&stop}),
                                        GaussianBlur(source, rx, ry, edge, Ondrel::RunStatus{&stop})}) {
                EXPECT_EQ(result.width, 0u);
                EXPECT_EQ(result.height, 0u);
                EXPECT_EQ(result.data, nullptr);
                expectMetadataOf(Image(), result);
            }
        }
    const Image copy = GaussianBlur_CPU(source, 0, 0, GaussianEdge::Clamp, Ondrel::RunStatus{&stop});
    EXPECT_TRUE(samePixels(copy, source));
    expectMetadataOf(source, copy);
}

TEST(GaussianBlur, OtherWordsOfTheStatusGoOn)
{
    const Image source = randomImage(9, 5, 2);
    const Image expected = blurred(source, 1, 2, GaussianEdge::Clamp);
    for (const int word : {0, 2, -1, 0x01000000}) {
        const Image result = GaussianBlur_CPU(source, 1, 2, GaussianEdge::Clamp, Ondrel::RunStatus{&word});
        EXPECT_TRUE(samePixels(result, expected)) << word;
    }
}

TEST(GaussianBlur, ImagesWithoutPixelsGiveImagesWithoutPixels)
{
    for (const GaussianEdge edge : kEdges)
        for (const Image& source : {Image(), Image(0, 5), Image(5, 0)})
            for (const float radius : {0.0f, 0.5f, 3.0f, 1000.0f}) {
                const Image result = blurred(source, radius, radius, edge);
                EXPECT_EQ(result.width * result.height, 0u);
                EXPECT_EQ(result.data, nullptr);
            }
}

TEST(GaussianBlur, LeavesItsSourceAlone)
{
    const Image source = withMetadata(33, 21), before = source;
    blurred(source, 3, 4, GaussianEdge::Clamp);
    EXPECT_TRUE(samePixels(source, before));
    expectMetadataOf(before, source);
}

TEST(GaussianBlur, IsTheSameAsOnTheProcessor)
{
    const Image source = randomImage(40, 30, 6);
    for (const GaussianEdge edge : kEdges)
        EXPECT_TRUE(samePixels(GaussianBlur(source, 2.5f, 7.0f, edge, kNoStatus), blurred(source, 2.5f, 7.0f, edge)));
}

TEST(GaussianBlur, RadiiThatAreNotNumbersAreHarmless)
{
    const Image source = randomImage(3, 2, 2);
    for (const GaussianEdge edge : kEdges)
        for (const float radius : {kNaN, kInfinity, -kInfinity, 3e38f, 1e9f})
            for (const auto& [rx, ry] : {std::pair(radius, 1.0f), std::pair(1.0f, radius)}) {
                const Image result = blurred(source, rx, ry, edge);
                EXPECT_EQ(result.width, 3u);
                EXPECT_EQ(result.height, 2u);
            }
}

TEST(GaussianBlur, AnEdgeThatIsNoneHasAnOutcome)
{
    const Image source = randomImage(6, 5, 2);
    const Image result = blurred(source, 2, 2, static_cast<GaussianEdge>(77));
    EXPECT_EQ(result.width, 6u);
    EXPECT_EQ(result.height, 5u);
}

TEST(GaussianBlur, AnImageWhoseBlockIsTooSmallIsNotReadBeyondIt)
{
    Image source = randomImage(8, 8, 2);
    source.width = 4000;
    source.height = 500;
    for (const GaussianEdge edge : kEdges) {
        const Image result = blurred(source, 2, 2, edge);
        EXPECT_LE(std::uint64_t(result.width) * result.height * 8, result.sizeBytes);
    }
}

// The fast forms against the literal one, bit by bit.

TEST(GaussianBlurReference, SmallSizesAndEveryEdge)
{
    for (const GaussianEdge edge : kEdges)
        for (unsigned int w = 1; w <= 9; ++w)
            for (unsigned int h = 1; h <= 9; ++h)
                for (const float radius : {0.5f, 1.0f, 3.0f, 11.0f})
                    expectAsTheReference(randomImage(w, h, w * 16 + h), radius, radius * 0.75f, edge);
}

TEST(GaussianBlurReference, RandomSizesAndRadii)
{
    std::mt19937 random(42);
    const auto size = [&random] { return 1 + unsigned(std::exp2(double(random() % 6500) / 1000.0)); };
    const auto radius = [&random] {
        const float values[] = {
            0.0f, -0.25f, -0.999f, float(random() % 30), float(random() % 3000) * 0.01f, float(random() % 1200) * 0.1f};
        return values[random() % 6];
    };
    for (int i = 0; i < 60; ++i) {
        const unsigned int w = size(), h = size();
        const Image source = i % 3 ? randomImage(w, h, unsigned(i)) : shrunkImage(w, h, unsigned(i));
        expectAsTheReference(source, radius(), radius(), kEdges[i % 3]);
    }
}

TEST(GaussianBlurReference, KernelsOfEveryLength)
{
    const Image wide = randomImage(200, 3, 1), tall = randomImage(3, 150, 2);
    for (int radius = 0; radius < 130; radius += radius < 40 ? 1 : 13) {
        expectAsTheReference(wide, float(radius), -1.0f, kEdges[radius % 3]);
        expectAsTheReference(tall, -1.0f, float(radius) + 0.5f, kEdges[radius % 3]);
    }
}

TEST(GaussianBlurReference, PicturesOfSizeWithLongKernels)
{
    const Image source = randomImage(201, 133, 77);
    expectAsTheReference(source, 6.0f, 6.0f, GaussianEdge::Clamp);
    expectAsTheReference(source, 30.0f, 30.0f, GaussianEdge::Blank);
    expectAsTheReference(source, 100.0f, 100.0f, GaussianEdge::Repeat);
    expectAsTheReference(source, 333.0f, 250.5f, GaussianEdge::Clamp);
}

// Pictures whose sums lie on whole numbers or half way between two, where a fast sum is easily rounded the wrong way.
TEST(GaussianBlurReference, FlatFieldsStepsChequersAndRamps)
{
    Image flat = uniform(150, 40, 12345), steps(150, 40), chequers(150, 40), ramp(150, 40), dots(150, 40);
    for (unsigned int y = 0; y < 40; ++y)
        for (unsigned int x = 0; x < 150; ++x) {
            const auto step = std::uint16_t(x < 75 ? 1 : 2), chequer = std::uint16_t((x + y) % 2 ? 65535 : 0);
            setPixel(steps, x, y, {step, std::uint16_t(step + 65533), std::uint16_t(y < 20 ? 0 : 1), 65535});
            setPixel(chequers, x, y, {chequer, std::uint16_t(65535 - chequer), std::uint16_t(chequer & 1), 65535});
            setPixel(ramp, x, y, {std::uint16_t(x), std::uint16_t(2 * x + y), std::uint16_t(x * 430), 65535});
            setPixel(dots, x, y, {std::uint16_t(x == 75), 0, std::uint16_t(x % 50 == 0 && y % 20 == 0 ? 3 : 0), 1});
        }
    for (const Image* const picture : {&flat, &steps, &chequers, &ramp, &dots})
        for (const float radius : {0.5f, 1.0f, 2.5f, 6.0f, 30.0f, 100.0f})
            for (const GaussianEdge edge : kEdges)
                expectAsTheReference(*picture, radius, radius, edge);
}

// Every product of a weight and a sample, by the part behind the point.
struct Product {
    double fraction;
    std::uint16_t sample;
};

std::vector<Product> sortedProducts(double weight)
{
    std::vector<Product> products;
    for (unsigned int sample = 0; sample < 65536; ++sample)
        products.push_back({double(std::fmod(static_cast<long double>(weight) * sample, 1.0L)), std::uint16_t(sample)});
    std::sort(products.begin(), products.end(),
              [](const Product& a, const Product& b) { return a.fraction < b.fraction; });
    return products;
}

// The product of each list whose fractions add up to nearly `sum`, which is below 2; how near is returned.
double nearestPair(const std::vector<Product>& a, const std::vector<Product>& b, double sum, std::uint16_t* samples)
{
    double nearest = 2.0;
    std::size_t i = 0, j = b.size();
    while (i < a.size() && j > 0) {
        const double off = a[i].fraction + b[j - 1].fraction - sum;
        if (std::fabs(off) < nearest) {
            nearest = std::fabs(off);
            samples[0] = a[i].sample;
            samples[1] = b[j - 1].sample;
        }
        if (off < 0)
            ++i;
        else
            --j;
    }
    return nearest;
}

long double weightedSum(const std::vector<double>& weights, const std::vector<std::uint16_t>& samples)
{
    long double sum = 0;
    for (std::size_t i = 0; i < weights.size(); ++i)
        sum += static_cast<long double>(weights[i]) * samples[i];
    return sum;
}

// One sample for each tap, chosen at random but for three, so that their sum lies half way between two whole numbers
// but for a few units in the last place of a double.
std::vector<std::uint16_t> samplesOnATie(const std::vector<double>& weights, std::mt19937& random)
{
    const std::size_t n = weights.size() / 2, first = n - n / 2, second = n + n / 2 + 1, third = n - n / 3;
    const std::vector<Product> a = sortedProducts(weights[first]), b = sortedProducts(weights[second]);
    std::vector<std::uint16_t> samples(weights.size());
    for (std::uint16_t& sample : samples)
        sample = std::uint16_t(random());
    samples[first] = samples[second] = 0;
    double nearest = 2.0;
    std::vector<std::uint16_t> best = samples;
    for (int i = 0; i < 40; ++i) {
        samples[third] = std::uint16_t(random());
        const long double rest = 1.5L - std::fmod(weightedSum(weights, samples), 1.0L); // 0.5 to 1.5
        std::uint16_t pair[2] = {};
        const double off = nearestPair(a, b, double(rest), pair);
        if (off < nearest) {
            nearest = off;
            best = samples;
            best[first] = pair[0];
            best[second] = pair[1];
        }
    }
    return best;
}

TEST(GaussianBlurReference, SumsOnATieAreThoseInTheOrderOfTheTaps)
{
    std::mt19937 random(17);
    for (const float radius : {6.0f, 30.0f, 60.0f, 100.0f}) {
        const std::vector<double> weights = OndrelReference::gaussianWeights(radius + 1.0f);
        const auto taps = unsigned(weights.size());
        Image across(taps, 3), down(3, taps);
        for (unsigned int line = 0; line < 3; ++line)
            for (std::size_t c = 0; c < 4; ++c) {
                const std::vector<std::uint16_t> samples = samplesOnATie(weights, random);
                const double fraction = double(std::fmod(weightedSum(weights, samples), 1.0L));
                ASSERT_NEAR(fraction, 0.5, 1e-10);
                for (unsigned int i = 0; i < taps; ++i) {
                    across.data[(std::size_t(line) * taps + i) * 4 + c] = samples[i];
                    down.data[(std::size_t(i) * 3 + line) * 4 + c] = samples[i];
                }
            }
        expectAsTheReference(across, radius, -1.0f, GaussianEdge::Clamp);
        expectAsTheReference(down, -1.0f, radius, GaussianEdge::Clamp);
    }
}

TEST(GaussianBlurReference, EveryAlpha)
{
    for (const std::uint16_t alpha : std::initializer_list<std::uint16_t>{0, 1, 32768, 65535}) {
        Image source = randomImage(61, 47, alpha);
        for (unsigned int i = 0; i < 61 * 47; ++i)
            source.data[i * 4 + 3] = alpha;
        for (const float radius : {1.0f, 12.0f, 40.0f})
            expectAsTheReference(source, radius, radius, GaussianEdge::Clamp);
    }
}

TEST(GaussianBlurReference, RadiiBeyondThePicture)
{
    for (const GaussianEdge edge : kEdges) {
        expectAsTheReference(randomImage(5, 4, 1), 2000.0f, 2000.0f, edge);
        expectAsTheReference(randomImage(3, 2, 2), 30000.0f, 12345.5f, edge);
    }
}

TEST(GaussianBlurReference, EveryRowEngine)
{
    const Image source = randomImage(71, 133, 9);
    OndrelTest::forEveryRowEngine([&] {
        for (const float radius : {1.0f, 9.5f, 64.0f})
            expectAsTheReference(source, radius, radius, GaussianEdge::Clamp);
    });
}

TEST(GaussianBlurReference, ManyCallersAtOnce)
{
    const Image source = randomImage(60, 50, 4);
    const Image expected = OndrelReference::gaussianBlur(source, 20.0f, 3.0f, Outside::NearestEdgePixel);
    std::vector<std::thread> threads;
    std::vector<int> right(4, 0);
    for (std::size_t t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 5; ++i)
                right[t] += samePixels(blurred(source, 20.0f, 3.0f, GaussianEdge::Clamp), expected);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(right, (std::vector<int>{5, 5, 5, 5}));
}

} // namespace
