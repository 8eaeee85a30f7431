// The nodes that change pixels where they are: against the library and the literal forms of its kernels.

#include "essentials.h"

#include "../../pixel/opencldevice.h"
#include "../../reference/kernels_reference.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/color/softproof.h>
#include <ondrel/core/curves.h>
#include <ondrel/pixel/gaussianblur.h>
#include <ondrel/pixel/scale.h>

#include <QPointF>
#include <QSettings>

using namespace OndrelTest;
using Ondrel::Image;

namespace
{

// The result of a reference that writes into a buffer.
template <class Reference>
Image referenceOf(const Image& image, Reference reference)
{
    Image result(image.width, image.height);
    result.colorProfile = image.colorProfile;
    reference(image.data, result.data);
    return result;
}

std::vector<unsigned char> disc(int radius)
{
    std::vector<unsigned char> mask;
    for (int y = -radius; y <= radius; ++y) {
        for (int x = -radius; x <= radius; ++x)
            mask.push_back(x * x + y * y <= radius * (radius + 1) ? 1 : 0);
    }
    return mask;
}

// Random samples of which about half are 65535, so that windows have as many others as precede their middle.
Image halfFull(unsigned int width, unsigned int height)
{
    Image image = picture(width, height, 9);
    for (std::size_t i = 0; i < std::size_t(width) * height * 4; ++i)
        image.data[i] = image.data[i] & 1 ? std::uint16_t(65535) : image.data[i];
    return image;
}

QString text(int number)
{
    return QString::number(number);
}

TEST(EssentialsBlur, IsThatOfTheLibrary)
{
    const Image image = picture(33, 21);
    Image expected = GaussianBlur(image, 3.5f, 1, GaussianEdge::Repeat, {});
    expected.colorProfile = image.colorProfile;
    const QVariantMap values = {{"radiusx", "3.5"}, {"radiusy", "1"}, {"edge", "Repeated"}};
    EXPECT_TRUE(same(expected, imageOf(evaluate("gaussianblur", inputOf(image), values))));
    EXPECT_TRUE(same(image, imageOf(evaluate("gaussianblur", inputOf(image), {{"radiusx", "0"}, {"radiusy", "0"}}))));
}

TEST(EssentialsBlur, APreviewLooksLikeTheWholePicture)
{
    const Image image = smoothPicture(400, 300), small = Scale(image, 100, 75, Ondrel::FilterMethod::Bilinear);
    const QVariantMap values = {{"radiusx", "20"}, {"radiusy", "20"}};
    const Image full = imageOf(evaluate("gaussianblur", inputOf(image), values));
    const Image preview = imageOf(evaluate("gaussianblur", inputOf(small, QSize(400, 300)), values, 0.25));
    EXPECT_LT(meanDifference(Scale(full, 100, 75, Ondrel::FilterMethod::Bilinear), preview), 150);
}

TEST(EssentialsUnsharpMask, AddsWhatABlurTakesAway)
{
    const Image image = picture(33, 21);
    const Image blurred = GaussianBlur(image, 2, 2, GaussianEdge::Clamp, {});
    const Image expected = referenceOf(image, [&](const auto* in, auto* out) {
        OndrelReference::unsharpMask(1.5f, 3 * 257, 33 * 21, in, blurred.data, out);
    });
    const QVariantMap values = {{"radius", "2"}, {"amount", "150"}, {"threshold", "3"}};
    EXPECT_TRUE(same(expected, imageOf(evaluate("unsharpmask", inputOf(image), values))));
}

TEST(EssentialsMedian, IsThatOfTheKernelsForEveryRadius)
{
    for (const Image& image : {picture(25, 14), halfFull(25, 14), picture(1, 1), picture(3, 30)}) {
        for (int radius = 1; radius <= 10; ++radius) {
            const Image expected = referenceOf(image, [&](const auto* in, auto* out) {
                OndrelReference::median(radius, image.width, image.height, in, out);
            });
            EXPECT_TRUE(same(expected, imageOf(evaluate("median", inputOf(image), {{"radius", text(radius)}}))))
                << radius;
        }
    }
}

TEST(EssentialsErodeDilate, AreThoseOfTheKernelsForEveryRadius)
{
    const Image image = picture(25, 14);
    for (int radius = 1; radius <= 10; ++radius) {
        const auto mask = disc(radius);
        const Image eroded = referenceOf(
            image, [&](const auto* in, auto* out) { OndrelReference::erode(radius, 25, 14, in, out, mask.data()); });
        const Image closed = referenceOf(image, [&](const auto* in, auto* out) {
            const Image dilated = referenceOf(image, [&](const auto*, auto* between) {
                OndrelReference::dilate(radius, 25, 14, in, between, mask.data());
            });
            OndrelReference::erode(radius, 25, 14, dilated.data, out, mask.data());
        });
        const QVariantMap erode = {{"operation", "Erode"}, {"radius", text(radius)}};
        const QVariantMap close = {{"operation", "Close"}, {"radius", text(radius)}};
        EXPECT_TRUE(same(eroded, imageOf(evaluate("erodedilate", inputOf(image), erode)))) << radius;
        EXPECT_TRUE(same(closed, imageOf(evaluate("erodedilate", inputOf(image), close)))) << radius;
    }
}

TEST(EssentialsErodeDilate, ASquareTakesInItsCorners)
{
    const Image image = picture(25, 14);
    const std::vector<unsigned char> square(49, 1);
    const Image expected = referenceOf(
        image, [&](const auto* in, auto* out) { OndrelReference::dilate(3, 25, 14, in, out, square.data()); });
    const QVariantMap values = {{"operation", "Dilate"}, {"shape", "Square"}, {"radius", "3"}};
    EXPECT_TRUE(same(expected, imageOf(evaluate("erodedilate", inputOf(image), values))));
}

const QVariantMap kLevels = {{"gamma", "2"},     {"gain", "90"},      {"offset", "5"},      {"redblack", "10"},
                             {"redwhite", "85"}, {"redgamma", "0.5"}, {"greengain", "120"}, {"greenoffset", "-8"},
                             {"blueblack", "0"}, {"bluewhite", "50"}, {"blueoffset", "2.5"}};

OndrelReference::Levels referenceLevels()
{
    OndrelReference::Levels levels;
    levels.gamma = 0.5f;
    levels.gain = 0.9f;
    levels.offset = 0.05f;
    levels.black[0] = 0.1f;
    levels.inputGain[0] = 1 / (0.85f - 0.1f);
    levels.channelGamma[0] = 2;
    levels.channelGain[1] = 1.2f;
    levels.channelOffset[1] = -0.08f;
    levels.inputGain[2] = 2;
    levels.channelOffset[2] = 0.025f;
    return levels;
}

TEST(EssentialsLevels, AreThoseOfTheKernel)
{
    const Image image = picture(64, 48);
    const Image expected = referenceOf(
        image, [](const auto* in, auto* out) { OndrelReference::levels(referenceLevels(), 64 * 48, in, out); });
    EXPECT_TRUE(same(expected, imageOf(evaluate("levels", inputOf(image), kLevels))));
}

TEST(EssentialsLevels, NeutralOnesChangeNoSampleByMoreThanAStep)
{
    const Image image = picture(64, 48);
    EXPECT_TRUE(within(1, samplesOf(image), samplesOf(imageOf(evaluate("levels", inputOf(image), {})))));
}

// On a device the same pictures come out, within a step. Where there is no device there is nothing to compare.
TEST(EssentialsDevice, GivesThePicturesOfTheProcessor)
{
    const Image image = picture(70, 50);
    const std::vector<std::pair<QString, QVariantMap>> nodes = {
        {"median", {{"radius", "3"}}},
        {"erodedilate", {{"operation", "Open"}, {"radius", "4"}}},
        {"unsharpmask", {{"radius", "0.5"}, {"amount", "80"}}},
        {"levels", {{"gamma", "1.2"}, {"redblack", "5"}}}};
    std::vector<Image> expected;
    for (const auto& [file, values] : nodes)
        expected.push_back(imageOf(evaluate(file, inputOf(image), values)));
    ASSERT_TRUE(chooseDevice()) << kNoDevice;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const Image actual = imageOf(evaluate(nodes[i].first, inputOf(image), nodes[i].second));
        // A blur on a device is itself up to two steps away.
        const int bound = nodes[i].first == "unsharpmask" ? 3 : 1;
        EXPECT_TRUE(within(bound, samplesOf(expected[i]), samplesOf(actual))) << qPrintable(nodes[i].first);
    }
    PixelOpenCL::instance()->disable();
}

