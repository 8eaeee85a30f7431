#include "checks.h"
#include "vocabulary.h"

#include <QSet>

void checkAttributes(Report& report, const SourceNode& node, const QStringList& known, const QString& owner)
{
    QSet<QString> seen;
    for (const SourceMap::Attribute& attribute : node.attributes()) {
        const QString& name = attribute.name;
        const Position position = node.positionOf(attribute);
        const QString called = QStringLiteral("attribute \"%1\" ").arg(name);
        if (seen.contains(name))
            addWarning(report, position, called + "stands twice in its tag", "the last one counts");
        seen.insert(name);
        if (known.contains(name) || name.contains(':') || name == "xmlns")
            continue;
        const QString lowered = name.toLower();
        const QString meant = nearest(lowered, known);
        if (known.contains(lowered))
            addWarning(report, position, called + "is not read",
                       QStringLiteral("attribute names are in lower case: \"%1\"").arg(lowered));
        else if (!placeOf(lowered).isEmpty())
            addWarning(report, position, called + "is not read by " + owner, placeOf(lowered));
        else if (!meant.isEmpty())
            addWarning(report, position, called + "is unknown", QStringLiteral("did you mean \"%1\"?").arg(meant));
        else
            addWarning(report, position, called + "is unknown",
                       QStringLiteral("attributes of your own take a prefix, as in \"my:%1\"").arg(lowered));
    }
}

void checkWord(Report& report, const SourceNode& entry, const QString& attribute, const QStringList& words,
               const QString& otherwise)
{
    if (!entry.has(attribute) || words.contains(entry.loweredValue(attribute)))
        return;
    addWarning(
        report, entry.valueOf(attribute),
        QStringLiteral("%1 \"%2\" is unknown and counts as \"%3\"").arg(attribute, entry.value(attribute), otherwise),
        suggestion(entry.value(attribute), words));
}
