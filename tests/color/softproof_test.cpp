#include <ondrel/color/softproof.h>

#include "tests/support/rowengines.h"
#include "tests/support/stress.h"
#include "tests/support/testimages.h"
#include "tests/support/testprofiles.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>

#include <lcms2.h>

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QSettings>

#include <algorithm>
#include <atomic>
#include <thread>
#include <utility>
#include <vector>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::Image;

constexpr unsigned int kLab16 = 0xA009A; // three 16-bit Lab channels and one extra
constexpr auto kEmbedded = ColorManager::ColorProfile::Embedded;

Hash hashOf(void* (*create)())
{
    return ColorManager::buildColorProfileHash(Profile(create()).get());
}

// What Little CMS makes of the pixels in one call; alpha as in the source.
struct Proofing {
    unsigned int displayIntent = 0, intent = 0;
    bool gamutCheck = false, blackPoint = false;
    unsigned int sourceFormat = TYPE_RGBA_16;

    Image operator()(const Image& image, void* source, void* display, void* proof) const
    {
        cmsContext const context = cmsCreateContext(nullptr, nullptr);
        const cmsUInt16Number alarm[cmsMAXCHANNELS] = {65535};
        cmsSetAlarmCodesTHR(context, alarm);
        const unsigned int flags = cmsFLAGS_SOFTPROOFING | (gamutCheck ? cmsFLAGS_GAMUTCHECK : 0u) |
                                   (blackPoint ? cmsFLAGS_BLACKPOINTCOMPENSATION : 0u);
        void* const transform = cmsCreateProofingTransformTHR(context, source, sourceFormat, display, TYPE_RGBA_16,
                                                              proof, displayIntent, intent, flags);
        Image out = image;
        cmsDoTransform(transform, image.data, out.data, image.width * image.height);
        cmsDeleteTransform(transform);
        cmsDeleteContext(context);
        for (unsigned int i = 0; i < image.width * image.height; ++i)
            out.data[i * 4 + 3] = image.data[i * 4 + 3];
        return out;
    }
};

Image blackFrame(unsigned int width, unsigned int height)
{
    Image image(width, height);
    image.Fill(0, 0, 0, 65535);
    return image;
}

