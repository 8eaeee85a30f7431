// What is known of a picture file before it is decoded.

#include <picturesize.h>

#include <tests/support/dngfile.h>

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

using Bytes = std::vector<unsigned char>;

namespace
{

Bytes saved(const char* format)
{
    QImage picture(37, 21, QImage::Format_RGB888);
    picture.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    EXPECT_TRUE(buffer.open(QIODevice::WriteOnly) && picture.save(&buffer, format));
    return Bytes(bytes.begin(), bytes.end());
}

Bytes cameraFile()
{
    OndrelTest::DngFile file;
    file.width = 96;
    file.height = 64;
    file.samples.resize(96 * 64);
    return file.bytes();
}

QSize sizeOf(const Bytes& bytes)
{
    return Host::sizeInHeader(bytes.data(), bytes.size());
}

} // namespace

TEST(PictureSize, IsReadFromTheHeader)
{
    EXPECT_EQ(sizeOf(saved("png")), QSize(37, 21));
    EXPECT_EQ(sizeOf(saved("jpg")), QSize(37, 21));
    EXPECT_EQ(sizeOf(cameraFile()), QSize(96, 64));
    EXPECT_TRUE(sizeOf({}).isEmpty());
    EXPECT_TRUE(sizeOf({'n', 'o', 'n', 'e'}).isEmpty());
    EXPECT_TRUE(sizeOf({'I', 'I', 42, 0, 255, 255, 255, 255}).isEmpty());
}

TEST(PictureSize, TruncatedAndChangedFilesDoNoHarm)
{
    for (const Bytes& whole : {saved("png"), saved("jpg"), cameraFile()}) {
        for (std::size_t size = 0; size < std::min<std::size_t>(whole.size(), 600); ++size) {
            const Bytes part(whole.begin(), whole.begin() + std::ptrdiff_t(size));
            const QSize found = sizeOf(part);
            EXPECT_TRUE(found.isEmpty() || found == sizeOf(whole)) << size;
            Bytes changed = whole;
            changed[size] = static_cast<unsigned char>(changed[size] ^ 255);
            sizeOf(changed);
        }
    }
}

TEST(PictureSize, ImportingTakesMoreThanThePixels)
{
    QTemporaryDir folder;
    const Bytes bytes = saved("png");
    QFile file(folder.filePath("a.png"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(reinterpret_cast<const char*>(bytes.data()), qint64(bytes.size()));
    file.close();
    EXPECT_EQ(Host::bytesToImport(file.fileName()), 37u * 21 * 48 + 3 * bytes.size());
    EXPECT_EQ(Host::bytesToImport(folder.filePath("none.png")), 0u);
    const Bytes noHeader(100, 7);
    EXPECT_EQ(Host::bytesToImport(noHeader.data(), noHeader.size()), 100u * 4 * 48 + 300);
}
