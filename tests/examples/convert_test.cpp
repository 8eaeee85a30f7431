// The command-line tools, as a user runs them.

#include "programs.h"

#include <ondrel/pixel/perspective.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>

namespace
{

Outcome convert(const QStringList& arguments)
{
    return runProgram(ONDREL_CONVERT, arguments);
}

class Convert : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(runProgram(ONDREL_SCENE, {path("scene.png"), "120", "80"}).status, 0);
        scene = path("scene.png");
    }

    QString path(const QString& name) const { return m_directory.filePath(name); }

    // Size of a picture as Qt reads it; empty if it cannot.
    static QSize sizeOf(const QString& file) { return QImage(file).size(); }

    QString scene;

private:
    QTemporaryDir m_directory;
};

TEST_F(Convert, WritesEachFormatByItsEnding)
{
    for (const char* name : {"a.png", "a.jpg", "a.jpeg"}) {
        const Outcome outcome = convert({scene, path(name)});
        EXPECT_EQ(outcome.status, 0) << qPrintable(outcome.errors);
        EXPECT_EQ(sizeOf(path(name)), QSize(120, 80));
        EXPECT_TRUE(outcome.output.contains("-> " + path(name)));
    }
    EXPECT_EQ(convert({scene, path("a.tif"), "--compression", "lzw"}).status, 0);
    EXPECT_TRUE(convert({"--info", path("a.tif")}).output.contains("TIFF, 120 x 80"));
}

TEST_F(Convert, AppliesOperationsInTheOrderGiven)
{
    EXPECT_EQ(convert({scene, path("a.png"), "--crop", "60x40+10+10", "--size", "50%"}).status, 0);
    EXPECT_EQ(sizeOf(path("a.png")), QSize(30, 20));
    EXPECT_EQ(convert({scene, path("b.png"), "--size", "50%", "--crop", "60x40+10+10"}).status, 0);
    EXPECT_EQ(sizeOf(path("b.png")), QSize(50, 30));
    EXPECT_EQ(convert({scene, path("c.png"), "--rotate", "90", "--size", "40x200", "--rotate", "90"}).status, 0);
    EXPECT_EQ(sizeOf(path("c.png")), QSize(60, 40));
    EXPECT_EQ(convert({scene, path("d.png"), "--size", "40x200!"}).status, 0);
    EXPECT_EQ(sizeOf(path("d.png")), QSize(40, 200));
}

TEST_F(Convert, TurnsCounterClockwise)
{
    QImage corner(4, 2, QImage::Format_RGB32);
    corner.fill(Qt::black);
    corner.setPixel(3, 0, qRgb(255, 255, 255)); // top right
    ASSERT_TRUE(corner.save(path("corner.png")));
    ASSERT_EQ(convert({path("corner.png"), path("turned.png"), "--rotate", "90"}).status, 0);
    const QImage turned(path("turned.png"));
    ASSERT_EQ(turned.size(), QSize(2, 4));
    EXPECT_EQ(qRed(turned.pixel(0, 0)), 255); // top left
}

TEST_F(Convert, RotatesByAnyAngleInThreeSizes)
{
    const std::pair<const char*, QSize> modes[] = {
        {"keep", {120, 80}},
        {"bounding", CalculateRotateSize({120, 80}, 17, RotateSizeBounding)},
        {"inscribed", CalculateRotateSize({120, 80}, 17, RotateSizeInscribed)}};
    for (const auto& [mode, size] : modes) {
        ASSERT_EQ(convert({scene, path("a.png"), "--rotate", "17", "--mode", mode}).status, 0);
        EXPECT_EQ(sizeOf(path("a.png")), size) << mode;
    }
}

QImage opened(const QString& file)
{
    return QImage(file).convertToFormat(QImage::Format_ARGB32);
}

TEST_F(Convert, BlursWithTheEdgeThatIsAskedFor)
{
    ASSERT_EQ(convert({scene, path("clamp.png"), "--blur", "6"}).status, 0);
    ASSERT_EQ(convert({scene, path("blank.png"), "--blur", "6,0", "--edge", "blank"}).status, 0);
    EXPECT_EQ(sizeOf(path("clamp.png")), QSize(120, 80));
    EXPECT_NE(opened(path("clamp.png")), opened(scene));
    EXPECT_EQ(qAlpha(opened(path("clamp.png")).pixel(0, 40)), 255);
    EXPECT_LT(qAlpha(opened(path("blank.png")).pixel(0, 40)), 200);
    EXPECT_EQ(qAlpha(opened(path("blank.png")).pixel(60, 0)), 255); // not blurred downwards
}

