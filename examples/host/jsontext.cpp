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

// Builds what the library's parser would, with the same faults, but in a time that grows with the text alone: that one
// looks through an object for each name that it adds, and with a limit to the depth through all of an array for each
// element. Two members of one name are both there; findOddities() tells of them.
class Builder final : public nlohmann::json_sax<Json>
{
public:
    enum Fault { None, NoJson, Overflow };

    Fault fault() const { return m_fault; }
    std::size_t offset() const { return m_offset; } // of the fault
    Json take() { return std::move(m_root); }

    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(number_integer_t value) override { return add(value); }
    bool number_unsigned(number_unsigned_t value) override { return add(value); }
    bool number_float(number_float_t value, const string_t&) override { return add(value); }
    bool string(string_t& value) override { return add(std::move(value)); }
    bool binary(binary_t&) override { return false; } // no text has any
    bool start_object(std::size_t) override { return open(Json::object()); }
    bool start_array(std::size_t) override { return open(Json::array()); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(string_t& name) override
    {
        m_name = std::move(name);
        return true;
    }

    bool parse_error(std::size_t position, const std::string& token, const Json::exception& error) override
    {
        const bool isOverflow = dynamic_cast<const Json::out_of_range*>(&error) != nullptr;
        m_fault = isOverflow ? Overflow : NoJson;
        m_offset = position - std::min(position, isOverflow ? token.size() : 1);
        return false;
    }

private:
    // What is deeper is left out, since values that are copied one within another would take a stack as deep.
    bool isKept() const { return m_depth <= kDeepestJson; }

    Json* place(Json&& value)
    {
        if (m_open.empty()) {
            m_root = std::move(value);
            return &m_root;
        }
        if (m_open.back()->is_array())
            return &m_open.back()->get_ref<Json::array_t&>().emplace_back(std::move(value));
        // At the end, as in the vector that it is.
        return &m_open.back()->get_ref<Json::object_t&>().emplace_back(std::move(m_name), std::move(value)).second;
    }

    bool add(Json value)
    {
        if (isKept())
            place(std::move(value));
        return true;
    }

    bool open(Json value)
    {
        ++m_depth;
        if (isKept())
            m_open.push_back(place(std::move(value)));
        return true;
    }

    bool close()
    {
        if (isKept())
            m_open.pop_back();
        --m_depth;
        return true;
    }

    Json m_root;
    std::vector<Json*> m_open; // what is being filled, each the last of what it stands in
    std::size_t m_depth = 0;
    std::string m_name; // of the next member
    Fault m_fault = None;
    std::size_t m_offset = 0;
};

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
            if (open.size() > kDeepestJson)
                problem = withPlace(placeOf(text, token.begin), Text::tr("The values are nested too deeply."));
        }
        return problem.isEmpty();
    });
    return problem;
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
    Builder builder;
    Json::sax_parse(text, &builder);
    const TextPlace place = placeOf(text, std::min(builder.offset(), text.size()));
    if (builder.fault() == Builder::Overflow)
        return withPlace(place, Text::tr("This number is too large."));
    if (builder.fault() == Builder::NoJson)
        return withPlace(place, builder.offset() >= text.size() ? Text::tr("The text ends too early.")
                                                                : Text::tr("This is no JSON."));
    const QString problem = findOddities(text);
    if (problem.isEmpty())
        json = builder.take();
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
