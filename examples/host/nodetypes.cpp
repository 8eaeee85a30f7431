#include "nodetypes.h"

#include "text.h"
#include "values.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/core/color.h>
#include <ondrel/core/platform.h>
#include <ondrel/nodes/pluginnodes.h>
#include <ondrel/resources/resourceid.h>
#include <ondrel/widgets/precisionrangeslider.h>

#include <QDomDocument>

#include <algorithm>

namespace Host
{
namespace
{

QStringList commaList(const QString& text)
{
    QStringList words;
    for (const QString& word : text.split(',', Qt::SkipEmptyParts))
        words.append(word.trimmed());
    return words;
}

QVariant defaultProfile()
{
    const auto& hash = Ondrel::DefaultColorProfileHash;
    return QByteArray(reinterpret_cast<const char*>(hash.data()), int(hash.size()));
}

// The choice that an index names, which counts the lines between the choices.
QString choiceAt(const QStringList& withLines, const QString& index)
{
    const int i = index.toInt();
    return i >= 0 && i < withLines.size() && withLines[i] != "--" ? withLines[i] : QString();
}

void readComboBox(InputInfo& input, const QDomElement& element)
{
    const QStringList all = element.attribute("choices").split(',');
    input.choices = all;
    input.choices.removeAll("--");
    input.initial = choiceAt(all, element.attribute("initial", "0"));
}

void readValue(InputInfo& input, const QDomElement& element)
{
    if (input.kind == "slider") {
        input.minimum = element.attribute("min", "0").toDouble();
        input.maximum = element.attribute("max", "100").toDouble();
        input.initial = element.attribute("value", "50");
    } else if (input.kind == "rangeslider") {
        input.minimum = element.attribute("min", "0").toDouble();
        input.maximum = element.attribute("max", "100").toDouble();
        input.initial = QVariant::fromValue(Ondrel::PrecisionRangeSlider::RangeValue{
            element.attribute("left", "0"), element.attribute("right", "100")});
    } else if (input.kind == "combobox") {
        readComboBox(input, element);
    } else if (input.kind == "color") {
        input.initial = Ondrel::Color(element.attribute("value", "0,0,0,65535"));
    } else if (input.kind == "colorprofile") {
        input.initial = defaultProfile();
    } else if (input.kind == "resource") {
        input.initial = QVariant::fromValue(Ondrel::ResourceId());
    }
}

InputInfo readInput(const QDomElement& element)
{
    InputInfo input;
    input.name = element.attribute("name");
    input.label = element.text();
    input.kind = element.attribute("type").toLower();
    if (input.kind.isEmpty())
        input.dataType = "image";
    readValue(input, element);
    return input;
}

void readInputs(const QDomElement& parent, std::vector<InputInfo>& inputs);

void readFieldSets(const QDomElement& element, std::vector<InputInfo>& inputs)
{
    InputInfo choice;
    choice.name = element.attribute("name");
    choice.kind = "fieldsetcombobox";
    choice.label = element.firstChildElement("label").text();
    for (QDomElement set = element.firstChildElement("fieldset"); !set.isNull();
         set = set.nextSiblingElement("fieldset"))
        choice.choices.append(set.attribute("choice"));
    choice.initial = choiceAt(choice.choices, element.attribute("initial", "0"));
    inputs.push_back(choice);
    for (QDomElement set = element.firstChildElement("fieldset"); !set.isNull();
         set = set.nextSiblingElement("fieldset"))
        readInputs(set, inputs);
}

void readInputs(const QDomElement& parent, std::vector<InputInfo>& inputs)
{
    for (QDomElement element = parent.firstChildElement(); !element.isNull(); element = element.nextSiblingElement()) {
        const QString kind = element.attribute("type").toLower();
        if (kind == "fieldsetcombobox")
            readFieldSets(element, inputs);
        else if (kind != "label" && kind != "preview")
            inputs.push_back(readInput(element));
    }
}

bool readFile(const QString& text, NodeType& type)
{
    QDomDocument document;
    if (!document.setContent(text))
        return false;
    const QDomElement root = document.documentElement();
    const QDomElement inputs = root.firstChildElement("input"), outputs = root.firstChildElement("output");
    if (inputs.isNull() || outputs.isNull())
        return false;
    type.fileText = text;
    type.title = root.attribute("title", type.entry.nodeName);
    type.category = root.attribute("category");
    type.keywords = commaList(root.attribute("keywords"));
    type.help = root.attribute("help");
    type.version = std::max(1, root.attribute("version", "1").toInt());
    readInputs(inputs, type.inputs);
    for (QDomElement e = outputs.firstChildElement(); !e.isNull(); e = e.nextSiblingElement())
        type.outputs.push_back({e.attribute("name"), e.text(), "image"});
    return true;
}

void applyEntry(NodeType& type)
{
    const NodeEntry& entry = type.entry;
    for (InputInfo& input : type.inputs) {
        if (input.kind.isEmpty())
            input.dataType = entry.dataTypes.value(input.name, input.dataType);
    }
    for (OutputInfo& output : type.outputs)
        output.dataType = entry.dataTypes.value(output.name, output.dataType);
    type.inputs.insert(type.inputs.end(), entry.moreInputs.begin(), entry.moreInputs.end());
    if (entry.variablePrefix.isEmpty())
        return;
    InputInfo order;
    order.name = entry.variablePrefix + "_order";
    order.kind = kOrderKind;
    order.initial = QString();
    type.inputs.push_back(order);
}

bool isId(const QString& text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar c) { return c >= '0' && c <= '9'; });
}

