// Files that the store refuses or shows wrongly, and what the host makes of them.

#include "imageimport.h"
#include "importprofiles.h"
#include "pngencoder.h"
#include "project.h"
#include "testnodes.h"

#include <tests/resources/testfiles.h>
#include <tests/support/testimages.h>

#include <ondrel/color/colormanager.h>
#include <ondrel/resources/resourceengine.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <random>

using namespace OndrelTest;
using Host::Import;
using Ondrel::Image;

namespace
{

using Picture = std::shared_ptr<const Image>;

Import importFile(const QString& file)
{
    return onWorker([&] { return Host::importImage(file); });
}

class Importing : public testing::Test
{
protected:
    ~Importing() override
    {
        for (const Ondrel::ResourceId id : m_ids)
            ResourceEngine::Get().RemoveResource(id);
    }

    QString path(const QString& name) const { return m_folder.filePath(name); }

    QString write(const QString& name, const Bytes& bytes) const
    {
        writeFile(path(name), bytes);
        return path(name);
    }

    // Null if the file was refused.
    Picture import(const QString& name, const Bytes& bytes)
    {
        const Import made = importFile(write(name, bytes));
        note = made.note;
        return pixels(made.id);
    }

    // As the library alone has it.
    Picture unmended(const Bytes& bytes)
    {
        Ondrel::ResourceId id;
        ResourceEngine::Get().AddImageByData(ResourceEngine::FormatPNG, bytes, "plain", id);
        return pixels(id);
    }

    Picture pixels(Ondrel::ResourceId id)
    {
        Picture image;
        if (id.id == 0)
            return image;
        m_ids.push_back(id);
        EXPECT_TRUE(ResourceEngine::Get().CopyImage(id, image, Ondrel::EmbeddedColorProfile, {}));
        return image;
    }