// The notice as a painter draws it.
Image notice(unsigned int width, unsigned int height)
{
    const QPalette palette = QGuiApplication::palette();
    const int w = int(width), h = int(height);
    QImage image(w, h, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    QRadialGradient gradient(QPointF(w / 2, h / 2), h * 1.75, QPointF(w / 2, h / 2));
    gradient.setColorAt(0.0, palette.color(QPalette::Text));
    gradient.setColorAt(1.0, palette.color(QPalette::Window));
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRect(0, 0, w, h);
    painter.setPen(palette.color(QPalette::Window));
    QFont font = painter.font();
    font.setPixelSize(int(std::min(w * 0.2 / 9, h * 0.5)));
    painter.setFont(font);
    painter.drawText(
        QRect(QPoint(0, 0), QPoint(w - 1, h - 1)), Qt::AlignCenter,
        QStringLiteral("Soft Proof Unavailable\n\"Color Management\" must be enabled in File->Preferences"));
    painter.end();
    return Image(image);
}

class SoftProofing : public testing::Test
{
protected:
    void SetUp() override { ColorManager::get(); }

    void TearDown() override
    {
        for (const Hash& hash : m_registered)
            ColorManager::removeColorProfile(hash, kEmbedded);
        QSettings().remove("settings/colormanagement");
        ColorManager::reload();
    }

    // Registers the profile until the end of the test.
    Hash registered(const Profile& profile)
    {
        Hash hash{};
        EXPECT_TRUE(ColorManager::addColorProfile(savedBytes(profile.get()), kEmbedded, &hash));
        m_registered.push_back(hash);
        return hash;
    }

    static void setDisplay(const Hash& hash, const char* intent)
    {
        QSettings().setValue("settings/colormanagement/displayprofile", toByteArray(hash));
        QSettings().setValue("settings/colormanagement/displayrenderingintent", intent);
        ColorManager::reload();
    }

    static void turnOff()
    {
        QSettings().setValue("settings/colormanagement/colormanagement", "Disabled");
        ColorManager::reload();
    }

    static Image wideImage(unsigned int width, unsigned int height, unsigned int seed)
    {
        Image image = randomImage(width, height, seed);
        image.colorProfile = hashOf(Ondrel::CreateProPhotoRGBColorProfile);
        return image;
    }

private:
    std::vector<Hash> m_registered;
};

// An RGB profile on yellowish paper, so that the absolute intent differs from the others.
Profile paperProfile(double gamma)
{
    const Profile profile = rgbProfile(gamma, "Paper");
    const cmsCIEXYZ white = {0.80, 0.83, 0.68};
    cmsWriteTag(profile.get(), cmsSigMediaWhitePointTag, &white);
    return reopened(profile);
}

// A printer of four inks: black for lightness, the others for colour.
int toInks(const cmsUInt16Number in[], cmsUInt16Number out[], void*)
{
    out[0] = static_cast<cmsUInt16Number>(65535 - in[1]);
    out[1] = in[1];
    out[2] = in[2];
    out[3] = static_cast<cmsUInt16Number>(65535 - in[0]);
    return 1;
}

int fromInks(const cmsUInt16Number in[], cmsUInt16Number out[], void*)
{
    out[0] = static_cast<cmsUInt16Number>(65535 - in[3]);
    out[1] = static_cast<cmsUInt16Number>((in[1] + 65535 - in[0]) / 2);
    out[2] = in[2];
    return 1;
}

void writePrinterTable(void* profile, cmsTagSignature tag, unsigned int inputs, cmsSAMPLER16 sampler)
{
    const unsigned int outputs = 7 - inputs;
    cmsPipeline* const pipeline = cmsPipelineAlloc(nullptr, inputs, outputs);
    cmsStage* const table = cmsStageAllocCLut16bit(nullptr, 9, inputs, outputs, nullptr);
    cmsStageSampleCLut16bit(table, sampler, nullptr, 0);
    cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocToneCurves(nullptr, inputs, nullptr));
    cmsPipelineInsertStage(pipeline, cmsAT_END, table);
    cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocToneCurves(nullptr, outputs, nullptr));
    cmsWriteTag(profile, tag, pipeline);
    cmsPipelineFree(pipeline);
}

Profile printerProfile()
{
    Profile profile(cmsCreateProfilePlaceholder(nullptr));
    cmsSetProfileVersion(profile.get(), 4.3);
    cmsSetDeviceClass(profile.get(), cmsSigOutputClass);
    cmsSetColorSpace(profile.get(), cmsSigCmykData);
    cmsSetPCS(profile.get(), cmsSigLabData);
    cmsWriteTag(profile.get(), cmsSigMediaWhitePointTag, cmsD50_XYZ());
    for (const cmsTagSignature tag : {cmsSigAToB0Tag, cmsSigAToB1Tag, cmsSigAToB2Tag})
        writePrinterTable(profile.get(), tag, 4, fromInks);
    for (const cmsTagSignature tag : {cmsSigBToA0Tag, cmsSigBToA1Tag, cmsSigBToA2Tag})
        writePrinterTable(profile.get(), tag, 3, toInks);
    return reopened(profile);
}

TEST_F(SoftProofing, IsWhatLittleCmsGivesWithAlphaKept)
{
    const Profile source = reopened(Profile(Ondrel::CreateProPhotoRGBColorProfile())),
                  display = reopened(Profile(Ondrel::Create_sRGBColorProfile())), proof = paperProfile(1.8);
    const QByteArray proofHash = toByteArray(registered(proof));
    for (const unsigned int intent : {0u, 1u, 2u, 3u})
        for (const bool black : {false, true}) {
            const bool gamut = intent == 1 || black; // slow to build
            const Image image = wideImage(31, 27, intent);
            const Image result = SoftProof(image, proofHash, intent, gamut, black);
            const Image expected = Proofing{0, intent, gamut, black}(image, source.get(), display.get(), proof.get());
            EXPECT_TRUE(samePixels(result, expected)) << intent << gamut << black;
            EXPECT_EQ(result.colorProfile, Ondrel::DefaultColorProfileHash);
        }
}

