#pragma once

#include <ondrel/ondrel_export.h>

#include <QColor>
#include <QDomDocument>
#include <QDomElement>
#include <QDomNode>
#include <QPair>
#include <QString>
#include <QSvgRenderer>
#include <QVector>
namespace Ondrel
{
ONDREL_EXPORT QString NodeTextValue(QDomNode node);
ONDREL_EXPORT QString AttributeAsString(QDomNode node, QString attribute, QString defaultValue);
ONDREL_EXPORT QString AttributeAsLowerString(QDomNode node, QString attribute, QString defaultValue);
template <typename T>
T AttributeAsT(QDomNode node, QString attribute, T defaultValue); // exported for int and float
ONDREL_EXPORT int AttributeAsInt(QDomNode node, QString attribute, int defaultValue);
ONDREL_EXPORT float AttributeAsFloat(QDomNode node, QString attribute, float defaultValue);
ONDREL_EXPORT QVector<QPair<double, QColor>> AttributeAsGradient(QDomNode node, QString attribute);
ONDREL_EXPORT QDomElement TextElement(QDomDocument& document, QString elementName, QString text);
ONDREL_EXPORT void LoadSvgWithReplace(QSvgRenderer& renderer, const QString& fileName, const QString& find,
                                      const QString& replace);
} // namespace Ondrel