    QString note;

private:
    QTemporaryDir m_folder;
    std::vector<Ondrel::ResourceId> m_ids;
};

Bytes jpegWithExif(J_COLOR_SPACE space, const Bytes& content)
{
    return jpegFile(randomJpeg(24, 9, space), [&](jpeg_compress_struct* jpeg) { writeExif(jpeg, content); });
}

// Where a pixel of the file stands in the upright picture, by the table of the Exif standard: the side of the picture
// at which the file's first row stands, and that at which its first column stands.
std::pair<unsigned int, unsigned int> upright(int orientation, unsigned int x, unsigned int y, unsigned int width,
                                              unsigned int height)
{
    switch (orientation) {
    case 2: // top, right
        return {width - 1 - x, y};
    case 3: // bottom, right
        return {width - 1 - x, height - 1 - y};
    case 4: // bottom, left
        return {x, height - 1 - y};
    case 5: // left, top
        return {y, x};
    case 6: // right, top
        return {height - 1 - y, x};
    case 7: // right, bottom
        return {height - 1 - y, width - 1 - x};
    case 8: // left, bottom
        return {y, width - 1 - x};
    default: // top, left
        return {x, y};
    }
}

bool isTurned(const Image& made, const Image& file, int orientation)
{
    const bool swaps = orientation >= 5;
    if (made.width != (swaps ? file.height : file.width) || made.height != (swaps ? file.width : file.height))
        return false;
    for (unsigned int y = 0; y < file.height; ++y) {
        for (unsigned int x = 0; x < file.width; ++x) {
            const auto [toX, toY] = upright(orientation, x, y, file.width, file.height);
            if (pixelAt(made, toX, toY) != pixelAt(file, x, y))
                return false;
        }
    }
    return true;
}

TEST_F(Importing, JpegOfEveryOrientationStandsUprightInBothByteOrders)
{
    const Picture rows = unmended(jpegFile(randomJpeg(24, 9, JCS_YCbCr)));
    ASSERT_TRUE(rows);
    for (int value = 1; value <= 8; ++value) {
        const bool mirrors = value == 2 || value == 4 || value == 5 || value == 7;
        for (const bool big : {false, true}) {
            const auto number = unsigned(value);
            const Bytes content = big ? bigEndianExifOrientation(number) : exifOrientation(number);
            const Picture made = import("photo.jpg", jpegWithExif(JCS_YCbCr, content));
            ASSERT_TRUE(made) << value << big;
            EXPECT_TRUE(isTurned(*made, *rows, value)) << value << big;
            EXPECT_EQ(made->colorProfile, Ondrel::DefaultColorProfileHash);
            // What the library turns by itself is not told.
            const bool isMended = value > 1 && (big || mirrors);
            EXPECT_EQ(note, isMended ? "\"photo.jpg\" was turned upright." : "") << value << big;
        }
    }
}

TEST_F(Importing, TurnedJpegKeepsItsProfile)
{
    const Bytes profile = savedBytes(rgbProfile(1.4, "Test").get());
    for (const unsigned int value : {6u, 5u}) {
        const auto fileWith = [&](const Bytes& content) {
            return jpegFile(randomJpeg(24, 9, JCS_YCbCr), [&](jpeg_compress_struct* jpeg) {
                writeExif(jpeg, content);
                writeIcc(jpeg, profile, 2);
            });
        };
        const Picture plain = unmended(fileWith(exifOrientation(1)));
        const Picture made = import("photo.jpg", fileWith(bigEndianExifOrientation(value)));
        ASSERT_TRUE(plain && made);
        EXPECT_TRUE(isTurned(*made, *plain, int(value)));
        EXPECT_EQ(made->colorProfile, plain->colorProfile);
        EXPECT_NE(made->colorProfile, Ondrel::DefaultColorProfileHash);
    }
}

TEST_F(Importing, TiffOfEveryOrientationStandsUpright)
{
    const TiffPicture picture = randomTiff(11, 6, PHOTOMETRIC_RGB, 16, 3);
    const Bytes profile = savedBytes(rgbProfile(1.6, "Test").get());
    const auto fileWith = [&](int orientation, const char* mode) {
        return tiffFile(
            picture,
            [&](TIFF* tiff) {
                TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation);
                setIccTag(tiff, profile);
            },
            mode);
    };
    const Picture rows = unmended(fileWith(1, "w"));
    ASSERT_TRUE(rows);
    for (int value = 1; value <= 8; ++value) {
        for (const char* const mode : {"wl", "wb"}) {
            const Picture made = import("scan.tif", fileWith(value, mode));
            ASSERT_TRUE(made) << value << mode;
            EXPECT_TRUE(isTurned(*made, *rows, value)) << value << mode;
            EXPECT_EQ(made->colorProfile, rows->colorProfile);
            EXPECT_EQ(note.isEmpty(), value == 1);
        }
    }
}

TEST_F(Importing, GreyPngOfEveryDepthHasItsSamplesInAllColours)
{
    for (const bool alpha : {false, true}) {
        for (const int depth : {1, 2, 4, 8, 16}) {
            if (alpha && depth < 8)
                continue;
            const PngPicture file = randomPng(13, 7, alpha ? PNG_COLOR_TYPE_GRAY_ALPHA : PNG_COLOR_TYPE_GRAY, depth);
            const Picture made = import("grey.png", pngFile(file));
            ASSERT_TRUE(made) << depth;
            EXPECT_EQ(note, "\"grey.png\" is grey and was made a colour picture.");
            EXPECT_EQ(made->colorProfile, Ondrel::DefaultColorProfileHash);
            const unsigned int largest = (1u << depth) - 1;
            for (unsigned int y = 0; y < file.height; ++y) {
                for (unsigned int x = 0; x < file.width; ++x) {
                    const auto grey = std::uint16_t(file.sample(x, y, 0) * 65535 / largest);
                    const auto a = std::uint16_t(alpha ? file.sample(x, y, 1) * 65535 / largest : 65535);
                    ASSERT_EQ(pixelAt(*made, x, y), (Pixel{grey, grey, grey, a})) << depth << ' ' << x << ' ' << y;
                }
            }
        }
    }
}

