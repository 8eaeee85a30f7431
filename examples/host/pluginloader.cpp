#include "nodetypes.h"
#include "text.h"

#include <QDir>
#include <QPluginLoader>

namespace Host
{
namespace
{

// Whatever a plug-in throws is turned into a sentence, so that the host goes on without it.
QString loadOne(const QString& name, const QDir& folder, NodeTypes& types, QStringList& problems)
{
    QPluginLoader loader(folder.absoluteFilePath(name));  // others are looked for in Qt's own folders
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint); // a missing symbol shows here, not in the middle of work
    if (loader.metaData().value("IID").toString() != OndrelNodePlugin_iid)
        return loader.fileName().isEmpty() ? Text::tr("there is no shared object") : Text::tr("it is no node plug-in");
    try {
        const auto* plugin = qobject_cast<NodePlugin*>(loader.instance());
        if (!plugin)
            return loader.errorString();
        types.addPlugin(name, folder.path(), *plugin, problems);
    } catch (const std::exception& exception) {
        return QString::fromLocal8Bit(exception.what());
    } catch (...) {
        return Text::tr("it failed to start");
    }
    return QString();
}

} // namespace

QStringList loadPlugins(const QString& folder, NodeTypes& types)
{
    QStringList problems;
    const QDir all(folder);
    for (const QString& name : all.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QString reason = loadOne(name, QDir(all.filePath(name)), types, problems);
        if (!reason.isEmpty())
            problems.append(Text::tr("The plug-in \"%1\" was skipped: %2").arg(name, reason));
    }
    return problems;
}

} // namespace Host
