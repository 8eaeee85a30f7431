#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/resourceengine.h>
#include <ondrel/resources/tiffalpha_p.h>
#include <ondrel/resources/tiffblocks_p.h>
#include <ondrel/resources/tiffmemory_p.h>
#include <ondrel/resources/tiffprofile_p.h>

#include <utility>

namespace Ondrel
{
namespace
{

using Hash = std::array<unsigned char, 32>;

OwnedProfile outputProfile(void* source, unsigned int type, const Hash& wanted)
{
    if (type == PT_RGB && wanted == EmbeddedColorProfile)
        return OwnedProfile(CopyICCProfile(source));
    OwnedProfile output(ColorManager::copyColorProfileByHash(wanted));
    if (!output)
        output.reset(Create_sRGBColorProfile());
    return output;
}

void convertBlock(const TiffBlocks& blocks, std::uint32_t index, const TiffLayout& layout, cmsHTRANSFORM transform,
                  Image& image)
{
    const TiffBlocks::Block block = blocks.block(index);
    for (std::uint32_t row = 0; row < block.height; ++row) {
        const unsigned char* in = blocks.data() + row * block.rowBytes;
        std::uint16_t* out = image.data + (std::size_t(block.y + row) * image.width + block.x) * 4;
        cmsDoTransformLineStride(transform, in, out, block.width, 1, 0, 0, cmsUInt32Number(block.planeBytes), 0);
        applyTiffAlpha(layout, in, block.planeBytes, block.width, out);
    }
}

bool readPicture(TiffBlocks& blocks, const TiffLayout& layout, cmsHTRANSFORM transform, Image& image)
{
    for (std::uint32_t index = 0; index < blocks.count(); ++index) {
        if (!blocks.read(index))
            return false;
        convertBlock(blocks, index, layout, transform, image);
    }
    return true;
}

// JPEG data inside a TIFF file are filled up when they end early, but hold at most four times 64 pixels a bit.
bool canCompressionHold(TIFF* tiff, const TiffLayout& layout, std::size_t fileSize)
{
    std::uint16_t compression = COMPRESSION_NONE;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &compression);
    const bool jpeg = compression == COMPRESSION_JPEG || compression == COMPRESSION_OJPEG;
    return !jpeg || std::uint64_t(layout.width) * layout.height <= std::uint64_t(fileSize) * 2048;
}

bool isReadable(TIFF* tiff, TiffBlocks& blocks, const TiffLayout& layout, std::size_t fileSize)
{
    if (isSizeOnTrust(layout.width, layout.height, fileSize))
        return true;
    if (!canCompressionHold(tiff, layout, fileSize))
        return false;
    for (std::uint32_t index = 0; index < blocks.count(); ++index) {
        if (!blocks.read(index))
            return false;
    }
    return true;
}

} // namespace
} // namespace Ondrel

bool ResourceEngine::ReadTIFF(const std::shared_ptr<ImageInfo>& info, Ondrel::Image& image, void** profile,
                              const std::array<unsigned char, 32>& colorProfile)
{
    using namespace Ondrel;
    TiffMemory memory(std::as_const(info->data));
    const OwnedTiff tiff = memory.open("r");
    if (!tiff)
        return false;
    const std::optional<TiffLayout> layout = readTiffLayout(tiff.get());
    if (!layout)
        return false;
    const OwnedProfile source = createTiffProfile(tiff.get(), *layout);
    if (!source)
        return false;
    // Copied and named before the transform is built, which can change what Little CMS saves of a table profile.
    OwnedProfile reported(profile && layout->type == PT_RGB ? CopyICCProfile(source.get()) : nullptr);
    const OwnedProfile output = outputProfile(source.get(), layout->type, colorProfile);
    const Hash hash = ColorManager::buildColorProfileHash(output.get());
    const OwnedTransform transform(
        cmsCreateTransform(source.get(), layout->lcmsFormat(), output.get(), TYPE_RGBA_16, INTENT_PERCEPTUAL, 0));
    if (!transform)
        return false;
    std::optional<TiffBlocks> blocks = TiffBlocks::open(tiff.get(), *layout);
    if (!blocks || !isReadable(tiff.get(), *blocks, *layout, info->data.size()))
        return false;
    Image decoded(layout->width, layout->height);
    if (!readPicture(*blocks, *layout, transform.get(), decoded))
        return false;
    decoded.colorProfile = hash;
    image = std::move(decoded);
    if (reported)
        *profile = reported.release();
    return true;
}