TEST_F(Convert, MovesTheCornersOfThePicture)
{
    ASSERT_EQ(convert({scene, path("a.png"), "--perspective", "20,0,100,0,120,60,0,60"}).status, 0);
    const QImage moved = opened(path("a.png"));
    EXPECT_EQ(moved.size(), QSize(120, 60));
    EXPECT_EQ(qAlpha(moved.pixel(2, 2)), 0);
    EXPECT_EQ(qAlpha(moved.pixel(117, 2)), 0);
    EXPECT_EQ(qAlpha(moved.pixel(60, 30)), 255);
}

TEST_F(Convert, DrawsGradientsOverThePicture)
{
    ASSERT_EQ(convert({scene, path("a.png"), "--gradient", "linear,0,0,1,0,#ffff0000,#00ff0000"}).status, 0);
    const QImage drawn = opened(path("a.png")), before = opened(scene);
    EXPECT_EQ(drawn.pixel(0, 40), qRgb(255, 0, 0));
    EXPECT_NEAR(qBlue(drawn.pixel(119, 40)), qBlue(before.pixel(119, 40)), 4);
    ASSERT_EQ(
        convert({scene, path("b.png"), "--gradient", "radial,0.5,0.5,0.1,0.1,0,0,0,blue,#000000ff@0.5", "--mix", "lch"})
            .status,
        0);
    EXPECT_EQ(opened(path("b.png")).pixel(60, 40), qRgb(0, 0, 255));
    EXPECT_NEAR(qRed(opened(path("b.png")).pixel(2, 2)), qRed(before.pixel(2, 2)), 1); // composed in 16 bits
}

TEST_F(Convert, BalancesForALight)
{
    const auto blueAt = [this](const char* kelvin) {
        EXPECT_EQ(convert({scene, path("a.png"), "--temperature", kelvin}).status, 0);
        return qBlue(opened(path("a.png")).pixel(10, 70));
    };
    const int neutral = qBlue(opened(scene).pixel(10, 70));
    EXPECT_NEAR(blueAt("6500"), neutral, 1);
    EXPECT_GT(blueAt("4000"), neutral + 5); // the light was warm: more blue
    EXPECT_LT(blueAt("12000,1100"), neutral - 5);
}

TEST_F(Convert, ProofsMarkWhatTheDeviceCannotShow)
{
    QImage green(4, 4, QImage::Format_RGB32);
    green.fill(qRgb(0, 255, 0));
    ASSERT_TRUE(green.save(path("green.png")));
    const QStringList wide = {path("green.png"), path("a.png"), "--profile",
                              "ProPhoto RGB",    "--gradient",  "linear,0,0,1,0,#00ff00,#00ff00"};
    ASSERT_EQ(convert(wide + QStringList{"--proof", "sRGB built-in", "--gamut"}).status, 0);
    EXPECT_EQ(opened(path("a.png")).pixel(1, 1), qRgb(255, 0, 0));
    ASSERT_EQ(convert(wide + QStringList{"--proof", "sRGB built-in"}).status, 0);
    EXPECT_EQ(qGreen(opened(path("a.png")).pixel(1, 1)), 255);
    EXPECT_EQ(qRed(opened(path("a.png")).pixel(1, 1)), 0);
}

TEST_F(Convert, EmbedsTheProfileItConvertsTo)
{
    ASSERT_EQ(convert({scene, path("a.png"), "--profile", "prophoto rgb", "--depth", "16"}).status, 0);
    EXPECT_TRUE(convert({"--info", path("a.png")}).output.contains("profile ProPhoto RGB"));
    EXPECT_EQ(QImage(path("a.png")).format(), QImage::Format_RGBA64);
    ASSERT_EQ(convert({scene, path("b.png"), "--profile", "none", "--no-alpha"}).status, 0);
    EXPECT_FALSE(QImage(path("b.png")).hasAlphaChannel());
}

TEST_F(Convert, WritesSeveralFilesIntoAFolder)
{
    ASSERT_TRUE(QFile::copy(scene, path("second.png")));
    const Outcome outcome = convert({scene, path("second.png"), path("out/"), "--format", "jpeg"});
    EXPECT_EQ(outcome.status, 0) << qPrintable(outcome.errors);
    EXPECT_EQ(QDir(path("out")).entryList(QDir::Files), QStringList({"scene.jpeg", "second.jpeg"}));
    EXPECT_TRUE(outcome.output.contains("[2/2]"));
}

