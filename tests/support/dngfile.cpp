#include "dngfile.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace OndrelTest
{
namespace
{

using Bytes = std::vector<unsigned char>;

// Red, green and blue of the 6 x 6 pattern.
constexpr char kXTrans[] = "GGRGGBGGBGGRBRGRBGGGBGGRGGRGGBRBGBRG";

void put(Bytes& out, std::uint32_t value, int size)
{
    for (int i = 0; i < size; ++i)
        out.push_back(static_cast<unsigned char>(value >> (8 * i)));
}

enum Type : unsigned short { Byte = 1, Ascii = 2, Short = 3, Long = 4, Rational = 5, SignedRational = 10 };

int sizeOf(Type type)
{
    return type == Byte || type == Ascii ? 1 : type == Short ? 2 : 4;
}

// A TIFF directory; the entries must be added in the order of their tags.
class Directory
{
public:
    void add(unsigned short tag, Type type, const std::vector<std::uint32_t>& values)
    {
        Entry entry{tag, type, std::uint32_t(values.size()), {}};
        for (const std::uint32_t value : values)
            put(entry.data, value, sizeOf(type));
        m_entries.push_back(std::move(entry));
    }

    void addText(unsigned short tag, const std::string& text)
    {
        std::vector<std::uint32_t> characters(text.begin(), text.end());
        characters.push_back(0);
        add(tag, Ascii, characters);
    }

    // Rationals with a denominator of 10000.
    template <class Numbers>
    void addNumbers(unsigned short tag, Type type, const Numbers& numbers)
    {
        std::vector<std::uint32_t> words;
        for (const double number : numbers) {
            words.push_back(static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(number * 10000))));
            words.push_back(10000);
        }
        add(tag, type, words);
        m_entries.back().count /= 2;
    }

    // Everything but the strip, whose place goes into the entry of StripOffsets.
    Bytes bytes() const
    {
        const std::size_t fixed = 8 + 2 + m_entries.size() * 12 + 4;
        std::size_t end = fixed;
        for (const Entry& entry : m_entries)
            end += extra(entry);
        Bytes head = {'I', 'I', 42, 0, 8, 0, 0, 0}, tail;
        put(head, std::uint32_t(m_entries.size()), 2);
        for (const Entry& entry : m_entries) {
            put(head, entry.tag, 2);
            put(head, entry.type, 2);
            put(head, entry.count, 4);
            Bytes data = entry.data;
            if (entry.tag == kStripOffsets)
                put(data = {}, std::uint32_t(end), 4);
            data.resize(std::max<std::size_t>(4, (data.size() + 1) & ~std::size_t(1)));
            if (data.size() > 4) {
                put(head, std::uint32_t(fixed + tail.size()), 4);
                tail.insert(tail.end(), data.begin(), data.end());
            } else {
                head.insert(head.end(), data.begin(), data.end());
            }
        }
        put(head, 0, 4);
        head.insert(head.end(), tail.begin(), tail.end());
        return head;
    }

    static constexpr unsigned short kStripOffsets = 273;

private:
    struct Entry {
        unsigned short tag;
        Type type;
        std::uint32_t count;
        Bytes data;
    };

    static std::size_t extra(const Entry& entry)
    {
        return entry.data.size() > 4 ? (entry.data.size() + 1) & ~std::size_t(1) : 0;
    }

    std::vector<Entry> m_entries;
};

void addPattern(const DngFile& file, Directory& directory)
{
    const std::uint32_t side = file.kind == DngFile::Kind::XTrans ? 6 : 2;
    std::vector<std::uint32_t> pattern;
    for (std::uint32_t y = 0; y < side; ++y)
        for (std::uint32_t x = 0; x < side; ++x)
            pattern.push_back(file.colorAt(x, y));
    directory.add(33421, Short, {side, side}); // CFARepeatPatternDim
    directory.add(33422, Byte, pattern);       // CFAPattern
}

} // namespace

unsigned int DngFile::colorAt(std::uint32_t x, std::uint32_t y) const
{
    if (kind == Kind::XTrans) {
        const char color = kXTrans[y % 6 * 6 + x % 6];
        return color == 'R' ? 0 : color == 'G' ? 1 : 2;
    }
    return bayer[y % 2 * 2 + x % 2];
}

std::vector<unsigned char> DngFile::bytes() const
{
    const bool isMosaic = kind == Kind::Bayer || kind == Kind::XTrans;
    const std::uint32_t channels = kind == Kind::Linear ? 3 : 1;
    Directory directory;
    directory.add(254, Long, {0});
    directory.add(256, Long, {width});
    directory.add(257, Long, {height});
    directory.add(258, Short, std::vector<std::uint32_t>(channels, 16));
    directory.add(259, Short, {1});
    directory.add(262, Short, {isMosaic ? 32803u : 34892u});
    directory.addText(271, "Testcam");
    directory.addText(272, "Synthetic");
    directory.add(Directory::kStripOffsets, Long, {0});
    directory.add(274, Short, {orientation});
    directory.add(277, Short, {channels});
    directory.add(278, Long, {height});
    directory.add(279, Long, {std::uint32_t(samples.size() * 2)});
    directory.add(284, Short, {1});
    if (isMosaic)
        addPattern(*this, directory);
    directory.add(50706, Byte, {1, 4, 0, 0});
    directory.add(50707, Byte, {1, 1, 0, 0});
    directory.addText(50708, "Testcam Synthetic");
    if (isMosaic) {
        directory.add(50710, Byte, {0, 1, 2});
        directory.add(50711, Short, {1});
    }
    if (!table.empty())
        directory.add(50712, Short, {table.begin(), table.end()});
    directory.add(50714, Long, std::vector<std::uint32_t>(channels, black));
    directory.add(50717, Long, std::vector<std::uint32_t>(channels, white));
    if (kind != Kind::Monochrome) {
        directory.addNumbers(50721, SignedRational, matrix);
        directory.addNumbers(50728, Rational, neutral);
    }
    directory.add(50778, Short, {21});
    Bytes file = directory.bytes();
    file.reserve(file.size() + samples.size() * 2);
    for (const std::uint16_t sample : samples)
        put(file, sample, 2);
    return file;
}

} // namespace OndrelTest