TEST_F(SoftProofing, IsTheSameForEverySizeAndEngine)
{
    const Profile source = reopened(Profile(Ondrel::CreateProPhotoRGBColorProfile())),
                  display = reopened(Profile(Ondrel::Create_sRGBColorProfile())), proof = paperProfile(1.8);
    const QByteArray proofHash = toByteArray(registered(proof));
    const Proofing proofing{0, 1, false, true};
    for (const auto& [w, h] : {std::pair(1u, 1u), std::pair(300u, 7u), std::pair(7u, 300u), std::pair(5u, 255u),
                               std::pair(5u, 256u), std::pair(5u, 257u), std::pair(3u, 1100u)}) {
        const Image image = wideImage(w, h, w + h);
        const Image expected = proofing(image, source.get(), display.get(), proof.get());
        forEveryRowEngine(
            [&] { EXPECT_TRUE(samePixels(SoftProof(image, proofHash, 1, false, true), expected)) << image.height; });
    }
}

TEST_F(SoftProofing, TakesTheDisplayAndItsIntentFromTheSettings)
{
    const Profile source = reopened(Profile(Ondrel::CreateProPhotoRGBColorProfile())), display = paperProfile(2.6),
                  proof = paperProfile(1.8);
    const Hash displayHash = registered(display);
    const QByteArray proofHash = toByteArray(registered(proof));
    const Image image = wideImage(40, 40, 3);
    const char* const names[] = {"Perceptual", "Relative Colorimetric", "Saturation", "Absolute Colorimetric"};
    for (unsigned int displayIntent = 0; displayIntent < 4; ++displayIntent) {
        setDisplay(displayHash, names[displayIntent]);
        for (const unsigned int intent : {1u, 3u}) {
            const Image result = SoftProof(image, proofHash, intent, false, true);
            const Image expected =
                Proofing{displayIntent, intent, false, true}(image, source.get(), display.get(), proof.get());
            EXPECT_TRUE(samePixels(result, expected)) << displayIntent << ", " << intent;
            EXPECT_EQ(result.colorProfile, displayHash);
        }
    }
    // The two intents are not exchanged, nor is one taken for both.
    const auto made = [&](unsigned int first, unsigned int second) {
        return Proofing{first, second, false, true}(image, source.get(), display.get(), proof.get());
    };
    EXPECT_FALSE(samePixels(made(3, 1), made(1, 3)));
    EXPECT_FALSE(samePixels(made(3, 1), made(1, 1)));
}

TEST_F(SoftProofing, PrintersOfFourInksAreProofed)
{
    const Profile source = reopened(Profile(Ondrel::CreateProPhotoRGBColorProfile())),
                  display = reopened(Profile(Ondrel::Create_sRGBColorProfile())), printer = printerProfile();
    const QByteArray proof = toByteArray(registered(printer));
    const Image image = wideImage(23, 300, 8);
    const auto made = [&](bool gamut) {
        const Image result = SoftProof(image, proof, 1, gamut, false);
        EXPECT_TRUE(
            samePixels(result, Proofing{0, 1, gamut, false}(image, source.get(), display.get(), printer.get())));
        EXPECT_EQ(result.colorProfile, Ondrel::DefaultColorProfileHash);
        return result;
    };
    EXPECT_FALSE(samePixels(made(true), made(false)));
}

TEST_F(SoftProofing, BlackPointCompensationIsPassedOn)
{
    const Profile source = reopened(tableProfile(cmsSigRgbData)), // its black is a grey
        display = reopened(Profile(Ondrel::Create_sRGBColorProfile())), proof = paperProfile(1.8);
    const QByteArray proofHash = toByteArray(registered(proof));
    setDisplay(Ondrel::DefaultColorProfileHash, "Relative Colorimetric");
    Image image = randomImage(20, 20, 3);
    image.colorProfile = registered(source);
    const Image off = SoftProof(image, proofHash, 1, false, false), on = SoftProof(image, proofHash, 1, false, true);
    EXPECT_TRUE(samePixels(off, Proofing{1, 1, false, false}(image, source.get(), display.get(), proof.get())));
    EXPECT_TRUE(samePixels(on, Proofing{1, 1, false, true}(image, source.get(), display.get(), proof.get())));
    EXPECT_FALSE(samePixels(on, off));
}

