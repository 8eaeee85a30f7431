#include <ondrel/core/platform.h>
#include <ondrel/nodes/pluginnodes.h>

#include <QFile>
#include <QFileInfo>

#include <iostream>

namespace Ondrel
{
namespace
{

QString fileNameOf(const QString& nodeName)
{
    return nodeName.toLower().remove(QLatin1Char(' ')).remove(QLatin1Char('/')) + QStringLiteral(".xml");
}

// A pipe would let the reader wait for ever. No path has a null character; Qt warns of one.
bool openRegularFile(QFile& file)
{
    return !file.fileName().contains(QChar(0)) && QFileInfo(file.fileName()).isFile() && file.open(QIODevice::ReadOnly);
}

} // namespace

PluginNodes::PluginNodes(const QString& pluginName)
    : m_pluginName(pluginName)
{
}

QString PluginNodes::loadXmlFromFile(const QString& nodeName)
{
    QFile file(Platform::PluginNodesDirectory(m_pluginName) + fileNameOf(nodeName));
    if (!openRegularFile(file)) {
        std::cerr << "Unable to open XML file for node named " + nodeName.toStdString() + '\n';
        return QStringLiteral("<node></node>");
    }
    return QString::fromUtf8(file.readAll().constData()); // up to the first zero byte
}

} // namespace Ondrel
