// The nodes that bring or draw pictures.

#include "essentials.h"

#include "../../reference/kernels_reference.h"
#include "../../support/dngfile.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/core/color.h>
#include <ondrel/pixel/gradient.h>
#include <ondrel/pixel/painter.h>
#include <ondrel/pixel/scale.h>
#include <ondrel/pixel/temperature.h>
#include <ondrel/resources/resourceengine.h>

#include <QPointF>

#include <algorithm>
#include <cmath>
#include <numeric>

using namespace OndrelTest;
using Ondrel::Image;

namespace
{

// A resource of the store for as long as a test needs it.
class Stored
{
public:
    explicit Stored(const DngFile& file)
    {
        EXPECT_TRUE(ResourceEngine::Get().AddImageByData(ResourceEngine::FormatRAW, file.bytes(), "file.dng", m_id));
    }
    explicit Stored(const Image& image)
    {
        std::vector<unsigned char> file;
        const ResourceEngine::ExportTIFFSettings settings{Ondrel::EmbeddedColorProfile, 1, 1, 0};
        EXPECT_TRUE(ResourceEngine::ExportTIFFToMemory(file, image, settings, nullptr, nullptr));
        EXPECT_TRUE(ResourceEngine::Get().AddImageByData(ResourceEngine::FormatTIFF, file, "file.tif", m_id));
    }
    ~Stored() { ResourceEngine::Get().RemoveResource(m_id); }
    Stored(const Stored&) = delete;
    Stored& operator=(const Stored&) = delete;

    QVariantMap values(QVariantMap more = {}) const
    {
        more.insert("image", QVariant::fromValue(m_id));
        return more;
    }

