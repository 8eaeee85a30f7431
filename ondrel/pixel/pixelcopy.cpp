#include <ondrel/pixel/pixelcopy_p.h>

#include <algorithm>
#include <cstring>
#include <emmintrin.h>
#include <vector>

namespace Ondrel
{
namespace
{

// A tile of a quarter turn: so wide that the rows written at one go end within a cache line only now and then, so high
// that what is read of a source row are whole lines, and still inside the second-level cache.
constexpr std::size_t kTileWidth = 512;
constexpr std::size_t kTileHeight = 32;
constexpr std::size_t kTileStride = kTileWidth + 8;     // not a power of two: rows would share their cache sets
constexpr std::size_t kRowPiece = 1024;                 // pixels that are reversed before they are written
constexpr std::size_t kStreamed = std::size_t(1) << 20; // pixels from which on a result cannot stay in the caches

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
    // A line that is written partly past the cache and partly through it is written twice, so this holds for all of it.
    static void streamPixel(const std::uint16_t* from, std::uint16_t* to)
    {
        long long pixel;
        std::memcpy(&pixel, from, 8);
        _mm_stream_si64(reinterpret_cast<long long*>(to), pixel);
    }

    static void stream(const std::uint16_t* from, std::uint16_t* to, std::size_t pixels)
    {
        // The plain vector of every x86-64, two pixels: a wider one would not make the memory faster.
        if (pixels && reinterpret_cast<std::uintptr_t>(to) % 16 != 0) {
            streamPixel(from, to);
            from += 4;
            to += 4;
            --pixels;
        }
        for (; pixels >= 2; pixels -= 2, from += 8, to += 8)
            _mm_stream_si128(reinterpret_cast<__m128i*>(to), _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
        if (pixels)
            streamPixel(from, to);
    }

    bool m_streams;
};

void reverse(const std::uint16_t* from, std::uint16_t* to, std::size_t pixels)
{
    for (std::size_t i = 0; i < pixels; ++i)
        std::memcpy(to + i * 4, from + (pixels - 1 - i) * 4, 8);
}

// Two pixels of each of two source rows, turned: upper and lower get one pixel of either.
void turnFour(const std::uint16_t* first, const std::uint16_t* second, bool downwards, std::uint16_t* upper,
              std::uint16_t* lower)
{
    const std::ptrdiff_t start = downwards ? 0 : -4;
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first + start));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(second + start));
    const __m128i low = _mm_unpacklo_epi64(a, b);
    const __m128i high = _mm_unpackhi_epi64(a, b);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(upper), downwards ? low : high);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(lower), downwards ? high : low);
}

// tile(x, y) = from[x * acrossStep + y * (downwards ? 1 : -1)]
template <bool downwards>
void turnTile(const std::uint16_t* from, std::ptrdiff_t acrossStep, std::uint16_t* tile, std::size_t width,
              std::size_t height)
{
    constexpr std::ptrdiff_t step = downwards ? 4 : -4;
    std::size_t x = 0;
    for (; x + 2 <= width; x += 2) {
        const std::uint16_t* first = from + std::ptrdiff_t(x) * acrossStep * 4;
        const std::uint16_t* second = first + acrossStep * 4;
        std::uint16_t* to = tile + x * 4;
        std::size_t y = 0;
        for (; y + 2 <= height; y += 2, first += 2 * step, second += 2 * step, to += kTileStride * 8)
            turnFour(first, second, downwards, to, to + kTileStride * 4);
        if (y < height) {
            std::memcpy(to, first, 8);
            std::memcpy(to + 4, second, 8);
        }
    }
    if (x < width)
        for (std::size_t y = 0; y < height; ++y)
            std::memcpy(tile + (y * kTileStride + x) * 4,
                        from + std::ptrdiff_t(x) * acrossStep * 4 + std::ptrdiff_t(y) * step, 8);
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

void copyTurned(const std::uint16_t* from, std::ptrdiff_t acrossStep, bool downwards, std::uint16_t* to,
                std::size_t toStride, std::size_t width, std::size_t height)
{
    const RowWriter writer(width * height);
    std::vector<std::uint16_t> tile(kTileStride * kTileHeight * 4);
    const std::ptrdiff_t downStep = downwards ? 1 : -1;
    for (std::size_t top = 0; top < height; top += kTileHeight) {
        const std::size_t rows = std::min(kTileHeight, height - top);
        for (std::size_t left = 0; left < width; left += kTileWidth) {
            const std::size_t columns = std::min(kTileWidth, width - left);
            const std::uint16_t* corner =
                from + (std::ptrdiff_t(left) * acrossStep + std::ptrdiff_t(top) * downStep) * 4;
            if (downwards)
                turnTile<true>(corner, acrossStep, tile.data(), columns, rows);
            else
                turnTile<false>(corner, acrossStep, tile.data(), columns, rows);
            for (std::size_t y = 0; y < rows; ++y)
                writer.write(tile.data() + y * kTileStride * 4, to + ((top + y) * toStride + left) * 4, columns);
        }
    }
}

} // namespace Ondrel
