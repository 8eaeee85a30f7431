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

// Reading and writing of XML nodes, and tinted icons. Nothing here reports an error: what is absent or malformed gives
// the default. Attribute names are matched exactly. Nodes and renderers are objects of Qt: what one thread reads here,
// no other may change at the same time.

namespace Ondrel
{

// The text and CDATA children of the node itself, joined, not trimmed.
ONDREL_EXPORT QString NodeTextValue(QDomNode node);

// The attribute's value, the empty one too, or the default if it is absent. The second form lowers either.
ONDREL_EXPORT QString AttributeAsString(QDomNode node, QString attribute, QString defaultValue);
ONDREL_EXPORT QString AttributeAsLowerString(QDomNode node, QString attribute, QString defaultValue);

// The attribute as a decimal number in the grammar of boost::lexical_cast, whatever the locale: the whole text must be
// a number within the type's range, without blanks. A float may be "nan", "inf" or "infinity" in any case.
template <typename T>
ONDREL_EXPORT T AttributeAsT(QDomNode node, QString attribute, T defaultValue); // exported for int and float
extern template int AttributeAsT<int>(QDomNode node, QString attribute, int defaultValue);
extern template float AttributeAsT<float>(QDomNode node, QString attribute, float defaultValue);
ONDREL_EXPORT int AttributeAsInt(QDomNode node, QString attribute, int defaultValue);
ONDREL_EXPORT float AttributeAsFloat(QDomNode node, QString attribute, float defaultValue);

// Gradient stops from a list of colours between commas, in any form that QColor::setNamedColor takes; others are
// dropped. The colours that are left lie at even distances from 0.0 to 1.0; one colour gives two equal stops.
ONDREL_EXPORT QVector<QPair<double, QColor>> AttributeAsGradient(QDomNode node, QString attribute);

// A new element with one text child, not attached to anything.
ONDREL_EXPORT QDomElement TextElement(QDomDocument& document, QString elementName, QString text);

// Loads a file into the renderer, with every occurrence of the bytes `find` (UTF-8) replaced. What is no regular file,
// or cannot be opened, leaves the renderer as it was.
ONDREL_EXPORT void LoadSvgWithReplace(QSvgRenderer& renderer, const QString& fileName, const QString& find,
                                      const QString& replace);

} // namespace Ondrel
