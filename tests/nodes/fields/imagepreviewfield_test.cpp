#include "fieldsupport.h"

#include "tests/support/testimages.h"
#include "tests/support/testprofiles.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/core/image.h>
#include <ondrel/nodes/fields/imagepreviewfield.h>
#include <ondrel/pixel/scale.h>

#include <QSettings>
#include <QThreadPool>

namespace
{

using namespace OndrelTest;
using Ondrel::FilterMethod;
using Ondrel::Image;
using Ondrel::ImagePreviewField;

constexpr char kColorKey[] = "settings/colormanagement/thumbnails";
constexpr char kFilterKey[] = "settings/performance/interpolation/thumbnail";

std::shared_ptr<const Image> picture(unsigned int width, unsigned int height)
{
    return randomImage(width, height, 11).toPtr();
}

// The picture as the field is to show it: on a checkerboard, in the middle, with a frame.
QImage shown(const QImage& image, const QRectF& rect)
{
    return painted({220, 220}, [&](QPainter& painter) {
        painter.translate((qRound(rect.width()) - image.width()) / 2 + qRound(rect.x()), qRound(rect.y()));
        QImage ground(image.size(), QImage::Format_ARGB32_Premultiplied);
        Checkerboard(ground, 32, 32, QColor(129, 129, 129), QColor(208, 208, 208));
        painter.drawImage(0, 0, ground);
        painter.drawImage(QRect(0, 0, image.width(), image.height()), image);
        painter.setBrush(Qt::NoBrush);
        for (const double width : {0.0, 1.5}) {
            painter.setPen(QPen(QColor(50, 47, 47), width, Qt::SolidLine));
            painter.drawRect(0, 0, image.width() - 1, image.height() - 1);
        }
    });
}

QImage rendered(const Image& image, unsigned int width, unsigned int height, FilterMethod filter, bool unmanaged)
{
    return Ondrel::ColorTransformer::toQImage(Scale(image, width, height, filter), unmanaged);
}

class ImagePreview : public testing::Test
{
protected:
    void TearDown() override { QSettings().clear(); }

    // Shows an image and waits until it is there.
    void show(const std::shared_ptr<const Image>& image)
    {
        QSignalSpy changed(&field, SIGNAL(imageChanged()));
        field.setImage(image);
        ASSERT_TRUE(changed.wait());
        EXPECT_EQ(changed.count(), 1);
    }
    // The field painted at the size that it asks for.
    QImage look(const QRectF& rect)
    {
        field.setRect(rect);
        return paintedItem(field, {220, 220});
    }

    ImagePreviewField field{"preview", nullptr};
};

TEST_F(ImagePreview, IsEmptyAtFirst)
{
    EXPECT_EQ(field.name(), "preview");
    EXPECT_EQ(field.displayName(), "");
    EXPECT_EQ(field.anchor(), nullptr);
    EXPECT_EQ(field.minWidth(), 182);
    EXPECT_EQ(field.minHeight(), 0);
    EXPECT_EQ(field.labelWidth(), 0);
    EXPECT_EQ(look({0, 0, 182, 0}), painted({220, 220}, [](QPainter&) {}));
}

TEST_F(ImagePreview, HasTheLongerSideAt182)
{
    const struct {
        unsigned int width, height;
        QSize preview;
    } cases[] = {{400, 200, {182, 91}}, {200, 400, {91, 182}}, {300, 300, {182, 182}}, {182, 10, {182, 10}},
                 {10, 182, {10, 182}},  {20, 10, {182, 91}},   {1, 1, {182, 182}},     {365, 3, {182, 1}},
                 {3, 365, {1, 182}},    {501, 499, {182, 181}}};
    for (const auto& c : cases) {
        const auto image = picture(c.width, c.height);
        show(image);
        EXPECT_EQ(field.minHeight(), c.preview.height()) << c.width << "x" << c.height;
        EXPECT_EQ(field.minWidth(), 182);
        const QRectF rect(0, 0, 182, c.preview.height());
        const auto width = static_cast<unsigned int>(c.preview.width());
        const auto height = static_cast<unsigned int>(c.preview.height());
        EXPECT_EQ(look(rect), shown(rendered(*image, width, height, FilterMethod::NearestNeighbor, true), rect))
            << c.width << "x" << c.height;
    }
}

TEST_F(ImagePreview, SurvivesImagesThatAreTooThin)
{
    for (const auto& image : {picture(1, 366), picture(366, 1), picture(1, 5000), picture(5000, 1)}) {
        show(image);
        EXPECT_EQ(field.minHeight(), 0) << "the short side is rounded to nothing";
        EXPECT_EQ(look({0, 0, 182, 0}), painted({220, 220}, [](QPainter&) {}));
    }
}

TEST_F(ImagePreview, IsEmptiedByAnImageWithoutPixels)
{
    for (const auto& nothing : {std::shared_ptr<const Image>(), Image().toPtr(), Image(0, 7).toPtr()}) {
        show(picture(40, 40));
        EXPECT_EQ(field.minHeight(), 182);
        show(nothing);
        EXPECT_EQ(field.minHeight(), 0);
        EXPECT_EQ(look({0, 0, 182, 182}), painted({220, 220}, [](QPainter&) {}));
    }
}

TEST_F(ImagePreview, StandsInTheMiddleOfItsRow)
{
    const auto image = picture(200, 400);
    show(image);
    const QImage preview = rendered(*image, 91, 182, FilterMethod::NearestNeighbor, true);
    for (const QRectF& rect : {QRectF(0, 0, 200, 182), QRectF(3.6, 5.4, 200.6, 182), QRectF(0, 0, 60, 182)})
        EXPECT_EQ(look(rect), shown(preview, rect)) << rect.width();
}

TEST_F(ImagePreview, IsScaledByTheChosenFilter)
{
    const auto image = picture(97, 61);
    const QRectF rect(0, 0, 182, 114);
    const struct {
        QVariant setting;
        FilterMethod filter;
    } cases[] = {{{}, FilterMethod::NearestNeighbor},
                 {"Nearest Neighbor", FilterMethod::NearestNeighbor},
                 {"Bilinear", FilterMethod::Bilinear},
                 {"Bicubic", FilterMethod::Bicubic},
                 {"bicubic", FilterMethod::NearestNeighbor}};
    for (const auto& c : cases) {
        if (c.setting.isValid())
            QSettings().setValue(kFilterKey, c.setting);
        show(image);
        EXPECT_EQ(look(rect), shown(rendered(*image, 182, 114, c.filter, true), rect))
            << qPrintable(c.setting.toString());
    }
    EXPECT_NE(rendered(*image, 182, 114, FilterMethod::Bilinear, true),
              rendered(*image, 182, 114, FilterMethod::NearestNeighbor, true));
}

// An image whose profile is far from that of the display.
class ManagedPreview : public ImagePreview
{
protected:
    ManagedPreview()
    {
        const Profile profile = rgbProfile(1.0, "linear");
        EXPECT_TRUE(Ondrel::ColorManager::addColorProfile(savedBytes(profile.get()),
                                                          Ondrel::ColorManager::ColorProfile::Embedded, &hash));
        Image pixels = randomImage(182, 182, 3);
        pixels.colorProfile = hash;
        image = pixels.toPtr();
        managed = rendered(*image, 182, 182, FilterMethod::NearestNeighbor, false);
        unmanaged = rendered(*image, 182, 182, FilterMethod::NearestNeighbor, true);
    }
    ~ManagedPreview() override
    {
        Ondrel::ColorManager::removeColorProfile(hash, Ondrel::ColorManager::ColorProfile::Embedded);
    }

