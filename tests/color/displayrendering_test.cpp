#include "tests/support/testprofiles.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/color/colortransformer_p.h>
#include <ondrel/core/parallel_p.h>

#include <lcms2.h>
#include <lcms2_plugin.h>

#include <QSettings>

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::Image;

// All levels that this processor has.
std::vector<SIMDCompatibility> levels()
{
    std::vector<SIMDCompatibility> list;
    for (unsigned int level = SIMD_None; level <= CheckSIMDCompatibility(); ++level)
        list.push_back(static_cast<SIMDCompatibility>(level));
    return list;
}

// The packing by its formula, one pixel at a time. std::nearbyint rounds ties to even.
QImage packed(const Image& image)
{
    QImage out(int(image.width), int(image.height), QImage::Format_ARGB32_Premultiplied);
    const float scale = 1.5259022e-5f;
    for (unsigned int y = 0; y < image.height; ++y)
        for (unsigned int x = 0; x < image.width; ++x) {
            const Pixel p = pixelAt(image, x, y);
            const float a = float(p[3]) * scale;
            unsigned char* const bytes = out.scanLine(int(y)) + x * 4;
            for (unsigned int c = 0; c < 3; ++c)
                bytes[2 - c] =
                    static_cast<unsigned char>(std::min(255.0f, std::nearbyint(float(p[c]) * scale * a * 255.0f)));
            bytes[3] = static_cast<unsigned char>(std::min(255.0f, std::nearbyint(a * 1.0f * 255.0f)));
        }
    return out;
}

bool sameBytes(const QImage& a, const QImage& b)
{
    if (a.size() != b.size() || a.format() != b.format())
        return false;
    for (int y = 0; y < a.height(); ++y)
        if (std::memcmp(a.constScanLine(y), b.constScanLine(y), std::size_t(a.width()) * 4) != 0)
            return false;
    return true;
}

QImage render(const Image& image, SIMDCompatibility level, bool unmanaged = true)
{
    return ColorTransformerPrivate::get()->toQImage(image, unmanaged, level);
}

class DisplaySettings : public testing::Test
{
protected:
    void SetUp() override { ColorManager::get(); }
    void TearDown() override
    {
        QSettings().remove("settings/colormanagement");
        ColorManager::reload();
    }
};

TEST(DisplayPacking, IsTheFormulaAtEveryLevelAndCount)
{
    for (const unsigned int count :
         {0u, 1u, 2u, 3u, 4u, 5u, 7u, 8u, 9u, 11u, 12u, 13u, 14u, 15u, 16u, 17u, 100u, 1001u}) {
        const Image image = randomImage(count, 1, count);
        const QImage expected = packed(image);
        for (const SIMDCompatibility level : levels())
            EXPECT_TRUE(sameBytes(render(image, level), expected)) << count << " level " << level;
    }
}

TEST(DisplayPacking, IsTheFormulaForWholePictures)
{
    for (const auto& [w, h] : {std::pair(31u, 57u), std::pair(1u, 999u), std::pair(640u, 480u)}) {
        const Image image = w == 31 ? shrunkImage(w, h, 3) : randomImage(w, h, w);
        const QImage expected = packed(image);
        for (const SIMDCompatibility level : levels())
            EXPECT_TRUE(sameBytes(render(image, level), expected));
    }
}

TEST(DisplayPacking, EveryOpaqueValueAndEveryAlphaOfWhite)
{
    Image image(256, 512);
    for (unsigned int v = 0; v < 65536; ++v) {
        setPixel(image, v % 256, v / 256,
                 {std::uint16_t(v), std::uint16_t(65535 - v), std::uint16_t(v ^ 0x5555), 65535});
        setPixel(image, v % 256, 256 + v / 256, {65535, std::uint16_t(v), 40000, std::uint16_t(v)});
    }
    const QImage expected = packed(image);
    for (const SIMDCompatibility level : levels())
        EXPECT_TRUE(sameBytes(render(image, level), expected));
    EXPECT_EQ(expected.pixel(0, 0), 0xFF00FF55u); // red 0, green full, blue 0x5555
}

TEST(DisplayPacking, TransparentPixelsAreTransparentBlack)
{
    Image image(20, 1);
    image.Fill(65535, 40000, 1, 0);
    for (const SIMDCompatibility level : levels())
        for (int x = 0; x < 20; ++x)
            EXPECT_EQ(render(image, level).pixel(x, 0), 0u);
}

TEST(DisplayPacking, OpaqueColoursRound)
{
    Image image(12, 1);
    image.Fill(65535, 32768, 129, 65535);
    for (const SIMDCompatibility level : levels())
        EXPECT_EQ(render(image, level).pixel(5, 0), qRgb(255, 128, 1)); // 127.502, 0.502
}

