#include <ondrel/core/color.h>
#include <ondrel/core/xml.h>
#include <ondrel/nodes/fields/colorfield.h>
#include <ondrel/nodes/fields/colorprofilefield.h>
#include <ondrel/nodes/fields/comboboxfield.h>
#include <ondrel/nodes/fields/hiddenfield.h>
#include <ondrel/nodes/fields/imagepreviewfield.h>
#include <ondrel/nodes/fields/labelfield.h>
#include <ondrel/nodes/fields/rangesliderfield.h>
#include <ondrel/nodes/fields/resourcefield.h>
#include <ondrel/nodes/fields/sliderfield.h>
#include <ondrel/nodes/nodexmldepth_p.h>
#include <ondrel/nodes/xmlnode.h>

#include <QDomDocument>

#include <iostream>
#include <string>
#include <utility>

namespace Ondrel
{
namespace
{

constexpr int kDeepestElement = 256;

struct TypedField {
    QString type;
    InputField* field;
};

QString text(const QDomNode& entry, const char* attribute, const char* defaultValue)
{
    return AttributeAsString(entry, QLatin1String(attribute), QLatin1String(defaultValue));
}

QString lowerText(const QDomNode& entry, const char* attribute, const char* defaultValue)
{
    return AttributeAsLowerString(entry, QLatin1String(attribute), QLatin1String(defaultValue));
}

QString nameOf(const QDomNode& entry)
{
    return lowerText(entry, "name", "");
}

QString typeOf(const QDomNode& entry)
{
    return lowerText(entry, "type", "");
}

QVector<QPair<double, QColor>> gradient(const QDomNode& entry, const char* attribute)
{
    return AttributeAsGradient(entry, QLatin1String(attribute));
}

InputField* parseAnchored(XmlNode* node, const QDomNode& entry)
{
    return new InputField(nameOf(entry), node, node->createAnchor(Anchor::Input), NodeTextValue(entry));
}

InputField* parseLabel(XmlNode* node, const QDomNode& entry)
{
    return new LabelField(nameOf(entry), node, NodeTextValue(entry));
}

InputField* parseSlider(XmlNode* node, const QDomNode& entry)
{
    const bool isInteger = lowerText(entry, "mode", "integer") == QLatin1String("integer");
    const bool isRange = lowerText(entry, "style", "range") == QLatin1String("range");
    auto* field = new SliderInputField(nameOf(entry), node, NodeTextValue(entry), text(entry, "min", "0"),
                                       text(entry, "max", "100"), text(entry, "value", "50"),
                                       isInteger ? PrecisionSlider::Integer : PrecisionSlider::Double,
                                       isRange ? PrecisionSlider::Range : PrecisionSlider::Arrows);
    if (const auto stops = gradient(entry, "groovegradient"); !stops.isEmpty())
        field->setGradient(stops);
    field->setPostfix(text(entry, "postfix", ""));
    QObject::connect(field, SIGNAL(valueChanged()), node, SLOT(inputValueChanged()));
    return field;
}

InputField* parseRangeSlider(XmlNode* node, const QDomNode& entry)
{
    auto* field =
        new RangeSliderInputField(nameOf(entry), node, NodeTextValue(entry), text(entry, "min", "0"),
                                  text(entry, "max", "100"), text(entry, "left", "0"), text(entry, "right", "100"));
    if (const auto stops = gradient(entry, "groovegradient"); !stops.isEmpty())
        field->setGrooveGradient(stops);
    if (const auto stops = gradient(entry, "bargradient"); !stops.isEmpty())
        field->setBarGradient(stops);
    QObject::connect(field, SIGNAL(valueChanged()), node, SLOT(inputValueChanged()));
    return field;
}

InputField* parseComboBox(XmlNode* node, const QDomNode& entry)
{
    const bool isList = lowerText(entry, "style", "list") == QLatin1String("list");
    auto* field = new ComboBoxInputField(nameOf(entry), node, NodeTextValue(entry),
                                         text(entry, "choices", "").split(QLatin1Char(',')),
                                         AttributeAsInt(entry, QStringLiteral("initial"), 0),
                                         isList ? ComboBoxInputField::List : ComboBoxInputField::Thumbnails);
    QObject::connect(field, SIGNAL(currentIndexChanged(int)), node, SLOT(inputValueChanged()));
    QObject::connect(field, SIGNAL(thumbnailsRequested(ComboBoxInputField*)), node,
                     SLOT(thumbnailsRequested(ComboBoxInputField*)));
    return field;
}

InputField* parseColor(XmlNode* node, const QDomNode& entry)
{
    auto* field = new ColorField(nameOf(entry), node, NodeTextValue(entry), true);
    field->setColor(Color(text(entry, "value", "0,0,0,65535")));
    QObject::connect(field, SIGNAL(valueChanged()), node, SLOT(inputValueChanged()));
    return field;
}

InputField* parseColorProfile(XmlNode* node, const QDomNode& entry)
{
    auto* field = new ColorProfileField(nameOf(entry), node, NodeTextValue(entry), QString(), QByteArray());
    QObject::connect(field, SIGNAL(currentIndexChanged(int)), node, SLOT(inputValueChanged()));
    return field;
}

InputField* parseResource(XmlNode* node, const QDomNode& entry)
{
    return new ResourceField(nameOf(entry), node);
}

InputField* parseHidden(XmlNode* node, const QDomNode& entry)
{
    return new HiddenField(nameOf(entry), node);
}

struct Parser {
    const char* type;
    InputField* (*parse)(XmlNode* node, const QDomNode& entry);
};

const Parser kParsers[] = {
    {"", parseAnchored},
    {"label", parseLabel},
    {"slider", parseSlider},
    {"rangeslider", parseRangeSlider},
    {"combobox", parseComboBox},
    {"color", parseColor},
    {"colorprofile", parseColorProfile},
    {"resource", parseResource},
    {"hidden", parseHidden},
};

// The field sets of one combo box: the text of each choice and the fields that it brings.
struct FieldSets {
    QString label;
    QStringList choices;
    std::vector<std::vector<TypedField>> sets;
};

bool parseFieldSet(XmlNode* node, const QDomNode& element, std::vector<TypedField>& fields)
{
    for (QDomNode entry = element.firstChild(); !entry.isNull(); entry = entry.nextSibling()) {
        InputField* field = XmlNode::parseInputField(node, entry);
        if (!field)
            return false;
        fields.push_back({typeOf(entry), field});
    }
    return true;
}

// False at the first malformed entry; then the sets before it are there.
bool parseFieldSets(XmlNode* node, const QDomNode& entry, FieldSets& parsed)
{
    for (QDomNode child = entry.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.nodeName() == QLatin1String("label")) {
            parsed.label = NodeTextValue(child);
        } else if (child.nodeName() == QLatin1String("fieldset")) {
            std::vector<TypedField> fields;
            if (!parseFieldSet(node, child, fields))
                return false;
            parsed.choices.push_back(text(child, "choice", ""));
            parsed.sets.push_back(std::move(fields));
        }
    }
    return true;
}

void report(const std::string& message)
{
    std::cerr << message + '\n';
}

void report(const char* message, const QString& xml)
{
    report(message);
    report(xml.toStdString());
}

// The entries below each child of the root that has this name, where the last such child counts.
QDomNodeList entriesOf(const QDomNode& root, const char* name)
{
    QDomNodeList entries;
    for (QDomNode child = root.firstChild(); !child.isNull(); child = child.nextSibling())
        if (child.nodeName() == QLatin1String(name))
            entries = child.childNodes();
    return entries;
}

} // namespace

