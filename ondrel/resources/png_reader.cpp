#include <ondrel/color/colormanager.h>
#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/pngboundary_p.h>
#include <ondrel/resources/pngchunks_p.h>
#include <ondrel/resources/pngprofile_p.h>
#include <ondrel/resources/resourceengine.h>
#include <ondrel/resources/samples_p.h>

#include <cstring>
#include <utility>

namespace Ondrel
{
namespace
{

constexpr unsigned int kMostKeptChunks = 128;

struct MemorySource {
    const unsigned char* data;
    std::size_t size;
    std::size_t position;
};

// A read past the end of the data gives zeros: a file may lack the end of its last checksum.
void readFromMemory(png_structp png, png_bytep out, std::size_t count)
{
    auto* source = static_cast<MemorySource*>(png_get_io_ptr(png));
    const std::size_t remaining = source->size - source->position;
    if (count >= remaining) {
        std::memset(out, 0, count);
        count = remaining;
    }
    std::memcpy(out, source->data + source->position, count);
    source->position += count;
}

struct PngHeader {
    png_uint_32 width, height;
    unsigned int bitsPerPixel; // in the file
    std::size_t rowBytes;      // as read
    int passes;
};

struct PngReader {
    PngErrors errors;
    MemorySource source;
    png_structp png = nullptr;
    png_infop info = nullptr;

    explicit PngReader(const std::vector<unsigned char>& data)
        : source{data.data(), data.size(), 0}
    {
    }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;
    ~PngReader() { png_destroy_read_struct(&png, &info, nullptr); }
};

bool create(PngReader& reader)
{
    const bool created = pngStep(reader.errors, [&reader] {
        reader.png = png_create_read_struct(kPngVersion, &reader.errors, &leavePng, &ignorePngWarning);
        if (reader.png)
            reader.info = png_create_info_struct(reader.png);
    });
    return created && reader.info;
}

// Text is not used, but costs up to 8 MB a chunk once unpacked; other chunks that libpng keeps are limited in number.
void limitChunks(png_structp png)
{
    const png_byte text[] = {'t', 'E', 'X', 't', 0, 'z', 'T', 'X', 't', 0, 'i', 'T', 'X', 't', 0};
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, text, 3);
    png_set_chunk_cache_max(png, kMostKeptChunks);
}

// Samples as 16-bit colour and alpha. libpng corrects the gamma of files whose gAMA chunk differs from that of sRGB.
void setTransformations(png_structp png, png_infop info)
{
    png_set_expand_16(png);
    png_set_alpha_mode(png, PNG_ALPHA_PNG, -1.0);
    if (png_get_valid(png, info, PNG_INFO_tRNS))
        png_set_tRNS_to_alpha(png);
    else
        png_set_add_alpha(png, 0xFFFF, PNG_FILLER_AFTER);
}

bool readHeader(PngReader& reader, PngHeader& header)
{
    return pngStep(reader.errors, [&reader, &header] {
        png_structp png = reader.png;
        png_set_read_fn(png, &reader.source, &readFromMemory);
        limitChunks(png);
        png_read_info(png, reader.info);
        int depth = 0, type = 0;
        png_get_IHDR(png, reader.info, &header.width, &header.height, &depth, &type, nullptr, nullptr, nullptr);
        header.bitsPerPixel = unsigned(depth) * png_get_channels(png, reader.info);
        setTransformations(png, reader.info);
        header.passes = png_set_interlace_handling(png);
        png_read_update_info(png, reader.info);
        header.rowBytes = png_get_rowbytes(png, reader.info);
    });
}

// Samples are big-endian in the file. A row is turned when its last pass has been read, while it is in the cache.
bool readRows(PngReader& reader, const PngHeader& header, std::uint16_t* samples)
{
    const std::size_t stride = std::size_t(header.width) * 4;
    return pngStep(reader.errors, [&reader, &header, samples, stride] {
        for (int pass = 1; pass <= header.passes; ++pass) {
            for (png_uint_32 y = 0; y < header.height; ++y) {
                std::uint16_t* row = samples + y * stride;
                png_read_row(reader.png, reinterpret_cast<png_bytep>(row), nullptr);
                if (pass == header.passes)
                    swapSamples(row, stride);
            }
        }
        png_read_end(reader.png, reader.info);
    });
}

// Grey stays grey, so a row may take less than its place in the image, but never more.
bool isReadable(const PngHeader& header, const PngChunks& chunks)
{
    return isDecodableSize(header.width, header.height) && header.rowBytes <= std::size_t(header.width) * 8 &&
           canPngDataHold(chunks.imageBytes, header.width, header.height, header.bitsPerPixel);
}

} // namespace
} // namespace Ondrel

bool ResourceEngine::ReadPNG(const std::shared_ptr<ImageInfo>& info, Ondrel::Image& image, void** profile)
{
    using namespace Ondrel;
    const std::vector<unsigned char>& data = info->data;
    if (data.size() <= 7 || png_sig_cmp(data.data(), 0, 4) != 0)
        return false;
    const PngChunks chunks = walkPngChunks(data);
    if (!chunks.inBounds)
        return false;
    PngReader reader(data);
    PngHeader header{};
    if (!create(reader) || !readHeader(reader, header) || !isReadable(header, chunks))
        return false;
    Image decoded(header.width, header.height);
    PngColours colours{};
    if (!readRows(reader, header, decoded.data) ||
        !pngStep(reader.errors, [&] { readPngColours(reader.png, reader.info, colours); }))
        return false;
    OwnedProfile own = createPngProfile(colours);
    if (!own)
        return false;
    decoded.colorProfile = ColorManager::buildColorProfileHash(own.get());
    image = std::move(decoded);
    if (profile)
        *profile = own.release();
    return true;
}
