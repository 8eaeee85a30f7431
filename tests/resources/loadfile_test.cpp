#include "decoding.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>

#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <thread>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;

constexpr Hash kNoHash{};

// The bytes that a name gives, where `before` stood in the record.
std::pair<bool, Bytes> loaded(const std::string& name, const Bytes& before = {1, 2, 3})
{
    auto record = recordOf(before);
    const bool ok = ResourceEngine::LoadDataFromFile(name, record);
    return {ok, record->data};
}

class LoadFile : public testing::Test
{
protected:
    const TemporaryFolder folder;

    std::string name(const char* file) const { return folder.path(file).toStdString(); }
};

TEST_F(LoadFile, GivesTheWholeContent)
{
    for (const std::size_t size : {0u, 1u, 4096u, 1000003u}) {
        const Bytes content = randomBytes(size, unsigned(size));
        writeFile(folder.path("file"), content);
        EXPECT_EQ(loaded(name("file")), std::pair(true, content));
    }
}

TEST_F(LoadFile, NamesAreUtf8)
{
    writeFile(folder.path("Größe 大小.png"), {4, 5});
    EXPECT_EQ(loaded(name("Größe 大小.png")), std::pair(true, Bytes{4, 5}));
}

TEST_F(LoadFile, LinksToFilesAreFollowed)
{
    writeFile(folder.path("file"), {4, 5});
    ASSERT_TRUE(QFile::link(folder.path("file"), folder.path("link")));
    EXPECT_EQ(loaded(name("link")), std::pair(true, Bytes{4, 5}));
}

TEST_F(LoadFile, WhatIsNoRegularFileIsRefusedAtOnce)
{
    ASSERT_EQ(mkfifo(name("pipe").c_str(), 0600), 0); // opening it would wait for ever
    QFile::link(folder.path("nowhere"), folder.path("dangling"));
    QFile::link(folder.path("loop"), folder.path("loop"));
    for (const std::string& file :
         {name("missing"), name("."), name("pipe"), name("dangling"), name("loop"), name("missing/file"),
          std::string("/dev/zero"), std::string("/dev/null"), std::string()})
        EXPECT_EQ(loaded(file), std::pair(false, Bytes{1, 2, 3})) << file;
}

TEST_F(LoadFile, PngIsImportedInItsOwnProfile)
{
    const Profile own = rgbProfile(1.9, "Own");
    const PngPicture picture = randomPng(9, 7, PNG_COLOR_TYPE_RGB, 8);
    const Bytes file = pngFile(picture, [icc = savedBytes(own.get())](png_struct* png, png_info* info) {
        png_set_iCCP(png, info, "own", 0, icc.data(), png_uint_32(icc.size()));
    });
    writeFile(folder.path("ö.png"), file);
    Image image;
    ASSERT_TRUE(ResourceEngine::ImportPNG(folder.path("ö.png"), image));
    EXPECT_TRUE(samePixels(image, readPng(file).image));
    EXPECT_EQ(image.colorProfile, hashOf(own));
}

TEST_F(LoadFile, JpegAndTiffAreImportedInSrgb)
{
    const Profile own = rgbProfile(1.9, "Own");
    const Bytes icc = savedBytes(own.get());
    const Bytes jpeg = jpegFile(randomJpeg(9, 7, JCS_YCbCr), [&](jpeg_compress_struct* out) { writeIcc(out, icc); });
    const Bytes tiff = tiffFile(randomTiff(9, 7, PHOTOMETRIC_RGB, 16, 3), [&](TIFF* out) { setIccTag(out, icc); });
    writeFile(folder.path("ö.jpg"), jpeg);
    writeFile(folder.path("ö.tif"), tiff);
    Image image;
    ASSERT_TRUE(ResourceEngine::ImportJPEG(folder.path("ö.jpg"), image));
    EXPECT_TRUE(samePixels(image, readJpeg(jpeg, kNoHash).image));
    EXPECT_EQ(image.colorProfile, Ondrel::DefaultColorProfileHash);
    ASSERT_TRUE(ResourceEngine::ImportTIFF(folder.path("ö.tif"), image));
    EXPECT_TRUE(samePixels(image, readTiff(tiff, kNoHash).image));
    EXPECT_EQ(image.colorProfile, Ondrel::DefaultColorProfileHash);
}

TEST_F(LoadFile, ImportsOfAnotherKindOrOfNothingAreRefused)
{
    const QuietTiff quiet;
    writeFile(folder.path("a.png"), pngFile(randomPng(9, 7, PNG_COLOR_TYPE_RGB, 8)));
    writeFile(folder.path("empty"), {});
    Image image;
    EXPECT_FALSE(ResourceEngine::ImportJPEG(folder.path("a.png"), image));
    EXPECT_FALSE(ResourceEngine::ImportTIFF(folder.path("a.png"), image));
    for (const char* const file : {"missing", ".", "empty"}) {
        EXPECT_FALSE(ResourceEngine::ImportPNG(folder.path(file), image));
        EXPECT_FALSE(ResourceEngine::ImportJPEG(folder.path(file), image));
        EXPECT_FALSE(ResourceEngine::ImportTIFF(folder.path(file), image));
    }
}

TEST_F(LoadFile, ImportsRunOnAnyNumberOfThreads)
{
    const Bytes png = pngFile(randomPng(40, 30, PNG_COLOR_TYPE_RGB, 8)), jpeg = jpegFile(randomJpeg(40, 30, JCS_YCbCr)),
                tiff = tiffFile(randomTiff(40, 30, PHOTOMETRIC_RGB, 16, 3));
    writeFile(folder.path("a.png"), png);
    writeFile(folder.path("a.jpg"), jpeg);
    writeFile(folder.path("a.tif"), tiff);
    const Image expected[] = {readPng(png).image, readJpeg(jpeg, kNoHash).image, readTiff(tiff, kNoHash).image};
    std::array<bool, 8> agreed{};
    std::vector<std::thread> threads;
    for (bool& agrees : agreed)
        threads.emplace_back([&] {
            agrees = true;
            for (int i = 0; i < 20; ++i) {
                Image image;
                agrees = agrees && ResourceEngine::ImportPNG(folder.path("a.png"), image) &&
                         samePixels(image, expected[0]) && ResourceEngine::ImportJPEG(folder.path("a.jpg"), image) &&
                         samePixels(image, expected[1]) && ResourceEngine::ImportTIFF(folder.path("a.tif"), image) &&
                         samePixels(image, expected[2]);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const bool agrees : agreed)
        EXPECT_TRUE(agrees);
}

} // namespace
