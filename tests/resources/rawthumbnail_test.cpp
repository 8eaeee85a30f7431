// The preview that a camera RAW file brings along.

#include "rawstore.h"

namespace
{

using namespace OndrelTest;
using Ondrel::Image;
using Preview = DngFile::Preview;

class RawThumbnail : public RawTest
{
protected:
    bool import(const Bytes& file, Image& image)
    {
        writeFile(m_folder.path("a.dng"), file);
        return ResourceEngine::ImportRawThumbnail(m_folder.path("a.dng"), image);
    }

    static DngFile withPreview(Preview kind, std::uint32_t width, std::uint32_t height, const Bytes& data)
    {
        DngFile file = randomDng(DngFile::Kind::Bayer, 48, 40);
        file.preview = kind;
        file.previewWidth = width;
        file.previewHeight = height;
        file.previewData = data;
        return file;
    }

    static Bytes jpeg(unsigned int orientation, unsigned int width = 20, unsigned int height = 13)
    {
        return jpegFile(randomJpeg(width, height, JCS_YCbCr), [orientation](jpeg_compress_struct* out) {
            if (orientation)
                writeExif(out, exifOrientation(orientation));
        });
    }

    static Image decoded(const Bytes& jpeg)
    {
        const auto info = recordOf(jpeg);
        info->format = ResourceEngine::FormatJPEG;
        Image image;
        EXPECT_TRUE(ResourceEngine::ReadJPEG(info, image, nullptr, Hash()));
        return image;
    }

private:
    const TemporaryFolder m_folder;
};

TEST_F(RawThumbnail, JpegIsReadAsAJpegFile)
{
    const Bytes data = jpeg(0);
    Image image;
    ASSERT_TRUE(import(withPreview(Preview::Jpeg, 20, 13, data).bytes(), image));
    const Image wanted = decoded(data);
    EXPECT_EQ(image.width, 20u);
    EXPECT_TRUE(samePixels(image, wanted));
    EXPECT_EQ(image.colorProfile, wanted.colorProfile);
    EXPECT_FALSE(image.rawHasInfo);
}

TEST_F(RawThumbnail, OrientationOfTheJpegIsHonoured)
{
    for (unsigned int orientation = 1; orientation <= 8; ++orientation) {
        SCOPED_TRACE(orientation);
        const Bytes data = jpeg(orientation);
        Image image;
        ASSERT_TRUE(import(withPreview(Preview::Jpeg, 20, 13, data).bytes(), image));
        EXPECT_EQ(image.width, orientation == 6 || orientation == 8 ? 13u : 20u);
        EXPECT_TRUE(samePixels(image, decoded(data)));
    }
}

TEST_F(RawThumbnail, OrientationOfTheRawFileIsNot)
{
    const Bytes data = jpeg(0);
    DngFile file = withPreview(Preview::Jpeg, 20, 13, data);
    file.orientation = 6;
    Image image;
    ASSERT_TRUE(import(file.bytes(), image));
    EXPECT_TRUE(samePixels(image, decoded(data)));
}

TEST_F(RawThumbnail, ProfileOfTheJpegComesOutInSRgb)
{
    const Bytes icc = iccOfGamma(1.37);
    const Bytes data =
        jpegFile(randomJpeg(20, 13, JCS_YCbCr), [&icc](jpeg_compress_struct* out) { writeIcc(out, icc); });
    Image image;
    ASSERT_TRUE(import(withPreview(Preview::Jpeg, 20, 13, data).bytes(), image));
    EXPECT_TRUE(samePixels(image, decoded(data)));
    EXPECT_EQ(image.colorProfile, Ondrel::DefaultColorProfileHash);
    EXPECT_FALSE(samePixels(image, decoded(jpeg(0)))); // which differs in its profile alone
}

TEST_F(RawThumbnail, BitmapIsWidenedAndOpaque)
{
    Bytes data = randomBytes(30 * 9 * 3, 3);
    for (std::size_t i = 0; i < 256; ++i)
        data[i] = static_cast<unsigned char>(i); // each value once
    Image image = withMetadata(4, 4);
    ASSERT_TRUE(import(withPreview(Preview::Bitmap, 30, 9, data).bytes(), image));
    ASSERT_EQ(image.width, 30u);
    ASSERT_EQ(image.height, 9u);
    EXPECT_EQ(image.colorProfile, Hash());
    EXPECT_FALSE(image.rawHasInfo);
    for (std::size_t i = 0; i < 30 * 9; ++i) {
        for (std::size_t c = 0; c < 3; ++c) {
            const float value = float(data[3 * i + c]) / 255.0f;
            ASSERT_EQ(image.data[4 * i + c], static_cast<std::uint16_t>(value * 65535.0f)) << i << ' ' << c;
        }
        ASSERT_EQ(image.data[4 * i + 3], 65535);
    }
}

TEST_F(RawThumbnail, GreyBitmapIsRefused)
{
    DngFile file = withPreview(Preview::Bitmap, 30, 9, randomBytes(30 * 9, 3));
    file.previewChannels = 1;
    Image image;
    EXPECT_FALSE(import(file.bytes(), image));
}

TEST_F(RawThumbnail, FilesWithoutAPreviewAreRefused)
{
    Image image;
    EXPECT_FALSE(import(randomDng(DngFile::Kind::Bayer, 30, 30).bytes(), image));
    EXPECT_FALSE(import({}, image));
    EXPECT_FALSE(import(randomBytes(1000, 1), image));
    EXPECT_FALSE(import(pngWith({}), image));
    EXPECT_FALSE(ResourceEngine::ImportRawThumbnail("/nowhere/none.dng", image));
}

TEST_F(RawThumbnail, DamagedPreviewsAreRefusedOrComeBackWhole)
{
    Image image;
    EXPECT_FALSE(import(withPreview(Preview::Jpeg, 20, 13, randomBytes(500, 1)).bytes(), image));
    Bytes cut = jpeg(0);
    cut.resize(100); // in the middle of the tables
    EXPECT_FALSE(import(withPreview(Preview::Jpeg, 20, 13, cut).bytes(), image));
    // Fewer samples than the size asks for.
    for (const std::size_t size : {0u, 1u, 2u, 3u, 100u, 809u, 810u}) {
        SCOPED_TRACE(size);
        const Bytes data = randomBytes(size, 1);
        if (!import(withPreview(Preview::Bitmap, 30, 9, data).bytes(), image))
            continue;
        ASSERT_EQ(image.width, 30u);
        ASSERT_EQ(image.height, 9u);
        for (std::size_t i = 0; i < size / 3; ++i)
            ASSERT_EQ(image.data[4 * i], static_cast<std::uint16_t>(float(data[3 * i]) / 255.0f * 65535.0f)) << i;
        for (std::size_t i = 0; i < 30 * 9; ++i)
            ASSERT_EQ(image.data[4 * i + 3], 65535);
    }
}

TEST_F(RawThumbnail, FilesCutShortNeverCrash)
{
    for (const Preview kind : {Preview::Jpeg, Preview::Bitmap}) {
        const Bytes whole =
            withPreview(kind, 20, 13, kind == Preview::Jpeg ? jpeg(0) : randomBytes(20 * 13 * 3, 1)).bytes();
        for (std::size_t size = 0; size < whole.size(); size += 97) {
            Image image;
            import(Bytes(whole.begin(), whole.begin() + std::ptrdiff_t(size)), image);
        }
    }
}

} // namespace
