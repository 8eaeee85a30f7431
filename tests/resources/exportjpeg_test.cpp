#include "exporting.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/resources/jpegicc.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::Image;
using Settings = ResourceEngine::ExportJPEGSettings;

Bytes roundedRows(const Image& image)
{
    Bytes rows;
    for (unsigned int i = 0; i < image.width * image.height * 4; ++i)
        if (i % 4 != 3)
            rows.push_back(std::uint8_t(std::min(std::lround(image.data[i] / 65535.0 * 255.0), 255L)));
    return rows;
}

// A compressor that writes to memory.
class MemoryJpeg
{
public:
    MemoryJpeg()
    {
        jpeg.err = jpeg_std_error(&m_errors);
        jpeg_create_compress(&jpeg);
        jpeg_mem_dest(&jpeg, &m_buffer, &m_size);
    }
    ~MemoryJpeg()
    {
        jpeg_destroy_compress(&jpeg);
        std::free(m_buffer);
    }
    MemoryJpeg(const MemoryJpeg&) = delete;
    MemoryJpeg& operator=(const MemoryJpeg&) = delete;

    Bytes finish()
    {
        jpeg_finish_compress(&jpeg);
        return Bytes(m_buffer, m_buffer + m_size);
    }

    jpeg_compress_struct jpeg;

private:
    jpeg_error_mgr m_errors;
    unsigned char* m_buffer = nullptr;
    unsigned long m_size = 0;
};

// The file that libjpeg writes of these rows by itself.
Bytes writtenByLibjpeg(Bytes rows, unsigned int width, unsigned int height, const Settings& settings, const Bytes& icc)
{
    MemoryJpeg memory;
    jpeg_compress_struct& jpeg = memory.jpeg;
    jpeg.image_width = width;
    jpeg.image_height = height;
    jpeg.input_components = 3;
    jpeg.in_color_space = JCS_RGB;
    jpeg.input_gamma = 2.2;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, settings.quality, FALSE);
    if (settings.progressive)
        jpeg_simple_progression(&jpeg);
    jpeg.optimize_coding = settings.optimizeCoding;
    jpeg.smoothing_factor = settings.smoothingFactor;
    jpeg.dct_method = JDCT_ISLOW;
    jpeg_start_compress(&jpeg, TRUE);
    if (!icc.empty())
        writeIcc(&jpeg, icc, unsigned((icc.size() + 65518) / 65519));
    for (unsigned int y = 0; y < height; ++y) {
        unsigned char* row = &rows[std::size_t(y) * width * 3];
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    return memory.finish();
}

class ExportJpeg : public testing::Test
{
protected:
    const TemporaryFolder folder;
    const QString file = folder.path("file.jpg");

    Bytes exported(const Image& image, const Settings& settings)
    {
        EXPECT_TRUE(ResourceEngine::ExportJPEG(file, image, settings, nullptr, nullptr));
        return readFile(file);
    }
};

TEST_F(ExportJpeg, IsTheFileThatLibjpegWritesOfTheRoundedRows)
{
    const Image image = standardImage(37, 29);
    for (const int quality : {0, 1, 10, 75, 90, 100})
        for (const bool optimize : {false, true})
            for (const bool progressive : {false, true})
                for (const int smoothing : {0, 50, 100}) {
                    const Settings settings{quality, optimize, progressive, smoothing, Ondrel::NoneColorProfile};
                    EXPECT_EQ(exported(image, settings), writtenByLibjpeg(roundedRows(image), 37, 29, settings, {}))
                        << quality << ' ' << optimize << ' ' << progressive << ' ' << smoothing;
                }
}

TEST_F(ExportJpeg, EveryValueIsRounded)
{
    const Image image = everyValue();
    const Settings settings{100, false, false, 0, Ondrel::NoneColorProfile};
    EXPECT_EQ(exported(image, settings), writtenByLibjpeg(roundedRows(image), 256, 256, settings, {}));
}

TEST_F(ExportJpeg, HalfIsRoundedUpAndAlphaDropped)
{
    Image image(8, 8);
    image.Fill(32768, 32768, 32768, 0);
    const Bytes bytes = exported(image, {100, false, false, 0, Ondrel::NoneColorProfile});
    EXPECT_EQ(decodeJpeg(bytes).samples, Bytes(8 * 8 * 3, 128));
}

TEST_F(ExportJpeg, SmallSizesAreWritten)
{
    for (const auto& [width, height] : {std::pair(1u, 1u), std::pair(1u, 40u), std::pair(40u, 1u)}) {
        const Image image = standardImage(width, height);
        const Settings settings{90, true, true, 0, Ondrel::NoneColorProfile};
        EXPECT_EQ(exported(image, settings), writtenByLibjpeg(roundedRows(image), width, height, settings, {}));
    }
}