    const QRectF rect{0, 0, 182, 182};
    Hash hash{};
    std::shared_ptr<const Image> image;
    QImage managed, unmanaged;
};

TEST_F(ManagedPreview, IsConvertedUnlessTheSettingIsNo)
{
    ASSERT_NE(managed, unmanaged);
    show(image);
    EXPECT_EQ(look(rect), shown(unmanaged, rect)) << "the default";
    for (const char* text : {"Yes", "no", ""}) {
        QSettings().setValue(kColorKey, text);
        show(image);
        EXPECT_EQ(look(rect), shown(managed, rect)) << text;
    }
    QSettings().setValue(kColorKey, "No");
    show(image);
    EXPECT_EQ(look(rect), shown(unmanaged, rect));
}

TEST_F(ManagedPreview, ReadsTheSettingsBeforeItQueues)
{
    QSettings().setValue(kColorKey, "Yes");
    QSignalSpy changed(&field, SIGNAL(imageChanged()));
    field.setImage(image);
    QSettings().setValue(kColorKey, "No");
    ASSERT_TRUE(changed.wait());
    EXPECT_EQ(look(rect), shown(managed, rect));
}

TEST_F(ImagePreview, RendersOnlyTheNewestOfManyImages)
{
    QSignalSpy changed(&field, SIGNAL(imageChanged()));
    // One job runs at once, of the others the last one alone.
    for (unsigned int i = 1; i <= 20; ++i)
        field.setImage(picture(182, i));
    EXPECT_TRUE(QTest::qWaitFor([this] { return field.minHeight() == 20; }));
    QThreadPool::globalInstance()->waitForDone();
    QApplication::processEvents();
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(field.minHeight(), 20);
}

TEST_F(ImagePreview, OwnsTheImageItRenders)
{
    std::weak_ptr<const Image> watched;
    QSignalSpy changed(&field, SIGNAL(imageChanged()));
    {
        const auto image = picture(500, 500);
        watched = image;
        field.setImage(image);
    }
    ASSERT_TRUE(changed.wait());
    show(picture(10, 10));
    EXPECT_TRUE(QTest::qWaitFor([&] { return watched.expired(); })); // a thread of the pool lets go of it last
}

TEST_F(ImagePreview, StoresAnImageThenEmitsThenRepaints)
{
    GraphView graph;
    auto* shownField = graph.add(new ImagePreviewField("preview", nullptr), {10, 10});
    shownField->setRect(0, 0, 182, 182);
    PaintCounter repaints(graph.scene);
    float heightWhileEmitting = -1;
    QObject::connect(shownField, &ImagePreviewField::imageChanged, shownField,
                     [&] { heightWhileEmitting = shownField->minHeight(); });
    QImage image(182, 33, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::green);
    shownField->imageFinished(image, 5);
    EXPECT_EQ(heightWhileEmitting, 33);
    EXPECT_TRUE(repaints.changed());
    shownField->imageFinished(QImage(), 0);
    EXPECT_EQ(heightWhileEmitting, 0) << "a null image is reported too";
    EXPECT_TRUE(repaints.changed());
    EXPECT_GE(shownField->metaObject()->indexOfSlot("imageFinished(QImage,int)"), 0);
}

TEST_F(ImagePreview, MayGoWhileItRenders)
{
    for (int i = 0; i < 20; ++i) {
        ImagePreviewField shortLived("preview", nullptr);
        shortLived.setImage(picture(300, 300));
        shortLived.setImage(picture(200, 300));
    }
    QThreadPool::globalInstance()->waitForDone();
    QApplication::processEvents();
}

} // namespace