QVariantList curve(std::initializer_list<QPointF> points)
{
    QVariantList list;
    for (const QPointF& point : points)
        list.append(point);
    return list;
}

TEST(EssentialsCurves, AreThatOfAllColorsAndThenThoseOfEach)
{
    const Image image = picture(30, 20);
    const QVariantList all = curve({{0, 0}, {20000, 40000}, {65535, 65535}});
    const QVariantList red = curve({{0, 65535}, {65535, 0}}), straight = curve({{0, 0}, {65535, 65535}});
    const std::vector<Ondrel::CubicBezierSpline::Point> bent = {{0, 0}, {20000, 40000}, {65535, 65535}},
                                                        falling = {{0, 65535}, {65535, 0}},
                                                        plain = {{0, 0}, {65535, 65535}};
    Image expected = CurvesRGB(CurvesRGB(image, bent, bent, bent), falling, plain, plain);
    expected.colorProfile = image.colorProfile;
    const QVariantList value = {QVariant(all), QVariant(red), QVariant(straight), QVariant(straight)};
    EXPECT_TRUE(same(expected, imageOf(evaluate("curves", inputOf(image), {{"curves", value}}))));
    EXPECT_TRUE(same(image, imageOf(evaluate("curves", inputOf(image), {}))));
}

TEST(EssentialsSplitChannels, MakesAGreyPictureOfEach)
{
    const Image image = picture(8, 5);
    const Host::Result result = evaluate("splitchannels", inputOf(image), {});
    const char* const outputs[] = {"red", "green", "blue", "alpha"};
    for (std::size_t c = 0; c < 4; ++c) {
        const Image grey = imageOf(result, outputs[c]);
        ASSERT_EQ(grey.width, 8u);
        for (unsigned int x = 0; x < 8; ++x) {
            const std::uint16_t v = pixelAt(image, x, 3)[c];
            EXPECT_EQ(pixelAt(grey, x, 3), (Pixel{v, v, v, 65535}));
        }
    }
}

