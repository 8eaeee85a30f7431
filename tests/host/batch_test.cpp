// ondrel-render, as a user runs it.

#include <render/memorygate.h>

#include <ondrel/color/colorprofiles.h>
#include <ondrel/core/color.h>
#include <ondrel/resources/resourceengine.h>

#include <tests/support/testimages.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <atomic>
#include <csignal>
#include <cstring>
#include <future>
#include <map>

using Json = nlohmann::json;

namespace
{

struct Finished {
    int status = -1; // stays so if the program could not be run, or crashed
    QString output;
    QString errors;
};

class Batch : public testing::Test
{
protected:
    void SetUp() override
    {
        QDir(folder.path()).mkpath("in");
        for (int i = 1; i <= 10; ++i)
            makePicture(QString("in/%1.png").arg(i, 2, 10, QChar('0')), 60, 40, unsigned(i));
        makeProject("project.ondrel", "in/01.png", "20");
    }

    QString path(const QString& name) const { return folder.filePath(name); }

    void makePicture(const QString& name, unsigned int width, unsigned int height, unsigned int seed)
    {
        ResourceEngine::ExportPNGSettings settings;
        settings.bitDepth = 1;
        settings.compressionLevel = 1;
        ASSERT_TRUE(ResourceEngine::ExportPNG(path(name), OndrelTest::randomImage(width, height, seed), settings,
                                              nullptr, nullptr));
    }

    // A picture, a blur of so many pixels, an output.
    void makeProject(const QString& name, const QString& picture, const QString& radius)
    {
        Json json = {{"format", "ondrel-project"}, {"version", 1}, {"frames", Json::array()}, {"view", Json::object()}};
        const auto node = [](const char* id, const char* kind, const char* title, Json values) {
            return Json{{"id", id},          {"type", std::string("essentials/") + kind},
                        {"name", title},     {"position", {"0", "0"}},
                        {"bypassed", false}, {"values", values}};
        };
        json["nodes"] = {node("1", "image", "Photo", {{"image", {{"resource", "1"}}}}),
                         node("2", "gaussianblur", "Blur", {{blurField(), radius.toStdString()}}),
                         node("3", "output", "Out", Json::object())};
        const auto wire = [](const char* from, const char* to) {
            return Json{{"from", from}, {"output", "image"}, {"to", to}, {"input", "image"}};
        };
        json["connections"] = {wire("1", "2"), wire("2", "3")};
        json["resources"] = {{{"id", "1"}, {"kind", "image"}, {"path", picture.toStdString()}}};
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray::fromStdString(json.dump(1)));
    }

    static const char* blurField() { return "radiusx"; }

    QStringList withDefaults(const QStringList& arguments) const
    {
        return QStringList{path("project.ondrel"), "--plugins", ONDREL_PLUGINS} + arguments;
    }

    static QProcessEnvironment withoutDisplay()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(name);
        return environment;
    }

    static Finished runAny(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.setProcessEnvironment(withoutDisplay());
        process.start(program, arguments);
        if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
            return {-1, QString(), process.errorString()};
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    Finished render(const QStringList& arguments) const { return runAny(ONDREL_RENDER, withDefaults(arguments)); }

    // The peak of its memory in bytes, if all went well.
    std::size_t peakOf(const QStringList& arguments) const
    {
        const QString report = path("peak.txt");
        const Finished run = runAny(ONDREL_PEAK, QStringList{report, ONDREL_RENDER} + withDefaults(arguments));
        EXPECT_EQ(run.status, 0) << qPrintable(run.errors);
        QFile file(report);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll().trimmed().toULongLong();
    }

    QStringList over(const QString& out) const
    {
        return {"--over", "Photo", path("in/*.png"), "--out", path(out + "/{name}.{ext}")};
    }

    // All files of a folder, hidden ones too, with their content.
    std::map<QString, QByteArray> contents(const QString& name) const
    {
        std::map<QString, QByteArray> all;
        const QDir directory(path(name));
        for (const QString& entry : directory.entryList(QDir::Files | QDir::Hidden)) {
            QFile file(directory.filePath(entry));
            if (file.open(QIODevice::ReadOnly))
                all[entry] = file.readAll();
        }
        return all;
    }

    QTemporaryDir folder;
};

