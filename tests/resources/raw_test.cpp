// Camera RAW files, from the bytes to the image: every sample against the file's own numbers.

#include "rawstore.h"

#include "tests/reference/dng_reference.h"
#include "tests/reference/raw_reference.h"
#include "tests/support/instructionlevels.h"
#include "tests/support/rowengines.h"

#include <ondrel/color/colorprofiles.h>
#include <ondrel/resources/rawscale_p.h>

#include <random>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;
using Kind = DngFile::Kind;

class Raw : public RawTest
{
protected:
    // What LibRaw alone knows of a file's multipliers, identity and curve is taken from `raw`, the rest from the file.
    static Image expected(const Bytes& file)
    {
        Image image = OndrelReference::DngNumbers(file).decoded();
        const Image byLibRaw = OndrelReference::processRaw(file);
        std::copy_n(byLibRaw.rawPreMultipliers, 3, image.rawPreMultipliers);
        std::copy_n(byLibRaw.rawCameraMultipliers, 3, image.rawCameraMultipliers);
        image.rawIdentityMatrix = byLibRaw.rawIdentityMatrix;
        image.rawToneCurve = byLibRaw.rawToneCurve;
        return image;
    }

    static std::shared_ptr<const Image> check(const DngFile& file)
    {
        const Bytes bytes = file.bytes();
        const StoredRaw stored(bytes);
        EXPECT_TRUE(stored.accepted);
        const auto image = stored.image();
        if (!image) {
            ADD_FAILURE() << "not decoded";
            return std::make_shared<Image>();
        }
        const Image wanted = expected(bytes);
        expectSameRaw(*image, wanted);
        expectSameRaw(*image, OndrelReference::processRaw(bytes));
        expectSameRaw(stored.info(), wanted);
        EXPECT_EQ(isRegistered(wanted.colorProfile), true);
        return image;
    }
};

TEST_F(Raw, EveryBayerPhaseIsKept)
{
    const std::array<unsigned char, 4> phases[] = {{0, 1, 1, 2}, {1, 0, 2, 1}, {2, 1, 1, 0}, {1, 2, 0, 1}};
    const unsigned int words[] = {0x94949494, 0x61616161, 0x16161616, 0x49494949};
    for (std::size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        DngFile file = randomDng(Kind::Bayer, 31, 26, unsigned(i));
        file.bayer = phases[i];
        const auto image = check(file);
        EXPECT_EQ(image->rawFilters, words[i]);
        EXPECT_TRUE(image->rawIsMosaic);
        EXPECT_TRUE(image->rawHasInfo);
    }
}

TEST_F(Raw, PhotositesHoldTheirColorAlone)
{
    DngFile file = randomDng(Kind::Bayer, 24, 23);
    file.black = 0;
    file.white = 65535;
    std::fill(file.samples.begin(), file.samples.end(), std::uint16_t(1234));
    const auto image = check(file);
    for (unsigned int y = 0; y < 23; ++y)
        for (unsigned int x = 0; x < 24; ++x) {
            Pixel pixel = {0, 0, 0, 65535};
            pixel[file.colorAt(x, y)] = 1234;
            ASSERT_EQ(pixelAt(*image, x, y), pixel) << x << ' ' << y;
        }
}

TEST_F(Raw, XTransPatternIsHandedOn)
{
    const DngFile file = randomDng(Kind::XTrans, 37, 29);
    const auto image = check(file);
    EXPECT_EQ(image->rawFilters, 9u);
    for (unsigned int y = 0; y < 6; ++y)
        for (unsigned int x = 0; x < 6; ++x)
            EXPECT_EQ(image->rawXTrans[y][x], file.colorAt(x, y)) << x << ' ' << y;
}