TEST_F(Importing, GreyPngKeepsTheMeaningOfItsChunks)
{
    const PngPicture grey = randomPng(9, 5, PNG_COLOR_TYPE_GRAY, 8);
    const auto primaries = [](png_struct* png, png_info* info) {
        png_set_cHRM(png, info, 0.3127, 0.329, 0.7, 0.3, 0.2, 0.7, 0.15, 0.05);
        png_set_gAMA(png, info, 1 / 1.8);
    };
    const Picture made = import("grey.png", pngFile(grey, primaries));
    const Picture colour = unmended(pngFile(randomPng(9, 5, PNG_COLOR_TYPE_RGB, 8), primaries));
    ASSERT_TRUE(made && colour);
    EXPECT_EQ(made->colorProfile, colour->colorProfile);
    EXPECT_NE(made->colorProfile, Ondrel::DefaultColorProfileHash);
}

TEST_F(Importing, GreyPngWithAGreyProfileIsConverted)
{
    const Bytes profile = savedBytes(OndrelTest::greyProfile().get()); // of gamma 2.2
    const PngPicture grey = randomPng(64, 4, PNG_COLOR_TYPE_GRAY, 16);
    const Picture made = import("grey.png", pngFile(grey, [&](png_struct* png, png_info* info) {
                                    png_set_iCCP(png, info, "grey", 0, profile.data(), png_uint_32(profile.size()));
                                }));
    ASSERT_TRUE(made);
    EXPECT_EQ(made->colorProfile, Ondrel::DefaultColorProfileHash);
    for (unsigned int x = 0; x < grey.width; ++x) {
        const double light = std::pow(grey.sample(x, 0, 0) / 65535.0, 2.2);
        const double expected = light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
        for (unsigned int channel = 0; channel < 3; ++channel)
            EXPECT_NEAR(pixelAt(*made, x, 0)[channel], expected * 65535, 128) << x; // darks go through 16-bit light
        EXPECT_EQ(pixelAt(*made, x, 0)[3], 65535);
    }
}

// A grey field of each value, coded without loss, as far as blocks of one value are.
JpegPicture greySteps()
{
    JpegPicture picture{256 * 8, 8, JCS_GRAYSCALE, Bytes(256 * 8 * 8)};
    for (std::size_t i = 0; i < picture.samples.size(); ++i)
        picture.samples[i] = static_cast<unsigned char>(i / 8 % 256);
    picture.quality = 100;
    return picture;
}

TEST_F(Importing, GreyJpegWithoutAProfileIsThatOfSrgb)
{
    const Bytes file = jpegFile(greySteps());
    ASSERT_FALSE(unmended(file));
    const Picture made = import("grey.jpg", file);
    ASSERT_TRUE(made);
    EXPECT_EQ(note, "\"grey.jpg\" is grey without a fitting colour profile and was given that of sRGB.");
    EXPECT_EQ(made->colorProfile, Ondrel::DefaultColorProfileHash);
    for (unsigned int value = 0; value < 256; ++value) {
        const Pixel pixel = pixelAt(*made, value * 8 + 3, 4);
        for (unsigned int channel = 0; channel < 3; ++channel)
            EXPECT_NEAR(pixel[channel], value * 257, 32) << value; // an eighth of the file's own step
        EXPECT_EQ(pixel[3], 65535);
    }
}