QByteArray bytesOf(const std::array<unsigned char, 32>& hash)
{
    return QByteArray(reinterpret_cast<const char*>(hash.data()), int(hash.size()));
}

// A built-in profile that is not the default one.
QByteArray otherProfile()
{
    std::vector<std::pair<QString, std::array<unsigned char, 32>>> profiles;
    using Profile = Ondrel::ColorManager::ColorProfile;
    Ondrel::ColorManager::colorProfileNamesAndHashesSorted(profiles, {Profile::RGB}, {Profile::BuiltIn});
    for (const auto& [name, hash] : profiles) {
        if (hash != Ondrel::DefaultColorProfileHash)
            return bytesOf(hash);
    }
    return QByteArray();
}

TEST(EssentialsColourProfile, ConvertsWithTheIntent)
{
    const Image image = picture(20, 10);
    const QByteArray profile = otherProfile();
    ASSERT_EQ(profile.size(), 32);
    const Image expected = ConvertColorSpace(image, "Automatic", profile, 3);
    const QVariantMap values = {{"profile", profile}, {"intent", "Absolute Colorimetric"}};
    const Image actual = imageOf(evaluate("colourprofile", inputOf(image), values));
    EXPECT_TRUE(samePixels(expected, actual));
    EXPECT_EQ(bytesOf(actual.colorProfile), profile);
}

TEST(EssentialsColourProfile, SaysWhichProfileIsNotKnown)
{
    Image image = picture(4, 4);
    EXPECT_FALSE(evaluate("colourprofile", inputOf(image), {{"profile", QByteArray(32, 'x')}}).error.isEmpty());
    image.colorProfile.fill(7);
    EXPECT_FALSE(evaluate("colourprofile", inputOf(image), {}).error.isEmpty());
}

class EssentialsSoftProof : public testing::Test
{
protected:
    void TearDown() override
    {
        QSettings().remove("settings/colormanagement");
        Ondrel::ColorManager::reload();
    }
};

TEST_F(EssentialsSoftProof, IsThatOfTheLibraryAndNeedsColorManagement)
{
    const Image image = picture(20, 10);
    const QVariantMap values = {{"profile", otherProfile()}, {"intent", "Saturation"}, {"gamut", "Show"}};
    QSettings().setValue("settings/colormanagement/colormanagement", "Disabled");
    Ondrel::ColorManager::reload();
    EXPECT_FALSE(evaluate("softproof", inputOf(image), values).error.isEmpty());

    QSettings().remove("settings/colormanagement");
    QSettings().setValue("settings/colormanagement/displayprofile", bytesOf(Ondrel::DefaultColorProfileHash));
    Ondrel::ColorManager::reload();
    ASSERT_TRUE(Ondrel::ColorManager::isColorManagementEnabled());
    EXPECT_TRUE(samePixels(SoftProof(image, otherProfile(), 2, true, true),
                           imageOf(evaluate("softproof", inputOf(image), values))));
}

} // namespace
