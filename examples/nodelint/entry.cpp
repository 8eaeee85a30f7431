#include "checks.h"
#include "vocabulary.h"

#include <ondrel/core/xml.h>

namespace
{

// Everything in a list of entries becomes one.
bool isEntry(Report& report, const SourceNode& node, const QString& becomes)
{
    if (node.isElement())
        return true;
    addWarning(report, node.position(), QStringLiteral("%1 becomes an %2 without a name").arg(kindName(node), becomes),
               node.node().isComment() ? "comments may stand behind the root element, or inside of an entry"
                                       : "put it into an entry, or leave it out");
    return false;
}

void checkName(Report& report, const SourceNode& entry, const QString& name, Names& names)
{
    if (name.isEmpty()) {
        addWarning(report, entry.position(), "this field has no name", "hosts and saved projects find fields by name");
        return;
    }
    if (entry.has("name") && entry.value("name") != name)
        addWarning(report, entry.valueOf("name"),
                   QStringLiteral("name \"%1\" becomes \"%2\"").arg(entry.value("name"), name),
                   "names are in lower case");
    if (names.contains(name))
        addWarning(report, entry.valueOf("name"), QStringLiteral("name \"%1\" is taken").arg(name),
                   QStringLiteral("only the field in line %1 will be found by this name").arg(names.value(name).line));
    else
        names.insert(name, entry.position());
}

void checkText(Report& report, const SourceNode& entry)
{
    const QString text = Ondrel::NodeTextValue(entry.node());
    if (text != text.trimmed())
        addWarning(report, entry.position(), "the display name begins or ends with blanks",
                   "they are shown: write it close to the tags");
    for (const SourceNode& child : entry.children()) {
        if (child.isElement())
            addWarning(report, child.position(),
                       QStringLiteral("element \"%1\" inside of an entry is passed over").arg(child.name()),
                       "an entry holds text alone");
    }
}

// Of fields that show no name.
void checkNoText(Report& report, const SourceNode& entry, const QString& hint)
{
    if (!Ondrel::NodeTextValue(entry.node()).trimmed().isEmpty())
        addWarning(report, entry.position(), "the text of this field is not shown", hint);
}

void checkPreview(Report& report, const SourceNode& entry, Names& names)
{
    if (names.contains("preview"))
        addWarning(
            report, entry.position(), "name \"preview\" is taken",
            QStringLiteral("a node has one preview; line %1 has its name already").arg(names.value("preview").line));
    else
        names.insert("preview", entry.position());
    if (entry.has("name"))
        addWarning(report, entry.nameOf("name"), "a preview does not read its name", "it is called \"preview\"");
}

void checkType(Report& report, const SourceNode& entry, const QString& type, Names& names)
{
    if (type == "slider")
        checkSlider(report, entry);
    else if (type == "rangeslider")
        checkRangeSlider(report, entry);
    else if (type == "combobox")
        checkComboBox(report, entry);
    else if (type == "color")
        checkColor(report, entry);
    else if (type == "fieldsetcombobox")
        checkFieldSets(report, entry, names);

    if (type == "fieldsetcombobox")
        checkNoText(report, entry, "the display name of field sets stands in a child element \"label\"");
    else if (type == "preview" || type == "resource" || type == "hidden")
        checkNoText(report, entry, QStringLiteral("%1 shows no name").arg(described(type)));
    else
        checkText(report, entry);
}

} // namespace

QString kindName(const SourceNode& node)
{
    if (node.node().isComment())
        return QStringLiteral("a comment");
    if (node.node().isProcessingInstruction())
        return QStringLiteral("an instruction");
    return QStringLiteral("text");
}

void checkOutput(Report& report, const SourceNode& entry, Names& names)
{
    if (!isEntry(report, entry, "output"))
        return;
    checkAttributes(report, entry, {"name", "help"}, "an output");
    checkName(report, entry, entry.loweredValue("name"), names);
    checkText(report, entry);
}

void checkInput(Report& report, const SourceNode& entry, Names& names, bool insideFieldSet)
{
    if (!isEntry(report, entry, "input"))
        return;
    const QString type = entry.loweredValue("type");
    if (!fieldTypes().contains(type)) {
        addError(report, entry.valueOf("type"), QStringLiteral("type \"%1\" is unknown").arg(entry.value("type")),
                 suggestion(entry.value("type"), fieldTypes()));
        return;
    }
    if (insideFieldSet && type == "fieldsetcombobox") {
        addError(report, entry.valueOf("type"), "field sets inside of a field set", "field sets do not nest");
        return;
    }
    QStringList known = attributesOf(type);
    if (type == "preview") {
        checkPreview(report, entry, names);
        known.append("name"); // told already
    } else if (type != "label" || entry.has("name")) {
        checkName(report, entry, entry.loweredValue("name"), names);
    }
    checkAttributes(report, entry, known, described(type));
    checkType(report, entry, type, names);
}