TEST_F(Batch, RendersAProjectWithoutADisplay)
{
    const Finished run = render({"--out", path("out/{name}-{output}-{number}.{ext}")});
    EXPECT_EQ(run.status, 0) << qPrintable(run.errors);
    EXPECT_EQ(QImage(path("out/project-Out-1.png")).size(), QSize(60, 40));
}

TEST_F(Batch, RendersManyPicturesOverOneProject)
{
    const Finished run = render(over("out"));
    EXPECT_EQ(run.status, 0) << qPrintable(run.errors);
    const auto pictures = contents("out");
    EXPECT_EQ(pictures.size(), 10u);
    EXPECT_TRUE(pictures.at("01.png") != pictures.at("02.png"));
    EXPECT_TRUE(run.output.endsWith("10 done, 0 failed, 0 skipped\n")) << qPrintable(run.output);
}

TEST_F(Batch, ResultsDoNotDependOnTheSplit)
{
    ASSERT_EQ(render(over("one")).status, 0);
    ASSERT_EQ(render(over("jobs") + QStringList{"--jobs", "4"}).status, 0);
    int sum = 0;
    for (const char* shard : {"1/3", "2/3", "3/3"}) {
        const Finished run = render(over("shards") + QStringList{"--shard", shard});
        ASSERT_EQ(run.status, 0);
        sum += run.output.count("done: ");
    }
    EXPECT_EQ(sum, 10); // every input once
    EXPECT_TRUE(contents("one") == contents("jobs"));
    EXPECT_TRUE(contents("one") == contents("shards"));
}

// A grey file becomes the picture that the same values in three colours give, and it is told.
TEST_F(Batch, MendedPicturesAreTold)
{
    QImage grey(30, 20, QImage::Format_Grayscale8), colour(30, 20, QImage::Format_RGB888);
    for (int y = 0; y < grey.height(); ++y) {
        for (int x = 0; x < grey.width(); ++x) {
            grey.setPixelColor(x, y, QColor(x * 8, x * 8, x * 8));
            colour.setPixelColor(x, y, QColor(x * 8, x * 8, x * 8));
        }
    }
    ASSERT_TRUE(QDir(folder.path()).mkpath("grey") && QDir(folder.path()).mkpath("colour"));
    ASSERT_TRUE(grey.save(path("grey/scan.png")) && colour.save(path("colour/scan.png")));
    const Finished given = render({"--input", "Photo=" + path("grey/scan.png"), "--out", path("out/{name}.png")});
    EXPECT_EQ(given.status, 0);
    EXPECT_TRUE(given.errors.contains("\"scan.png\" is grey")) << qPrintable(given.errors);
    const Finished over = render({"--over", "Photo", path("grey/*.png"), "--out", path("mended/{name}.png"), "--json"});
    EXPECT_EQ(over.status, 0);
    EXPECT_TRUE(over.errors.contains("\"scan.png\" is grey")) << qPrintable(over.errors);
    const Json note = Json::parse(over.output.section('\n', 0, 0).toStdString());
    EXPECT_EQ(note.at("event"), "note");
    EXPECT_EQ(QString::fromStdString(note.at("text")), over.errors.trimmed().section('\n', -1));
    EXPECT_EQ(render({"--over", "Photo", path("colour/*.png"), "--out", path("plain/{name}.png")}).status, 0);
    EXPECT_TRUE(contents("mended") == contents("plain"));
}