TEST_F(SoftProofing, LabImagesAreReadAsLab)
{
    const Profile lab = reopened(Profile(Ondrel::CreateLabColorProfile())),
                  display = reopened(Profile(Ondrel::Create_sRGBColorProfile())), proof = paperProfile(1.8);
    Image image = randomImage(19, 300, 6);
    image.colorProfile = hashOf(Ondrel::CreateLabColorProfile);
    const Image result = SoftProof(image, toByteArray(registered(proof)), 1, true, false);
    EXPECT_TRUE(samePixels(result, Proofing{0, 1, true, false, kLab16}(image, lab.get(), display.get(), proof.get())));
}

TEST_F(SoftProofing, ColoursOutOfReachArePureRedWithTheSourcesAlpha)
{
    Image image(5, 1);
    setPixel(image, 0, 0, {0, 65535, 0, 65535}); // a green that no sRGB device has
    setPixel(image, 1, 0, {0, 65535, 0, 1234});
    setPixel(image, 2, 0, {30000, 30000, 30000, 65535});
    setPixel(image, 3, 0, {0, 65535, 0, 0});
    setPixel(image, 4, 0, {30000, 30000, 30000, 7});
    image.colorProfile = hashOf(Ondrel::CreateProPhotoRGBColorProfile);
    const QByteArray proof = toByteArray(hashOf(Ondrel::CreateLinear_sRGBColorProfile));
    const Image marked = SoftProof(image, proof, 1, true, false), plain = SoftProof(image, proof, 1, false, false);
    EXPECT_EQ(pixelAt(marked, 0, 0), (Pixel{65535, 0, 0, 65535}));
    EXPECT_EQ(pixelAt(marked, 1, 0), (Pixel{65535, 0, 0, 1234}));
    EXPECT_EQ(pixelAt(marked, 3, 0), (Pixel{65535, 0, 0, 0}));
    EXPECT_EQ(pixelAt(marked, 2, 0)[3], 65535);
    EXPECT_EQ(pixelAt(marked, 4, 0)[3], 7);
    EXPECT_NEAR(pixelAt(marked, 2, 0)[0], pixelAt(marked, 2, 0)[1], 200); // grey is reached
    EXPECT_NE(pixelAt(plain, 0, 0), (Pixel{65535, 0, 0, 65535}));
}

TEST_F(SoftProofing, AlphaIsThatOfTheSourceSampleBySample)
{
    const Image image = wideImage(64, 300, 9);
    const QByteArray proof = toByteArray(registered(paperProfile(1.8)));
    for (const bool gamut : {false, true}) {
        const Image result = SoftProof(image, proof, 0, gamut, false);
        for (unsigned int i = 0; i < 64 * 300; ++i)
            ASSERT_EQ(result.data[i * 4 + 3], image.data[i * 4 + 3]) << i;
    }
}

TEST_F(SoftProofing, LeavesTheSourceAndDropsTheRawDescription)
{
    Image image = wideImage(9, 9, 1);
    image.rawFilters = 5;
    image.rawHasInfo = true;
    const Image before = image;
    const Image result = SoftProof(image, toByteArray(registered(paperProfile(1.8))), 0, false, false);
    EXPECT_TRUE(samePixels(image, before));
    EXPECT_EQ(result.rawFilters, 0u);
    EXPECT_FALSE(result.rawHasInfo);
}

TEST_F(SoftProofing, AShrunkImageIsReadByItsNewSize)
{
    Image image = shrunkImage(17, 11, 4);
    image.colorProfile = hashOf(Ondrel::CreateProPhotoRGBColorProfile);
    Image compact = randomImage(17, 11, 4);
    compact.colorProfile = image.colorProfile;
    const QByteArray proof = toByteArray(registered(paperProfile(1.8)));
    EXPECT_TRUE(samePixels(SoftProof(image, proof, 0, false, false), SoftProof(compact, proof, 0, false, false)));
}

