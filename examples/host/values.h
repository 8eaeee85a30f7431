#pragma once

#include "jsontext.h"

#include <QVariant>

#include <nlohmann/json.hpp>

namespace Host
{

// The values of inputs as JSON, in one form for each type, with numbers of 64 bits as text and binary floating point as
// the shortest decimal that reads back the same:
//
//   null; true; "text"; {"int": "-5"}; {"uint": "5"}; {"double": "0.25"}; {"color": "65535,0,0,65535"};
//   {"range": ["20", "80"]}; {"bytes": "00ff"}; {"resource": "7"}; {"point": ["1.5", "2"]};
//   {"list": [...]}; {"map": {...}}
//
// A resource is written as the handle that it has in this process; a project replaces it.
nlohmann::ordered_json valueToJson(const QVariant& value);

// A value stands in a project and on the clipboard in the whole, a list of nodes, a node and its values.
constexpr std::size_t kLevelsAroundValue = 4;
constexpr std::size_t kDeepestValue = kDeepestJson - kLevelsAroundValue; // arrays and objects in its JSON

// Whether the value's JSON is deeper than kDeepestValue, so that it could be written but not read again. Whatever goes
// into a document is asked this first.
bool isTooDeep(const QVariant& value);

// False if the JSON has no such form, or a number does not fit. `value` is then unchanged. As deep as the JSON is:
// texts from strangers come through parseJson(), which bounds that.
bool valueFromJson(const nlohmann::ordered_json& json, QVariant& value);

// Whether two values are the same, for every form above. QVariant itself compares the library's types by address.
bool sameValue(const QVariant& a, const QVariant& b);

// Of the input that orders the others of a node with a variable number of them.
constexpr const char* kOrderKind = "order";
constexpr int kLongestOrder = 4096; // characters

// Whether an input of the given kind can hold the value: a slider a number or its text, a colour a colour, an order
// a text of up to kLongestOrder, for some hundreds of inputs, as all of them are on the screen. A text is one of a
// combo box even if it is no choice of it, since an item may make choices of its own. Kinds without a form of their
// own, such as "hidden", hold anything; an input that is only connected holds nothing.
bool fitsKind(const QVariant& value, const QString& kind);

// Reads a value as a person types it, for an input that has a value of the given kind ("slider", "color" and so on);
// false if the text makes no sense for it; `value` is then unchanged. A number needs to be one, but not within its
// limits. For kinds without a form of their own, such as "hidden", the text is the JSON above, and not too deep.
bool valueFromText(const QString& text, const QString& kind, const QStringList& choices, QVariant& value);

} // namespace Host
