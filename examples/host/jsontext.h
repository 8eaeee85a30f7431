#pragma once

#include <nlohmann/json.hpp>

#include <QString>

#include <string>

namespace Host
{

// A place in a text, both from 1, columns in bytes.
struct TextPlace {
    int line = 1;
    int column = 1;
};

TextPlace placeOf(const std::string& text, std::size_t offset);

// "Line 3, column 7: " and the sentence.
QString withPlace(const TextPlace& place, const QString& sentence);

// The most arrays and objects that may stand one within another.
constexpr std::size_t kDeepestJson = 64;

// Parses JSON from a stranger. With an error, a sentence with line and column, `json` is unchanged: text that is no
// JSON, an object with two members of one name, more than kDeepestJson levels. Arrays and objects may have any number
// of members: the time grows with the length of the text. Looking for a member by its name still takes a time that
// grows with their number.
QString parseJson(const std::string& text, nlohmann::ordered_json& json);

// Where `value`, which is `root` or inside it, begins in the text that `root` was parsed from.
TextPlace placeOf(const std::string& text, const nlohmann::ordered_json& root, const nlohmann::ordered_json& value);

} // namespace Host
