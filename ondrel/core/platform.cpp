#include <ondrel/core/platform.h>
#include <ondrel/core/platformarguments_p.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QSettings>

namespace Ondrel::Platform
{
namespace
{

// A developer's run starts in the tree that holds data/ and doc/, and says so by a marker file.
QString baseDirectory()
{
    if (QFileInfo(QStringLiteral("./ondrel_debug.txt")).isFile())
        return QDir::currentPath();
    return QCoreApplication::applicationDirPath();
}

} // namespace

QString IconsDirectory()
{
    return baseDirectory() + QStringLiteral("/data/icons/");
}

QString StylesDirectory()
{
    return baseDirectory() + QStringLiteral("/data/styles/");
}

QString DocDirectory()
{
    return baseDirectory() + QStringLiteral("/doc/");
}

QString DataDirectory()
{
    return baseDirectory() + QStringLiteral("/data/");
}

QString BuiltInColorProfileDirectory()
{
    return baseDirectory() + QStringLiteral("/data/color profiles/");
}

QString PluginsDirectory()
{
    return PlatformPrivate::get()->applicationDirectory() + QStringLiteral("/plugins/");
}

QString PluginDirectory(const QString& name)
{
    return PlatformPrivate::get()->pluginDirectory(name) + QLatin1Char('/');
}

QString PluginNodesDirectory(const QString& name)
{
    return PluginDirectory(name) + QStringLiteral("nodes/");
}

QString SystemColorProfileDirectory()
{
    return QDir::homePath() + QStringLiteral("/.local/share/color/icc");
}

QString UserPictureDirectory()
{
    return QDir::homePath() + QStringLiteral("/Pictures");
}

QString UserColorProfileDirectory()
{
    QString path = QFileInfo(QSettings().fileName()).absolutePath() + QStringLiteral("/color/icc");
    const QDir directory(path);
    if (!directory.exists())
        directory.mkpath(path);
    return path;
}

} // namespace Ondrel::Platform

namespace
{

// Qt answers this only while an application object lives.
QString executableDirectory(int argc, char** argv)
{
    if (QCoreApplication::instance())
        return QCoreApplication::applicationDirPath();
    // On a copy: Qt drops the arguments that it knows from the vector that it is given.
    std::vector<char*> arguments(argv, argv + argc);
    arguments.push_back(nullptr);
    QCoreApplication application(argc, arguments.data());
    return QCoreApplication::applicationDirPath();
}

} // namespace

void Ondrel::addPlatformPluginArguments(std::vector<char*>& arguments, int& argc, char*** argv)
{
    static char option[] = "-platformpluginpath";
    static char directory[] = "./qt/platforms";
    // Taken aside, as the vector may move its array while it grows.
    const std::vector<char*> given(*argv, *argv + argc);
    arguments.insert(arguments.end(), given.begin(), given.end());
    arguments.push_back(option);
    arguments.push_back(directory);
    *argv = arguments.data();
    argc = static_cast<int>(arguments.size());
}

PlatformPrivate* PlatformPrivate::get()
{
    static PlatformPrivate platform;
    return &platform;
}

void PlatformPrivate::setup(int& argc, char*** argv)
{
    PlatformPrivate* platform = get();
    platform->m_applicationDirectory = executableDirectory(argc, *argv);
    QCoreApplication::addLibraryPath(platform->m_applicationDirectory + QStringLiteral("/qt/"));
    if (QLibraryInfo::isDebugBuild())
        Ondrel::addPlatformPluginArguments(platform->m_arguments, argc, argv);
}

QString PlatformPrivate::applicationDirectory() const
{
    return m_applicationDirectory;
}

QString PlatformPrivate::pluginDirectory(const QString& name) const
{
    return m_pluginDirectories.value(name);
}

void PlatformPrivate::addPluginDirectory(const QString& name, const QString& directory)
{
    m_pluginDirectories.insert(name, directory);
}

void PlatformPrivate::removePluginDirectory(const QString& name)
{
    m_pluginDirectories.remove(name);
}
