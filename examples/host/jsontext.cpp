#include "jsontext.h"

#include "text.h"

#include <algorithm>
#include <functional>
#include <set>
#include <vector>

using Json = nlohmann::ordered_json;

namespace Host
{
namespace
{

constexpr std::size_t kMaximumDepth = 64;

// What is deeper than that is left out, since values that are copied and destroyed one within another would take a
// stack as deep; findOddities() tells of it.
Json parsedToDepth(const std::string& text)
{
    return Json::parse(text, [](int depth, Json::parse_event_t event, const Json&) {
        const bool begins = event == Json::parse_event_t::object_start || event == Json::parse_event_t::array_start;
        return !begins || depth < int(kMaximumDepth);
    });
}

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Behind the string that begins at `at`.
std::size_t stringEnd(const std::string& text, std::size_t at)
{
    for (++at; text[at] != '"'; ++at) {
        if (text[at] == '\\')
            ++at;
    }
    return at + 1;
}

struct Token {
    enum Kind { Value, Key, Close } kind;
    std::size_t begin, end; // of a value that is an object or array: its bracket
};

// Visits the tokens of a text that is known to be JSON, until the visitor answers false.
void scan(const std::string& text, const std::function<bool(const Token&)>& visit)
{
    const bool hasMark = text.compare(0, 3, "\xef\xbb\xbf") == 0; // the parser skips it
    for (std::size_t at = hasMark ? 3 : 0; at < text.size();) {
        Token token{Token::Value, at, at + 1};
        if (isSpace(text[at]) || text[at] == ',' || text[at] == ':') {
            ++at;
            continue;
        }
        if (text[at] == '"') {
            token.end = stringEnd(text, at);
            const std::size_t next = text.find_first_not_of(" \t\n\r", token.end);
            if (next != std::string::npos && text[next] == ':')
                token.kind = Token::Key;
        } else if (text[at] == '}' || text[at] == ']') {
            token.kind = Token::Close;
        } else if (text[at] != '{' && text[at] != '[') {
            token.end = std::min(text.find_first_of(" \t\n\r,:]}", at), text.size());
        }
        if (!visit(token))
            return;
        at = token.end;
    }
}

// What the parser lets through but no project has.
QString findOddities(const std::string& text)
{
    QString problem;
    std::vector<std::set<std::string>> open; // the names in each object around
    scan(text, [&](const Token& token) {
        const char first = text[token.begin];
        if (token.kind == Token::Close) {
            open.pop_back();
        } else if (token.kind == Token::Key) {
            const auto name = Json::parse(text.substr(token.begin, token.end - token.begin)).get<std::string>();
            if (!open.back().insert(name).second)
                problem = withPlace(placeOf(text, token.begin),
                                    Text::tr("There are two values named \"%1\".").arg(QString::fromStdString(name)));
        } else if (first == '{' || first == '[') {
            open.emplace_back();
            if (open.size() > kMaximumDepth)
                problem = withPlace(placeOf(text, token.begin), Text::tr("The values are nested too deeply."));
        }
        return problem.isEmpty();
    });
    return problem;
}

bool overflows(const std::string& text)
{
    try {
        [[maybe_unused]] const Json parsed = parsedToDepth(text);
    } catch (const Json::out_of_range&) {
        return true;
    } catch (const Json::parse_error&) { // cut short
    }
    return false;
}

// Where the first number beyond the range of floating point begins; the parser does not tell. It is in the shortest
// piece of the text that the parser refuses for it.
std::size_t findOverflow(const std::string& text)
{
    std::size_t without = 0, with = text.size();
    while (with - without > 1) {
        const std::size_t middle = without + (with - without) / 2;
        (overflows(text.substr(0, middle)) ? with : without) = middle;
    }
    const std::size_t before = text.find_last_of(" \t\n\r,:[{", with - 1);
    return before == std::string::npos ? 0 : before + 1;
}

// Counts the values from `root` to `wanted` as they stand in the text.
bool countTo(const Json& root, const Json& wanted, std::size_t& count)
{
    if (&root == &wanted)
        return true;
    ++count;
    if (root.is_structured()) {
        for (const Json& child : root) {
            if (countTo(child, wanted, count))
                return true;
        }
    }
    return false;
}

} // namespace

TextPlace placeOf(const std::string& text, std::size_t offset)
{
    const auto end = text.begin() + std::ptrdiff_t(std::min(offset, text.size()));
    TextPlace place;
    place.line = 1 + int(std::count(text.begin(), end, '\n'));
    const std::size_t newline = offset == 0 ? std::string::npos : text.rfind('\n', offset - 1);
    place.column = 1 + int(offset - (newline == std::string::npos ? 0 : newline + 1));
    return place;
}

QString withPlace(const TextPlace& place, const QString& sentence)
{
    return Text::tr("Line %1, column %2: %3").arg(place.line).arg(place.column).arg(sentence);
}

QString parseJson(const std::string& text, Json& json)
{
    Json parsed;
    try {
        parsed = parsedToDepth(text);
    } catch (const Json::parse_error& error) {
        const std::size_t offset = std::min(std::max<std::size_t>(error.byte, 1) - 1, text.size());
        return withPlace(placeOf(text, offset),
                         offset == text.size() ? Text::tr("The text ends too early.") : Text::tr("This is no JSON."));
    } catch (const Json::out_of_range&) {
        return withPlace(placeOf(text, findOverflow(text)), Text::tr("This number is too large."));
    }
    const QString problem = findOddities(text);
    if (problem.isEmpty())
        json = std::move(parsed);
    return problem;
}

TextPlace placeOf(const std::string& text, const Json& root, const Json& value)
{
    std::size_t left = 0;
    countTo(root, value, left);
    std::size_t offset = 0;
    scan(text, [&](const Token& token) {
        if (token.kind != Token::Value)
            return true;
        offset = token.begin;
        return left-- != 0;
    });
    return placeOf(text, offset);
}

} // namespace Host