TEST_F(Batch, OneAndManyThreadsGiveTheSameBytes)
{
    ASSERT_EQ(render(over("many")).status, 0);
    ASSERT_EQ(runAny("taskset", QStringList{"-c", "0", ONDREL_RENDER} + withDefaults(over("one"))).status, 0);
    EXPECT_TRUE(contents("many") == contents("one"));
}

TEST_F(Batch, SetsValuesOfFields)
{
    ASSERT_EQ(render({"--out", path("a.png")}).status, 0);
    ASSERT_EQ(render({"--out", path("b.png"), "--set", "Blur." + QString(blurField()) + "=3"}).status, 0);
    ASSERT_EQ(render({"--out", path("c.png"), "--set", "Out.pngdepth=8 bits", "--input", "Photo=" + path("in/02.png")})
                  .status,
              0);
    ASSERT_EQ(
        render({"--out", path("d.png"), "--set", "Photo.image=" + path("in/02.png"), "--set", "Out.pngdepth=8 bits"})
            .status,
        0);
    const auto all = contents(".");
    EXPECT_TRUE(all.at("a.png") != all.at("b.png"));
    EXPECT_TRUE(all.at("a.png") != all.at("c.png"));
    EXPECT_TRUE(all.at("c.png") == all.at("d.png"));
}

TEST_F(Batch, AnEndingChoosesTheFormat)
{
    ASSERT_EQ(render({"--out", path("a.jpg")}).status, 0);
    ASSERT_EQ(render({"--out", path("a.tif")}).status, 0);
    ASSERT_EQ(render({"--out", path("b.{ext}"), "--set", "Out.format=JPEG"}).status, 0);
    const auto all = contents(".");
    EXPECT_TRUE(all.at("a.jpg").startsWith("\xff\xd8"));
    EXPECT_TRUE(all.at("a.tif").startsWith("II") || all.at("a.tif").startsWith("MM"));
    EXPECT_TRUE(all.at("a.jpg") == all.at("b.jpg"));
}

TEST_F(Batch, NamesEachPictureThatFailedAndGoesOn)
{
    QFile file(path("in/05.png"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no picture");
    file.close();
    const Finished run = render(over("out"));
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.errors.contains("in/05.png: It cannot be read as a picture.")) << qPrintable(run.errors);
    EXPECT_EQ(contents("out").size(), 9u);
}

TEST_F(Batch, AProjectThatLacksItsPictureNamesTheNode)
{
    ASSERT_TRUE(QFile::remove(path("in/01.png")));
    const Finished run = render({"--out", path("a.png")});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.errors.contains("Photo: ")) << qPrintable(run.errors);
}