TEST_F(Raw, MonochromeIsGrey)
{
    const auto image = check(randomDng(Kind::Monochrome, 25, 33));
    EXPECT_FALSE(image->rawIsMosaic);
    EXPECT_EQ(image->rawFilters, 0u);
    EXPECT_EQ(image->colorProfile, Ondrel::DefaultRawColorProfileHash);
    for (unsigned int i = 0; i < 25 * 33; ++i) {
        ASSERT_EQ(image->data[4 * i], image->data[4 * i + 1]);
        ASSERT_EQ(image->data[4 * i], image->data[4 * i + 2]);
    }
}

TEST_F(Raw, LinearFilesHaveAllThreeColors)
{
    const auto image = check(randomDng(Kind::Linear, 23, 31));
    EXPECT_FALSE(image->rawIsMosaic);
    EXPECT_EQ(image->rawFilters, 0u);
    EXPECT_TRUE(image->rawHasInfo);
}

TEST_F(Raw, EveryOrientationOfEveryKindIsTurnedUpright)
{
    constexpr unsigned int kRotations[] = {0, 0, 0, 1, 0, 0, 2, 0, 3};
    for (const Kind kind : {Kind::Bayer, Kind::XTrans, Kind::Monochrome, Kind::Linear})
        for (unsigned short orientation = 1; orientation <= 8; ++orientation) {
            SCOPED_TRACE(orientation);
            DngFile file = randomDng(kind, 29, 24, orientation);
            file.orientation = orientation;
            const auto image = check(file);
            EXPECT_EQ(image->rawRotation, kRotations[orientation]);
            const bool isTurned = orientation == 6 || orientation == 8;
            EXPECT_EQ(image->width, isTurned ? 24u : 29u);
            EXPECT_EQ(image->height, isTurned ? 29u : 24u);
        }
}

TEST_F(Raw, QuarterTurnsMoveTheCornersAsTheCameraWasHeld)
{
    DngFile file = randomDng(Kind::Monochrome, 30, 22);
    file.black = 0;
    file.white = 65535;
    std::fill(file.samples.begin(), file.samples.end(), std::uint16_t(0));
    file.samples[0] = 1000;  // the upper left
    file.samples[29] = 2000; // the upper right
    file.orientation = 6;    // to be turned to the right
    auto image = check(file);
    EXPECT_EQ(pixelAt(*image, 21, 0)[0], 1000);
    EXPECT_EQ(pixelAt(*image, 21, 29)[0], 2000);
    file.orientation = 8;
    image = check(file);
    EXPECT_EQ(pixelAt(*image, 0, 29)[0], 1000);
    EXPECT_EQ(pixelAt(*image, 0, 0)[0], 2000);
    file.orientation = 3;
    image = check(file);
    EXPECT_EQ(pixelAt(*image, 29, 21)[0], 1000);
    EXPECT_EQ(pixelAt(*image, 0, 21)[0], 2000);
}

TEST_F(Raw, LinearisationTableIsFollowed)
{
    for (const Kind kind : {Kind::Bayer, Kind::Linear, Kind::Monochrome}) {
        DngFile file = randomDng(kind, 26, 28);
        for (unsigned int i = 0; i < 1024; ++i)
            file.table.push_back(static_cast<std::uint16_t>(i * i / 255));
        for (std::uint16_t& sample : file.samples)
            sample = static_cast<std::uint16_t>(sample % 1200); // some lie above the table
        const auto image = check(file);
        // It rises strictly from 127 * 127 / 255 on, but its first two entries are equal.
        EXPECT_EQ(image->rawToneCurve, nullptr);
    }
}

TEST_F(Raw, RisingLinearisationTableIsTheToneCurve)
{
    DngFile file = randomDng(Kind::Bayer, 26, 28);
    for (unsigned int i = 0; i < 500; ++i)
        file.table.push_back(static_cast<std::uint16_t>(i * 8 + i * i / 100));
    for (std::uint16_t& sample : file.samples)
        sample = static_cast<std::uint16_t>(sample % 500);
    const auto image = check(file);
    ASSERT_NE(image->rawToneCurve, nullptr);
    EXPECT_EQ(image->rawToneCurve->size(), 499u);
    EXPECT_EQ(image->rawToneCurve->back().x, 65535);
    EXPECT_EQ(image->rawToneCurve->back().y, 65535);
}

