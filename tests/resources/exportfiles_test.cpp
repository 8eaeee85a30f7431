#include "exporting.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <csignal>
#include <sys/resource.h>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;

class ExportFiles : public testing::Test
{
protected:
    const TemporaryFolder folder;
    const QuietTiff quiet;

    static bool exportTo(const Exporter& exporter, const QString& file, const Image& image,
                         const Hash& profile = Ondrel::NoneColorProfile, Progress* progress = nullptr)
    {
        Bytes data;
        return exporter.run(file, data, image, profile, progress);
    }

    // Calls check(exporter) for each of the three that write files.
    template <typename Check>
    static void forEachExporter(Check check)
    {
        for (const Exporter& exporter : exporters())
            if (!exporter.toMemory) {
                SCOPED_TRACE(exporter.name);
                check(exporter);
            }
    }
};

TEST_F(ExportFiles, NamesAreUtf8)
{
    const QString file = folder.path("Größe 大小");
    forEachExporter([&](const Exporter& exporter) {
        EXPECT_TRUE(exportTo(exporter, file, standardImage(5, 5)));
        EXPECT_TRUE(QFile::remove(file));
    });
}

TEST_F(ExportFiles, WhatCannotBeOpenedIsRefused)
{
    ASSERT_TRUE(QDir().mkpath(folder.path("directory")));
    forEachExporter([&](const Exporter& exporter) {
        for (const QString& file : {folder.path("missing/file"), folder.path("directory"), QString()}) {
            Progress progress;
            EXPECT_FALSE(exportTo(exporter, file, standardImage(5, 5), Ondrel::NoneColorProfile, &progress));
            EXPECT_TRUE(progress.percents.empty());
        }
        EXPECT_TRUE(QFileInfo(folder.path("directory")).isDir());
    });
}

TEST_F(ExportFiles, AnOlderFileIsReplaced)
{
    const QString file = folder.path("file"), fresh = folder.path("fresh");
    forEachExporter([&](const Exporter& exporter) {
        writeFile(file, Bytes(100000, 7));
        ASSERT_TRUE(exportTo(exporter, file, standardImage(5, 5)));
        ASSERT_TRUE(exportTo(exporter, fresh, standardImage(5, 5)));
        EXPECT_EQ(readFile(file), readFile(fresh));
    });
}

TEST_F(ExportFiles, AnImageWithoutPixelsIsRefusedAndLeavesNoFile)
{
    const QString file = folder.path("file");
    for (const Image& image : {Image(), Image(0, 5), Image(5, 0)})
        forEachExporter([&](const Exporter& exporter) {
            Progress progress;
            EXPECT_FALSE(exportTo(exporter, file, image, Ondrel::NoneColorProfile, &progress));
            EXPECT_TRUE(progress.percents.empty());
            EXPECT_FALSE(QFile::exists(file));
        });
}

TEST_F(ExportFiles, AFullDiskIsFailure)
{
    const QString file = folder.path("full");
    ASSERT_TRUE(QFile::link("/dev/full", file));
    // One that fits the buffers, so that only closing the file meets the disk, and one that does not.
    for (const Image& image : {standardImage(2, 2), standardImage(300, 300)})
        forEachExporter([&](const Exporter& exporter) {
            EXPECT_FALSE(exportTo(exporter, file, image));
            Progress progress;
            EXPECT_FALSE(exportTo(exporter, file, image, Ondrel::DefaultColorProfileHash, &progress));
        });
    EXPECT_TRUE(QFile::exists("/dev/full"));
}

// Lets files grow to this size only, while the object lives: writing more fails as on a full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_before;
    void (*m_handler)(int);
};

TEST_F(ExportFiles, ADiskThatFillsAtAnyByteIsFailure)
{
    const QString file = folder.path("file");
    const Image image = standardImage(6, 5);
    forEachExporter([&](const Exporter& exporter) {
        ASSERT_TRUE(exportTo(exporter, file, image));
        const Bytes whole = readFile(file);
        ASSERT_GT(whole.size(), 100u);
        testing::internal::CaptureStderr(); // libjpeg says so each time
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const FileSizeLimit limit(size);
            EXPECT_FALSE(exportTo(exporter, file, image)) << size;
        }
        testing::internal::GetCapturedStderr();
        const FileSizeLimit limit(whole.size());
        EXPECT_TRUE(exportTo(exporter, file, image));
        EXPECT_EQ(readFile(file), whole);
    });
}

TEST_F(ExportFiles, AJpegCannotBeWiderThanLibjpegTakes)
{
    const QString file = folder.path("file");
    Bytes data;
    EXPECT_TRUE(exportTo(exporters()[1], file, standardImage(65500, 1)));
    EXPECT_FALSE(exportTo(exporters()[1], file, standardImage(65501, 1)));
    EXPECT_FALSE(exportTo(exporters()[1], file, standardImage(1, 65501)));
}

} // namespace