    Image decoded(const std::array<unsigned char, 32>& profile = Ondrel::EmbeddedColorProfile) const
    {
        std::shared_ptr<const Image> image;
        EXPECT_TRUE(ResourceEngine::Get().CopyImage(m_id, image, profile, {}));
        return *image;
    }

private:
    Ondrel::ResourceId m_id;
};

std::array<unsigned char, 32> proPhoto()
{
    std::vector<std::pair<QString, std::array<unsigned char, 32>>> profiles;
    using Profile = Ondrel::ColorManager::ColorProfile;
    Ondrel::ColorManager::colorProfileNamesAndHashesSorted(profiles, {Profile::RGB}, {Profile::BuiltIn});
    for (const auto& [name, hash] : profiles) {
        if (name.contains("ProPhoto"))
            return hash;
    }
    ADD_FAILURE() << "no ProPhoto RGB";
    return {};
}

QByteArray bytesOf(const std::array<unsigned char, 32>& hash)
{
    return QByteArray(reinterpret_cast<const char*>(hash.data()), int(hash.size()));
}

TEST(EssentialsImage, IsTheStoredPictureInItsOwnOrTheChosenProfile)
{
    const Stored stored(picture(40, 30));
    EXPECT_TRUE(samePixels(stored.decoded(), imageOf(evaluate("image", {}, stored.values()))));
    const QVariantMap chosen = stored.values({{"space", "Chosen"}, {"profile", bytesOf(proPhoto())}});
    const Image actual = imageOf(evaluate("image", {}, chosen));
    EXPECT_TRUE(samePixels(stored.decoded(proPhoto()), actual));
    EXPECT_EQ(actual.colorProfile, proPhoto());
    EXPECT_EQ(sizesOf("image", stored.values(), {}), (Sizes{{"image", QSize(40, 30)}}));
}

TEST(EssentialsImage, APreviewIsScaledDownOnce)
{
    const Stored stored(picture(41, 30));
    const Host::Result result = evaluate("image", {}, stored.values(), 0.25);
    EXPECT_TRUE(samePixels(Scale(stored.decoded(), 10, 8, Ondrel::FilterMethod::Bilinear), imageOf(result)));
    EXPECT_EQ(result.outputs.value("image").fullSize, QSize(41, 30));
}

TEST(EssentialsImage, SaysWhyThereIsNoPicture)
{
    EXPECT_FALSE(evaluate("image", {}, {}).error.isEmpty());
    EXPECT_FALSE(
        evaluate("image", {}, {{"image", QVariant::fromValue(Ondrel::ResourceId(4000000000u))}}).error.isEmpty());
    EXPECT_TRUE(sizesOf("image", {}, {}).isEmpty());
    const Stored stored(picture(4, 4));
    EXPECT_FALSE(evaluate("rawimage", {}, stored.values()).error.isEmpty());
}

DngFile dng(DngFile::Kind kind, unsigned short orientation = 1)
{
    DngFile file;
    file.kind = kind;
    file.width = 48;
    file.height = 36;
    file.orientation = orientation;
    file.matrix = {3.2404542, -1.5371385, -0.4985314, -0.9692660, 1.8760108,
                   0.0415560, 0.0556434,  -0.2040259, 1.0572252};
    file.neutral = {0.5, 1, 0.8};
    file.samples.resize(std::size_t(file.width) * file.height * (kind == DngFile::Kind::Linear ? 3 : 1));
    for (std::size_t i = 0; i < file.samples.size(); ++i)
        file.samples[i] = std::uint16_t((i * 7919 + i * i * 31) % 30000);
    return file;
}

// What the kernels make of the mosaic after multiplication by the gains; exact from a distance of 3 to the edges on.
Image developedByReference(const Image& raw, const std::array<float, 3>& gains, unsigned int filters)
{
    Image balanced(raw), result(raw.width, raw.height);
    for (std::size_t i = 0; i < std::size_t(raw.width) * raw.height * 4; i += 4) {
        for (std::size_t c = 0; c < 3; ++c)
            balanced.data[i + c] = std::uint16_t(std::min(float(raw.data[i + c]) * gains[c] + 0.5f, 65535.0f));
    }
    OndrelReference::demosaicGreen(raw.width, raw.height, filters, balanced.data, result.data);
    OndrelReference::demosaicRedBlue(raw.width, raw.height, filters, balanced.data, result.data);
    return result;
}

bool sameInside(const Image& a, const Image& b, unsigned int border)
{
    bool equal = a.width == b.width && a.height == b.height;
    for (unsigned int y = border; equal && y + border < a.height; ++y) {
        for (unsigned int x = border; x + border < a.width; ++x)
            equal = equal && pixelAt(a, x, y) == pixelAt(b, x, y);
    }
    return equal;
}

std::array<float, 3> gains(float r, float g, float b)
{
    const float least = std::min({r, g, b});
    return {r / least, g / least, b / least};
}

TEST(EssentialsRawImage, DevelopsABayerMosaicInTheLightOfTheShot)
{
    const Stored stored(dng(DngFile::Kind::Bayer));
    const Image raw = stored.decoded();
    const Image actual = imageOf(evaluate("rawimage", {}, stored.values({{"space", "Own"}})));
    const float* const m = raw.rawCameraMultipliers;
    EXPECT_TRUE(sameInside(developedByReference(raw, gains(m[0], m[1], m[2]), raw.rawFilters), actual, 3));
    EXPECT_EQ(actual.colorProfile, raw.colorProfile);
    for (unsigned int x = 0; x < actual.width; ++x)
        EXPECT_NE(pixelAt(actual, x, 0)[1], 0); // the border is interpolated too
}

TEST(EssentialsRawImage, TurnedMosaicsHaveTheColorsOfTheirPhotosites)
{
    for (const int orientation : {3, 6, 8}) {
        DngFile file = dng(DngFile::Kind::Bayer, static_cast<unsigned short>(orientation));
        for (std::size_t i = 0; i < file.samples.size(); ++i) {
            constexpr std::uint16_t flat[] = {20000, 12000, 6000};
            file.samples[i] = flat[file.colorAt(std::uint32_t(i) % file.width, std::uint32_t(i) / file.width)];
        }
        file.neutral = {1, 1, 1};
        const Stored stored(file);
        const Image raw = stored.decoded(),
                    actual = imageOf(evaluate("rawimage", {}, stored.values({{"space", "Own"}})));
        const Pixel middle = pixelAt(actual, actual.width / 2, actual.height / 2);
        for (unsigned int y = 0; y < actual.height; ++y) {
            for (unsigned int x = 0; x < actual.width; ++x)
                EXPECT_EQ(pixelAt(actual, x, y), middle) << orientation;
        }
        EXPECT_GT(middle[0], middle[1]);
        EXPECT_GT(middle[1], middle[2]);
    }
}

TEST(EssentialsRawImage, AChosenTemperatureAndExposureReplaceThoseOfTheShot)
{
    const Stored stored(dng(DngFile::Kind::Bayer));
    const Image raw = stored.decoded();
    float r = 0, g = 0, b = 0;
    TemperatureToRGBWB(raw.rawPreMultipliers, 4000, 900, r, g, b);
    std::array<float, 3> expected = gains(r, g, b);
    for (float& gain : expected)
        gain *= 2;
    const QVariantMap values = stored.values(
        {{"space", "Own"}, {"balance", "Chosen"}, {"temperature", "4000"}, {"tint", "900"}, {"exposure", "1"}});
    EXPECT_TRUE(
        sameInside(developedByReference(raw, expected, raw.rawFilters), imageOf(evaluate("rawimage", {}, values)), 3));
}

TEST(EssentialsRawImage, HasAProcessorFormForXTransAndFilesWithoutAMosaic)
{
    for (const auto kind : {DngFile::Kind::XTrans, DngFile::Kind::Linear, DngFile::Kind::Monochrome}) {
        DngFile file = dng(kind);
        std::fill(file.samples.begin(), file.samples.end(), std::uint16_t(20000));
        file.neutral = {1, 1, 1};
        const Stored stored(file);
        const Image actual = imageOf(evaluate("rawimage", {}, stored.values({{"space", "Own"}})));
        const Pixel first = pixelAt(actual, 0, 0);
        EXPECT_GT(first[1], 0);
        for (unsigned int y = 0; y < actual.height; ++y) {
            for (unsigned int x = 0; x < actual.width; ++x)
                EXPECT_EQ(pixelAt(actual, x, y), first);
        }
    }
}

TEST(EssentialsRawImage, ComesInTheDefaultProfileAndScaledDownBefore)
{
    const Stored stored(dng(DngFile::Kind::Bayer));
    const Image own = imageOf(evaluate("rawimage", {}, stored.values({{"space", "Own"}})));
    const Image small = Scale(own, 36, 27, Ondrel::FilterMethod::Bilinear);
    const Image expected = ConvertColorSpace(small, "Automatic", bytesOf(Ondrel::DefaultColorProfileHash), 1);
    EXPECT_TRUE(same(expected, imageOf(evaluate("rawimage", {}, stored.values(), 0.75))));
    EXPECT_FALSE(evaluate("image", {}, stored.values()).error.isEmpty()); // undeveloped
}

// The mean of a channel's photosites in a square of the mosaic, which has one sample other than 0 in each pixel.
Pixel meanOfBlock(const Image& raw, unsigned int left, unsigned int top, unsigned int side,
                  const std::array<float, 3>& gains)
{
    Pixel pixel = {0, 0, 0, 65535};
    for (std::size_t c = 0; c < 3; ++c) {
        unsigned int sum = 0, count = 0;
        for (unsigned int i = 0; i < side * side; ++i) {
            const unsigned int value = pixelAt(raw, left + i % side, top + i / side)[c];
            sum += value;
            count += value != 0 ? 1 : 0;
        }
        EXPECT_NE(count, 0u);
        const unsigned int mean = (2 * sum + count) / (2 * std::max(1u, count));
        pixel[c] = std::uint16_t(std::min(float(mean) * gains[c] + 0.5f, 65535.0f));
    }
    return pixel;
}

TEST(EssentialsRawImage, ASmallPreviewTakesThePhotositesAsTheyAre)
{
    const std::pair<DngFile::Kind, unsigned int> cases[] = {{DngFile::Kind::Bayer, 2}, {DngFile::Kind::XTrans, 3}};
    for (const auto& [kind, side] : cases) {
        DngFile file = dng(kind);
        for (std::uint16_t& sample : file.samples)
            sample = std::uint16_t(sample + 1000);
        const Stored stored(file);
        const Image raw = stored.decoded();
        const Image actual = imageOf(evaluate("rawimage", {}, stored.values({{"space", "Own"}}), 1.0 / side));
        ASSERT_EQ(actual.width, 48 / side);
        ASSERT_EQ(actual.height, 36 / side);
        const float* const m = raw.rawCameraMultipliers;
        for (unsigned int y = 0; y < actual.height; ++y) {
            for (unsigned int x = 0; x < actual.width; ++x)
                EXPECT_EQ(meanOfBlock(raw, x * side, y * side, side, gains(m[0], m[1], m[2])), pixelAt(actual, x, y));
        }
        EXPECT_EQ(actual.colorProfile, raw.colorProfile);
    }
}

// A picture as a lens draws it: no detail is finer than the mosaic. Its sides are no multiples of a square.
DngFile smoothDng(DngFile::Kind kind)
{
    DngFile file = dng(kind);
    file.width = 301;
    file.height = 203;
    const std::size_t channels = kind == DngFile::Kind::Linear ? 3 : 1;
    file.samples.resize(std::size_t(file.width) * file.height * channels);
    for (std::size_t i = 0; i < file.samples.size(); ++i) {
        const auto x = std::uint32_t(i / channels) % file.width, y = std::uint32_t(i / channels) / file.width;
        const std::size_t color = channels == 3 ? i % 3 : file.colorAt(x, y);
        const double wave = std::sin(x * 0.11 + double(color)) + std::cos(y * 0.13 - double(color));
        file.samples[i] = std::uint16_t(16000 + 6000 * wave);
    }
    return file;
}

// Of the colors of a square, some lie half a photosite off its middle. That is all the difference there is: 371 of
// 65535 at most for this Bayer, 605 for this X-Trans picture.
TEST(EssentialsRawImage, APreviewIsCloseToThePictureAtFullSize)
{
    const std::pair<DngFile::Kind, double> bounds[] = {
        {DngFile::Kind::Bayer, 400}, {DngFile::Kind::XTrans, 650}, {DngFile::Kind::Linear, 1}};
    for (const auto& [kind, bound] : bounds) {
        const Stored stored(smoothDng(kind));
        const QVariantMap values = stored.values({{"space", "Own"}});
        const Image full = imageOf(evaluate("rawimage", {}, values));
        for (const double scale : {0.5, 0.4, 1.0 / 3, 0.25, 0.1}) {
            const Image small = imageOf(evaluate("rawimage", {}, values, scale));
            const Image expected = Scale(full, unsigned(std::lround(301 * scale)), unsigned(std::lround(203 * scale)),
                                         Ondrel::FilterMethod::Bilinear);
            EXPECT_LT(meanDifference(expected, small), bound) << int(kind) << ", " << scale;
        }
    }
}

// Turned, and of a side that is no multiple of a square.
TEST(EssentialsRawImage, APreviewOfATurnedMosaicHasItsColors)
{
    for (const int orientation : {1, 3, 6, 8}) {
        DngFile file = dng(DngFile::Kind::Bayer, static_cast<unsigned short>(orientation));
        file.width = 47;
        file.height = 35;
        file.samples.resize(47 * 35);
        for (std::size_t i = 0; i < file.samples.size(); ++i) {
            constexpr std::uint16_t flat[] = {20000, 12000, 6000};
            file.samples[i] = flat[file.colorAt(std::uint32_t(i) % file.width, std::uint32_t(i) / file.width)];
        }
        const Stored stored(file);
        const QVariantMap values = stored.values({{"space", "Own"}});
        const Pixel expected = pixelAt(imageOf(evaluate("rawimage", {}, values)), 20, 20);
        const Image actual = imageOf(evaluate("rawimage", {}, values, 0.5));
        for (unsigned int y = 0; y < actual.height; ++y) {
            for (unsigned int x = 0; x < actual.width; ++x)
                EXPECT_EQ(pixelAt(actual, x, y), expected) << orientation;
        }
    }
}

TEST(EssentialsOutput, HandsThePictureThrough)
{
    const Image image = picture(7, 5);
    EXPECT_TRUE(same(image, imageOf(evaluate("output", inputOf(image), {}))));
}

QVariant color(unsigned short r, unsigned short g, unsigned short b, unsigned short a = 65535)
{
    return Ondrel::Color(r, g, b, a);
}

TEST(EssentialsGradient, IsALinearOrRadialOneInRgbOrLab)
{
    const QVariantMap values = {
        {"width", "60"}, {"height", "300"}, {"start", color(60000, 0, 900)}, {"end", color(0, 50000, 65535, 30000)}};
    const std::vector<Ondrel::GradientStop> stops = {{0, 60000, 0, 900, 65535}, {1, 0, 50000, 65535, 30000}};
    for (const bool lab : {false, true}) {
        const auto mix = lab ? Ondrel::GradientColorInterpolationLCH : Ondrel::GradientColorInterpolationRGB;
        Image linear(60, 300), radial(60, 300);
        linear.colorProfile = radial.colorProfile = Ondrel::DefaultColorProfileHash;
        GradientLinear(linear, {0, 0, 60, 300}, {0, 0, 1, 1}, stops, mix, {});
        GradientRadial(radial, {0, 0, 60, 300}, {0.5f, 0.5f, 0.25f, 0.5f, 0, 0, 0}, stops, mix, {});
        QVariantMap mixed = values;
        mixed.insert("mix", lab ? "Lab" : "RGB");
        EXPECT_TRUE(same(linear, imageOf(evaluate("gradient", {}, mixed))));
        mixed.insert("shape", "Radial");
        mixed.insert("radiusx", "25");
        EXPECT_TRUE(same(radial, imageOf(evaluate("gradient", {}, mixed))));
    }
}

TEST(EssentialsGradient, HasAnyStopsAndAPreview)
{
    const QVariantList stops = {QVariantMap{{"position", 0.0}, {"color", color(0, 0, 0)}},
                                QVariantMap{{"position", 0.25}, {"color", color(65535, 0, 0)}},
                                QVariantMap{{"position", 1.0}, {"color", color(0, 0, 65535)}}};
    const QVariantMap values = {{"width", "400"}, {"height", "300"}, {"stops", stops}, {"y2", "0"}};
    const Image full = imageOf(evaluate("gradient", {}, values));
    EXPECT_EQ(pixelAt(full, 100, 7), (Pixel{65535, 0, 0, 65535}));
    const Image preview = imageOf(evaluate("gradient", {}, values, 0.25));
    EXPECT_LT(meanDifference(Scale(full, 100, 75, Ondrel::FilterMethod::Bilinear), preview), 400);
    EXPECT_EQ(sizesOf("gradient", values, {}), (Sizes{{"image", QSize(400, 300)}}));
}

QVariant stroke(double size, double hardness, const QVariant& color, const QVariantList& points)
{
    return QVariantMap{{"size", size}, {"hardness", hardness}, {"color", color}, {"points", points}};
}

TEST(EssentialsPaint, DrawsEveryStrokeWithItsBrush)
{
    const Image image = picture(60, 40);
    Image expected(image);
    PixelPainter painter(&expected);
    painter.setBrush(60000, 100, 200, 40000, 5, 0.25f, 4, 0.3);
    painter.drawLine({10, 10}, {40, 20});
    painter.drawLine({40, 20}, {20, 35});
    painter.setBrush(1, 2, 3, 65535, 8, 1, 4, 0.3);
    painter.drawPoint({30, 30});
    const QVariantList strokes = {
        stroke(10, 0.25, color(60000, 100, 200, 40000), {QPointF(10, 10), QPointF(40, 20), QPointF(20, 35)}),
        stroke(16, 1, color(1, 2, 3), {QPointF(30, 30)}), stroke(16, 1, color(9, 9, 9), {})};
    EXPECT_TRUE(same(expected, imageOf(evaluate("paint", inputOf(image), {{"strokes", strokes}}))));
    EXPECT_TRUE(same(image, imageOf(evaluate("paint", inputOf(image), {}))));
}

TEST(EssentialsPaint, APreviewShowsTheStrokesInTheirPlaces)
{
    const Image image = smoothPicture(400, 300), small = Scale(image, 100, 75, Ondrel::FilterMethod::Bilinear);
    const QVariantMap values = {
        {"strokes", QVariantList{stroke(80, 0.5, color(0, 0, 0), {QPointF(80, 80), QPointF(300, 200)})}}};
    const Image full = imageOf(evaluate("paint", inputOf(image), values));
    const Image preview = imageOf(evaluate("paint", inputOf(small, QSize(400, 300)), values, 0.25));
    EXPECT_LT(meanDifference(Scale(full, 100, 75, Ondrel::FilterMethod::Bilinear), preview), 500);
    EXPECT_GT(meanDifference(small, preview), 2000); // something was drawn
}

Inputs layers(std::initializer_list<std::pair<const char*, Image>> images)
{
    Inputs inputs;
    for (const auto& [name, image] : images)
        inputs.insert(name, {image.toPtr(), QSize(int(image.width), int(image.height))});
    return inputs;
}

TEST(EssentialsMerge, LaysLayersOverEachOtherInTheirOrderWithTheirOpacity)
{
    const Image lowest = picture(20, 15, 1), middle = picture(30, 10, 2), top = picture(20, 15, 3);
    Image expected(20, 15);
    expected.colorProfile = lowest.colorProfile;
    PixelPainter painter(&expected);
    painter.drawImage(0, 0, lowest);
    painter.setOpacity(0.3f);
    painter.drawImage(0, 0, middle);
    painter.setOpacity(0.5f);
    painter.drawImage(0, 0, top);
    const Inputs inputs = layers({{"layer7", lowest}, {"layer2", middle}, {"layer10", top}});
    const QVariantMap values = {{"layer_order", "7,2,10"}, {"opacity2", "30"}, {"opacity10", "50"}};
    EXPECT_TRUE(same(expected, imageOf(evaluate("merge", inputs, values))));
    EXPECT_EQ(sizesOf("merge", values, {{"layer7", QSize(20, 15)}, {"layer2", QSize(30, 10)}}),
              (Sizes{{"image", QSize(20, 15)}}));
}

TEST(EssentialsMerge, TakesLayersThatTheOrderForgotAndForgetsThoseThatAreNotThere)
{
    const Inputs inputs = layers({{"layer1", picture(5, 5, 1)}, {"layer3", picture(6, 6, 2)}});
    EXPECT_EQ(imageOf(evaluate("merge", inputs, {{"layer_order", "99,3,3"}})).width, 6u);
    EXPECT_FALSE(evaluate("merge", {}, {{"layer_order", "1,2"}}).error.isEmpty());
}

TEST(EssentialsMerge, ConvertsALayerToTheProfileOfTheLowest)
{
    const Image lowest = picture(6, 6, 1);
    const Image converted = ConvertColorSpace(picture(6, 6, 2), "Automatic", bytesOf(proPhoto()), 1);
    const Image back = ConvertColorSpace(converted, "Automatic", bytesOf(Ondrel::DefaultColorProfileHash), 1);
    const QVariantMap values = {{"layer_order", "0,1"}};
    EXPECT_TRUE(same(imageOf(evaluate("merge", layers({{"layer0", lowest}, {"layer1", back}}), values)),
                     imageOf(evaluate("merge", layers({{"layer0", lowest}, {"layer1", converted}}), values))));
}

} // namespace
