// Files of one flat colour pack more pixels into a byte than any photograph. They are as honest as others.

#include "exporting.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/resources/resourceengine.h>

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;

constexpr unsigned int kSide = 3000;

class DenseFiles : public testing::Test
{
protected:
    static Image white()
    {
        Image image(kSide, kSide);
        image.FastFill(65535);
        image.colorProfile = Ondrel::DefaultColorProfileHash;
        return image;
    }

    Bytes written(const QString& name) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        return Bytes(bytes.begin(), bytes.end());
    }

    QString path(const QString& name) const { return m_directory.filePath(name); }

    // The file decodes to its size, and its first and last pixels are nearly white.
    static void expectWhite(const Bytes& bytes)
    {
        auto info = std::make_shared<ResourceEngine::ImageInfo>();
        info->data = bytes;
        ASSERT_TRUE(ResourceEngine::ValidateImage(info, nullptr)) << bytes.size() << " bytes";
        EXPECT_EQ(info->info.width, kSide);
        EXPECT_EQ(info->info.height, kSide);
        Image image;
        const auto embedded = Ondrel::EmbeddedColorProfile;
        ASSERT_TRUE(info->format == ResourceEngine::FormatPNG ? ResourceEngine::ReadPNG(info, image, nullptr)
                    : info->format == ResourceEngine::FormatJPEG
                        ? ResourceEngine::ReadJPEG(info, image, nullptr, embedded)
                        : ResourceEngine::ReadTIFF(info, image, nullptr, embedded));
        EXPECT_GE(pixelAt(image, 0, 0)[1], 65000);
        EXPECT_GE(pixelAt(image, kSide - 1, kSide - 1)[1], 65000);
    }

private:
    QTemporaryDir m_directory;
};

TEST_F(DenseFiles, PngIsRead)
{
    for (const unsigned int depth : {0u, 1u}) {
        const ResourceEngine::ExportPNGSettings settings{9, Ondrel::NoneColorProfile, 0, depth};
        ASSERT_TRUE(ResourceEngine::ExportPNG(path("a.png"), white(), settings, nullptr, nullptr));
        const Bytes bytes = written("a.png");
        EXPECT_GT(kSide * kSide / bytes.size(), 64u);
        expectWhite(bytes);
    }
}

TEST_F(DenseFiles, JpegIsReadBaselineAndProgressive)
{
    for (const bool progressive : {false, true})
        for (const int quality : {50, 90}) {
            const ResourceEngine::ExportJPEGSettings settings{quality, true, progressive, 0, Ondrel::NoneColorProfile};
            ASSERT_TRUE(ResourceEngine::ExportJPEG(path("a.jpg"), white(), settings, nullptr, nullptr));
            const Bytes bytes = written("a.jpg");
            EXPECT_GT(kSide * kSide / bytes.size(), 64u);
            expectWhite(bytes);
        }
}

TEST_F(DenseFiles, TiffIsReadInEachCompression)
{
    for (const unsigned int compression : {0u, 1u, 2u, 3u}) {
        Bytes bytes;
        const ResourceEngine::ExportTIFFSettings settings{Ondrel::NoneColorProfile, 0, 0, compression};
        ASSERT_TRUE(ResourceEngine::ExportTIFFToMemory(bytes, white(), settings, nullptr, nullptr));
        expectWhite(bytes);
    }
}

TEST_F(DenseFiles, AnOrdinaryJpegCutShortStillGivesItsFirstRows)
{
    Image image = randomImage(400, 300, 1);
    for (unsigned int i = 0; i < 400 * 300; ++i)
        image.data[i * 4 + 3] = 65535;
    const ResourceEngine::ExportJPEGSettings settings{95, false, false, 0, Ondrel::NoneColorProfile};
    ASSERT_TRUE(ResourceEngine::ExportJPEG(path("a.jpg"), image, settings, nullptr, nullptr));
    auto whole = std::make_shared<ResourceEngine::ImageInfo>(), half = std::make_shared<ResourceEngine::ImageInfo>();
    whole->data = written("a.jpg");
    half->data.assign(whole->data.begin(), whole->data.begin() + std::ptrdiff_t(whole->data.size() / 2));
    Image expected, cut;
    ASSERT_TRUE(ResourceEngine::ReadJPEG(whole, expected, nullptr, Ondrel::EmbeddedColorProfile));
    ASSERT_TRUE(ResourceEngine::ReadJPEG(half, cut, nullptr, Ondrel::EmbeddedColorProfile));
    ASSERT_EQ(cut.height, 300u);
    EXPECT_TRUE(std::equal(cut.data, cut.data + 400 * 100 * 4, expected.data));
    // What is missing is of one colour.
    EXPECT_EQ(pixelAt(cut, 10, 299), pixelAt(cut, 390, 290));
}

} // namespace