TEST(DisplayPacking, GivesPremultipliedImagesAndNullForNothing)
{
    EXPECT_EQ(render(Image(3, 2), SIMD_SSE3).format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_TRUE(render(Image(), SIMD_SSE3).isNull());
    EXPECT_TRUE(render(Image(0, 4), SIMD_SSE3).isNull());
}

// Through Little CMS alone and then packed.
QImage expectedOnDisplay(const Image& image, void* from, void* display, unsigned int intent)
{
    Image out = image;
    void* const transform = cmsCreateTransform(from, TYPE_RGBA_16, display, TYPE_RGBA_16, intent, 0);
    cmsDoTransform(transform, image.data, out.data, image.width * image.height);
    cmsDeleteTransform(transform);
    return packed(out);
}

TEST_F(DisplaySettings, ManagedImagesGoThroughTheDisplayProfileAndKeepAlpha)
{
    const Profile wide = reopened(Profile(Ondrel::CreateProPhotoRGBColorProfile())),
                  display = reopened(Profile(Ondrel::Create_sRGBColorProfile()));
    Image image = randomImage(43, 601, 1);
    image.colorProfile = ColorManager::buildColorProfileHash(wide.get());
    const Image before = image;
    const QImage expected = expectedOnDisplay(image, wide.get(), display.get(), 0);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(sameBytes(Ondrel::ColorTransformer::toQImage(image, false), expected));
    EXPECT_TRUE(samePixels(image, before));
    EXPECT_TRUE(sameBytes(Ondrel::ColorTransformer::toQImage(image, true), packed(image)));
}

TEST_F(DisplaySettings, AnUnknownSourceCountsAsSRGB)
{
    const Profile display = reopened(rgbProfile(2.6, "Wide display"));
    Hash displayHash{};
    ASSERT_TRUE(
        ColorManager::addColorProfile(savedBytes(display.get()), ColorManager::ColorProfile::System, &displayHash));
    QSettings().setValue("settings/colormanagement/displayprofile", toByteArray(displayHash));
    QSettings().setValue("settings/colormanagement/displayrenderingintent", "Relative Colorimetric");
    ColorManager::reload();
    Image image = randomImage(43, 61, 1);
    image.colorProfile = wordHash("unknown");
    const Profile sRGB(Ondrel::Create_sRGBColorProfile());
    EXPECT_TRUE(sameBytes(Ondrel::ColorTransformer::toQImage(image, false),
                          expectedOnDisplay(image, sRGB.get(), display.get(), 1)));
    ColorManager::removeColorProfile(displayHash, ColorManager::ColorProfile::System);
}

TEST_F(DisplaySettings, OffShowsPixelsUnconverted)
{
    QSettings().setValue("settings/colormanagement/colormanagement", "Disabled");
    ColorManager::reload();
    Image image = randomImage(20, 20, 1);
    image.colorProfile = ColorManager::buildColorProfileHash(Profile(Ondrel::CreateProPhotoRGBColorProfile()).get());
    EXPECT_TRUE(sameBytes(Ondrel::ColorTransformer::toQImage(image, false), packed(image)));
}

TEST_F(DisplaySettings, ABrokenDisplayProfileTurnsManagementOff)
{
    ColorTransformerPrivate::get()->setOutputSettings(true, Bytes(100, 3), 0);
    Image image = randomImage(20, 20, 1);
    image.colorProfile = ColorManager::buildColorProfileHash(Profile(Ondrel::CreateProPhotoRGBColorProfile()).get());
    EXPECT_TRUE(sameBytes(Ondrel::ColorTransformer::toQImage(image, false), packed(image)));
}

TEST_F(DisplaySettings, ANewDisplayProfileDropsTheCachedTransforms)
{
    const Profile wide = reopened(Profile(Ondrel::CreateProPhotoRGBColorProfile()));
    const Profile second = reopened(rgbProfile(1.4, "Second"));
    Image image = randomImage(30, 30, 1);
    image.colorProfile = ColorManager::buildColorProfileHash(wide.get());
    Ondrel::ColorTransformer::toQImage(image, false);
    ColorTransformerPrivate::get()->setOutputSettings(true, savedBytes(second.get()), 3);
    EXPECT_TRUE(sameBytes(Ondrel::ColorTransformer::toQImage(image, false),
                          expectedOnDisplay(image, wide.get(), second.get(), 3)));
}

TEST_F(DisplaySettings, AProfileThatFitsNoRgbTransformShowsPixelsUnconverted)
{
    Image image = randomImage(9, 9, 1);
    ASSERT_TRUE(ColorManager::addColorProfile(savedBytes(cmykProfile().get()), ColorManager::ColorProfile::Embedded,
                                              &image.colorProfile));
    EXPECT_TRUE(sameBytes(Ondrel::ColorTransformer::toQImage(image, false), packed(image)));
    ColorManager::removeColorProfile(image.colorProfile, ColorManager::ColorProfile::Embedded);
}

TEST_F(DisplaySettings, LabImagesAreShown)
{
    const Profile lab(Ondrel::CreateLabColorProfile());
    Image image(4, 4);
    image.Fill(65280, 32768, 32768, 65535);
    image.colorProfile = ColorManager::buildColorProfileHash(lab.get());
    const QRgb white = Ondrel::ColorTransformer::toQImage(image, false).pixel(1, 1);
    EXPECT_GE(qRed(white), 253);
    EXPECT_GE(qGreen(white), 253);
    EXPECT_GE(qBlue(white), 253);
}

TEST_F(DisplaySettings, AnIntentTakesEffectAtReload)
{
    const Profile paper = rgbProfile(1.8, "Paper");
    const cmsCIEXYZ white = {0.80, 0.83, 0.68}; // so that the absolute intent differs from the others
    cmsWriteTag(paper.get(), cmsSigMediaWhitePointTag, &white);
    const Profile source = reopened(paper), display = reopened(Profile(Ondrel::Create_sRGBColorProfile()));
    Image image = randomImage(20, 20, 1);
    ASSERT_TRUE(ColorManager::addColorProfile(savedBytes(source.get()), ColorManager::ColorProfile::Embedded,
                                              &image.colorProfile));
    const QImage perceptual = expectedOnDisplay(image, source.get(), display.get(), 0),
                 absolute = expectedOnDisplay(image, source.get(), display.get(), 3);
    ASSERT_FALSE(sameBytes(perceptual, absolute));
    QSettings().setValue("settings/colormanagement/displayrenderingintent", "Absolute Colorimetric");
    EXPECT_TRUE(sameBytes(Ondrel::ColorTransformer::toQImage(image, false), perceptual));
    ColorManager::reload();
    EXPECT_TRUE(sameBytes(Ondrel::ColorTransformer::toQImage(image, false), absolute));
    ColorManager::removeColorProfile(image.colorProfile, ColorManager::ColorProfile::Embedded);
}

// An intent of the tests' own, through which Little CMS tells when it links a transform.
constexpr unsigned int kCountedIntent = 200;
int linkedTransforms = 0;

cmsPipeline* countLink(cmsContext context, cmsUInt32Number count, cmsUInt32Number*, cmsHPROFILE* profiles, cmsBool* bpc,
                       cmsFloat64Number* states, cmsUInt32Number flags)
{
    ++linkedTransforms;
    std::vector<cmsUInt32Number> perceptual(count, INTENT_PERCEPTUAL);
    return _cmsDefaultICCintents(context, count, perceptual.data(), profiles, bpc, states, flags);
}

TEST_F(DisplaySettings, TransformsAreBuiltOnceForEachSourceAndThread)
{
    cmsPluginRenderingIntent plugin{};
    plugin.base = {cmsPluginMagicNumber, 2000, cmsPluginRenderingIntentSig, nullptr};
    plugin.Intent = kCountedIntent;
    plugin.Link = countLink;
    ASSERT_TRUE(cmsPlugin(&plugin));
    const Ondrel::ParallelEngine before = Ondrel::parallelEngine();
    Ondrel::setParallelEngine(Ondrel::ParallelEngine::Shuffled); // all rows on this thread
    const Bytes display = savedBytes(Profile(Ondrel::Create_sRGBColorProfile()).get());
    ColorTransformerPrivate::get()->setOutputSettings(true, display, kCountedIntent);

    Image wide = randomImage(8, 900, 1), linear = randomImage(8, 8, 2);
    wide.colorProfile = ColorManager::buildColorProfileHash(Profile(Ondrel::CreateProPhotoRGBColorProfile()).get());
    linear.colorProfile = ColorManager::buildColorProfileHash(Profile(Ondrel::CreateLinear_sRGBColorProfile()).get());
    const auto linkedBy = [](const Image& image) {
        linkedTransforms = 0;
        Ondrel::ColorTransformer::toQImage(image, false);
        return linkedTransforms;
    };
    EXPECT_EQ(linkedBy(wide), 1); // all tasks share it
    EXPECT_EQ(linkedBy(wide), 0);
    EXPECT_EQ(linkedBy(linear), 1);
    EXPECT_EQ(linkedBy(wide), 0);
    ColorTransformerPrivate::get()->setOutputSettings(true, display, kCountedIntent);
    EXPECT_EQ(linkedBy(wide), 1);

    // The intent stays: cmsUnregisterPlugins() would take away the locks of all profiles too.
    Ondrel::setParallelEngine(before);
}

// In a process of its own, in which nothing has asked for the registry yet.
bool isUnmanagedUntilTheRegistryIsBuilt()
{
    Image image = randomImage(20, 20, 1);
    image.colorProfile = ColorManager::buildColorProfileHash(Profile(Ondrel::CreateProPhotoRGBColorProfile()).get());
    const bool before = sameBytes(Ondrel::ColorTransformer::toQImage(image, false), packed(image));
    ColorManager::get();
    return before && !sameBytes(Ondrel::ColorTransformer::toQImage(image, false), packed(image));
}

TEST(DisplayRendering, IsUnmanagedUntilTheRegistryIsBuilt)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::_Exit(isUnmanagedUntilTheRegistryIsBuilt() ? 0 : 1), testing::ExitedWithCode(0), "");
}

} // namespace