InputField* XmlNode::parseInputField(XmlNode* node, const QDomNode& entry)
{
    const QString type = typeOf(entry);
    if (type == QLatin1String("preview"))
        return node->previewField;
    for (const Parser& parser : kParsers)
        if (type == QLatin1String(parser.type))
            return parser.parse(node, entry);
    return nullptr;
}

bool XmlNode::parseFieldSetComboBoxInputField(XmlNode* node, const QDomNode& entry)
{
    FieldSets parsed;
    if (!parseFieldSets(node, entry, parsed)) {
        for (const std::vector<TypedField>& set : parsed.sets)
            for (const TypedField& member : set)
                if (member.field != node->previewField) // which every node keeps
                    member.field->deleteLater();
        return false;
    }
    auto* comboBox =
        new ComboBoxInputField(nameOf(entry), node, parsed.label, parsed.choices,
                               AttributeAsInt(entry, QStringLiteral("initial"), 0), ComboBoxInputField::List);
    // In this order: the host hears which fields go, and cuts its wires, before it hears of the new value.
    connect(comboBox, SIGNAL(currentIndexChanged(int)), node, SIGNAL(beginFieldsMadeUnavailable()));
    connect(comboBox, SIGNAL(currentIndexChanged(int)), node, SLOT(comboBoxFieldSetValueChanged()));
    connect(comboBox, SIGNAL(currentIndexChanged(int)), node, SLOT(inputValueChanged()));
    connect(comboBox, SIGNAL(currentIndexChanged(int)), node, SIGNAL(endFieldsMadeUnavailable()));

    std::vector<std::vector<unsigned long>>& sets = node->fieldSets[node->inputFields.size()];
    node->appendInput(comboBox, QStringLiteral("combobox"));
    for (const std::vector<TypedField>& set : parsed.sets) {
        std::vector<unsigned long>& inputs = sets.emplace_back();
        for (const TypedField& member : set) {
            inputs.push_back(node->inputFields.size());
            node->appendInput(member.field, member.type);
        }
    }
    return true;
}

