#include "checks.h"
#include "vocabulary.h"

#include <ondrel/core/xml.h>

#include <QSet>

namespace
{

void checkInitial(Report& report, const SourceNode& entry, const QStringList& choices, bool separators)
{
    if (!entry.has("initial"))
        return;
    const Position position = entry.valueOf("initial");
    const int index = Ondrel::AttributeAsInt(entry.node(), "initial", 0);
    const QString stays = "the first choice stays chosen";
    if (index != Ondrel::AttributeAsInt(entry.node(), "initial", 1))
        addWarning(report, position, QStringLiteral("initial \"%1\" is no whole number").arg(entry.value("initial")),
                   stays);
    else if (index < 0 || index >= choices.size())
        addWarning(report, position, QStringLiteral("initial %1 is out of range").arg(index),
                   choices.isEmpty()
                       ? QStringLiteral("there is no choice")
                       : QStringLiteral("the last choice has the number %1; %2").arg(choices.size() - 1).arg(stays));
    else if (separators && choices[index] == "--")
        addWarning(report, position, QStringLiteral("initial %1 is a separator").arg(index),
                   "choices are counted from 0, and separators count");
}

// One choice, and whether it has been seen before.
void checkChoice(Report& report, const QString& choice, const Position& position, QSet<QString>& seen)
{
    if (choice != choice.trimmed())
        addWarning(report, position, QStringLiteral("choice \"%1\" begins or ends with blanks").arg(choice),
                   "they belong to its value");
    if (seen.contains(choice))
        addWarning(report, position, QStringLiteral("choice \"%1\" stands twice").arg(choice),
                   "its value is its text: the second one cannot be restored");
    seen.insert(choice);
}

void checkFieldSet(Report& report, const SourceNode& set, Names& names, QSet<QString>& choices)
{
    checkAttributes(report, set, {"choice"}, "a \"fieldset\"");
    if (set.value("choice").isEmpty())
        addWarning(report, set.position(), "this field set has no choice",
                   "attribute \"choice\" is its text in the box");
    else
        checkChoice(report, set.value("choice"), set.valueOf("choice"), choices);
    for (const SourceNode& child : set.children())
        checkInput(report, child, names, true);
}

} // namespace

void checkComboBox(Report& report, const SourceNode& entry)
{
    checkWord(report, entry, "style", {"list", "thumbnails"}, "thumbnails");
    const bool list = entry.loweredValue("style", "list") == "list";
    const QStringList choices = entry.value("choices").split(',');
    if (entry.value("choices").isEmpty())
        addWarning(report, entry.position(), "this combo box has one empty choice",
                   "attribute \"choices\" takes texts between commas");
    QSet<QString> seen;
    int offset = 0;
    for (const QString& choice : choices) {
        const Position position = entry.valueOf("choices", offset);
        offset += choice.size() + 1;
        if (choice == "--" && !list)
            addWarning(report, position, "\"--\" is no separator among thumbnails", "separators are for lists");
        else if (choice.isEmpty() && choices.size() > 1)
            addWarning(report, position, "this choice is empty", "a comma stands too much");
        else if (choice != "--")
            checkChoice(report, choice, position, seen);
    }
    checkInitial(report, entry, choices, list);
}

void checkFieldSets(Report& report, const SourceNode& entry, Names& names)
{
    QStringList choices;
    QSet<QString> seen;
    bool labelled = false;
    for (const SourceNode& child : entry.children()) {
        if (!child.isElement())
            continue; // comments are passed over, as they should be
        if (child.name() == "fieldset") {
            choices.append(child.value("choice"));
            checkFieldSet(report, child, names, seen);
        } else if (child.name() == "label") {
            if (labelled)
                addWarning(report, child.position(), "a second \"label\"", "the last one counts");
            labelled = true;
            checkAttributes(report, child, {}, "a \"label\"");
        } else {
            addWarning(report, child.position(), QStringLiteral("element \"%1\" is passed over").arg(child.name()),
                       suggestion(child.name(), {"label", "fieldset"}));
        }
    }
    if (choices.isEmpty())
        addWarning(report, entry.position(), "a combo box of field sets without any",
                   "each choice is a child element \"fieldset\"");
    checkInitial(report, entry, choices, false);
}
