// What the registry finds on disk at its first use. Each case is a process of its own, as the registry is built once.

#include "tests/support/testprofiles.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/core/platform.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>
#include <sys/stat.h>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Entry = ColorManager::ColorProfile;

void write(const QString& name, const Bytes& data)
{
    QDir().mkpath(QFileInfo(name).absolutePath());
    QFile file(name);
    if (file.open(QIODevice::WriteOnly))
        file.write(reinterpret_cast<const char*>(data.data()), qint64(data.size()));
}

// Type and file of the registered profile with these bytes; type -1 if it is not registered.
std::pair<int, QString> find(const Bytes& data)
{
    const auto* const map = ColorManager::beginUsingColorProfileMap();
    const auto found = map->find(ColorManager::buildColorProfileHash(data));
    std::pair<int, QString> result(-1, QString());
    if (found != map->end())
        result = {int(found->second.type), found->second.fileName};
    ColorManager::endUsingColorProfileMap();
    return result;
}

using Found = std::pair<int, QString>;

bool scansAllThreeDirectories()
{
    const Bytes builtIn = savedBytes(rgbProfile(1.21, "BuiltIn").get()),
                system = savedBytes(rgbProfile(1.22, "System").get()),
                user = savedBytes(rgbProfile(1.23, "User").get()), deep = savedBytes(rgbProfile(1.24, "Deep").get()),
                twice = savedBytes(rgbProfile(1.27, "Twice").get());
    QTemporaryDir directory;
    QDir::setCurrent(directory.path());
    write("ondrel_debug.txt", {});
    const QString builtInFile = Ondrel::Platform::BuiltInColorProfileDirectory() + "a.icc";
    const QString systemRoot = Ondrel::Platform::SystemColorProfileDirectory(),
                  userRoot = Ondrel::Platform::UserColorProfileDirectory();
    write(builtInFile, builtIn);
    write(systemRoot + "/no extension", system);
    write(systemRoot + "/again.icc", builtIn); // the first one found stays
    write(systemRoot + "/sub/sub/deep.icm", deep);
    write(systemRoot + "/noise.icc", Bytes(400, 3));
    write(userRoot + "/u", user);
    write(userRoot + "/again", system);
    // In the order of names, the files of a directory in its place.
    write(systemRoot + "/d.icc", twice);
    write(systemRoot + "/c/twice.icc", twice);
    return find(twice) == Found(Entry::System, systemRoot + "/c/twice.icc") && find(builtIn).first == Entry::BuiltIn &&
           find(builtIn).second.endsWith("a.icc") &&
           find(system) == Found(Entry::System, systemRoot + "/no extension") &&
           find(deep) == Found(Entry::System, systemRoot + "/sub/sub/deep.icm") &&
           find(user) == Found(Entry::User, userRoot + "/u");
}

bool survivesLoopsPipesAndDepth()
{
    const QString root = Ondrel::Platform::SystemColorProfileDirectory();
    const Bytes reachable = savedBytes(rgbProfile(1.31, "Reachable").get()),
                deep = savedBytes(rgbProfile(1.33, "Deep").get()),
                tooDeep = savedBytes(rgbProfile(1.32, "Too deep").get());
    write(root + "/z/profile.icc", reachable);
    QFile::link(root, root + "/z/loop");
    QFile::link(root + "/nowhere", root + "/dangling");
    mkfifo(qPrintable(root + "/pipe"), 0600); // opening it would wait for ever
    QString path = root + "/deep";
    for (int i = 0; i < 80; ++i) {
        path += "/d";
        if (i == 60)
            write(path + "/profile.icc", deep);
    }
    write(path + "/profile.icc", tooDeep);
    return find(deep).first == Entry::System && find(reachable) == Found(Entry::System, root + "/z/profile.icc") &&
           find(tooDeep).first == -1;
}

TEST(ProfileScan, FindsFilesOfAnyNameBelowTheThreeDirectories)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a fresh process, in which no registry has been built
    EXPECT_EXIT(std::_Exit(scansAllThreeDirectories() ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(ProfileScan, VisitsADirectoryOnceAndOpensRegularFilesOnly)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a fresh process, in which no registry has been built
    EXPECT_EXIT(std::_Exit(survivesLoopsPipesAndDepth() ? 0 : 1), testing::ExitedWithCode(0), "");
}

} // namespace
