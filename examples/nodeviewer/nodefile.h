#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

namespace Ondrel
{
class XmlNode;
}

namespace Viewer
{

// Makes a node from a file, with the root's attribute "title" as its header. Null, with a message on the error stream,
// if the file cannot be read or is no node file.
Ondrel::XmlNode* loadNode(const QString& path);

// The values of all inputs that have one, by field name.
QMap<QString, QVariant> valuesOf(Ondrel::XmlNode& node);

// Sets those inputs whose names and kinds of value are still the same.
void restoreValues(Ondrel::XmlNode& node, const QMap<QString, QVariant>& values);

} // namespace Viewer
