// The nodes that move pixels: against the library, and their maps against pixels that are found again.

#include "essentials.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/pixel/geometry.h>
#include <ondrel/pixel/perspective.h>
#include <ondrel/pixel/scale.h>

#include <QPointF>

#include <cmath>

using namespace OndrelTest;
using Ondrel::Image;

namespace
{

QVariantMap cropValues(int left, int top, int width, int height)
{
    return {{"left", QString::number(left)},
            {"top", QString::number(top)},
            {"width", QString::number(width)},
            {"height", QString::number(height)}};
}

QVariantMap corners(std::initializer_list<QPointF> points)
{
    QVariantList list;
    for (const QPointF& point : points)
        list.append(point);
    return {{"corners", list}};
}

QVariantMap with(QVariantMap values, const QString& name, const QVariant& value)
{
    values.insert(name, value);
    return values;
}

const QVariantMap kView = corners({{0.1, 0.2}, {0.8, 0.05}, {0.95, 0.9}, {0.2, 0.7}});

Image profiled(Image image)
{
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    return image;
}

// The point that the only bright area of an image has in its middle, where pixel (x, y) covers up to (x + 1, y + 1).
QPointF middleOfLight(const Image& image)
{
    double sum = 0, x = 0, y = 0;
    for (unsigned int j = 0; j < image.height; ++j) {
        for (unsigned int i = 0; i < image.width; ++i) {
            const double light = double(pixelAt(image, i, j)[1]);
            sum += light;
            x += light * (i + 0.5);
            y += light * (j + 0.5);
        }
    }
    return sum > 0 ? QPointF(x / sum, y / sum) : QPointF(-1000, -1000);
}

// Black, with a light square of 5 x 5 around a pixel.
Image marked(const QSize& size, const QPoint& middle)
{
    Image image(unsigned(size.width()), unsigned(size.height()));
    image.Fill(0, 0, 0, 65535);
    image.Fill(65535, 65535, 65535, 65535, unsigned(middle.x()) - 2, unsigned(middle.y()) - 2, 5, 5);
    return profiled(image);
}

// Where the map says that the square goes, and where it is.
void expectMapped(const QString& file, const QVariantMap& values, double tolerance)
{
    const QSize size(150, 110);
    const auto maps = mapsOf(file, values, {{"image", size}});
    ASSERT_EQ(maps.size(), 1u);
    EXPECT_EQ(maps[0].inputField, "image");
    EXPECT_EQ(maps[0].outputField, "image");
    const QSize outputSize = sizesOf(file, values, {{"image", size}}).value("image");
    EXPECT_EQ(maps[0].rect, Ondrel::RectT<int>(QPoint(0, 0), outputSize));
    for (const QPoint middle : {QPoint(75, 55), QPoint(60, 62), QPoint(90, 48)}) {
        const Image result = imageOf(evaluate(file, inputOf(marked(size, middle)), values));
        EXPECT_EQ(QSize(int(result.width), int(result.height)), outputSize);
        const Eigen::Vector3d mapped = maps[0].transform * Eigen::Vector3d(middle.x() + 0.5, middle.y() + 0.5, 1);
        const QPointF found = middleOfLight(result);
        EXPECT_NEAR(mapped.x() / mapped.z(), found.x(), tolerance) << qPrintable(file);
        EXPECT_NEAR(mapped.y() / mapped.z(), found.y(), tolerance) << qPrintable(file);
    }
}

TEST(EssentialsCrop, IsAPartOfThePicture)
{
    const Image image = picture(31, 17);
    EXPECT_TRUE(same(profiled(SubImage(image, 3, 4, 11, 7)),
                     imageOf(evaluate("crop", inputOf(image), cropValues(3, 4, 11, 7)))));
    EXPECT_TRUE(same(profiled(SubImage(image, 3, 4, 28, 13)),
                     imageOf(evaluate("crop", inputOf(image), cropValues(3, 4, 0, 0)))));
    EXPECT_TRUE(same(profiled(SubImage(image, 30, 16, 1, 1)),
                     imageOf(evaluate("crop", inputOf(image), cropValues(99, 99, 99, 99)))));
}

TEST(EssentialsCrop, APreviewShowsTheSamePart)
{
    const Image image = smoothPicture(400, 300), small = Scale(image, 100, 75, Ondrel::FilterMethod::Bilinear);
    const QVariantMap values = cropValues(101, 50, 202, 201);
    const Image full = imageOf(evaluate("crop", inputOf(image), values));
    const Image preview = imageOf(evaluate("crop", inputOf(small, QSize(400, 300)), values, 0.25));
    EXPECT_LT(meanDifference(Scale(full, 51, 50, Ondrel::FilterMethod::Bilinear), preview), 400); // half a pixel
}

TEST(EssentialsResize, HasEveryUnitAspectAndFilterOfTheLibrary)
{
    const Image image = picture(40, 30);
    for (const QString& unit : {QString("Percentage"), QString("Pixels")}) {
        for (const QString& aspect : {QString("Keep"), QString("Ignore"), QString("Cover")}) {
            for (const QString& filter : {QString("Nearest Neighbor"), QString("Bilinear"), QString("Bicubic")}) {
                unsigned int width = 0, height = 0;
                CalculateScaleSize(unit, aspect, 40, 30, 150.5f, 60, 33, 50, 1, width, height);
                const Image expected = Scale(image, width, height, InterpolationToFilter(filter));
                const Image actual = imageOf(evaluate("resize", inputOf(image),
                                                      {{"unit", unit},
                                                       {"aspect", aspect},
                                                       {"filter", filter},
                                                       {"percentwidth", "150.5"},
                                                       {"percentheight", "60"},
                                                       {"pixelwidth", "33"},
                                                       {"pixelheight", "50"}}));
                EXPECT_TRUE(same(expected, actual)) << qPrintable(unit + aspect + filter);
            }
        }
    }
}

TEST(EssentialsResize, ASideOfNothingIsAnErrorInsteadOfAPicture)
{
    const Host::Result result = evaluate("resize", inputOf(picture(40, 30)),
                                         {{"unit", "Percentage"}, {"percentwidth", "0"}, {"percentheight", "0"}});
    EXPECT_FALSE(result.error.isEmpty());
    EXPECT_TRUE(result.outputs.isEmpty());
}

TEST(EssentialsRotate, IsThatOfTheLibraryAtEveryAngleAndSize)
{
    const Image image = picture(37, 22);
    const std::pair<QString, RotateSize> sizes[] = {
        {"Whole Picture", RotateSizeBounding}, {"Same Size", RotateSizeKeep}, {"Without Corners", RotateSizeInscribed}};
    for (const auto& [size, mode] : sizes) {
        for (const float angle : {-30.5f, 12.0f, 90.0f, 180.0f, 270.0f}) {
            const Image expected = profiled(Rotate(image, angle, mode, Ondrel::FilterMethod::Bicubic));
            const QVariantMap values = {{"angle", QString::number(double(angle))}, {"size", size}};
            EXPECT_TRUE(same(expected, imageOf(evaluate("rotate", inputOf(image), values)))) << angle;
        }
    }
    EXPECT_TRUE(same(image, imageOf(evaluate("rotate", inputOf(image), {{"angle", "0"}}))));
    EXPECT_TRUE(same(image, imageOf(evaluate("rotate", inputOf(image), {{"angle", "-360"}}))));
}

TEST(EssentialsMirror, ExchangesSides)
{
    const Image image = picture(9, 6);
    const auto mirrored = [&image](const char* axis) {
        return imageOf(evaluate("mirror", inputOf(image), {{"axis", axis}}));
    };
    EXPECT_TRUE(same(profiled(HorizontalMirror(image)), mirrored("Left and Right")));
    EXPECT_TRUE(same(profiled(VerticalMirror(image)), mirrored("Top and Bottom")));
    EXPECT_TRUE(same(profiled(Rotate180(image)), mirrored("Both")));
}

TEST(EssentialsTranslate, MovesThePictureAlsoInAPreview)
{
    const Image image = picture(20, 16);
    const QVariantMap values = {{"x", "8"}, {"y", "-4"}};
    EXPECT_TRUE(same(profiled(Translate(image, 8, -4)), imageOf(evaluate("translate", inputOf(image), values))));
    const Image preview = imageOf(evaluate("translate", inputOf(image, QSize(40, 32)), values, 0.5));
    EXPECT_TRUE(same(profiled(Translate(image, 4, -2)), preview));
}

TEST(EssentialsPerspective, IsATransformByTheMapItTells)
{
    const Image image = picture(40, 30);
    const auto maps = mapsOf("perspective", kView, {{"image", QSize(40, 30)}});
    ASSERT_EQ(maps.size(), 1u);
    std::shared_ptr<const Image> expected;
    Transform(image, Ondrel::RectT<int>::invalid(), 1, TransformSizeKeep, Ondrel::FilterMethod::Bicubic,
              maps[0].transform, expected);
    EXPECT_TRUE(same(profiled(*expected), imageOf(evaluate("perspective", inputOf(image), kView))));
}

TEST(EssentialsPerspective, MapsTheCornersToTheirPlaces)
{
    const auto maps = mapsOf("perspective", kView, {{"image", QSize(40, 30)}});
    ASSERT_EQ(maps.size(), 1u);
    const Eigen::Vector3d corner = maps[0].transform * Eigen::Vector3d(40, 30, 1);
    EXPECT_NEAR(corner.x() / corner.z(), 0.95 * 40, 1e-9);
    EXPECT_NEAR(corner.y() / corner.z(), 0.9 * 30, 1e-9);
}

TEST(EssentialsPerspective, UnmovedCornersLeaveThePictureAsItIs)
{
    const Image image = picture(12, 9);
    EXPECT_TRUE(same(image, imageOf(evaluate("perspective", inputOf(image), {}))));
    EXPECT_TRUE(same(image, imageOf(evaluate("perspective", inputOf(image), corners({{0, 0}, {1, 0}, {1, 1}})))));
}

TEST(EssentialsPerspective, CornersThatMakeNoViewAreRefused)
{
    const QVariantMap impossible[] = {corners({{0, 0}, {1, 1}, {1, 0}, {0, 1}}),     // crossed
                                      corners({{0, 0}, {1, 0}, {0.2, 0.2}, {0, 1}}), // a dent
                                      corners({{0, 0}, {0, 0}, {0, 0}, {0, 0}})};    // a point
    for (const QVariantMap& values : impossible)
        EXPECT_FALSE(evaluate("perspective", inputOf(picture(12, 9)), values).error.isEmpty());
}

TEST(EssentialsPerspective, APreviewShowsTheSameView)
{
    const Image image = smoothPicture(400, 300), small = Scale(image, 100, 75, Ondrel::FilterMethod::Bilinear);
    for (const char* size : {"Same Size", "Whole Picture"}) {
        const QVariantMap values = with(kView, "size", size);
        const Image full = imageOf(evaluate("perspective", inputOf(image), values));
        const Image preview = imageOf(evaluate("perspective", inputOf(small, QSize(400, 300)), values, 0.25));
        const Image reduced = Scale(full, preview.width, preview.height, Ondrel::FilterMethod::Bilinear);
        EXPECT_NEAR(full.width / 4.0, preview.width, 1) << size;
        EXPECT_LT(meanDifference(reduced, preview), 1500) << size; // the edge, and up to a pixel
    }
}

TEST(EssentialsMaps, TellWherePixelsGo)
{
    expectMapped("crop", cropValues(20, 30, 100, 70), 1e-9);
    expectMapped("mirror", {{"axis", "Left and Right"}}, 1e-9);
    expectMapped("mirror", {{"axis", "Top and Bottom"}}, 1e-9);
    expectMapped("mirror", {{"axis", "Both"}}, 1e-9);
    expectMapped("translate", {{"x", "12"}, {"y", "7"}}, 1e-9);
    expectMapped("translate", {{"x", "-12"}, {"y", "-7"}}, 1e-9);
    expectMapped("resize", {{"percentwidth", "200"}, {"percentheight", "300"}, {"aspect", "Ignore"}}, 0.3);
    for (const char* size : {"Whole Picture", "Same Size"}) {
        expectMapped("rotate", {{"angle", "90"}, {"size", size}}, size[0] == 'W' ? 1e-9 : 0.51);
        expectMapped("rotate", {{"angle", "-90"}, {"size", size}}, size[0] == 'W' ? 1e-9 : 0.51);
    }
    for (const char* size : {"Whole Picture", "Same Size", "Without Corners"})
        expectMapped("rotate", {{"angle", "33"}, {"size", size}}, 1);
    for (const char* size : {"Same Size", "Whole Picture"})
        expectMapped("perspective", with(kView, "size", size), 1);
}

} // namespace
