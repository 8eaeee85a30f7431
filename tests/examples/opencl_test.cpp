// The command-line tools with and without an OpenCL device.

#include "programs.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdlib>

namespace
{

class OpenCLTools : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(runProgram(ONDREL_SCENE, {path("scene.png"), "120", "80"}).status, 0);
        const Outcome listed = runProgram(ONDREL_CONVERT, {"--list-devices"});
        ASSERT_EQ(listed.status, 0);
        devices = QString(listed.output).split('\n', Qt::SkipEmptyParts);
    }

    QString path(const QString& name) const { return m_directory.filePath(name); }

    QStringList devices;

private:
    QTemporaryDir m_directory;
};

int largestDifference(const QImage& a, const QImage& b)
{
    int largest = a.size() == b.size() && !a.isNull() ? 0 : 255;
    for (int y = 0; y < a.height() && largest < 255; ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            largest = std::max({largest, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                                std::abs(qBlue(p) - qBlue(q)), std::abs(qAlpha(p) - qAlpha(q))});
        }
    return largest;
}

TEST_F(OpenCLTools, ListsEachDeviceWithItsNumbersAndName)
{
    static const QRegularExpression form("^\\d+:\\d+  .");
    for (const QString& line : devices)
        EXPECT_TRUE(form.match(line).hasMatch()) << qPrintable(line);
}

TEST_F(OpenCLTools, ADeviceThatIsNotThereIsAUsageError)
{
    const Outcome outcome = runProgram(ONDREL_CONVERT, {path("scene.png"), path("a.png"), "--opencl", "9999:0"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.errors.contains("no OpenCL device \"9999:0\""));
}

TEST_F(OpenCLTools, ConvertsOnTheDeviceNamedOrTheFirstOne)
{
    const QStringList work = {"--filter", "bilinear", "--size", "50%", "--blur", "3"};
    ASSERT_EQ(runProgram(ONDREL_CONVERT, QStringList{path("scene.png"), path("here.png")} + work).status, 0);
    // The text behind --opencl is a file here, and a device below.
    const Outcome first = runProgram(ONDREL_CONVERT, QStringList{"--opencl", path("scene.png"), path("a.png")} + work);
    if (devices.isEmpty()) {
        EXPECT_EQ(first.status, 2);
        return;
    }
    EXPECT_EQ(first.status, 0) << qPrintable(first.errors);
    EXPECT_LE(largestDifference(QImage(path("a.png")), QImage(path("here.png"))), 1);
    const QString device = devices.first().section(' ', 0, 0);
    const QStringList named = QStringList{"--opencl", device, path("scene.png"), path("b.png")} + work;
    EXPECT_EQ(runProgram(ONDREL_CONVERT, named).status, 0);
    EXPECT_EQ(largestDifference(QImage(path("b.png")), QImage(path("a.png"))), 0);
}

TEST_F(OpenCLTools, BackEndsAreComparedInNumbersAndAPicture)
{
    const Outcome outcome = runProgram(ONDREL_BACKENDS, {path("scene.png"), path("difference.png")});
    if (devices.isEmpty()) {
        EXPECT_EQ(outcome.status, 2);
        return;
    }
    EXPECT_EQ(outcome.status, 0) << qPrintable(outcome.errors);
    EXPECT_TRUE(outcome.output.contains("largest difference"));
    EXPECT_EQ(QImage(path("difference.png")).size(), QSize(1800, 600));
}

TEST_F(OpenCLTools, DemosaicGivesTheSamePictureOnBothBackEnds)
{
    const Outcome processor = runProgram(ONDREL_DEMOSAIC, {"--processor", path("a.png")});
    ASSERT_EQ(processor.status, 0) << qPrintable(processor.errors);
    EXPECT_TRUE(processor.output.contains("900 x 600, interpolated on the processor"));
    const Outcome other = runProgram(ONDREL_DEMOSAIC, {path("b.png")});
    ASSERT_EQ(other.status, 0) << qPrintable(other.errors);
    EXPECT_TRUE(other.output.contains(devices.isEmpty() ? "on the processor" : "on the device"));
    EXPECT_EQ(QImage(path("a.png")), QImage(path("b.png")));
    // What it had to find: the rings have no colour of their own where they are wide.
    const QRgb pixel = QImage(path("b.png")).pixel(4, 300);
    EXPECT_NEAR(qRed(pixel), 0.85 * 255, 3);
    EXPECT_NEAR(qGreen(pixel), 0.9 * 255, 3);
}

TEST_F(OpenCLTools, DemosaicRefusesWhatIsNoRawFile)
{
    EXPECT_EQ(runProgram(ONDREL_DEMOSAIC, {path("scene.png"), path("a.png")}).status, 1);
    EXPECT_EQ(runProgram(ONDREL_DEMOSAIC, {}).status, 2);
}

} // namespace
