// Process set-up, in a program of its own: it makes an application object, of which a process may have but one.

#include <ondrel/core/platform.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibraryInfo>

namespace
{

TEST(PlatformSetup, StoresTheDirectoryAndLeavesTheArgumentsOfAReleaseQt)
{
    char program[] = "/proc/self/exe", option[] = "--option";
    char* array[] = {program, option, nullptr};
    int argc = 2;
    char** argv = array;
    EXPECT_EQ(Ondrel::Platform::PluginsDirectory(), "/plugins/");

    PlatformPrivate::setup(argc, &argv);

    EXPECT_EQ(QCoreApplication::instance(), nullptr);
    const QString directory = QFileInfo("/proc/self/exe").symLinkTarget().section('/', 0, -2);
    EXPECT_EQ(PlatformPrivate::get()->applicationDirectory(), directory);
    EXPECT_EQ(Ondrel::Platform::PluginsDirectory(), directory + "/plugins/");
    ASSERT_FALSE(QLibraryInfo::isDebugBuild());
    EXPECT_EQ(argc, 2);
    EXPECT_EQ(argv, array);
    EXPECT_STREQ(argv[1], "--option");
    QDir(directory).mkdir("qt"); // the path is taken up where it exists
    PlatformPrivate::setup(argc, &argv);
    EXPECT_TRUE(QCoreApplication::libraryPaths().contains(directory + "/qt"));
    QDir(directory).rmdir("qt");
}

} // namespace
