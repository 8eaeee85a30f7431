#include "nodefile.h"

#include <ondrel/core/xml.h>
#include <ondrel/nodes/xmlnode.h>

#include <QDomDocument>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace Viewer
{

Ondrel::XmlNode* loadNode(const QString& path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s: cannot be read\n", qUtf8Printable(path));
        return nullptr;
    }
    const QString xml(file.readAll()); // as the library reads its node files
    Ondrel::XmlNode* const node = Ondrel::XmlNode::create(xml);
    if (!node)
        return nullptr;
    const QString name = QFileInfo(path).completeBaseName();
    QDomDocument document;
    document.setContent(xml);
    node->setName(name);
    node->setHeader(Ondrel::AttributeAsString(document.documentElement(), "title", name));
    return node;
}

QMap<QString, QVariant> valuesOf(Ondrel::XmlNode& node)
{
    QMap<QString, QVariant> values;
    for (unsigned long i = 0; i < node.inputFieldCount(); ++i) {
        const QVariant value = node.inputValue(int(i));
        if (value.isValid())
            values.insert(node.inputNameOfFieldByIndex(i), value);
    }
    return values;
}

void restoreValues(Ondrel::XmlNode& node, const QMap<QString, QVariant>& values)
{
    for (unsigned long i = 0; i < node.inputFieldCount(); ++i) {
        const auto found = values.constFind(node.inputNameOfFieldByIndex(i));
        if (found == values.constEnd())
            continue;
        const QVariant current = node.inputValue(int(i)); // invalid: a hidden field, or none with a value
        if (!current.isValid() || current.userType() == found->userType())
            node.setInputValue(i, *found);
    }
}

} // namespace Viewer
