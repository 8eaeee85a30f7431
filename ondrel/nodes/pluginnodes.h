#pragma once

#include <ondrel/ondrel_export.h>

#include <QString>

namespace Ondrel
{

// The node files of a plug-in, which lie in Platform::PluginNodesDirectory.
class ONDREL_EXPORT PluginNodes
{
public:
    explicit PluginNodes(const QString& pluginName);

    // The text of the file of a node: its name in lower case, without blanks and slashes, and ".xml". A file that is no
    // regular file or cannot be opened gives a message on the error stream, and a text that is no node. UTF-8, up to
    // the first zero byte.
    QString loadXmlFromFile(const QString& nodeName);

private:
    QString m_pluginName;
};

} // namespace Ondrel