bool XmlNode::parseFields(XmlNode* node, const QDomNodeList& inputs, const QDomNodeList& outputs)
{
    for (int i = 0; i < outputs.size(); ++i) {
        const QDomNode entry = outputs.item(i);
        node->outputFields.push_back(
            new OutputField(nameOf(entry), node, node->createAnchor(Anchor::Output), NodeTextValue(entry)));
    }
    for (int i = 0; i < inputs.size(); ++i) {
        if (!node->parseInput(inputs.item(i))) {
            report("Failed to create node type because of malformed input field " + std::to_string(i) + " in XML:");
            return false;
        }
    }
    node->comboBoxFieldSetValueChanged();
    node->availableColorProfilesChanged();
    return true;
}

bool XmlNode::parseInput(const QDomNode& entry)
{
    const QString type = typeOf(entry);
    if (type == QLatin1String("fieldsetcombobox"))
        return parseFieldSetComboBoxInputField(this, entry);
    InputField* field = parseInputField(this, entry);
    if (field)
        appendInput(field, type);
    return field;
}

void XmlNode::appendInput(InputField* field, const QString& fieldType)
{
    inputFields.push_back(field);
    fieldTypes.push_back(fieldType);
}

XmlNode* Detail::buildXmlNode(const QString& xml, XmlNode* (*construct)())
{
    QDomDocument document;
    if (nestedDeeperThan(xml, kDeepestElement) || !document.setContent(xml)) {
        report("Unable to parse node XML:", xml);
        return nullptr;
    }
    const QDomNode root = document.childNodes().item(0);
    if (root.childNodes().size() != 2) {
        report("Failed to create node type because of invalid XML:", xml);
        return nullptr;
    }
    XmlNode* node = construct();
    if (XmlNode::parseFields(node, entriesOf(root, "input"), entriesOf(root, "output")))
        return node;
    report(xml.toStdString());
    node->deleteLater();
    return nullptr;
}

} // namespace Ondrel