TEST_F(SoftProofing, LeavesTheAlarmColourOfOthersAlone)
{
    cmsUInt16Number before[cmsMAXCHANNELS], after[cmsMAXCHANNELS];
    cmsGetAlarmCodes(before);
    SoftProof(wideImage(9, 9, 1), toByteArray(registered(paperProfile(1.8))), 0, true, false);
    cmsGetAlarmCodes(after);
    EXPECT_TRUE(std::equal(std::begin(before), std::end(before), std::begin(after)));
    EXPECT_FALSE(before[0] == 65535 && before[1] == 0);
}

TEST_F(SoftProofing, AnUnknownDeviceGivesOpaqueBlackWithTheImagesHash)
{
    const Image image = wideImage(6, 3, 1);
    for (const bool managed : {true, false}) {
        if (!managed)
            turnOff();
        for (const QByteArray& proof : {QByteArray(32, 'u'), QByteArray(), QByteArray(32, '\0'), QByteArray("short")}) {
            const Image result = SoftProof(image, proof, 0, true, false);
            EXPECT_TRUE(samePixels(result, blackFrame(6, 3)));
            EXPECT_EQ(result.colorProfile, image.colorProfile);
        }
    }
}

TEST_F(SoftProofing, AnUnknownSourceGivesOpaqueBlackWithTheImagesHash)
{
    const QByteArray proof = toByteArray(hashOf(Ondrel::CreateLinear_sRGBColorProfile));
    for (const bool managed : {true, false}) {
        if (!managed)
            turnOff();
        for (const Hash& hash : {Hash{}, wordHash("unknown")}) {
            Image image = randomImage(6, 3, 1);
            image.colorProfile = hash;
            const Image result = SoftProof(image, proof, 0, false, false);
            EXPECT_TRUE(samePixels(result, blackFrame(6, 3)));
            EXPECT_EQ(result.colorProfile, hash);
        }
    }
}

TEST_F(SoftProofing, TheDevicesHashIsPaddedAndCut)
{
    const QByteArray proof = toByteArray(hashOf(Ondrel::CreateLinear_sRGBColorProfile));
    const Image image = wideImage(6, 6, 1);
    const Image expected = SoftProof(image, proof, 0, false, false);
    EXPECT_TRUE(samePixels(SoftProof(image, proof + "more", 0, false, false), expected));
    EXPECT_TRUE(samePixels(SoftProof(image, proof.left(31), 0, false, false), blackFrame(6, 6)));
}

TEST_F(SoftProofing, ProfilesThatFitNoTransformGiveOpaqueBlackWithTheImagesHash)
{
    const Hash link = registered(cmykProfile()), inputOnly = registered(reopened(tableProfile(cmsSigCmykData)));
    for (const Hash& proof : {link, inputOnly}) {
        const Image image = wideImage(6, 300, 1);
        const Image result = SoftProof(image, toByteArray(proof), 0, true, false);
        EXPECT_TRUE(samePixels(result, blackFrame(6, 300)));
        EXPECT_EQ(result.colorProfile, image.colorProfile);
    }
    for (const Hash& source : {link, inputOnly}) { // four channels do not fit pixels of three
        Image image = randomImage(6, 300, 1);
        image.colorProfile = source;
        const Image result =
            SoftProof(image, toByteArray(hashOf(Ondrel::CreateLinear_sRGBColorProfile)), 0, false, false);
        EXPECT_TRUE(samePixels(result, blackFrame(6, 300)));
        EXPECT_EQ(result.colorProfile, source);
    }
}

TEST_F(SoftProofing, AnIntentThatLittleCmsDoesNotKnowHasAnOutcome)
{
    const Image image = wideImage(6, 3, 1);
    const QByteArray proof = toByteArray(registered(paperProfile(1.8)));
    for (const unsigned int intent : {4u, 77u, 0xFFFFFFFFu}) {
        const Image result = SoftProof(image, proof, intent, true, true);
        EXPECT_EQ(result.width, 6u);
        EXPECT_EQ(result.height, 3u);
        for (unsigned int i = 0; i < 18; ++i)
            EXPECT_TRUE(result.data[i * 4 + 3] == 65535 || result.data[i * 4 + 3] == image.data[i * 4 + 3]);
    }
}