TEST_F(Raw, BlackLevelsOfEachPhotositeAreSubtracted)
{
    for (unsigned int seed = 0; seed < 8; ++seed) {
        SCOPED_TRACE(seed);
        DngFile file = randomDng(Kind::Bayer, 27, 25, seed);
        std::mt19937 random(seed);
        for (int i = 0; i < 4; ++i)
            file.blacks.push_back(unsigned(random() % 1000));
        check(file);
    }
}

TEST_F(Raw, LevelsOfEverySort)
{
    // Black and white; the difference of the last two pairs wraps or is 0.
    const std::array<unsigned int, 2> levels[] = {{0, 65535}, {0, 1},       {1, 2},       {0, 8190},    {512, 16383},
                                                  {0, 16383}, {4096, 4097}, {1024, 4095}, {1024, 1024}, {2000, 1000}};
    for (const Kind kind : {Kind::Bayer, Kind::Monochrome})
        for (const auto& pair : levels) {
            SCOPED_TRACE(std::to_string(pair[0]) + ' ' + std::to_string(pair[1]));
            DngFile file = randomDng(kind, 24, 24);
            file.black = pair[0];
            file.white = pair[1];
            check(file);
        }
}

TEST_F(Raw, WhiteEqualToBlackClipsToTheEnds)
{
    DngFile file = randomDng(Kind::Monochrome, 24, 24);
    file.black = file.white = 1000;
    file.samples[0] = 1001;
    file.samples[1] = 1000;
    file.samples[2] = 999;
    const auto image = check(file);
    EXPECT_EQ(pixelAt(*image, 0, 0), (Pixel{65535, 65535, 65535, 65535}));
    EXPECT_EQ(pixelAt(*image, 1, 0), (Pixel{0, 0, 0, 65535}));
    EXPECT_EQ(pixelAt(*image, 2, 0), (Pixel{0, 0, 0, 65535}));
}

TEST_F(Raw, WhiteCanComeOutOneBelowTheMaximum)
{
    DngFile file = randomDng(Kind::Monochrome, 24, 24);
    file.black = 0;
    file.white = 8190;
    file.samples[0] = 8190;
    EXPECT_EQ(pixelAt(*check(file), 0, 0), (Pixel{65534, 65534, 65534, 65535}));
}

TEST_F(Raw, MultipliersAreThoseOfTheFile)
{
    DngFile file = randomDng(Kind::Bayer, 24, 24);
    file.neutral = {0.47, 1.0, 0.62};
    const auto image = check(file);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_FLOAT_EQ(image->rawCameraMultipliers[i], float(1 / file.neutral[i]));
    // One over the camera's answer to the white of sRGB: the row sums of matrix times primaries.
    const double primaries[3][3] = {
        {0.4124564, 0.3575761, 0.1804375}, {0.2126729, 0.7151522, 0.0721750}, {0.0193339, 0.1191920, 0.9503041}};
    for (std::size_t i = 0; i < 3; ++i) {
        double sum = 0;
        for (std::size_t j = 0; j < 3; ++j)
            for (std::size_t k = 0; k < 3; ++k)
                sum += file.matrix[3 * i + k] * primaries[k][j];
        EXPECT_NEAR(image->rawPreMultipliers[i], 1 / sum, 1e-5 / sum);
    }
}