// Of three outputs, the second and the third are of one flawed picture. While the second waits for what is made from
// that, the third joins in when the first is done.
TEST_F(Batch, PictureOfNodesThatReportErrorsIsNotWritten)
{
    QDir(folder.path()).mkpath("plugins/flawed/nodes");
    ASSERT_TRUE(QFile::copy(QString(ONDREL_TEST_PLUGINS) + "/flawed/flawed.so", path("plugins/flawed/flawed.so")));
    const auto write = [this](const QString& name, const std::string& text) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray::fromStdString(text));
    };
    const std::string image = "<field name=\"image\"/>";
    const std::pair<const char*, std::string> kinds[] = {
        {"Plain", ""},
        {"Flawed", ""},
        {"Slow", image + "<field name=\"milliseconds\" type=\"slider\" value=\"0\" max=\"10000\"/>"},
        {"Output", image}};
    for (const auto& [name, inputs] : kinds)
        write("plugins/flawed/nodes/" + QString(name).toLower() + ".xml",
              std::string("<node title=\"") + name + "\"><input>" + inputs + "</input><output>" + image +
                  "</output></node>");
    Json nodes = Json::array(), connections = Json::array();
    const auto add = [&](const char* kind, const char* name, Json values, std::size_t from) {
        const std::string id = std::to_string(nodes.size() + 1);
        nodes.push_back({{"id", id},
                         {"type", std::string("flawed/") + kind},
                         {"name", name},
                         {"position", {"0", "0"}},
                         {"bypassed", false},
                         {"values", std::move(values)}});
        if (from != 0)
            connections.push_back(
                {{"from", std::to_string(from)}, {"output", "image"}, {"to", id}, {"input", "image"}});
        return nodes.size();
    };
    const Json none = Json::object();
    const std::size_t good = add("slow", "Good slow", {{"milliseconds", "300"}}, add("plain", "Plain", none, 0));
    const std::size_t bad = add("slow", "Bad slow", {{"milliseconds", "1500"}}, add("flawed", "Half", none, 0));
    add("output", "First", none, good);
    add("output", "Second", none, bad);
    add("output", "Third", none, bad);
    write("flawed.ondrel", Json{{"format", "ondrel-project"},
                                {"version", 1},
                                {"frames", Json::array()},
                                {"view", Json::object()},
                                {"nodes", nodes},
                                {"connections", connections},
                                {"resources", Json::array()}}
                               .dump());
    const Finished run = runAny(ONDREL_RENDER, {path("flawed.ondrel"), "--plugins", path("plugins"), "--jobs", "2",
                                                "--out", path("out/{output}.png")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.errors.count("Half: It is only half right."), 2) << qPrintable(run.errors);
    const auto files = contents("out");
    EXPECT_EQ(files.size(), 1u);
    EXPECT_EQ(files.count("First.png"), 1u);
}

TEST_F(Batch, WhatItCannotBeginWithIsAComplaintAboutUsage)
{
    const QStringList wrong[] = {
        {"--nosuch"},
        {"--set", "Blur"},
        {"--set", "Blur=3"},
        {"--set", "Nobody.radius=3"},
        {"--set", "Blur.nosuch=3"},
        {"--set", "Out.format=GIF"},
        {"--set", "Photo.image=nosuch.png"},
        {"--input", "Blur=" + path("in/01.png")},
        {"--over", "Photo", path("in/*.gif")},
        {"--over", "Photo", path("in/*.png"), "--out", path("same.png")},
        {"--over", "Photo", path("in/*.png"), "--out", path("in/{name}.png")},
        {"--input", "Photo=" + path("in/01.png"), "--out", path("in/01.png")},
        {"--set", "Photo.image=" + path("in/02.png"), "--out", path("in/02.png")},
        {"--out", path("a.gif")},
        {"--shard", "3/2"},
        {"--shard", "0/2"},
        {"--shard", "1"},
        {"--jobs", "0"},
        {"--memory", "much"},
    };
    for (const QStringList& arguments : wrong) {
        const Finished run = render(arguments);
        EXPECT_EQ(run.status, 2) << qPrintable(arguments.join(' '));
        EXPECT_NE(run.errors, "") << qPrintable(arguments.join(' '));
    }
    EXPECT_EQ(runAny(ONDREL_RENDER, {path("nosuch.ondrel")}).status, 2);
    EXPECT_EQ(runAny(ONDREL_RENDER, {path("in/01.png")}).status, 2);
    EXPECT_EQ(runAny(ONDREL_RENDER, {}).status, 2);
    EXPECT_EQ(runAny(ONDREL_RENDER, {"--help"}).status, 0);
    EXPECT_EQ(contents("in").size(), 10u);
}

