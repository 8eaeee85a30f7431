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

    std::size_t size() const
    {
        std::size_t size = fixedSize();
        for (const Entry& entry : m_entries)
            size += extra(entry);
        return size;
    }

    // Everything but the strip: the directory stands at `place`, its strip at `strip`, the next directory at `next`.
    Bytes bytes(std::size_t place, std::size_t strip, std::size_t next) const
    {
        Bytes head, tail;
        put(head, std::uint32_t(m_entries.size()), 2);
        for (const Entry& entry : m_entries) {
            put(head, entry.tag, 2);
            put(head, entry.type, 2);
            put(head, entry.count, 4);
            Bytes data = entry.data;
            if (entry.tag == kStripOffsets)
                put(data = {}, std::uint32_t(strip), 4);
            data.resize(std::max<std::size_t>(4, (data.size() + 1) & ~std::size_t(1)));
            if (data.size() > 4) {
                put(head, std::uint32_t(place + fixedSize() + tail.size()), 4);
                tail.insert(tail.end(), data.begin(), data.end());
            } else {
                head.insert(head.end(), data.begin(), data.end());
            }
        }
        put(head, std::uint32_t(next), 4);
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

    std::size_t fixedSize() const { return 2 + m_entries.size() * 12 + 4; }

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

Directory previewDirectory(const DngFile& file)
{
    const bool isJpeg = file.preview == DngFile::Preview::Jpeg;
    Directory directory;
    directory.add(254, Long, {1});
    directory.add(256, Long, {file.previewWidth});
    directory.add(257, Long, {file.previewHeight});
    directory.add(258, Short, std::vector<std::uint32_t>(file.previewChannels, 8));
    directory.add(259, Short, {isJpeg ? 7u : 1u});
    directory.add(262, Short, {isJpeg ? 6u : file.previewChannels == 1 ? 1u : 2u});
    directory.add(Directory::kStripOffsets, Long, {0});
    directory.add(277, Short, {file.previewChannels});
    directory.add(278, Long, {file.previewHeight});
    directory.add(279, Long, {std::uint32_t(file.previewData.size())});
    directory.add(284, Short, {1});
    return directory;
}

Directory mainDirectory(const DngFile& file)
{
    using Kind = DngFile::Kind;
    const bool isMosaic = file.kind == Kind::Bayer || file.kind == Kind::XTrans;
    const std::uint32_t channels = file.kind == Kind::Linear ? 3 : 1;
    Directory directory;
    directory.add(254, Long, {0});
    directory.add(256, Long, {file.width});
    directory.add(257, Long, {file.height});
    directory.add(258, Short, std::vector<std::uint32_t>(channels, 16));
    directory.add(259, Short, {1});
    directory.add(262, Short, {isMosaic ? 32803u : 34892u});
    directory.addText(271, "Testcam");
    directory.addText(272, "Synthetic");
    directory.add(Directory::kStripOffsets, Long, {0});
    directory.add(274, Short, {file.orientation});
    directory.add(277, Short, {channels});
    directory.add(278, Long, {file.height});
    directory.add(279, Long, {std::uint32_t(file.samples.size() * 2)});
    directory.add(284, Short, {1});
    if (isMosaic)
        addPattern(file, directory);
    directory.add(50706, Byte, {1, 4, 0, 0});
    directory.add(50707, Byte, {1, 1, 0, 0});
    directory.addText(50708, "Testcam Synthetic");
    if (isMosaic) {
        directory.add(50710, Byte, {0, 1, 2});
        directory.add(50711, Short, {1});
    }
    if (!file.table.empty())
        directory.add(50712, Short, {file.table.begin(), file.table.end()});
    if (!file.blacks.empty())
        directory.add(50713, Short, {2, 2});
    directory.add(50714, Long, file.blacks.empty() ? std::vector<std::uint32_t>(channels, file.black) : file.blacks);
    directory.add(50717, Long, std::vector<std::uint32_t>(channels, file.white));
    if (file.kind != Kind::Monochrome) {
        if (file.hasMatrix)
            directory.addNumbers(50721, SignedRational, file.matrix);
        directory.addNumbers(50728, Rational, file.neutral);
    }
    directory.add(50778, Short, {21});
    return directory;
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
    constexpr std::size_t kHeader = 8;
    const Directory first = mainDirectory(*this), second = previewDirectory(*this);
    const bool hasPreview = preview != Preview::None;
    const std::size_t previewPlace = kHeader + first.size();
    const std::size_t strip = previewPlace + (hasPreview ? second.size() : 0);
    const std::size_t previewStrip = strip + samples.size() * 2;
    Bytes file = {'I', 'I', 42, 0, 8, 0, 0, 0};
    const auto append = [&file](const Bytes& more) { file.insert(file.end(), more.begin(), more.end()); };
    append(first.bytes(kHeader, strip, hasPreview ? previewPlace : 0));
    if (hasPreview)
        append(second.bytes(previewPlace, previewStrip, 0));
    file.reserve(previewStrip + previewData.size());
    for (const std::uint16_t sample : samples)
        put(file, sample, 2);
    append(previewData);
    return file;
}

} // namespace OndrelTest