TEST_F(Raw, ProfileIsLinearAndNamedAfterItsKind)
{
    const DngFile file = randomDng(Kind::Bayer, 24, 24);
    const StoredRaw stored(file.bytes()), again(randomDng(Kind::Linear, 30, 30, 2).bytes());
    const auto image = stored.image();
    ASSERT_NE(image, nullptr);
    EXPECT_NE(image->colorProfile, Ondrel::DefaultRawColorProfileHash);
    ASSERT_NE(again.image(), nullptr);
    EXPECT_EQ(again.image()->colorProfile, image->colorProfile); // of one camera
    const Profile profile(Ondrel::ColorManager::copyColorProfileByHash(image->colorProfile));
    ASSERT_NE(profile, nullptr);
    const Bytes bytes = savedBytes(profile.get());
    EXPECT_EQ(Ondrel::GetICCProfileName(bytes.data(), bytes.size()), "RAW Image RGB");
    for (const cmsTagSignature tag : {cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag})
        EXPECT_TRUE(cmsIsToneCurveLinear(static_cast<cmsToneCurve*>(cmsReadTag(profile.get(), tag))));
}

TEST_F(Raw, WithoutAUsableMatrixIsInTheDefaultProfile)
{
    const auto count = [] { return registeredProfiles().size(); };
    const std::size_t before = count();
    DngFile missing = randomDng(Kind::Bayer, 24, 24), singular = missing;
    missing.hasMatrix = false;
    singular.matrix = {1, 2, 3, 2, 4, 6, 0, 1, 0};
    for (const DngFile* file : {&missing, &singular}) {
        EXPECT_EQ(check(*file)->colorProfile, Ondrel::DefaultRawColorProfileHash);
        const StoredRaw stored(file->bytes());
        EXPECT_EQ(count(), before);
    }
    EXPECT_TRUE(isRegistered(Ondrel::DefaultRawColorProfileHash));
}

TEST_F(Raw, IsConvertedFromTheCamerasProfile)
{
    const Bytes bytes = randomDng(Kind::Linear, 24, 24).bytes();
    const StoredRaw stored(bytes);
    const auto plain = stored.image();
    ASSERT_NE(plain, nullptr);
    const Image wanted = convertedBetween(*plain, plain->colorProfile, Ondrel::DefaultColorProfileHash);
    const auto converted = stored.image(Ondrel::DefaultColorProfileHash);
    ASSERT_NE(converted, nullptr);
    EXPECT_TRUE(samePixels(*converted, wanted));
    EXPECT_FALSE(samePixels(*converted, *plain));
    EXPECT_EQ(converted->colorProfile, Ondrel::DefaultColorProfileHash);
    EXPECT_TRUE(converted->rawHasInfo);
}

TEST_F(Raw, StatusIsNotRead)
{
    const Bytes bytes = randomDng(Kind::Bayer, 24, 24).bytes();
    const StoredRaw stored(bytes);
    const int cancelled = 1;
    expectSameRaw(ProcessRaw(stored.id, {&cancelled}), OndrelReference::processRaw(bytes));
    std::shared_ptr<const Image> image;
    EXPECT_FALSE(ResourceEngine::Get().CopyImage(stored.id, image, Ondrel::EmbeddedColorProfile, {&cancelled}));
    EXPECT_NE(stored.image(), nullptr);
}

TEST_F(Raw, FilesAreReadFromDisk)
{
    const TemporaryFolder folder;
    const Bytes bytes = randomDng(Kind::Bayer, 24, 30).bytes();
    writeFile(folder.path("a.dng"), bytes);
    Ondrel::ResourceId id;
    ASSERT_TRUE(ResourceEngine::Get().AddRawImage(folder.path("a.dng").toStdString(), id));
    std::shared_ptr<const Image> image;
    EXPECT_TRUE(ResourceEngine::Get().CopyImage(id, image, Ondrel::EmbeddedColorProfile, {}));
    expectSameRaw(*image, OndrelReference::processRaw(bytes));
    EXPECT_TRUE(ResourceEngine::Get().RemoveResource(id));
}

TEST_F(Raw, EveryInstructionLevelAndRowEngineDecodesTheSame)
{
    DngFile file = randomDng(Kind::Bayer, 131, 67);
    file.orientation = 8;
    const Bytes bytes = file.bytes();
    const Image wanted = OndrelReference::processRaw(bytes);
    const StoredRaw stored(bytes);
    forEveryInstructionLevel([&] { forEveryRowEngine([&] { expectSameRaw(ProcessRaw(stored.id, {}), wanted); }); });
}

