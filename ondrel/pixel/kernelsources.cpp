#include <ondrel/pixel/kernelsources_p.h>

#include <algorithm>
#include <vector>
#include <zlib.h>

namespace Ondrel
{
namespace
{

// An inflate stream over one block of bytes.
class Inflater
{
public:
    explicit Inflater(std::vector<unsigned char>& bytes)
    {
        m_stream.next_in = bytes.data();
        m_stream.avail_in = static_cast<uInt>(bytes.size());
        m_ready = inflateInit(&m_stream) == Z_OK;
    }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
    ~Inflater()
    {
        if (m_ready)
            inflateEnd(&m_stream);
    }

    bool isReady() const { return m_ready; }

    // Fills the space as far as there is text, and says in `unused` what is left of it. False on a damaged stream. The
    // want of more input is no damage: it shows as space left over.
    bool fill(char* space, std::size_t size, std::size_t& unused)
    {
        m_stream.next_out = reinterpret_cast<Bytef*>(space);
        m_stream.avail_out = static_cast<uInt>(size);
        const int result = inflate(&m_stream, Z_NO_FLUSH);
        unused = m_stream.avail_out;
        return result != Z_MEM_ERROR && result != Z_DATA_ERROR && result != Z_STREAM_ERROR && result != Z_NEED_DICT;
    }

private:
    z_stream m_stream = {};
    bool m_ready = false;
};

constexpr std::size_t kStep = 512;

} // namespace

std::string unpackKernelSource(PackedKernelSource const& source)
{
    std::vector<unsigned char> stream = {0x78, 0xDA};
    stream.insert(stream.end(), source.bytes, source.bytes + source.size);
    Inflater inflater(stream);
    if (!inflater.isReady())
        return {};
    std::string text;
    for (std::size_t unused = 0; unused == 0;) {
        const std::size_t length = text.size();
        text.resize(length + kStep);
        if (!inflater.fill(&text[length], kStep, unused))
            return {};
        text.resize(length + kStep - unused);
    }
    return text;
}

std::array<std::string, kKernelSourceCount> kernelSources()
{
    std::array<std::string, kKernelSourceCount> texts;
    std::transform(packedKernelSources.begin(), packedKernelSources.end(), texts.begin(), unpackKernelSource);
    return texts;
}

} // namespace Ondrel
