// What is known of a picture file before it is decoded.

#include <picturesize.h>

#include <tests/support/dngfile.h>

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <cstdint>
#include <limits>
#include <sys/stat.h>
#include <utility>

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

// A TIFF file that says no more than its size.
Bytes headerOfTiff(std::uint32_t width, std::uint32_t height)
{
    Bytes bytes = {'I', 'I', 42, 0, 8, 0, 0, 0, 4, 0};
    // Width, height, and the place and size of the only strip; all as long numbers.
    const std::pair<unsigned char, std::uint32_t> tags[] = {{0x00, width}, {0x01, height}, {0x11, 8}, {0x17, 1}};
    for (const auto& [tag, value] : tags) {
        for (const unsigned int byte : {unsigned(tag), 1u, 4u, 0u, 1u, 0u, 0u, 0u})
            bytes.push_back(static_cast<unsigned char>(byte));
        for (unsigned int shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<unsigned char>(value >> shift & 255));
    }
    bytes.resize(bytes.size() + 4); // no further directory
    return bytes;
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

TEST(PictureSize, HeadersThatLieLeadToTheLargestNumber)
{
    const auto need = [](std::uint32_t width, std::uint32_t height) {
        const Bytes bytes = headerOfTiff(width, height);
        EXPECT_EQ(sizeOf(bytes), QSize(int(width), int(height)));
        return Host::bytesToImport(bytes.data(), bytes.size());
    };
    constexpr std::size_t largest = std::numeric_limits<std::size_t>::max();
    EXPECT_EQ(need(1u << 20, 1u << 10), (std::size_t(1) << 30) * 48 + 3 * headerOfTiff(1, 1).size());
    EXPECT_EQ(need(1u << 30, 1u << 30), largest); // whose bytes are a multiple of 2^64
    EXPECT_EQ(need(1431655768u, 268435456u), largest);
    EXPECT_EQ(need(0x7fffffffu, 0x7fffffffu), largest);
}

TEST(PictureSize, OnlyRegularFilesAreOpened)
{
    QTemporaryDir folder;
    const QByteArray pipe = QFile::encodeName(folder.filePath("pipe.png"));
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    EXPECT_EQ(Host::bytesToImport(QFile::decodeName(pipe)), 0u);
    EXPECT_EQ(Host::bytesToImport(folder.path()), 0u);
}
