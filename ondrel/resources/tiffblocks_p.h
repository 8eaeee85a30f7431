#pragma once

#include <ondrel/resources/tifflayout_p.h>

#include <tiffio.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>

namespace Ondrel
{

// The strips or tiles of a TIFF file under one roof: rectangles of the picture in reading order, each decoded into one
// buffer in which the planes of a planar file follow each other.
class TiffBlocks
{
public:
    struct Block {
        std::uint32_t x, y;          // in the picture
        std::uint32_t width, height; // of the part inside the picture
        std::size_t rowBytes;        // from row to row in the buffer
        std::size_t planeBytes;      // from plane to plane
    };

    // Nothing if the sizes that the file states are unusable. Memory for the buffer is reserved here, but is touched
    // only as far as blocks are really decoded.
    static std::optional<TiffBlocks> open(TIFF* tiff, const TiffLayout& layout);

    std::uint32_t count() const { return columns * rows; }
    Block block(std::uint32_t index) const;
    // Decodes a block, all planes of it. False if libtiff cannot.
    [[nodiscard]] bool read(std::uint32_t index);
    const unsigned char* data() const { return buffer.get(); }

private:
    struct FreeMemory {
        void operator()(unsigned char* memory) const noexcept { std::free(memory); }
    };

    bool setStrips();
    bool setTiles();
    bool allocate();

    TIFF* tiff = nullptr;
    TiffLayout layout;
    bool tiled = false;
    std::uint32_t blockWidth = 0, blockHeight = 0; // before clipping
    std::uint32_t columns = 0, rows = 0;
    bool used = false; // the buffer is not all zero any more
    std::size_t bufferBytes = 0;
    std::unique_ptr<unsigned char, FreeMemory> buffer;
};

} // namespace Ondrel
