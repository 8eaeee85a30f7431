#include <ondrel/core/xml.h>

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <boost/lexical_cast.hpp>

#include <algorithm>
#include <locale>
#include <sstream>
#include <string>

namespace Ondrel
{
namespace
{

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// boost::lexical_cast reads digits by the global C++ locale, in which a host may have set a comma. It is asked only
// for the words (not-a-number, infinity), which no locale changes; digits are read by a stream of the classic locale,
// which takes the same texts.
template <typename T>
bool numberFromText(const std::string& text, T& value)
{
    const bool isSigned = !text.empty() && (text[0] == '+' || text[0] == '-');
    const std::size_t start = isSigned ? 1 : 0;
    if (start < text.size() && isLetter(text[start]))
        return boost::conversion::try_lexical_convert(text, value);

    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    stream >> std::noskipws >> value;
    return !stream.fail() && stream.peek() == std::istringstream::traits_type::eof();
}

} // namespace

QString NodeTextValue(QDomNode node)
{
    QString text;
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.isText())
            text += child.nodeValue();
    }
    return text;
}

QString AttributeAsString(QDomNode node, QString attribute, QString defaultValue)
{
    const QDomNamedNodeMap attributes = node.attributes();
    return attributes.contains(attribute) ? attributes.namedItem(attribute).nodeValue() : defaultValue;
}

QString AttributeAsLowerString(QDomNode node, QString attribute, QString defaultValue)
{
    return AttributeAsString(node, attribute, defaultValue).toLower();
}

template <typename T>
T AttributeAsT(QDomNode node, QString attribute, T defaultValue)
{
    if (!node.attributes().contains(attribute))
        return defaultValue;
    T value{};
    const std::string text = AttributeAsString(node, attribute, QString()).toStdString();
    return numberFromText(text, value) ? value : defaultValue;
}

template int AttributeAsT<int>(QDomNode node, QString attribute, int defaultValue);
template float AttributeAsT<float>(QDomNode node, QString attribute, float defaultValue);

int AttributeAsInt(QDomNode node, QString attribute, int defaultValue)
{
    return AttributeAsT<int>(node, attribute, defaultValue);
}

float AttributeAsFloat(QDomNode node, QString attribute, float defaultValue)
{
    return AttributeAsT<float>(node, attribute, defaultValue);
}

QVector<QPair<double, QColor>> AttributeAsGradient(QDomNode node, QString attribute)
{
    const QStringList parts =
        AttributeAsString(node, attribute, QString()).split(QLatin1Char(','), Qt::SkipEmptyParts, Qt::CaseSensitive);
    QVector<QColor> colors;
    for (const QString& part : parts) {
        QColor color;
        color.setNamedColor(part);
        if (color.isValid())
            colors.append(color);
    }
    if (colors.size() == 1)
        colors.append(colors.first());

    QVector<QPair<double, QColor>> stops;
    for (int i = 0; i < colors.size(); ++i)
        stops.append({double(i) / (colors.size() - 1), colors[i]});
    return stops;
}

QDomElement TextElement(QDomDocument& document, QString elementName, QString text)
{
    QDomElement element = document.createElement(elementName);
    element.appendChild(document.createTextNode(text));
    return element;
}

void LoadSvgWithReplace(QSvgRenderer& renderer, const QString& fileName, const QString& find, const QString& replace)
{
    QFile file(fileName);
    // Opening a pipe would wait for a writer.
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return;
    QByteArray bytes = file.readAll();
    bytes.replace(find.toUtf8(), replace.toUtf8());
    renderer.load(bytes);
}

} // namespace Ondrel
