#pragma once

#include <ondrel/ondrel_export.h>

#include <QHash>
#include <QString>
#include <vector>
namespace Ondrel
{
namespace Platform
{
ONDREL_EXPORT QString IconsDirectory();
ONDREL_EXPORT QString StylesDirectory();
ONDREL_EXPORT QString DocDirectory();
ONDREL_EXPORT QString DataDirectory();
ONDREL_EXPORT QString BuiltInColorProfileDirectory();
ONDREL_EXPORT QString PluginsDirectory();
ONDREL_EXPORT QString PluginDirectory(const QString& name);
ONDREL_EXPORT QString PluginNodesDirectory(const QString& name);
ONDREL_EXPORT QString SystemColorProfileDirectory();
ONDREL_EXPORT QString UserPictureDirectory();
ONDREL_EXPORT QString UserColorProfileDirectory();
} // namespace Platform
} // namespace Ondrel
class ONDREL_EXPORT PlatformPrivate
{
public:
    static PlatformPrivate* get();
    static void setup(int& argc, char*** argv);
    QString applicationDirectory() const;
    QString pluginDirectory(const QString& name) const;
    void addPluginDirectory(const QString& name, const QString& directory);
    void removePluginDirectory(const QString& name);
};
