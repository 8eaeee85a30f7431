#include <ondrel/pixel/pixelcopy_p.h>

#include <algorithm>
#include <cstring>
#include <emmintrin.h>

namespace Ondrel
{
namespace
{

constexpr std::size_t kTile = 64;           // a cache line holds 8 pixels; 64 rows stay within the first-level TLB
constexpr std::size_t kRowPiece = 1024;     // pixels that are reversed before they are written
constexpr std::size_t kStreamed = 1u << 20; // pixels from which on a result cannot stay in the caches

// Writes whole rows past the caches: a block far larger than they are would be read in before it is overwritten.
class RowWriter
{
public:
    explicit RowWriter(std::size_t pixels)
        : m_streams(pixels >= kStreamed)
    {
    }
    RowWriter(const RowWriter&) = delete;
    RowWriter& operator=(const RowWriter&) = delete;
    // Streamed stores are not ordered with others before this.
    ~RowWriter()
    {
        if (m_streams)
            _mm_sfence();
    }

    void write(const std::uint16_t* from, std::uint16_t* to, std::size_t pixels) const
    {
        if (m_streams)
            stream(from, to, pixels);
        else
            std::memcpy(to, from, pixels * 8);
    }

private:
    static void stream(const std::uint16_t* from, std::uint16_t* to, std::size_t pixels)
    {
        // The plain vector of every x86-64, two pixels: a wider one would not make the memory faster.
        if (pixels && reinterpret_cast<std::uintptr_t>(to) % 16 != 0) {
            std::memcpy(to, from, 8);
            from += 4;
            to += 4;
            --pixels;
        }
        for (; pixels >= 2; pixels -= 2, from += 8, to += 8)
            _mm_stream_si128(reinterpret_cast<__m128i*>(to), _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
        if (pixels)
            std::memcpy(to, from, 8);
    }

    bool m_streams;
};

void reverse(const std::uint16_t* from, std::uint16_t* to, std::size_t pixels)
{
    for (std::size_t i = 0; i < pixels; ++i)
        std::memcpy(to + i * 4, from + (pixels - 1 - i) * 4, 8);
}

// tile[y][x] = from[x * acrossStep + y * downStep]
void gatherTile(const std::uint16_t* from, std::ptrdiff_t acrossStep, std::ptrdiff_t downStep, std::uint16_t* tile,
                std::size_t width, std::size_t height)
{
    for (std::size_t x = 0; x < width; ++x) {
        const std::uint16_t* pixel = from + std::ptrdiff_t(x) * acrossStep * 4;
        for (std::size_t y = 0; y < height; ++y)
            std::memcpy(tile + (y * kTile + x) * 4, pixel + std::ptrdiff_t(y) * downStep * 4, 8);
    }
}

} // namespace

void copyRows(const std::uint16_t* from, std::ptrdiff_t fromDownStep, std::uint16_t* to, std::size_t toStride,
              std::size_t width, std::size_t height)
{
    const RowWriter writer(width * height);
    for (std::size_t y = 0; y < height; ++y)
        writer.write(from + std::ptrdiff_t(y) * fromDownStep * 4, to + y * toStride * 4, width);
}

void copyReversedRows(const std::uint16_t* from, std::ptrdiff_t fromDownStep, std::uint16_t* to, std::size_t width,
                      std::size_t height)
{
    const RowWriter writer(width * height);
    alignas(64) std::uint16_t piece[kRowPiece * 4];
    for (std::size_t y = 0; y < height; ++y) {
        const std::uint16_t* row = from + std::ptrdiff_t(y) * fromDownStep * 4;
        for (std::size_t x = 0; x < width; x += kRowPiece) {
            const std::size_t pixels = std::min(kRowPiece, width - x);
            reverse(row + (width - x - pixels) * 4, piece, pixels);
            writer.write(piece, to + (y * width + x) * 4, pixels);
        }
    }
}

void copyStrided(const std::uint16_t* from, std::ptrdiff_t acrossStep, std::ptrdiff_t downStep, std::uint16_t* to,
                 std::size_t toStride, std::size_t width, std::size_t height)
{
    const RowWriter writer(width * height);
    alignas(64) std::uint16_t tile[kTile * kTile * 4];
    for (std::size_t top = 0; top < height; top += kTile) {
        const std::size_t rows = std::min(kTile, height - top);
        for (std::size_t left = 0; left < width; left += kTile) {
            const std::size_t columns = std::min(kTile, width - left);
            gatherTile(from + (std::ptrdiff_t(left) * acrossStep + std::ptrdiff_t(top) * downStep) * 4, acrossStep,
                       downStep, tile, columns, rows);
            for (std::size_t y = 0; y < rows; ++y)
                writer.write(tile + y * kTile * 4, to + ((top + y) * toStride + left) * 4, columns);
        }
    }
}

} // namespace Ondrel