template <class Infos>
auto findByName(const Infos& infos, const QString& name)
{
    const auto found =
        std::find_if(infos.begin(), infos.end(), [&name](const auto& info) { return info.name == name; });
    return found == infos.end() ? nullptr : &*found;
}

} // namespace

const InputInfo* NodeType::input(const QString& name) const
{
    if (const InputInfo* const found = findByName(inputs, name))
        return found;
    if (entry.variablePrefix.isEmpty())
        return nullptr;
    if (name.startsWith(entry.variablePrefix) && isId(name.mid(entry.variablePrefix.size())))
        return &entry.variableInput;
    for (const InputInfo& child : entry.variableChildren) {
        if (name.startsWith(child.name) && isId(name.mid(child.name.size())))
            return &child;
    }
    return nullptr;
}

const OutputInfo* NodeType::output(const QString& name) const
{
    return findByName(outputs, name);
}

QVariantMap NodeType::defaults() const
{
    QVariantMap values;
    for (const InputInfo& input : inputs) {
        if (input.initial.isValid())
            values.insert(input.name, input.initial);
    }
    return values;
}

void NodeTypes::addPlugin(const QString& pluginName, const QString& folder, const NodePlugin& plugin,
                          QStringList& problems)
{
    PlatformPrivate::get()->addPluginDirectory(pluginName, folder);
    Ondrel::PluginNodes files(pluginName);
    for (const NodeEntry& entry : plugin.nodes()) {
        QString file = entry.nodeName.toLower();
        file.remove(' ').remove('/');
        NodeType type;
        type.id = pluginName + '/' + file;
        type.entry = entry;
        if (!entry.behaviour)
            problems.append(Text::tr("%1: the node has no behaviour").arg(type.id));
        else if (!readFile(files.loadXmlFromFile(entry.nodeName), type))
            problems.append(Text::tr("%1: there is no node file, or it is damaged").arg(type.id));
        else {
            applyEntry(type);
            m_types[type.id] = std::move(type);
        }
    }
}

const NodeType* NodeTypes::find(const QString& id) const
{
    const auto found = m_types.find(id);
    return found == m_types.end() ? nullptr : &found->second;
}

std::vector<const NodeType*> NodeTypes::all() const
{
    std::vector<const NodeType*> types;
    for (const auto& [id, type] : m_types)
        types.push_back(&type);
    std::sort(types.begin(), types.end(), [](const NodeType* a, const NodeType* b) { return a->title < b->title; });
    return types;
}

} // namespace Host
