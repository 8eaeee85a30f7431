#include "exporting.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>

#include <QFile>

#include <algorithm>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;

class ExportProgress : public testing::Test
{
protected:
    const TemporaryFolder folder;
    const QString file = folder.path("file");
    Bytes data;
    const RegisteredProfile cmyk{tableProfile(cmsSigCmykData)};

    // Calls check(export, name, toMemory) for every way to export, where export(image, progress) runs it.
    template <typename Check>
    void forEachExporter(Check check)
    {
        std::vector<Exporter> all = exporters();
        all.push_back(cmykExporter());
        for (const Exporter& exporter : all) {
            SCOPED_TRACE(exporter.name);
            const Hash& profile = &exporter == &all.back() ? cmyk.hash() : Ondrel::NoneColorProfile;
            check(exporter, [&](const Image& image, Progress* progress) {
                data.clear();
                return exporter.run(file, data, image, profile, progress);
            });
        }
    }
};

TEST_F(ExportProgress, TellsThePercentageOfEachRowBeforeItTruncated)
{
    for (const unsigned int height : {1u, 2u, 3u, 7u, 99u, 100u, 101u, 250u, 1000u})
        forEachExporter([&](const Exporter&, const auto& run) {
            Progress progress;
            ASSERT_TRUE(run(standardImage(3, height), &progress));
            std::vector<int> expected;
            for (unsigned int row = 0; row < height; ++row)
                expected.push_back(int(double(row) / double(height) * 100.0));
            EXPECT_EQ(progress.percents, expected);
        });
}

TEST_F(ExportProgress, OfHundredRowsIsNotAlwaysTheRow)
{
    forEachExporter([&](const Exporter&, const auto& run) {
        Progress progress;
        ASSERT_TRUE(run(standardImage(3, 100), &progress));
        ASSERT_EQ(progress.percents.size(), 100u);
        EXPECT_EQ(progress.percents[0], 0);
        EXPECT_EQ(progress.percents[28], 28);
        EXPECT_EQ(progress.percents[29], 28);
        EXPECT_EQ(progress.percents[57], 56);
        EXPECT_EQ(progress.percents[58], 57);
        EXPECT_EQ(progress.percents[99], 99);
    });
}

TEST_F(ExportProgress, IsOptional)
{
    forEachExporter([&](const Exporter&, const auto& run) { EXPECT_TRUE(run(standardImage(3, 4), nullptr)); });
}

TEST_F(ExportProgress, AStopAtAnyRowIsSuccessWithoutAFile)
{
    for (const int height : {1, 2, 10, 250})
        for (const int row : {0, 1, height / 2, 150, height - 2, height - 1}) {
            if (row < 0 || row >= height)
                continue;
            SCOPED_TRACE(testing::Message() << "row " << row << " of " << height);
            forEachExporter([&](const Exporter& exporter, const auto& run) {
                Progress progress{row};
                EXPECT_TRUE(run(standardImage(5, unsigned(height)), &progress));
                EXPECT_EQ(int(progress.percents.size()), row + 1);
                EXPECT_FALSE(QFile::exists(file));
                EXPECT_EQ(exporter.toMemory, !data.empty()); // the part that was written
            });
        }
}

TEST_F(ExportProgress, AStopOfALargeExportIsSuccessWithoutAFile)
{
    for (const int row : {0, 1, 500, 999})
        forEachExporter([&](const Exporter&, const auto& run) {
            Progress progress{row};
            EXPECT_TRUE(run(standardImage(300, 1000), &progress));
            EXPECT_EQ(int(progress.percents.size()), row + 1);
            EXPECT_FALSE(QFile::exists(file));
        });
}

TEST_F(ExportProgress, AStopRemovesTheFileThatWasThereBefore)
{
    forEachExporter([&](const Exporter& exporter, const auto& run) {
        writeFile(file, {1, 2, 3});
        Progress progress{0};
        EXPECT_TRUE(run(standardImage(5, 5), &progress));
        EXPECT_EQ(QFile::exists(file), exporter.toMemory);
        QFile::remove(file);
    });
}

TEST_F(ExportProgress, AStoppedExportToMemoryHoldsThePartThatWasWritten)
{
    forEachExporter([&](const Exporter& exporter, const auto& run) {
        if (!exporter.toMemory)
            return;
        Progress early{2}, late{40};
        ASSERT_TRUE(run(standardImage(50, 50), &early));
        const std::size_t fewRows = data.size();
        ASSERT_TRUE(run(standardImage(50, 50), &late));
        EXPECT_GT(data.size(), fewRows);
        EXPECT_EQ(data[0], 'M');
        EXPECT_EQ(data[1], 'M');
    });
}

TEST_F(ExportProgress, AStopRemovesNothingButRegularFiles)
{
    // libtiff cannot write to a pipe; the other two can, and fit its buffer.
    for (const int row : {0, 4}) {
        const std::vector<Exporter>& all = exporters();
        for (std::size_t i = 0; i < 2; ++i) {
            SCOPED_TRACE(all[i].name);
            const QString pipe = folder.path("pipe");
            ASSERT_EQ(mkfifo(qPrintable(pipe), 0600), 0);
            const int reader = open(qPrintable(pipe), O_RDONLY | O_NONBLOCK);
            ASSERT_GE(reader, 0);
            Progress progress{row};
            EXPECT_TRUE(all[i].run(pipe, data, standardImage(5, 5), Ondrel::NoneColorProfile, &progress));
            EXPECT_EQ(int(progress.percents.size()), row + 1);
            struct stat status;
            EXPECT_EQ(lstat(qPrintable(pipe), &status), 0);
            close(reader);
            QFile::remove(pipe);
        }
    }
}

TEST_F(ExportProgress, ExportsRunOnAnyNumberOfThreads)
{
    std::array<bool, 8> agreed{};
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < agreed.size(); ++i)
        threads.emplace_back([this, i, &agrees = agreed[i]] {
            const Image original = standardImage(unsigned(i) + 3, 20);
            const QString own = folder.path(std::to_string(i).c_str());
            agrees = true;
            for (int turn = 0; turn < 10; ++turn) {
                Bytes bytes;
                const Image image = original;
                const auto settings = pngSettings(Ondrel::EmbeddedColorProfile, 1, 1);
                agrees = agrees && ResourceEngine::ExportPNG(own, image, settings, nullptr, nullptr) &&
                         samePixels(readPng(readFile(own)).image, original);
                for (const Exporter& exporter : exporters())
                    agrees = agrees && exporter.run(own, bytes, image, proPhoto(), nullptr);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const bool agrees : agreed)
        EXPECT_TRUE(agrees);
}

TEST_F(ExportProgress, AStopWithoutAFileToRemoveIsSuccess)
{
    // The file goes away while it is written.
    struct Removal {
        QString file;
        static bool report(int, void* removal)
        {
            QFile::remove(static_cast<Removal*>(removal)->file);
            return false;
        }
    } removal{file};
    EXPECT_TRUE(ResourceEngine::ExportPNG(file, standardImage(5, 5), pngSettings(Ondrel::NoneColorProfile, 1, 1),
                                          Removal::report, &removal));
    EXPECT_TRUE(ResourceEngine::ExportJPEG(file, standardImage(5, 5), {90, false, false, 0, Ondrel::NoneColorProfile},
                                           Removal::report, &removal));
    EXPECT_TRUE(ResourceEngine::ExportTIFF(file, standardImage(5, 5), tiffSettings(Ondrel::NoneColorProfile, 1, 1),
                                           Removal::report, &removal));
}

} // namespace