TEST_F(Importing, CmykJpegWithoutAProfileIsReadAsPlainInks)
{
    for (const bool adobe : {false, true}) {
        JpegPicture picture{8 * 8 * 8, 8, JCS_CMYK, {}};
        picture.quality = 100;
        picture.adobeMarker = adobe;
        std::vector<std::array<unsigned long, 4>> inks; // one for each block of eight pixels
        std::mt19937 random(7);
        for (unsigned int block = 0; block < 64; ++block)
            inks.push_back({random() % 256, random() % 256, random() % 256, random() % 256});
        for (unsigned int y = 0; y < picture.height; ++y) {
            for (unsigned int x = 0; x < picture.width; ++x) {
                for (const unsigned long ink : inks[x / 8])
                    picture.samples.push_back(static_cast<unsigned char>(adobe ? 255 - ink : ink));
            }
        }
        const Bytes file = jpegFile(picture);
        ASSERT_FALSE(unmended(file));
        const Picture made = import("print.jpg", file);
        ASSERT_TRUE(made) << adobe;
        EXPECT_EQ(note, "\"print.jpg\" is CMYK without a fitting colour profile, so that its colours are a guess.");
        for (unsigned int block = 0; block < 64; ++block) {
            for (unsigned int channel = 0; channel < 3; ++channel) {
                const double expected = double((255 - inks[block][channel]) * (255 - inks[block][3])) / 65025;
                EXPECT_NEAR(pixelAt(*made, block * 8 + 4, 4)[channel], expected * 65535, 192) << block; // 0.3 %
            }
        }
    }
}

TEST_F(Importing, ProfilesThatDoNotFitAreReplaced)
{
    const Bytes rgb = savedBytes(rgbProfile(1.4, "Test").get()), grey = savedBytes(OndrelTest::greyProfile().get());
    const std::pair<J_COLOR_SPACE, Bytes> cases[] = {
        {JCS_GRAYSCALE, rgb}, {JCS_CMYK, rgb}, {JCS_YCbCr, grey}, {JCS_YCbCr, randomBytes(400, 1)}};
    for (const auto& [space, profile] : cases) {
        const JpegPicture picture = randomJpeg(20, 12, space);
        const Bytes& added = profile;
        const Bytes file = jpegFile(picture, [&](jpeg_compress_struct* jpeg) { writeIcc(jpeg, added); });
        ASSERT_FALSE(unmended(file)) << space;
        const Picture made = import("photo.jpg", file);
        ASSERT_TRUE(made) << space;
        EXPECT_FALSE(note.isEmpty());
        const Picture without = import("photo.jpg", jpegFile(picture));
        ASSERT_TRUE(without);
        EXPECT_TRUE(samePixels(*made, *without)) << space;
    }
}

TEST_F(Importing, TiffOfRareKindsIsReadWithEightBits)
{
    const TiffPicture chart = randomTiff(17, 5, PHOTOMETRIC_PALETTE, 8, 1);
    std::vector<std::uint16_t> red, green, blue;
    for (std::uint16_t i = 0; i < 256; ++i) {
        red.push_back(std::uint16_t(i * 257));
        green.push_back(std::uint16_t((255 - i) * 257));
        blue.push_back(std::uint16_t((i ^ 170) * 257));
    }
    const Picture page = import("page.tif", tiffFile(chart, [&](TIFF* tiff) {
                                    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_BOTRIGHT);
                                    TIFFSetField(tiff, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
                                }));
    ASSERT_TRUE(page);
    EXPECT_EQ(note, "\"page.tif\" is a TIFF of a rare kind and was read with 8 bits a colour.");
    for (unsigned int y = 0; y < 5; ++y) {
        for (unsigned int x = 0; x < 17; ++x) {
            const std::size_t i = chart.samples[y * 17 + x];
            ASSERT_EQ(pixelAt(*page, 16 - x, 4 - y), (Pixel{red[i], green[i], blue[i], 65535})) << x << ' ' << y;
        }
    }
    const TiffPicture inks = randomTiff(9, 6, PHOTOMETRIC_SEPARATED, 8, 4);
    ASSERT_FALSE(unmended(tiffFile(inks)));
    const Picture print = import("print.tif", tiffFile(inks));
    ASSERT_TRUE(print);
    for (std::size_t i = 0; i < 9 * 6; ++i) {
        const unsigned char* const ink = inks.samples.data() + i * 4;
        for (std::size_t channel = 0; channel < 3; ++channel)
            EXPECT_NEAR(print->data[i * 4 + channel] / 257.0, (255 - ink[channel]) * (255 - ink[3]) / 255.0, 1) << i;
    }
}