TEST_F(Batch, ADryRunListsAndWritesNothing)
{
    const Finished run = render(over("out") + QStringList{"--dry-run", "--shard", "1/5"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "render: " + path("in/01.png") + " -> " + path("out/01.png") +
                              "\nrender: " + path("in/06.png") + " -> " + path("out/06.png") + "\n");
    EXPECT_FALSE(QFile::exists(path("out")));
}

TEST_F(Batch, JsonLinesTellWhatBecameOfEachPicture)
{
    QFile file(path("in/05.png"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    const Finished run = render(over("out") + QStringList{"--json"});
    EXPECT_EQ(run.status, 1);
    std::map<std::string, int> events;
    for (const QString& line : run.output.split('\n', Qt::SkipEmptyParts)) {
        const Json json = Json::parse(line.toStdString());
        ++events[json.at("event").get<std::string>()];
        if (json.at("event") == "failed") {
            EXPECT_EQ(json.at("input"), path("in/05.png").toStdString());
        }
        if (json.at("event") == "summary") {
            EXPECT_EQ(json.at("done"), 9);
        }
    }
    EXPECT_EQ(events, (std::map<std::string, int>{{"done", 9}, {"failed", 1}, {"summary", 1}}));
}

TEST_F(Batch, ResumeLeavesOutWhatIsThere)
{
    ASSERT_EQ(render(over("whole")).status, 0);
    ASSERT_EQ(render(over("out") + QStringList{"--shard", "1/2"}).status, 0);
    QFile part(path("out/.02.png.part")); // what a kill leaves behind
    ASSERT_TRUE(part.open(QIODevice::WriteOnly));
    part.write("half");
    part.close();
    const Finished run = render(over("out") + QStringList{"--resume"});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.output.endsWith("5 done, 0 failed, 5 skipped\n")) << qPrintable(run.output);
    EXPECT_TRUE(contents("out") == contents("whole"));
}

TEST_F(Batch, AnInterruptedRunLeavesNoPart)
{
    makePicture("in/big.png", 3000, 3000, 1);
    for (const int signal : {SIGINT, SIGTERM}) {
        for (const int delay : {0, 300, 900}) {
            QProcess process;
            process.start(ONDREL_RENDER,
                          withDefaults({"--over", "Photo", path("in/big*"), "--out", path("out/{name}.png")}));
            ASSERT_TRUE(process.waitForStarted());
            QThread::msleep(static_cast<unsigned long>(150 + delay)); // somewhere in its work
            ::kill(pid_t(process.processId()), signal);
            ASSERT_TRUE(process.waitForFinished(60000));
            ASSERT_EQ(process.exitStatus(), QProcess::NormalExit);
            EXPECT_EQ(process.exitCode(), 130);
            EXPECT_TRUE(contents("out").empty());
        }
    }
}

TEST_F(Batch, DrawsABarWithTheTimeLeftOnATerminal)
{
    const QString command = '"' + QString(ONDREL_RENDER) + "\" \"" + withDefaults(over("out")).join("\" \"") + '"';
    makePicture("in/11.png", 1200, 900, 1); // for long enough to be seen
    makePicture("in/12.png", 1200, 900, 2);
    const Finished run = runAny("script", {"-qec", command, "/dev/null"});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.output.contains("####")) << qPrintable(run.output);
    EXPECT_TRUE(run.output.contains(" left")) << qPrintable(run.output);
}

// The address sanitizer keeps as much of the memory that was freed.
#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t kKeptBySanitizer = std::size_t(256) << 20;
#else
constexpr std::size_t kKeptBySanitizer = 0;
#endif

TEST_F(Batch, StaysWithinTheMemoryItIsGiven)
{
    QDir(folder.path()).mkpath("large");
    makePicture("large/0.png", 1200, 900, 1);
    for (int i = 1; i < 8; ++i)
        ASSERT_TRUE(QFile::copy(path("large/0.png"), path(QString("large/%1.png").arg(i))));
    const QStringList large = {"--over", "Photo", path("large/*.png"),       "--out", path("out/{name}.tif"), "--jobs",
                               "12",     "--set", "Out.tiffcompression=None"};
    const std::size_t peak = peakOf(large + QStringList{"--memory", "200M"});
    EXPECT_LE(peak, (std::size_t(200) << 20) + kKeptBySanitizer);
    EXPECT_GE(peak, std::size_t(1200 * 900 * 8)) << "one picture";
    const Finished tooLittle = render(large + QStringList{"--memory", "100M"});
    EXPECT_EQ(tooLittle.status, 1);
    EXPECT_TRUE(tooLittle.errors.contains("more than --memory allows")) << qPrintable(tooLittle.errors);
}

// Grey pictures are decoded and encoded anew when they are read, which comes on top of what is computed.
#ifndef __SANITIZE_ADDRESS__ // under which freed memory stays for a while
TEST_F(Batch, StaysWithinTheMemoryItIsGivenWithSeveralJobs)
{
    QDir(folder.path()).mkpath("grey");
    QImage grey(1600, 1200, QImage::Format_Grayscale16);
    const Ondrel::Image noise = OndrelTest::randomImage(400, 1200, 3); // as many samples
    for (int y = 0; y < grey.height(); ++y)
        std::memcpy(grey.scanLine(y), noise.data + std::size_t(y) * 1600, 3200);
    ASSERT_TRUE(grey.save(path("grey/0.png"), nullptr, 90));
    for (int i = 1; i < 4; ++i)
        ASSERT_TRUE(QFile::copy(path("grey/0.png"), path(QString("grey/%1.png").arg(i))));
    const auto peak = [&](const QString& jobs, const QString& memory) {
        return peakOf({"--over", "Photo", path("grey/*.png"), "--out", path(jobs + "/{name}.tif"), "--jobs", jobs,
                       "--memory", memory, "--set", "Out.tiffcompression=None"});
    };
    const std::size_t several = peak("4", "250M");
    EXPECT_LE(several, std::size_t(250) << 20);
    // There is room for one, and a little for threads that wait.
    EXPECT_LE(several, peak("1", "250M") + (std::size_t(10) << 20));
    EXPECT_EQ(contents("4").size(), 4u);
    EXPECT_TRUE(contents("4") == contents("1"));
}
#endif

// The need in MiB that a run names which has much too little.
int needOf(const Finished& run)
{
    return run.errors.section("up to ", 1).section(" MiB", 0, 0).toInt();
}

TEST_F(Batch, APictureThatDoesNotFitIsNamedAndTheOthersAreMade)
{
    QDir(folder.path()).mkpath("mixed");
    ASSERT_TRUE(QFile::copy(path("in/01.png"), path("mixed/small.png")));
    makePicture("mixed/large.png", 1500, 1000, 1);
    const Finished run = render(
        {"--over", "Photo", path("mixed/*.png"), "--out", path("out/{name}.png"), "--jobs", "4", "--memory", "120M"});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.errors.contains("mixed/large.png: It needs up to ")) << qPrintable(run.errors);
    EXPECT_EQ(contents("out").size(), 1u);
    const int megabytes = needOf(run);
    EXPECT_GE(megabytes, 96 + 1500 * 1000 * 48 / (1 << 20)); // before it is read
    EXPECT_EQ(render({"--over", "Photo", path("mixed/*.png"), "--out", path("out/{name}.png"), "--jobs", "4",
                      "--memory", "400M"})
                  .status,
              0);
}

