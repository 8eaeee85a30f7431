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

// Parses JSON from a stranger. With an error, a sentence with line and column, `json` is unchanged: text that is no
// JSON, an object with two members of one name, more than 64 levels.
QString parseJson(const std::string& text, nlohmann::ordered_json& json);

// Where `value`, which is `root` or inside it, begins in the text that `root` was parsed from.
TextPlace placeOf(const std::string& text, const nlohmann::ordered_json& root, const nlohmann::ordered_json& value);

} // namespace Host