TEST_F(ExportJpeg, TheOwnProfileIsEmbeddedBehindTheHeader)
{
    const Image image = standardImage(9, 9);
    const Settings settings{90, false, false, 0, Ondrel::EmbeddedColorProfile};
    const Bytes icc = ColorManager::copyColorProfileDataByHash(Ondrel::DefaultColorProfileHash);
    EXPECT_EQ(exported(image, settings), writtenByLibjpeg(roundedRows(image), 9, 9, settings, icc));
    EXPECT_EQ(readJpeg(readFile(file)).image.colorProfile, Ondrel::DefaultColorProfileHash);
}

TEST_F(ExportJpeg, AnotherProfileConvertsThePixels)
{
    Image image = standardImage(9, 9), copy = image;
    Bytes icc;
    ResourceEngine::PrepareImageForExport(copy, proPhoto(), icc);
    const Settings settings{90, false, false, 0, proPhoto()};
    EXPECT_EQ(exported(image, settings), writtenByLibjpeg(roundedRows(copy), 9, 9, settings, icc));
    EXPECT_EQ(readJpeg(readFile(file)).image.colorProfile, proPhoto());
}

TEST_F(ExportJpeg, WithoutAProfileNoneIsEmbedded)
{
    Image image = standardImage(9, 9);
    EXPECT_TRUE(iccMarkers(exported(image, {90, false, false, 0, Ondrel::NoneColorProfile})).empty());
    image.colorProfile = wordHash("unknown");
    EXPECT_TRUE(iccMarkers(exported(image, {90, false, false, 0, Ondrel::EmbeddedColorProfile})).empty());
}

TEST_F(ExportJpeg, AnImageShrunkInPlaceIsWrittenByItsSize)
{
    const Image image = shrunkImage(7, 5, 1);
    const Settings settings{90, false, false, 0, Ondrel::NoneColorProfile};
    EXPECT_EQ(exported(image, settings), writtenByLibjpeg(roundedRows(image), 7, 5, settings, {}));
}

// ---- JPEGWriteICCProfile

std::vector<Bytes> markersOf(const Bytes& profile)
{
    MemoryJpeg memory;
    memory.jpeg.image_width = memory.jpeg.image_height = 8;
    memory.jpeg.input_components = 1;
    memory.jpeg.in_color_space = JCS_GRAYSCALE;
    jpeg_set_defaults(&memory.jpeg);
    jpeg_start_compress(&memory.jpeg, TRUE);
    JPEGWriteICCProfile(&memory.jpeg, profile.data(), unsigned(profile.size()));
    unsigned char samples[8] = {};
    unsigned char* row = samples;
    for (int y = 0; y < 8; ++y)
        jpeg_write_scanlines(&memory.jpeg, &row, 1);
    return iccMarkers(memory.finish());
}

TEST(JpegWriteIccProfile, SplitsIntoNumberedMarkers)
{
    for (const std::size_t size : {1u, 400u, 65518u, 65519u, 65520u, 131037u, 131038u, 131039u, 700000u}) {
        const Bytes profile = randomBytes(size, unsigned(size));
        const std::vector<Bytes> markers = markersOf(profile);
        const std::size_t total = (size + 65518) / 65519;
        ASSERT_EQ(markers.size(), total) << size;
        Bytes joined;
        for (std::size_t i = 0; i < total; ++i) {
            const Bytes& marker = markers[i];
            ASSERT_GT(marker.size(), 14u);
            EXPECT_EQ(std::string(marker.begin(), marker.begin() + 12), std::string("ICC_PROFILE\0", 12));
            EXPECT_EQ(marker[12], i + 1);
            EXPECT_EQ(marker[13], total);
            EXPECT_TRUE(marker.size() == 65533 || i + 1 == total);
            append(joined, Bytes(marker.begin() + 14, marker.end()));
        }
        EXPECT_EQ(joined, profile);
    }
}

TEST(JpegWriteIccProfile, OneByteMoreThanAMarkerHoldsTakesASecondOne)
{
    EXPECT_EQ(markersOf(Bytes(65519, 7)).size(), 1u);
    const std::vector<Bytes> markers = markersOf(Bytes(65520, 7));
    ASSERT_EQ(markers.size(), 2u);
    EXPECT_EQ(markers[0].size(), 65533u);
    EXPECT_EQ(markers[1], (Bytes{'I', 'C', 'C', '_', 'P', 'R', 'O', 'F', 'I', 'L', 'E', 0, 2, 2, 7}));
}

TEST(JpegWriteIccProfile, NoBytesAreNoMarker)
{
    EXPECT_TRUE(markersOf({}).empty());
}

} // namespace