TEST_F(Importing, TurnsAndGivesAProfileAtOnce)
{
    for (const unsigned int value : {2u, 6u}) {
        const Picture made = import("old.jpg", jpegWithExif(JCS_GRAYSCALE, bigEndianExifOrientation(value)));
        const Picture plain = import("old.jpg", jpegWithExif(JCS_GRAYSCALE, exifOrientation(1)));
        ASSERT_TRUE(made && plain) << value;
        EXPECT_TRUE(isTurned(*made, *plain, int(value)));
    }
    import("old.jpg", jpegWithExif(JCS_GRAYSCALE, bigEndianExifOrientation(2)));
    EXPECT_EQ(note,
              "\"old.jpg\" is grey without a fitting colour profile and was given that of sRGB. \"old.jpg\" was turned "
              "upright.");
}

TEST_F(Importing, FilesInOrderAreTakenAsTheyAre)
{
    const Bytes files[] = {pngFile(randomPng(9, 5, PNG_COLOR_TYPE_RGB_ALPHA, 16)),
                           pngFile(randomPng(9, 5, PNG_COLOR_TYPE_RGB, 8)), jpegFile(randomJpeg(9, 5, JCS_YCbCr)),
                           jpegWithExif(JCS_YCbCr, exifOrientation(6)),
                           tiffFile(randomTiff(9, 5, PHOTOMETRIC_RGB, 8, 3))};
    for (const Bytes& file : files) {
        const Import made = importFile(write("file", file));
        EXPECT_NE(made.id.id, 0u);
        EXPECT_TRUE(made.note.isEmpty());
        ResourceEngine::Format format;
        Bytes stored;
        std::string name;
        ASSERT_TRUE(ResourceEngine::Get().CopyData(made.id, format, stored, name));
        EXPECT_EQ(stored, file);
        EXPECT_EQ(QString::fromStdString(name), path("file"));
        ResourceEngine::Get().RemoveResource(made.id);
    }
}

TEST_F(Importing, StoreHasTheWholePath)
{
    write("file.png", pngFile(randomPng(9, 5, PNG_COLOR_TYPE_RGB, 8)));
    const Import made = importFile(QDir::current().relativeFilePath(path("file.png")));
    ASSERT_NE(made.id.id, 0u);
    ResourceEngine::Format format;
    Bytes stored;
    std::string name;
    EXPECT_TRUE(ResourceEngine::Get().CopyData(made.id, format, stored, name));
    EXPECT_EQ(QString::fromStdString(name), path("file.png"));
    ResourceEngine::Get().RemoveResource(made.id);
}

TEST_F(Importing, MissingFileIsRefused)
{
    EXPECT_EQ(importFile(path("none.jpg")).id.id, 0u);
    EXPECT_EQ(onWorker([&] { return Host::importRawImage(path("none.dng")); }).id.id, 0u);
    EXPECT_EQ(importFile(path("")).id.id, 0u); // the folder
}

