#pragma once

#include <ondrel/ondrel_export.h>

#include <QHash>
#include <QString>
#include <vector>

namespace Ondrel
{

// Where the files of the product lie. The first five start from a base directory: the working directory if it holds a
// regular file "ondrel_debug.txt", otherwise the executable's directory. Both are looked up on each call. Any thread,
// once start-up is over.
namespace Platform
{
ONDREL_EXPORT QString IconsDirectory();               // base + "/data/icons/"
ONDREL_EXPORT QString StylesDirectory();              // base + "/data/styles/"
ONDREL_EXPORT QString DocDirectory();                 // base + "/doc/"
ONDREL_EXPORT QString DataDirectory();                // base + "/data/"
ONDREL_EXPORT QString BuiltInColorProfileDirectory(); // base + "/data/color profiles/"

// "/plugins/" below the directory that PlatformPrivate::setup stored, whatever the base is; "/plugins/" before setup.
ONDREL_EXPORT QString PluginsDirectory();

// The directory registered for a plug-in, with a slash added; "/" for an unknown name.
ONDREL_EXPORT QString PluginDirectory(const QString& name);

// PluginDirectory(name) + "nodes/".
ONDREL_EXPORT QString PluginNodesDirectory(const QString& name);

// Below the home directory, without a slash at the end; not created.
ONDREL_EXPORT QString SystemColorProfileDirectory(); // "/.local/share/color/icc"
ONDREL_EXPORT QString UserPictureDirectory();        // "/Pictures"

// "/color/icc" beside the file of a default QSettings, without a slash at the end. Created if missing; that this
// failed shows only in the directory's absence.
ONDREL_EXPORT QString UserColorProfileDirectory();
} // namespace Platform
} // namespace Ondrel

// Process set-up and the table of plug-in directories. Not locked: set-up and changes of the table belong to the main
// thread while it starts and loads plug-ins; afterwards any thread may read.
class ONDREL_EXPORT PlatformPrivate
{
public:
    static PlatformPrivate* get();

    // To be called before the host creates its QApplication. Stores the executable's directory and adds "qt/" below it
    // to Qt's library paths. With a debug build of Qt, argc and argv are replaced by a copy that has the arguments
    // "-platformpluginpath" and "./qt/platforms" at its end, lives as long as the process and is not null-terminated;
    // with a release build both stay as they are.
    static void setup(int& argc, char*** argv);

    // The directory that setup stored; empty before.
    QString applicationDirectory() const;

    // The directory registered for a plug-in; empty for an unknown name.
    QString pluginDirectory(const QString& name) const;

    // Adds or replaces an entry; removes it, if it is there.
    void addPluginDirectory(const QString& name, const QString& directory);
    void removePluginDirectory(const QString& name);

private:
    std::vector<char*> m_arguments; // owns the array, not the texts
    QString m_applicationDirectory;
    QHash<QString, QString> m_pluginDirectories;
};
