#include <ondrel/resources/librawhazards_p.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace Ondrel
{
namespace
{

// An entry of a TIFF directory: tag, type, count, and the value or where it stands.
constexpr std::size_t kEntrySize = 12, kCountOffset = 4, kValueOffset = 8;
constexpr unsigned int kRepeatPatternDim = 33421, kPattern = 33422, kOtherPattern = 64777, kShort = 3;

bool beginsWith(const std::vector<unsigned char>& data, std::string_view word)
{
    return data.size() >= word.size() && std::equal(word.begin(), word.end(), data.begin());
}

unsigned int shortAt(const unsigned char* bytes, bool bigEndian)
{
    return bigEndian ? unsigned(bytes[0]) << 8 | bytes[1] : unsigned(bytes[1]) << 8 | bytes[0];
}

unsigned int longAt(const unsigned char* bytes, bool bigEndian)
{
    const unsigned int first = shortAt(bytes, bigEndian), second = shortAt(bytes + 2, bigEndian);
    return bigEndian ? first << 16 | second : second << 16 | first;
}

// The entry just before says 6 x 6, as the order of tags puts it in every file that is whole.
bool isCalledSixBySix(const unsigned char* begin, const unsigned char* entry, bool bigEndian)
{
    if (std::size_t(entry - begin) < kEntrySize)
        return false;
    const unsigned char* const before = entry - kEntrySize;
    return shortAt(before, bigEndian) == kRepeatPatternDim && shortAt(before + 2, bigEndian) == kShort &&
           longAt(before + kCountOffset, bigEndian) == 2 && shortAt(before + kValueOffset, bigEndian) == 6 &&
           shortAt(before + kValueOffset + 2, bigEndian) == 6;
}

// `count` is where the number 36 stands, in four bytes.
bool isPatternOfUnknownSize(const unsigned char* begin, const unsigned char* count, bool bigEndian)
{
    if (std::size_t(count - begin) < kCountOffset)
        return false;
    const unsigned char* const entry = count - kCountOffset;
    const unsigned int tag = shortAt(entry, bigEndian);
    return tag == kOtherPattern || (tag == kPattern && !isCalledSixBySix(begin, entry, bigEndian));
}

// Whether one of the places holds the number 36 in four bytes of either order. A loop that the compiler can turn into
// vectors: it passes over whole files.
bool holdsThirtySix(const unsigned char* bytes, std::size_t places)
{
    unsigned char found = 0;
    for (std::size_t i = 0; i < places; ++i) {
        const unsigned char inner = static_cast<unsigned char>(bytes[i + 1] | bytes[i + 2]);
        const unsigned char little = static_cast<unsigned char>((bytes[i] ^ 36) | inner | bytes[i + 3]);
        const unsigned char big = static_cast<unsigned char>(bytes[i] | inner | (bytes[i + 3] ^ 36));
        found = static_cast<unsigned char>(found | (little == 0) | (big == 0));
    }
    return found != 0;
}

// Where a directory gives a mosaic's pattern with 36 entries and does not call it 6 x 6, parse_tiff_ifd() reads on and
// on. Directories stand anywhere, and makers' notes have some too: every place is looked at.
bool hasPatternOfUnknownSize(const std::vector<unsigned char>& data)
{
    constexpr std::size_t block = 4096;
    const unsigned char* const begin = data.data();
    const std::size_t places = data.size() < 4 ? 0 : data.size() - 3;
    for (std::size_t at = 0; at < places; at += block) {
        const std::size_t end = std::min(places, at + block);
        if (!holdsThirtySix(begin + at, end - at))
            continue;
        for (std::size_t i = at; i < end; ++i) {
            for (const bool bigEndian : {false, true}) {
                if (longAt(begin + i, bigEndian) == 36 && isPatternOfUnknownSize(begin, begin + i, bigEndian))
                    return true;
            }
        }
    }
    return false;
}

} // namespace

// Some files that begin with the first word are never read to an end, or overflow the stack; some that begin with the
// second make LibRaw write past an array. Only video frames and the previews of a model of 1998 begin so.
bool isSafeForLibRaw(const std::vector<unsigned char>& data)
{
    return !beginsWith(data, "RIFF") && !beginsWith(data, "DSC-Image") && !hasPatternOfUnknownSize(data);
}

} // namespace Ondrel