TEST_F(Batch, PicturesOfOtherNodesAreInTheEstimate)
{
    makePicture("other.png", 1000, 800, 1);
    const auto need = [this] {
        return needOf(
            render({"--over", "Photo", path("in/01.png"), "--out", path("out/{name}.png"), "--memory", "97M"}));
    };
    const int without = need();
    Json json;
    {
        QFile file(path("project.ondrel"));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        json = Json::parse(file.readAll().toStdString());
    }
    json["nodes"].push_back({{"id", "4"},
                             {"type", "essentials/image"},
                             {"name", "Other"},
                             {"position", {"0", "0"}},
                             {"bypassed", false},
                             {"values", {{"image", {{"resource", "2"}}}}}});
    json["resources"].push_back({{"id", "2"}, {"kind", "image"}, {"path", "other.png"}});
    QFile file(path("project.ondrel"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(QByteArray::fromStdString(json.dump(1)));
    file.close();
    const int with = need();
    EXPECT_GE(with - without, 1000 * 800 * 8 / (1 << 20)) << with;
}

TEST_F(Batch, APictureOfTheProjectThatCannotBeReadWithinTheMemoryIsAComplaint)
{
    makePicture("huge.png", 2000, 1500, 1);
    makeProject("huge.ondrel", "huge.png", "2");
    const Finished project = runAny(
        ONDREL_RENDER, {path("huge.ondrel"), "--plugins", ONDREL_PLUGINS, "--out", path("a.png"), "--memory", "150M"});
    EXPECT_EQ(project.status, 2);
    EXPECT_TRUE(project.errors.contains("huge.ondrel: It needs up to ")) << qPrintable(project.errors);
    const Finished input = render({"--input", "Photo=" + path("huge.png"), "--out", path("a.png"), "--memory", "150M"});
    EXPECT_EQ(input.status, 2);
    EXPECT_TRUE(input.errors.contains("huge.png\" needs up to ")) << qPrintable(input.errors);
    EXPECT_EQ(render({"--input", "Photo=" + path("huge.png"), "--out", path("a.png"), "--memory", "500M"}).status, 0);
}

TEST(MemoryGate, NeverLetsInMoreThanItsBound)
{
    MemoryGate gate(100);
    EXPECT_FALSE(gate.change(0, 101));
    std::atomic<int> inside{0}, most{0}, entries{0};
    std::vector<std::future<void>> all;
    for (int i = 0; i < 8; ++i)
        all.push_back(std::async(std::launch::async, [&, i] {
            for (int round = 0; round < 500; ++round) {
                const int bytes = 10 + (i * 7 + round) % 60;
                ASSERT_TRUE(gate.change(0, std::size_t(bytes)));
                const int now = inside += bytes;
                for (int seen = most; now > seen && !most.compare_exchange_weak(seen, now);) {
                }
                ++entries;
                inside -= bytes;
                gate.change(std::size_t(bytes), 0);
            }
        }));
    for (auto& one : all)
        one.get();
    EXPECT_EQ(entries, 4000);
    EXPECT_LE(most, 100);
    EXPECT_TRUE(gate.change(0, 100)); // all is free again
    EXPECT_FALSE(gate.change(100, 101));
    EXPECT_TRUE(gate.change(100, 100));
}

TEST_F(Batch, RunsUnderGnuParallelAndResumesAfterAKill)
{
    ASSERT_FALSE(QString(ONDREL_PARALLEL).isEmpty()) << "GNU parallel is not installed (Debian: parallel)";
    for (int i = 11; i <= 24; ++i)
        makePicture(QString("in/%1.png").arg(i), 400, 300, unsigned(i));
    ASSERT_EQ(render(over("single")).status, 0);
    const auto shards = [&](bool kill) {
        QString command = '"' + QString(ONDREL_RENDER) + "\" \"" + withDefaults(over("split")).join("\" \"") +
                          "\" --resume --shard {}/4";
        if (kill) // the third is killed once its first picture is there
            command = "if [ {} = 3 ]; then " + command + " & while [ ! -e '" + path("split/03.png") +
                      "' ]; do sleep 0.01; done; kill -9 $!; exit 1; else " + command + "; fi";
        return runAny(ONDREL_PARALLEL, {"--will-cite", "-j", "2", command, ":::", "1", "2", "3", "4"});
    };
    const Finished first = shards(true);
    EXPECT_EQ(first.status, 1) << qPrintable(first.errors); // one of the shards
    EXPECT_TRUE(contents("split") != contents("single"));
    const Finished second = shards(false);
    EXPECT_EQ(second.status, 0) << qPrintable(second.errors);
    EXPECT_TRUE(contents("split") == contents("single"));
}

} // namespace