// Cut at every byte of the head, and with single bytes changed: refused or read, and nothing else happens.
TEST_F(Importing, DamagedFilesDoNoHarm)
{
    const QuietTiff quiet;
    const Bytes files[] = {jpegFile(randomJpeg(16, 8, JCS_GRAYSCALE),
                                    [](jpeg_compress_struct* jpeg) {
                                        writeExif(jpeg, bigEndianExifOrientation(5));
                                        writeIcc(jpeg, randomBytes(50, 2), 2);
                                    }),
                           pngFile(randomPng(9, 5, PNG_COLOR_TYPE_GRAY_ALPHA, 16)),
                           tiffFile(randomTiff(9, 5, PHOTOMETRIC_RGB, 8, 3),
                                    [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_LEFTBOT); }),
                           tiffFile(randomTiff(9, 6, PHOTOMETRIC_SEPARATED, 8, 4))};
    std::mt19937 random(3);
    int refused = 0, read = 0;
    const auto tryFile = [&](const Bytes& bytes) { ++(import("damaged", bytes) ? read : refused); };
    for (const Bytes& file : files) {
        for (std::size_t size = 0; size < std::min<std::size_t>(file.size(), 200); ++size)
            tryFile(Bytes(file.begin(), file.begin() + std::ptrdiff_t(size)));
        for (int i = 0; i < 200; ++i) {
            Bytes changed = file;
            changed[random() % std::min<std::size_t>(changed.size(), 250)] = static_cast<unsigned char>(random());
            tryFile(changed);
        }
    }
    EXPECT_GT(refused, 400);
    EXPECT_GT(read, 20);
}

TEST_F(Importing, ProfilesAreTheSameBytesAtAnyTime)
{
    EXPECT_GT(Host::greyProfile().size(), 128u);
    EXPECT_GT(Host::inkProfile().size(), 128u);
    for (const Bytes& profile : {Host::greyProfile(), Host::inkProfile()})
        EXPECT_EQ(Bytes(profile.begin() + 24, profile.begin() + 36), Bytes(12, 0)); // the date
}

TEST_F(Importing, EncodedPngIsReadAsTheSamePixels)
{
    Image opaque = randomImage(17, 9, 3), coarse(17, 9);
    for (std::size_t i = 0; i < 17 * 9 * 4; ++i) {
        coarse.data[i] = std::uint16_t(i * 37 % 256 * 257);
        if (i % 4 == 3)
            opaque.data[i] = 65535;
    }
    for (const Image& image : {randomImage(17, 9, 2), opaque, coarse}) {
        const Picture read = unmended(Host::encodePng(image, {}));
        ASSERT_TRUE(read);
        EXPECT_TRUE(samePixels(*read, image));
    }
    EXPECT_TRUE(Host::encodePng(Image(), {}).empty());
    EXPECT_TRUE(Host::encodePng(opaque, randomBytes(300, 1)).empty()); // no profile that PNG bears
    EXPECT_LT(Host::encodePng(coarse, {}).size(), Host::encodePng(randomImage(17, 9, 2), {}).size());
}

// A project names the file by its path; it is mended again.
TEST_F(Importing, ProjectMendsItsPicturesAgain)
{
    const TestNodes nodes;
    const QString file = write("grey.png", pngFile(randomPng(9, 5, PNG_COLOR_TYPE_GRAY, 8)));
    const Import made = importFile(file);
    const Picture first = pixels(made.id);
    Host::Project project;
    Host::NodeRecord& record = project.graph.nodes[1];
    record.id = 1;
    record.type = "test/photo";
    record.name = "Photo";
    record.values = {{"image", QVariant::fromValue(made.id)}};
    const QString folder = QFileInfo(file).path();
    const QByteArray text = onWorker([&] { return Host::writeProject(project, folder); });
    EXPECT_FALSE(text.contains("\"data\""));
    const Host::ProjectReading reading = onWorker([&] { return Host::readProject(text, folder, nodes.types); });
    ASSERT_TRUE(reading.project) << qPrintable(reading.error);
    EXPECT_EQ(reading.notes, QStringList(made.note));
    const auto id = reading.project->graph.nodes.at(1).values.value("image").value<Ondrel::ResourceId>();
    EXPECT_NE(id.id, made.id.id);
    const Picture again = pixels(id);
    ASSERT_TRUE(first && again);
    EXPECT_TRUE(samePixels(*first, *again));
    EXPECT_EQ(onWorker([&] { return Host::writeProject(*reading.project, folder); }), text);
}

} // namespace
