#include "values.h"

#include "jsontext.h"

#include <ondrel/core/color.h>
#include <ondrel/resources/resourceid.h>
#include <ondrel/widgets/precisionrangeslider.h>

#include <QPointF>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <optional>
#include <set>
#include <utility>

using Json = nlohmann::ordered_json;
using RangeValue = Ondrel::PrecisionRangeSlider::RangeValue;

namespace Host
{
namespace
{

constexpr int kProfileHashSize = 32;

// In its JSON.
std::size_t levelsOfSingle(const QVariant& value)
{
    switch (int(value.type())) {
    case QMetaType::UnknownType:
    case QMetaType::Bool:
    case QMetaType::QString:
        return 0;
    case QMetaType::QPointF:
        return 2;
    default:
        return value.userType() == qMetaTypeId<RangeValue>() ? 2 : 1;
    }
}

// Whether the value has no more levels of JSON. Goes no deeper than that.
bool fitsInto(std::size_t levels, const QVariant& value)
{
    constexpr std::size_t own = 2; // the form and the list or map in it
    const auto fitsInside = [levels](const QVariant& element) { return fitsInto(levels - own, element); };
    if (value.type() == QVariant::List) {
        const QVariantList list = value.toList();
        return levels >= own && std::all_of(list.begin(), list.end(), fitsInside);
    }
    if (value.type() == QVariant::Map) {
        const QVariantMap map = value.toMap();
        return levels >= own && std::all_of(map.begin(), map.end(), fitsInside);
    }
    return levels >= levelsOfSingle(value);
}

std::string shortest(double number)
{
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, number);
    return std::string(text, end.ptr);
}

template <class Number>
std::optional<Number> parsed(const Json& json)
{
    if (!json.is_string())
        return std::nullopt;
    const std::string& text = json.get_ref<const std::string&>();
    Number number{};
    const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end.ec != std::errc() || end.ptr != text.data() + text.size() || text.empty())
        return std::nullopt;
    return number;
}

Json listToJson(const QVariantList& list)
{
    Json array = Json::array();
    for (const QVariant& element : list)
        array.push_back(valueToJson(element));
    return {{"list", array}};
}

Json mapToJson(const QVariantMap& map)
{
    Json object = Json::object();
    auto& members = object.get_ref<Json::object_t&>(); // it looks through all of them for a name
    std::set<std::string> names;                       // keys that are no text of Unicode may give the same one
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        const std::string name = entry.key().toStdString();
        if (names.insert(name).second)
            members.emplace_back(name, valueToJson(entry.value()));
    }
    return {{"map", std::move(object)}};
}

Json userTypeToJson(const QVariant& value)
{
    if (value.userType() == qMetaTypeId<Ondrel::Color>())
        return {{"color", value.value<Ondrel::Color>().name().toStdString()}};
    if (value.userType() == qMetaTypeId<Ondrel::ResourceId>())
        return {{"resource", std::to_string(value.value<Ondrel::ResourceId>().id)}};
    if (value.userType() == qMetaTypeId<RangeValue>()) {
        const auto range = value.value<RangeValue>();
        return {{"range", {range.left.toStdString(), range.right.toStdString()}}};
    }
    return nullptr;
}

template <class Number>
bool readNumber(const Json& json, QVariant& value)
{
    const auto number = parsed<Number>(json);
    if (number)
        value = QVariant::fromValue(*number);
    return number.has_value();
}

bool readColor(const Json& json, QVariant& value)
{
    if (!json.is_string())
        return false;
    const QString text = QString::fromStdString(json.get<std::string>());
    const Ondrel::Color color(text);
    if (color.name() != text)
        return false;
    value = color;
    return true;
}

bool readResource(const Json& json, QVariant& value)
{
    const auto id = parsed<std::uint32_t>(json);
    if (id)
        value = QVariant::fromValue(Ondrel::ResourceId(*id));
    return id.has_value();
}

bool readRange(const Json& json, QVariant& value)
{
    if (!json.is_array() || json.size() != 2 || !json[0].is_string() || !json[1].is_string())
        return false;
    value = QVariant::fromValue(RangeValue{QString::fromStdString(json[0].get<std::string>()),
                                           QString::fromStdString(json[1].get<std::string>())});
    return true;
}

bool readBytes(const Json& json, QVariant& value)
{
    if (!json.is_string())
        return false;
    const QByteArray text = QByteArray::fromStdString(json.get<std::string>());
    const QByteArray bytes = QByteArray::fromHex(text);
    if (bytes.toHex() != text)
        return false;
    value = bytes;
    return true;
}

bool readPoint(const Json& json, QVariant& value)
{
    if (!json.is_array() || json.size() != 2)
        return false;
    const auto x = parsed<double>(json[0]), y = parsed<double>(json[1]);
    if (x && y)
        value = QPointF(*x, *y);
    return x && y;
}

bool readList(const Json& json, QVariant& value)
{
    if (!json.is_array())
        return false;
    QVariantList list;
    for (const Json& element : json) {
        QVariant read;
        if (!valueFromJson(element, read))
            return false;
        list.append(read);
    }
    value = list;
    return true;
}