// ---- Scaling

struct Levels {
    unsigned int black, maximum;
};

std::vector<Levels> levelsOfEverySort()
{
    std::vector<Levels> levels = {{0, 0},          {1, 1},          {65535, 65535},      {0, 1},
                                  {1, 0},          {100, 99},       {65535, 0},          {0, 65535},
                                  {0, 65536},      {0, 4294967295}, {1, 0x80000000},     {4294967295, 4294967295},
                                  {4294967295, 0}, {0, 8190},       {4294967295, 65535}, {16777217, 16777219},
                                  {0, 16383},      {1000, 15000},   {0, 14000},          {0x80000000, 0}};
    std::mt19937 random(5);
    for (int i = 0; i < 60; ++i) {
        const unsigned int mask = i % 3 ? 0xffff : 0x3fff;
        levels.push_back({unsigned(random()) & mask, unsigned(random()) & mask});
    }
    return levels;
}

TEST(RawScale, EqualsItsFormulaForEveryLevelAndSize)
{
    std::mt19937 random(1);
    unsigned int seed = 0;
    for (const Levels& level : levelsOfEverySort()) {
        SCOPED_TRACE(std::to_string(level.black) + ' ' + std::to_string(level.maximum));
        const Image source = randomImage(1 + unsigned(random() % 150), 1 + unsigned(random() % 20), ++seed);
        Image wanted(source);
        OndrelReference::scaleColors(level.black, level.maximum, wanted);
        forEveryInstructionLevel([&] {
            forEveryRowEngine([&] {
                Image image(source);
                Ondrel::ScaleColors(level.black, level.maximum, image);
                EXPECT_TRUE(samePixels(image, wanted));
            });
        });
    }
}

TEST(RawScale, EverySampleValueOfEverySmallSizeEqualsItsFormula)
{
    Image all(256, 256);
    for (unsigned int i = 0; i < 65536; ++i)
        for (unsigned int c = 0; c < 4; ++c)
            all.data[4 * i + c] = static_cast<std::uint16_t>(i * (2 * c + 1));
    for (const Levels level : {Levels{0, 8190}, Levels{1000, 15000}, Levels{0, 14000}, Levels{300, 300}}) {
        Image image(all), wanted(all);
        Ondrel::ScaleColors(level.black, level.maximum, image);
        OndrelReference::scaleColors(level.black, level.maximum, wanted);
        EXPECT_TRUE(samePixels(image, wanted));
    }
    for (unsigned int width = 1; width < 70; ++width) {
        Image image = randomImage(width, 1, width), wanted(image);
        forEveryInstructionLevel([&] {
            Image scaled(image);
            Ondrel::ScaleColors(512, 40000, scaled);
            Image formula(image);
            OndrelReference::scaleColors(512, 40000, formula);
            EXPECT_TRUE(samePixels(scaled, formula)) << width;
        });
    }
}

TEST(RawScale, MetadataAndAnEmptyImageStayAsTheyAre)
{
    Image image = withMetadata(9, 7);
    const Image before(image);
    Ondrel::ScaleColors(10, 20, image);
    EXPECT_EQ(image.rawFilters, before.rawFilters);
    EXPECT_EQ(image.colorProfile, before.colorProfile);
    Image none;
    Ondrel::ScaleColors(10, 20, none);
    EXPECT_EQ(none.data, nullptr);
}

TEST(RawScale, SpareBlocksAreLeftAlone)
{
    Image image = shrunkImage(5, 3, 1), wanted(image);
    OndrelReference::scaleColors(100, 50000, wanted);
    Ondrel::ScaleColors(100, 50000, image);
    EXPECT_TRUE(samePixels(image, wanted));
}

} // namespace
