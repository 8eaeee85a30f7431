#include "vocabulary.h"

#include <QMap>

#include <algorithm>
#include <vector>

namespace
{

// By type, the attributes besides "type", "help" and, for all but the preview, "name".
const QMap<QString, QStringList>& ownAttributes()
{
    static const QMap<QString, QStringList> attributes = {
        {"slider", {"min", "max", "value", "mode", "style", "groovegradient", "postfix"}},
        {"rangeslider", {"min", "max", "left", "right", "groovegradient", "bargradient"}},
        {"combobox", {"choices", "initial", "style"}},
        {"color", {"value"}},
        {"fieldsetcombobox", {"initial"}},
    };
    return attributes;
}

// Insertions, deletions and replacements between two words.
int distance(const QString& a, const QString& b)
{
    std::vector<int> row(std::size_t(b.size()) + 1);
    for (std::size_t j = 0; j < row.size(); ++j)
        row[j] = int(j);
    for (int i = 0; i < a.size(); ++i) {
        int diagonal = row[0];
        row[0] = i + 1;
        for (int j = 0; j < b.size(); ++j) {
            const auto at = std::size_t(j);
            const int replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[at + 1];
            row[at + 1] = std::min({replaced, row[at] + 1, diagonal + 1});
        }
    }
    return row.back();
}

QString quoted(const QString& word)
{
    return '"' + word + '"';
}

} // namespace

const QStringList& fieldTypes()
{
    static const QStringList types = {"",      "label",        "preview",  "slider", "rangeslider",     "combobox",
                                      "color", "colorprofile", "resource", "hidden", "fieldsetcombobox"};
    return types;
}

QStringList attributesOf(const QString& fieldType)
{
    QStringList names = {"type", "help"};
    if (fieldType != "preview")
        names.prepend("name");
    return names + ownAttributes().value(fieldType);
}

const QStringList& rootAttributes()
{
    static const QStringList names = {"title", "category", "keywords", "help", "version"};
    return names;
}

QString placeOf(const QString& attribute)
{
    QStringList types;
    for (const QString& type : fieldTypes()) {
        if (ownAttributes().value(type).contains(attribute))
            types.append(type);
    }
    if (!types.isEmpty())
        return QStringLiteral("it belongs to a field of type ") + alternatives(types);
    if (attribute == "type")
        return QStringLiteral("it belongs to an input");
    if (attribute == "choice")
        return QStringLiteral("it belongs to a \"fieldset\"");
    if (attribute == "name")
        return QStringLiteral("it belongs to an input or an output");
    return rootAttributes().contains(attribute) ? QStringLiteral("it belongs to the root element") : QString();
}

QString described(const QString& fieldType)
{
    return fieldType.isEmpty() ? QStringLiteral("a plain input")
                               : QStringLiteral("a field of type ") + quoted(fieldType);
}

QString alternatives(const QStringList& words)
{
    QString text;
    for (int i = 0; i < words.size(); ++i) {
        if (i > 0)
            text += i + 1 < words.size() ? QStringLiteral(", ") : QStringLiteral(" or ");
        text += quoted(words[i]);
    }
    return text;
}

QString nearest(const QString& word, const QStringList& words)
{
    QString best;
    int least = std::min(3, word.size()); // above two changes it is another word
    for (const QString& candidate : words) {
        if (candidate.isEmpty() || std::abs(candidate.size() - word.size()) >= least)
            continue;
        const int changes = distance(word, candidate);
        if (changes < least) {
            least = changes;
            best = candidate;
        }
    }
    return best;
}

QString suggestion(const QString& word, const QStringList& words)
{
    const QString meant = nearest(word.toLower(), words);
    if (!meant.isEmpty())
        return QStringLiteral("did you mean %1?").arg(quoted(meant));
    QStringList known = words;
    known.removeAll(QString());
    return QStringLiteral("it may be %1").arg(alternatives(known));
}