TEST_F(Convert, NamesEachFileThatFailedAndDoesTheOthers)
{
    QFile broken(path("broken.png"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("no picture");
    broken.close();
    const Outcome outcome = convert({path("broken.png"), scene, path("missing.jpg"), path("out/")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.errors.contains("broken.png: not a readable"));
    EXPECT_TRUE(outcome.errors.contains("missing.jpg: not a readable"));
    EXPECT_EQ(QDir(path("out")).entryList(QDir::Files), QStringList("scene.png"));
}

TEST_F(Convert, FailsWhereItCannotWrite)
{
    EXPECT_EQ(convert({scene, path("no/such/folder/a.png")}).status, 1);
    EXPECT_EQ(convert({scene, path("a.bmp")}).status, 1);
    EXPECT_EQ(convert({scene, path("a.png"), "--crop", "10x10+500+0"}).status, 1);
}

TEST_F(Convert, UsageErrorsHaveStatusTwo)
{
    const QStringList wrong[] = {{},
                                 {scene},
                                 {scene, path("a.png"), "--size", "big"},
                                 {scene, path("a.png"), "--size", "0x10"},
                                 {scene, path("a.png"), "--rotate", "far"},
                                 {scene, path("a.png"), "--rotate", "1,2"},
                                 {scene, path("a.png"), "--mode", "shear"},
                                 {scene, path("a.png"), "--blur", "-1"},
                                 {scene, path("a.png"), "--blur", "1,2,3"},
                                 {scene, path("a.png"), "--blur", "inf"},
                                 {scene, path("a.png"), "--blur", "3", "--edge", "mirror"},
                                 {scene, path("a.png"), "--perspective", "0,0,1,0,1,1"},
                                 {scene, path("a.png"), "--gradient", "conical,0,0,1,1,red,blue"},
                                 {scene, path("a.png"), "--gradient", "linear,0,0,1,red,blue"},
                                 {scene, path("a.png"), "--gradient", "linear,0,0,1,1"},
                                 {scene, path("a.png"), "--gradient", "linear,0,0,1,1,red,nocolour"},
                                 {scene, path("a.png"), "--gradient", "linear,0,0,1,1,red,blue@2"},
                                 {scene, path("a.png"), "--temperature", "1000"},
                                 {scene, path("a.png"), "--temperature", "5000,10"},
                                 {scene, path("a.png"), "--proof", "no such profile"},
                                 {scene, path("a.png"), "--proof", "none"},
                                 {scene, path("a.png"), "--depth", "12"},
                                 {scene, path("a.png"), "--quality", "101"},
                                 {scene, path("a.png"), "--compression", "zip"},
                                 {scene, path("a.png"), "--filter", "best"},
                                 {scene, path("a.png"), "--profile", "no such profile"},
                                 {scene, path("a.png"), "--nonsense"},
                                 {scene, scene, path("a.png")}};
    for (const QStringList& arguments : wrong) {
        const Outcome outcome = convert(arguments);
        EXPECT_EQ(outcome.status, 2) << qPrintable(arguments.join(' '));
        EXPECT_FALSE(outcome.errors.isEmpty());
    }
}

TEST_F(Convert, ListsProfilesAndExplainsItself)
{
    const Outcome profiles = convert({"--list-profiles"});
    EXPECT_EQ(profiles.status, 0);
    EXPECT_EQ(profiles.output.count('\n'), 5);
    EXPECT_TRUE(profiles.output.contains("  Linear sRGB\n"));
    EXPECT_EQ(convert({"--help"}).status, 0);
    EXPECT_TRUE(convert({"--help"}).output.contains("--list-profiles"));
    EXPECT_EQ(convert({"--version"}).output, "ondrel-convert 0.1.0\n");
}

TEST_F(Convert, RendersForTheDisplay)
{
    const Outcome outcome = convert({scene, "--display", path("shown.png"), "--timings"});
    EXPECT_EQ(outcome.status, 0) << qPrintable(outcome.errors);
    EXPECT_EQ(sizeOf(path("shown.png")), QSize(120, 80));
    EXPECT_TRUE(outcome.output.contains("ms  rendered for the display in the background"));
}

TEST_F(Convert, PrintsPlainLinesWhereThereIsNoTerminal)
{
    const Outcome outcome = convert({scene, path("a.png")});
    EXPECT_FALSE(outcome.errors.contains('\r'));
    EXPECT_FALSE(outcome.output.contains('#'));
    EXPECT_FALSE(convert({scene, path("b.png"), "--quiet"}).output.contains("->"));
}

TEST_F(Convert, ContactSheetsShowPicturesBesideTheHistogram)
{
    EXPECT_EQ(runProgram(ONDREL_CONTACT_SHEET, {path("sheet.png"), scene, "One=" + scene, "Two=" + scene}).status, 0);
    EXPECT_EQ(sizeOf(path("sheet.png")), QSize(3 * 400 + 16, 330 + 16));
    EXPECT_EQ(runProgram(ONDREL_CONTACT_SHEET, {path("sheet.png")}).status, 2);
    EXPECT_EQ(runProgram(ONDREL_CONTACT_SHEET, {path("sheet.png"), scene, "One=" + path("none.png")}).status, 1);
}

} // namespace