TEST_F(SoftProofing, WithoutPixelsTheHashTellsTheOutcome)
{
    const QByteArray proof = toByteArray(hashOf(Ondrel::CreateLinear_sRGBColorProfile));
    for (const auto& [w, h] : {std::pair(0u, 0u), std::pair(5u, 0u), std::pair(0u, 5u)}) {
        Image image(w, h);
        image.colorProfile = hashOf(Ondrel::CreateProPhotoRGBColorProfile);
        const Image result = SoftProof(image, proof, 0, true, true);
        EXPECT_EQ(result.width, w);
        EXPECT_EQ(result.height, h);
        EXPECT_EQ(result.data, nullptr);
        EXPECT_EQ(result.colorProfile, Ondrel::DefaultColorProfileHash); // that of the display
    }
}

TEST_F(SoftProofing, TheEmptyProofHasTheHashOfTheDisplayInUse)
{
    const Hash display = registered(paperProfile(2.6));
    setDisplay(display, "Perceptual");
    Image image(5, 0);
    image.colorProfile = hashOf(Ondrel::CreateProPhotoRGBColorProfile);
    const Image result = SoftProof(image, toByteArray(hashOf(Ondrel::CreateLinear_sRGBColorProfile)), 0, false, false);
    EXPECT_EQ(result.colorProfile, display);
}

class ProofNotice : public SoftProofing
{
protected:
    void SetUp() override
    {
        SoftProofing::SetUp();
        turnOff();
        QPalette palette;
        palette.setColor(QPalette::Text, QColor(200, 40, 20));
        palette.setColor(QPalette::Window, QColor(30, 60, 250));
        QGuiApplication::setPalette(palette);
    }

    void TearDown() override
    {
        QGuiApplication::setPalette(m_before);
        SoftProofing::TearDown();
    }

    static Image shown(unsigned int width, unsigned int height)
    {
        Image image = wideImage(width, height, 1);
        image.rawFilters = 5;
        return SoftProof(image, toByteArray(hashOf(Ondrel::CreateLinear_sRGBColorProfile)), 0, true, true);
    }

private:
    QPalette m_before = QGuiApplication::palette();
};

TEST_F(ProofNotice, IsShownWithManagementOffForAKnownDevice)
{
    const Image result = shown(640, 400);
    EXPECT_EQ(result.width, 640u);
    EXPECT_EQ(result.height, 400u);
    EXPECT_EQ(result.colorProfile, Ondrel::DefaultColorProfileHash);
    EXPECT_EQ(result.rawFilters, 0u);
    for (unsigned int i = 0; i < 640 * 400; ++i)
        ASSERT_EQ(result.data[i * 4 + 3], 65535) << i;
}

TEST_F(ProofNotice, RunsFromTheTextColourToTheWindowColourWithTextInTheLatter)
{
    const auto channel = [](int v) { return std::uint16_t(v / 255.0 * 65535.0); };
    const Image result = shown(1200, 300);
    // Qt mixes gradients in 8 bits: a step of one may be missed.
    const Pixel middle = pixelAt(result, 600, 10), corner = pixelAt(result, 0, 0);
    const double toMiddle = 140.0 / 525.0, toCorner = 618.5 / 525.0; // distance / radius; beyond 1 is the window colour
    EXPECT_GT(toCorner, 1.0);
    EXPECT_EQ(corner, (Pixel{channel(30), channel(60), channel(250), 65535}));
    EXPECT_NEAR(middle[0] / 257, 200 + (30 - 200) * toMiddle, 2);
    EXPECT_NEAR(middle[1] / 257, 40 + (60 - 40) * toMiddle, 2);
    EXPECT_NEAR(middle[2] / 257, 20 + (250 - 20) * toMiddle, 2);
    // Around the centre all that is of the window colour is text.
    int letters = 0;
    for (unsigned int y = 100; y < 200; ++y)
        for (unsigned int x = 350; x < 850; ++x)
            letters += pixelAt(result, x, y) == corner;
    EXPECT_GT(letters, 50);
}

