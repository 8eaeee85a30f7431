#include "decoding.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/core/runtimestatistics.h>

namespace
{

using namespace OndrelTest;

const Bytes& png()
{
    static const Bytes file = pngFile(randomPng(9, 7, PNG_COLOR_TYPE_RGB, 8));
    return file;
}

const Bytes& jpeg()
{
    static const Bytes file = jpegFile(randomJpeg(9, 7, JCS_YCbCr));
    return file;
}

const Bytes& tiff()
{
    static const Bytes file = tiffFile(randomTiff(9, 7, PHOTOMETRIC_RGB, 8, 3));
    return file;
}

// A record whose description differs from anything that a validation could write.
std::shared_ptr<ResourceEngine::ImageInfo> markedRecord(const Bytes& file)
{
    auto record = recordOf(file);
    record->format = ResourceEngine::FormatRAW;
    record->info.width = record->info.height = 12345;
    record->info.rawFilters = 7;
    return record;
}

TEST(Validate, FindsTheFormatByTheContentAlone)
{
    for (const auto& [file, format] : {std::pair(png(), ResourceEngine::FormatPNG),
                                       {jpeg(), ResourceEngine::FormatJPEG},
                                       {tiff(), ResourceEngine::FormatTIFF}}) {
        const auto record = markedRecord(file);
        record->fileName = "picture.gif";
        ASSERT_TRUE(ResourceEngine::ValidateImage(record, nullptr));
        EXPECT_EQ(record->format, format);
        EXPECT_EQ(record->info.width, 9u);
        EXPECT_EQ(record->info.height, 7u);
        EXPECT_EQ(record->info.rawFilters, 7u); // only the size is written
        EXPECT_EQ(record->fileName, "picture.gif");
        EXPECT_EQ(record->data, file);
    }
}

TEST(Validate, WhatNoFormatAcceptsLeavesTheRecordAlone)
{
    const QuietTiff quiet;
    Bytes damagedPng = png();
    damagedPng[damagedPng.size() - 20] ^= 0xFF; // inside the pixels: the signature is whole
    for (const Bytes& file : {Bytes(), Bytes(100, 0), randomBytes(3000, 1), damagedPng}) {
        const auto record = markedRecord(file);
        void* profile = nullptr;
        EXPECT_FALSE(ResourceEngine::ValidateImage(record, &profile));
        EXPECT_EQ(profile, nullptr);
        EXPECT_EQ(record->format, ResourceEngine::FormatRAW);
        EXPECT_EQ(record->info.width, 12345u);
    }
}

TEST(Validate, EachFormatAcceptsItsOwnFilesOnly)
{
    const QuietTiff quiet;
    using Validator = bool (*)(const std::shared_ptr<ResourceEngine::ImageInfo>&, void**);
    const Validator validators[] = {ResourceEngine::ValidatePNG, ResourceEngine::ValidateJPEG,
                                    ResourceEngine::ValidateTIFF};
    const Bytes files[] = {png(), jpeg(), tiff()};
    for (int file = 0; file < 3; ++file)
        for (int format = 0; format < 3; ++format) {
            const auto record = markedRecord(files[file]);
            EXPECT_EQ(validators[format](record, nullptr), file == format);
            EXPECT_EQ(record->info.width, file == format ? 9u : 12345u);
            EXPECT_EQ(record->info.height, file == format ? 7u : 12345u);
            EXPECT_EQ(record->format, ResourceEngine::FormatRAW); // only ValidateImage decides on it
        }
}

TEST(Validate, TheSizeIsThatOfTheTurnedImage)
{
    const auto record = recordOf(
        jpegFile(randomJpeg(9, 7, JCS_YCbCr), [](jpeg_compress_struct* out) { writeExif(out, exifOrientation(6)); }));
    ASSERT_TRUE(ResourceEngine::ValidateImage(record, nullptr));
    EXPECT_EQ(record->info.width, 7u);
    EXPECT_EQ(record->info.height, 9u);
}

TEST(Validate, HandsOverTheFilesOwnProfile)
{
    const Profile own = rgbProfile(1.9, "Own");
    const Bytes icc = savedBytes(own.get());
    const Bytes files[] = {
        pngFile(randomPng(9, 7, PNG_COLOR_TYPE_RGB, 8),
                [&](png_struct* out, png_info* info) {
                    png_set_iCCP(out, info, "own", 0, icc.data(), png_uint_32(icc.size()));
                }),
        jpegFile(randomJpeg(9, 7, JCS_YCbCr), [&](jpeg_compress_struct* out) { writeIcc(out, icc); }),
        tiffFile(randomTiff(9, 7, PHOTOMETRIC_RGB, 8, 3), [&](TIFF* out) { setIccTag(out, icc); })};
    for (const Bytes& file : files) {
        void* profile = nullptr;
        ASSERT_TRUE(ResourceEngine::ValidateImage(recordOf(file), &profile));
        const Profile handle(profile);
        EXPECT_EQ(savedBytes(handle.get()), icc);
    }
}

TEST(Validate, GreyFilesHandOverNoneButPng)
{
    const Bytes icc = savedBytes(greyProfile().get());
    const auto handed = [](const Bytes& file) {
        void* profile = nullptr;
        EXPECT_TRUE(ResourceEngine::ValidateImage(recordOf(file), &profile));
        return Profile(profile);
    };
    EXPECT_EQ(handed(jpegFile(randomJpeg(9, 7, JCS_GRAYSCALE), [&](jpeg_compress_struct* out) { writeIcc(out, icc); })),
              nullptr);
    EXPECT_EQ(handed(tiffFile(randomTiff(9, 7, PHOTOMETRIC_MINISBLACK, 8, 1))), nullptr);
    EXPECT_EQ(hashOf(handed(pngFile(randomPng(9, 7, PNG_COLOR_TYPE_GRAY, 8)))), Ondrel::DefaultColorProfileHash);
}

TEST(Validate, KeepsNoPixels)
{
    const auto before = RunTimeStatistics::Get(RunTimeStatistics::ImageMemory);
    for (const Bytes& file : {png(), jpeg(), tiff()}) {
        const auto record = recordOf(file);
        ASSERT_TRUE(ResourceEngine::ValidateImage(record, nullptr));
        EXPECT_EQ(record->image, nullptr);
        EXPECT_EQ(RunTimeStatistics::Get(RunTimeStatistics::ImageMemory), before);
    }
}

} // namespace
