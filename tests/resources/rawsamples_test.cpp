// Camera RAW files, where they are there: what becomes of them against LibRaw and the formulas alone.

#include "rawstore.h"

#include "tests/reference/dng_reference.h"
#include "tests/reference/raw_reference.h"

#include <libraw/libraw.h>

#include <QDir>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;

Bytes sample(const char* name)
{
    const Bytes file = readFile(QString(ONDREL_SAMPLES_DIR) + "/raw/" + name);
    EXPECT_FALSE(file.empty()) << name;
    return file;
}

class RawSamples : public RawTest
{
protected:
    static std::shared_ptr<const Image> check(const Bytes& file)
    {
        const Image wanted = OndrelReference::processRaw(file);
        const StoredRaw stored(file);
        EXPECT_TRUE(stored.accepted);
        expectSameRaw(stored.info(), wanted);
        const auto image = stored.image();
        if (!image) {
            ADD_FAILURE() << "not decoded";
            return std::make_shared<Image>();
        }
        expectSameRaw(*image, wanted);
        EXPECT_TRUE(isRegistered(image->colorProfile));
        return image;
    }
};

TEST_F(RawSamples, FilesOfCamerasAreWhatTheFormulasGive)
{
    struct Camera {
        const char* name;
        unsigned int width, height, filters, curvePoints;
        bool hasMatrix;
    };
    for (const Camera& camera : {Camera{"canon-eos-d30.crw", 2176, 1448, 0x94949494, 0, true},
                                 Camera{"canon-kiss-x4-colorchart.dng", 1734, 1156, 0x94949494, 0, true},
                                 Camera{"kodak-dc50.kdc", 768, 512, 0x61616161, 4095, false}}) {
        SCOPED_TRACE(camera.name);
        const auto image = check(sample(camera.name));
        EXPECT_EQ(image->width, camera.width);
        EXPECT_EQ(image->height, camera.height);
        EXPECT_EQ(image->rawRotation, 0u);
        EXPECT_EQ(image->rawFilters, camera.filters);
        EXPECT_TRUE(image->rawIsMosaic);
        EXPECT_TRUE(image->rawHasInfo);
        EXPECT_EQ(image->rawToneCurve ? image->rawToneCurve->size() : 0, camera.curvePoints);
        EXPECT_EQ(image->colorProfile != Ondrel::DefaultRawColorProfileHash, camera.hasMatrix);
    }
}

TEST_F(RawSamples, SyntheticFilesAreWhatTheirNumbersGive)
{
    const QDir folder(QString(ONDREL_SAMPLES_DIR) + "/raw/synthetic");
    const QStringList names = folder.entryList({"*.dng"}, QDir::Files);
    EXPECT_GE(names.size(), 11);
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        const Bytes file = readFile(folder.filePath(name));
        const auto image = check(file);
        const OndrelReference::DngNumbers numbers(file);
        const Image wanted = numbers.decoded();
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_FLOAT_EQ(image->rawCameraMultipliers[i], float(1 / numbers.neutral[i]));
        EXPECT_TRUE(samePixels(*image, wanted));
        EXPECT_EQ(image->rawFilters, wanted.rawFilters);
        EXPECT_EQ(image->rawRotation, wanted.rawRotation);
        EXPECT_EQ(image->colorProfile, wanted.colorProfile);
    }
}

TEST_F(RawSamples, PreviewsAreThoseOfLibRaw)
{
    for (const char* const name : {"canon-eos-d30.crw", "canon-kiss-x4-colorchart.dng", "kodak-dc50.kdc"}) {
        SCOPED_TRACE(name);
        const Bytes file = sample(name);
        const auto raw = std::make_unique<LibRaw>(0u);
        ASSERT_EQ(raw->open_buffer(const_cast<unsigned char*>(file.data()), file.size()), 0);
        const bool isUnpacked = raw->unpack_thumb() == 0;
        const libraw_thumbnail_t& thumbnail = raw->imgdata.thumbnail;
        Image image;
        const bool ok = ResourceEngine::ImportRawThumbnail(QString(ONDREL_SAMPLES_DIR) + "/raw/" + name, image);
        ASSERT_EQ(ok, isUnpacked && (thumbnail.tformat == LIBRAW_THUMBNAIL_JPEG ||
                                     (thumbnail.tformat == LIBRAW_THUMBNAIL_BITMAP && thumbnail.tcolors == 3)));
        if (!ok)
            continue;
        const auto* const bytes = reinterpret_cast<const unsigned char*>(thumbnail.thumb);
        if (thumbnail.tformat == LIBRAW_THUMBNAIL_JPEG) {
            const auto info = recordOf(Bytes(bytes, bytes + thumbnail.tlength));
            Image wanted;
            EXPECT_TRUE(ResourceEngine::ReadJPEG(info, wanted, nullptr, Hash()));
            EXPECT_TRUE(samePixels(image, wanted));
            continue;
        }
        ASSERT_EQ(image.width, thumbnail.twidth);
        ASSERT_EQ(image.height, thumbnail.theight);
        for (std::size_t i = 0; i < std::size_t(image.width) * image.height * 3; ++i)
            ASSERT_EQ(image.data[i / 3 * 4 + i % 3], static_cast<std::uint16_t>(float(bytes[i]) / 255.0f * 65535.0f));
    }
}

} // namespace