TEST_F(ProofNotice, IsWhatAPainterDrawsInEverySize)
{
    for (const auto& [w, h] : {std::pair(640u, 400u), std::pair(641u, 401u), std::pair(300u, 20u), std::pair(90u, 300u),
                               std::pair(46u, 45u), std::pair(44u, 44u), std::pair(7u, 5u), std::pair(1u, 1u)})
        EXPECT_TRUE(samePixels(shown(w, h), notice(w, h))) << w << " x " << h;
}

TEST_F(ProofNotice, FollowsThePalette)
{
    const Image first = shown(200, 100);
    QPalette palette;
    palette.setColor(QPalette::Text, Qt::white);
    palette.setColor(QPalette::Window, Qt::black);
    QGuiApplication::setPalette(palette);
    const Image second = shown(200, 100);
    EXPECT_FALSE(samePixels(first, second));
    EXPECT_TRUE(samePixels(second, notice(200, 100)));
}

// No painter reaches so far: beyond, there is the colour of the rim.
TEST_F(ProofNotice, OfALongImageEndsInTheWindowColour)
{
    const auto channel = [](int v) { return std::uint16_t(v / 255.0 * 65535.0); };
    const Pixel window = {channel(30), channel(60), channel(250), 65535};
    const Image wide = shown(40000, 2), high = shown(2, 40000);
    for (unsigned int i = 32767; i < 40000; ++i) {
        ASSERT_EQ(pixelAt(wide, i, 1), window) << i;
        ASSERT_EQ(pixelAt(high, 1, i), window) << i;
    }
}

TEST_F(ProofNotice, OfAnImageThatClaimsMorePixelsThanItHasIsNotPainted)
{
    Image image(4, 4);
    image.colorProfile = hashOf(Ondrel::CreateProPhotoRGBColorProfile);
    image.width = image.height = 65536;
    const Image result = SoftProof(image, toByteArray(hashOf(Ondrel::CreateLinear_sRGBColorProfile)), 0, false, false);
    EXPECT_EQ(result.width, 65536u);
    EXPECT_EQ(result.height, 65536u);
    EXPECT_EQ(result.colorProfile, Ondrel::DefaultColorProfileHash);
    EXPECT_LT(result.sizeBytes, 1u << 20);
}

TEST_F(ProofNotice, HasNoPixelsForAnImageWithoutAny)
{
    for (const auto& [w, h] : {std::pair(0u, 0u), std::pair(5u, 0u), std::pair(0u, 5u)}) {
        const Image result = shown(w, h);
        EXPECT_EQ(result.data, nullptr);
        EXPECT_EQ(result.colorProfile, Ondrel::DefaultColorProfileHash);
    }
}

TEST_F(SoftProofing, RunsOnManyThreadsAtOnce)
{
    const Profile paper = paperProfile(1.8);
    const QByteArray proof = toByteArray(registered(paper)),
                     linear = toByteArray(hashOf(Ondrel::CreateLinear_sRGBColorProfile));
    const Image image = wideImage(30, 40, 1);
    const Image marked = SoftProof(image, proof, 1, true, false), plain = SoftProof(image, linear, 0, false, true);
    std::atomic<int> wrong{0}, done{0};
    const auto check = [&] {
        wrong += !samePixels(SoftProof(image, proof, 1, true, false), marked);
        ++done;
    };
    const auto convert = [&] {
        wrong += !samePixels(SoftProof(image, linear, 0, false, true), plain);
        ++done;
    };
    const auto black = [&] { wrong += !samePixels(SoftProof(image, "unknown", 0, false, true), blackFrame(30, 40)); };
    runTogether({check, check, convert, convert, black});
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_GT(done.load(), 4);
}

TEST_F(ProofNotice, IsPaintedOnAnyThread)
{
    const Image expected = shown(120, 80);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 5; ++i)
                wrong += !samePixels(shown(120, 80), expected);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong.load(), 0);
}

} // namespace
