#include <ondrel/core/platform.h>
#include <ondrel/core/platformarguments_p.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>

#include <string>
#include <vector>

namespace
{

namespace Platform = Ondrel::Platform;

// Runs a test in a working directory of its own.
class PlatformPaths : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_directory.isValid());
        ASSERT_TRUE(QDir::setCurrent(m_directory.path()));
    }
    void TearDown() override { QDir::setCurrent(m_before); }

    void writeMarker() const
    {
        QFile file("ondrel_debug.txt");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }

private:
    const QString m_before = QDir::currentPath();
    QTemporaryDir m_directory;
};

TEST_F(PlatformPaths, LieBesideTheExecutable)
{
    const QString base = QCoreApplication::applicationDirPath();
    EXPECT_EQ(Platform::IconsDirectory(), base + "/data/icons/");
    EXPECT_EQ(Platform::StylesDirectory(), base + "/data/styles/");
    EXPECT_EQ(Platform::DocDirectory(), base + "/doc/");
    EXPECT_EQ(Platform::DataDirectory(), base + "/data/");
    EXPECT_EQ(Platform::BuiltInColorProfileDirectory(), base + "/data/color profiles/");
}

TEST_F(PlatformPaths, MoveToTheWorkingDirectoryWhereTheMarkerLies)
{
    const QString plugins = Platform::PluginsDirectory();
    writeMarker();
    const QString base = QDir::currentPath();
    EXPECT_EQ(Platform::IconsDirectory(), base + "/data/icons/");
    EXPECT_EQ(Platform::StylesDirectory(), base + "/data/styles/");
    EXPECT_EQ(Platform::DocDirectory(), base + "/doc/");
    EXPECT_EQ(Platform::DataDirectory(), base + "/data/");
    EXPECT_EQ(Platform::BuiltInColorProfileDirectory(), base + "/data/color profiles/");
    EXPECT_EQ(Platform::PluginsDirectory(), plugins);
}

TEST_F(PlatformPaths, AreLookedUpAnewOnEachCall)
{
    const QString without = Platform::DataDirectory();
    writeMarker();
    EXPECT_NE(Platform::DataDirectory(), without);
    ASSERT_TRUE(QFile::remove("ondrel_debug.txt"));
    EXPECT_EQ(Platform::DataDirectory(), without);
}

TEST_F(PlatformPaths, ADirectoryIsNoMarker)
{
    ASSERT_TRUE(QDir().mkdir("ondrel_debug.txt"));
    EXPECT_EQ(Platform::DataDirectory(), QCoreApplication::applicationDirPath() + "/data/");
}

TEST_F(PlatformPaths, OfTheUserLieInTheHomeDirectory)
{
    EXPECT_EQ(Platform::SystemColorProfileDirectory(), QDir::homePath() + "/.local/share/color/icc");
    EXPECT_EQ(Platform::UserPictureDirectory(), QDir::homePath() + "/Pictures");
    EXPECT_FALSE(QDir(Platform::SystemColorProfileDirectory()).exists());
    EXPECT_FALSE(QDir(Platform::UserPictureDirectory()).exists());
}

TEST_F(PlatformPaths, UserProfilesLieBesideTheSettingsAndTheirFolderIsMade)
{
    const QString expected = QFileInfo(QSettings().fileName()).absolutePath() + "/color/icc";
    QDir(expected).removeRecursively();
    EXPECT_EQ(Platform::UserColorProfileDirectory(), expected);
    EXPECT_TRUE(QDir(expected).exists());
}

TEST_F(PlatformPaths, UserProfilePathIsGivenEvenIfItCannotBeMade)
{
    const QString expected = QFileInfo(QSettings().fileName()).absolutePath() + "/color/icc";
    QDir(expected).removeRecursively();
    const QString parent = QFileInfo(expected).absolutePath();
    QDir().rmdir(parent);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(parent).absolutePath())); // no settings may have been written yet
    QFile file(parent);                                           // a file in the way
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(Platform::UserColorProfileDirectory(), expected);
    EXPECT_FALSE(QDir(expected).exists());
    ASSERT_TRUE(file.remove());
}

TEST(PlatformPlugins, UnknownNamesGiveTheSlashAlone)
{
    EXPECT_EQ(Platform::PluginDirectory("nobody"), "/");
    EXPECT_EQ(Platform::PluginNodesDirectory("nobody"), "/nodes/");
    EXPECT_EQ(PlatformPrivate::get()->pluginDirectory("nobody"), QString());
}

TEST(PlatformPlugins, CanBeAddedReplacedAndRemoved)
{
    PlatformPrivate* const platform = PlatformPrivate::get();
    platform->addPluginDirectory("one", "/a/b");
    EXPECT_EQ(Platform::PluginDirectory("one"), "/a/b/");
    EXPECT_EQ(Platform::PluginNodesDirectory("one"), "/a/b/nodes/");
    platform->addPluginDirectory("one", "/c");
    EXPECT_EQ(Platform::PluginDirectory("one"), "/c/");
    platform->removePluginDirectory("one");
    EXPECT_EQ(Platform::PluginDirectory("one"), "/");
    platform->removePluginDirectory("one");
}

std::vector<std::string> texts(int argc, char** argv)
{
    return std::vector<std::string>(argv, argv + argc);
}

TEST(PlatformArguments, TellADebugBuildOfQtWhereItsPluginsAre)
{
    char program[] = "program", option[] = "--option";
    char* given[] = {program, option, nullptr};
    std::vector<char*> arguments;
    int argc = 2;
    char** argv = given;
    Ondrel::addPlatformPluginArguments(arguments, argc, &argv);
    const std::vector<std::string> once = {"program", "--option", "-platformpluginpath", "./qt/platforms"};
    EXPECT_EQ(texts(argc, argv), once);
    EXPECT_EQ(argv, arguments.data());
    EXPECT_EQ(argv[1], option); // the texts are not copied

    // A second call adds to what the first one left.
    Ondrel::addPlatformPluginArguments(arguments, argc, &argv);
    std::vector<std::string> twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    twice.insert(twice.end(), {"-platformpluginpath", "./qt/platforms"});
    EXPECT_EQ(texts(argc, argv), twice);
}

} // namespace