bool readMap(const Json& json, QVariant& value)
{
    if (!json.is_object())
        return false;
    QVariantMap map;
    for (const auto& [key, element] : json.items()) {
        QVariant read;
        if (!valueFromJson(element, read))
            return false;
        map.insert(QString::fromStdString(key), read);
    }
    value = map;
    return true;
}

bool isNumber(const QVariant& value)
{
    constexpr int kinds[] = {QMetaType::QString,   QMetaType::Int,   QMetaType::UInt,  QMetaType::LongLong,
                             QMetaType::ULongLong, QMetaType::Float, QMetaType::Double};
    bool ok = std::find(std::begin(kinds), std::end(kinds), value.userType()) != std::end(kinds);
    return ok && std::isfinite(value.toDouble(&ok)) && ok;
}

struct Form {
    const char* name;
    bool (*read)(const Json& json, QVariant& value);
};
const Form kForms[] = {{"int", readNumber<qlonglong>},
                       {"uint", readNumber<qulonglong>},
                       {"double", readNumber<double>},
                       {"color", readColor},
                       {"resource", readResource},
                       {"range", readRange},
                       {"bytes", readBytes},
                       {"point", readPoint},
                       {"list", readList},
                       {"map", readMap}};

} // namespace

Json valueToJson(const QVariant& value)
{
    switch (int(value.type())) {
    case QMetaType::UnknownType:
        return nullptr;
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::QString:
        return value.toString().toStdString();
    case QMetaType::QByteArray:
        return {{"bytes", value.toByteArray().toHex().toStdString()}};
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return {{"uint", std::to_string(value.toULongLong())}};
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return {{"int", std::to_string(value.toLongLong())}};
    case QMetaType::Float:
    case QMetaType::Double:
        return {{"double", shortest(value.toDouble())}};
    case QMetaType::QPointF:
        return {{"point", {shortest(value.toPointF().x()), shortest(value.toPointF().y())}}};
    case QMetaType::QVariantList:
        return listToJson(value.toList());
    case QMetaType::QVariantMap:
        return mapToJson(value.toMap());
    default:
        return userTypeToJson(value);
    }
}

bool isTooDeep(const QVariant& value)
{
    return !fitsInto(kDeepestValue, value);
}

bool valueFromJson(const Json& json, QVariant& value)
{
    if (json.is_null())
        value = QVariant();
    else if (json.is_boolean())
        value = json.get<bool>();
    else if (json.is_string())
        value = QString::fromStdString(json.get<std::string>());
    else if (json.is_object() && json.size() == 1) {
        for (const Form& form : kForms) {
            if (json.begin().key() == form.name)
                return form.read(json.begin().value(), value);
        }
        return false;
    } else
        return false;
    return true;
}

bool sameValue(const QVariant& a, const QVariant& b)
{
    return valueToJson(a) == valueToJson(b);
}

bool fitsKind(const QVariant& value, const QString& kind)
{
    if (kind == "slider")
        return isNumber(value);
    if (kind == "rangeslider") {
        const auto range = value.value<RangeValue>();
        return value.userType() == qMetaTypeId<RangeValue>() && isNumber(range.left) && isNumber(range.right);
    }
    if (kind == "combobox" || kind == "fieldsetcombobox")
        return value.type() == QVariant::String;
    if (kind == kOrderKind)
        return value.type() == QVariant::String && value.toString().size() <= kLongestOrder;
    if (kind == "color")
        return value.userType() == qMetaTypeId<Ondrel::Color>();
    if (kind == "colorprofile") {
        const int size = value.toByteArray().size();
        return value.type() == QVariant::ByteArray && (size == 0 || size == kProfileHashSize);
    }
    if (kind == "resource")
        return value.userType() == qMetaTypeId<Ondrel::ResourceId>();
    return !kind.isEmpty();
}

bool valueFromText(const QString& text, const QString& kind, const QStringList& choices, QVariant& value)
{
    bool ok = true;
    if (kind == "slider") {
        ok = std::isfinite(text.toDouble(&ok)) && ok;
        if (ok)
            value = text;
    } else if (kind == "combobox" || kind == "fieldsetcombobox") {
        ok = choices.contains(text);
        if (ok)
            value = text;
    } else if (kind == "rangeslider") {
        const QStringList ends = text.split("..");
        ok = ends.size() == 2;
        for (int i = 0; ok && i < 2; ++i)
            ends[i].toLongLong(&ok);
        if (ok)
            value = QVariant::fromValue(RangeValue{ends[0], ends[1]});
    } else if (kind == "color") {
        const Ondrel::Color color(text);
        ok = color.name() == text || color.name() == text + ",65535";
        if (ok)
            value = color;
    } else if (kind == "colorprofile") {
        const QByteArray hash = QByteArray::fromHex(text.toLatin1());
        ok = hash.size() == kProfileHashSize;
        if (ok)
            value = hash;
    } else { // hidden, or an input of a plug-in's own: as projects have it
        Json json;
        QVariant read;
        ok = parseJson(text.toStdString(), json).isEmpty() && valueFromJson(json, read) && !isTooDeep(read) &&
             fitsKind(read, kind);
        if (ok)
            value = read;
    }
    return ok;
}

} // namespace Host
