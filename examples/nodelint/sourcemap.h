#pragma once

#include <QString>

#include <vector>

struct Position { // both from 1, in characters
    int line = 1, column = 1;
};

// Where in a text its elements, attributes and comments stand, which QDomDocument does not tell. The reading is as
// lenient as can be: what is no XML ends the map early. No recursion, so the depth of a text costs no stack.
class SourceMap
{
public:
    static constexpr int kMaxDepth = 256; // of nested elements in a node file

    enum class Kind { Element, Comment, Instruction, CData, Text };
    struct Attribute {
        QString name;
        int offset;      // of the name
        int valueOffset; // of the first character between the quotes
    };
    struct Item {
        Kind kind;
        QString name; // of an element
        int offset;
        std::vector<Attribute> attributes;
        std::vector<int> children; // indices of items
    };

    explicit SourceMap(const QString& text);

    Position positionAt(int offset) const;

    // The item with this index; 0 is the document, whose children stand outside of all elements.
    const Item& item(int index) const { return m_items[std::size_t(index)]; }

    // Offset of the first element below kMaxDepth others, where the map ends; -1 if there is none.
    int tooDeep() const { return m_tooDeep; }

private:
    bool readMarkup();
    void readText();
    bool readDoctype();
    bool readStartTag();
    bool readAttribute(Item& item);
    bool readEndTag();
    bool readUntil(const char* end);
    QString readName();
    void skipBlanks();
    bool at(const char* text) const;
    int add(Kind kind, int offset);

    QString m_text;
    int m_at = 0;
    int m_tooDeep = -1;
    std::vector<Item> m_items;
    std::vector<int> m_open; // the document and the elements that are not closed yet
    std::vector<int> m_lines;
};
