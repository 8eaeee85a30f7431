#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/tiffblocks_p.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace Ondrel
{

std::optional<TiffBlocks> TiffBlocks::open(TIFF* tiff, const TiffLayout& layout)
{
    TiffBlocks blocks;
    blocks.tiff = tiff;
    blocks.layout = layout;
    blocks.tiled = TIFFIsTiled(tiff) != 0;
    const bool usable = blocks.tiled ? blocks.setTiles() : blocks.setStrips();
    if (!usable || !blocks.allocate())
        return std::nullopt;
    return std::optional<TiffBlocks>(std::move(blocks));
}

bool TiffBlocks::setStrips()
{
    std::uint32_t rowsPerStrip = 0;
    if (!TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip) || rowsPerStrip == 0 ||
        rowsPerStrip > layout.height)
        rowsPerStrip = layout.height;
    blockWidth = layout.width;
    blockHeight = rowsPerStrip;
    columns = 1;
    rows = (layout.height - 1) / rowsPerStrip + 1;
    return true;
}

bool TiffBlocks::setTiles()
{
    if (!TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &blockWidth) || !TIFFGetField(tiff, TIFFTAG_TILELENGTH, &blockHeight) ||
        !isDecodableSize(blockWidth, blockHeight))
        return false;
    columns = (layout.width - 1) / blockWidth + 1;
    rows = (layout.height - 1) / blockHeight + 1;
    return true;
}

// What libtiff will write for a plane of a block must be at least what is read from it later: codecs that decode to
// another form than the tags suggest are refused. Both are kept under the limit of an image's samples.
bool TiffBlocks::allocate()
{
    const tmsize_t stated = tiled ? TIFFTileSize(tiff) : TIFFStripSize(tiff);
    const std::uint64_t needed = std::uint64_t(blockWidth) * blockHeight * layout.pixelBytes();
    if (stated <= 0 || std::uint64_t(stated) < needed || std::uint64_t(stated) >= kPixelLimit * 32)
        return false;
    bufferBytes = std::size_t(stated) * layout.planes();
    // Fresh memory of this size is zero without having been touched.
    buffer.reset(static_cast<unsigned char*>(std::calloc(bufferBytes, 1)));
    return buffer != nullptr;
}

TiffBlocks::Block TiffBlocks::block(std::uint32_t index) const
{
    const std::uint32_t x = index % columns * blockWidth;
    const std::uint32_t y = index / columns * blockHeight;
    Block result{x, y, std::min(blockWidth, layout.width - x), std::min(blockHeight, layout.height - y), 0, 0};
    result.rowBytes = blockWidth * layout.pixelBytes();
    result.planeBytes = result.rowBytes * (tiled ? blockHeight : result.height);
    return result;
}

bool TiffBlocks::read(std::uint32_t index)
{
    if (std::exchange(used, true))
        std::memset(buffer.get(), 0, bufferBytes);
    const auto bytes = tmsize_t(block(index).planeBytes);
    for (unsigned int plane = 0; plane < layout.planes(); ++plane) {
        unsigned char* out = buffer.get() + plane * std::size_t(bytes);
        const std::uint32_t number = plane * count() + index;
        const tmsize_t result =
            tiled ? TIFFReadEncodedTile(tiff, number, out, bytes) : TIFFReadEncodedStrip(tiff, number, out, bytes);
        if (result == -1)
            return false;
    }
    return true;
}

} // namespace Ondrel
