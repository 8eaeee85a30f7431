#include <ondrel/color/colormanager.h>
#include <ondrel/nodes/fields/colorfield.h>
#include <ondrel/nodes/fields/colorprofilefield.h>
#include <ondrel/nodes/fields/comboboxfield.h>
#include <ondrel/nodes/fields/hiddenfield.h>
#include <ondrel/nodes/fields/rangesliderfield.h>
#include <ondrel/nodes/fields/resourcefield.h>
#include <ondrel/nodes/fields/sliderfield.h>
#include <ondrel/nodes/xmlnode.h>

#include <array>
#include <utility>

namespace Ondrel
{
namespace
{

using Profiles = std::vector<std::pair<QString, std::array<unsigned char, 32>>>;

// How the value of a type of field crosses to the host and back. A type that is not here has no value.
struct ValueAccess {
    const char* fieldType;
    QVariant (*read)(const InputField& field);
    void (*write)(InputField& field, const QVariant& value);
};

template <class Field>
const Field& as(const InputField& field)
{
    return static_cast<const Field&>(field);
}

template <class Field>
Field& as(InputField& field)
{
    return static_cast<Field&>(field);
}

// QVariant::value() gives a default-constructed value for what it cannot convert: an empty range, opaque black, no
// resource.
const ValueAccess kValueAccess[] = {
    {"slider", [](const InputField& f) -> QVariant { return as<SliderInputField>(f).value(); },
     [](InputField& f, const QVariant& v) { as<SliderInputField>(f).setValue(v.toString()); }},
    {"rangeslider", [](const InputField& f) { return QVariant::fromValue(as<RangeSliderInputField>(f).value()); },
     [](InputField& f, const QVariant& v) {
         as<RangeSliderInputField>(f).setValue(v.value<PrecisionRangeSlider::RangeValue>());
     }},
    {"combobox", [](const InputField& f) -> QVariant { return as<ComboBoxInputField>(f).currentText(); },
     [](InputField& f, const QVariant& v) { as<ComboBoxInputField>(f).setCurrentText(v.toString()); }},
    {"color", [](const InputField& f) -> QVariant { return as<ColorField>(f).color(); },
     [](InputField& f, const QVariant& v) { as<ColorField>(f).setColor(v.value<Color>()); }},
    {"colorprofile", [](const InputField& f) -> QVariant { return as<ColorProfileField>(f).hashValue(); },
     [](InputField& f, const QVariant& v) { as<ColorProfileField>(f).setValueByHash(v.toByteArray()); }},
    {"resource", [](const InputField& f) { return QVariant::fromValue(as<ResourceField>(f).resource()); },
     [](InputField& f, const QVariant& v) { as<ResourceField>(f).setResource(v.value<ResourceId>()); }},
    {"hidden", [](const InputField& f) { return as<HiddenField>(f).value(); },
     [](InputField& f, const QVariant& v) { as<HiddenField>(f).setValue(v); }},
};

const ValueAccess* valueAccess(const QString& fieldType)
{
    for (const ValueAccess& access : kValueAccess)
        if (fieldType == QLatin1String(access.fieldType))
            return &access;
    return nullptr;
}

} // namespace

XmlNode::XmlNode(QGraphicsItem* parent)
    : PreviewNode(parent, false)
{
    inputFields.clear(); // the preview is an input only where the file says so
}

XmlNode* XmlNode::create(const QString& xml)
{
    return CreateXmlNode<XmlNode>(xml);
}

bool XmlNode::hasInput(std::size_t index) const
{
    return index < fieldTypes.size() && index < inputFields.size();
}

QVariant XmlNode::inputValue(int index)
{
    const auto input = static_cast<std::size_t>(index);
    const ValueAccess* access = hasInput(input) ? valueAccess(fieldTypes[input]) : nullptr;
    return access ? access->read(*inputFields[input]) : QVariant();
}

void XmlNode::setInputValue(unsigned long index, QVariant value)
{
    if (const ValueAccess* access = hasInput(index) ? valueAccess(fieldTypes[index]) : nullptr) {
        access->write(*inputFields[index], value);
        if (fieldSets.count(index))
            comboBoxFieldSetValueChanged();
    }
    inputValueChanged();
}

void XmlNode::inputValueChanged()
{
    Q_EMIT updated(this);
}

void XmlNode::comboBoxFieldSetValueChanged()
{
    for (const auto& [comboBox, sets] : fieldSets) {
        const int chosen = as<ComboBoxInputField>(*inputFields[comboBox]).currentIndex();
        for (std::size_t set = 0; set < sets.size(); ++set)
            showFieldSet(sets[set], chosen >= 0 && set == std::size_t(chosen));
    }
    layout();
}

void XmlNode::showFieldSet(const std::vector<unsigned long>& inputs, bool show)
{
    for (const unsigned long input : inputs) {
        InputField* field = inputFields[input];
        field->setVisible(show);
        if (!show && field->anchor())
            Q_EMIT fieldMadeUnavailable(this, field->anchor());
    }
}

void XmlNode::availableColorProfilesChanged()
{
    Profiles profiles;
    bool asked = false; // reading the registry for the first time scans directories
    for (std::size_t i = 0; hasInput(i); ++i) {
        if (fieldTypes[i] != QLatin1String("colorprofile"))
            continue;
        if (!asked)
            ColorManager::colorProfileNamesAndHashesSorted(profiles, {ColorManager::ColorProfile::RGB},
                                                           {ColorManager::ColorProfile::BuiltIn,
                                                            ColorManager::ColorProfile::System,
                                                            ColorManager::ColorProfile::User});
        asked = true;
        as<ColorProfileField>(*inputFields[i]).updateColorProfiles(profiles);
    }
}

} // namespace Ondrel
