#include "exporting.h"
#include "pngsource.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colormanager.h>

#include <cstring>

namespace OndrelTest
{

namespace
{

using Ondrel::Image;

using Callback = bool (*)(int, void*);

Callback callbackOf(const Progress* progress)
{
    return progress ? &Progress::report : nullptr;
}

} // namespace

bool Progress::report(int percent, void* progress)
{
    Progress& self = *static_cast<Progress*>(progress);
    self.percents.push_back(percent);
    return int(self.percents.size()) - 1 != self.stopAtCall;
}

const std::vector<Exporter>& exporters()
{
    static const std::vector<Exporter> all = {
        {"PNG", false,
         [](const QString& file, Bytes&, const Image& image, const Hash& profile, Progress* progress) {
             return ResourceEngine::ExportPNG(file, image, pngSettings(profile, 1, 1), callbackOf(progress), progress);
         }},
        {"JPEG", false,
         [](const QString& file, Bytes&, const Image& image, const Hash& profile, Progress* progress) {
             const ResourceEngine::ExportJPEGSettings settings{90, false, false, 0, profile};
             return ResourceEngine::ExportJPEG(file, image, settings, callbackOf(progress), progress);
         }},
        {"TIFF", false,
         [](const QString& file, Bytes&, const Image& image, const Hash& profile, Progress* progress) {
             return ResourceEngine::ExportTIFF(file, image, tiffSettings(profile, 1, 1), callbackOf(progress),
                                               progress);
         }},
        {"TIFF in memory", true,
         [](const QString&, Bytes& data, const Image& image, const Hash& profile, Progress* progress) {
             return ResourceEngine::ExportTIFFToMemory(data, image, tiffSettings(profile, 1, 1), callbackOf(progress),
                                                       progress);
         }}};
    return all;
}

Exporter cmykExporter()
{
    return {"CMYK TIFF in memory", true,
            [](const QString&, Bytes& data, const Image& image, const Hash& profile, Progress* progress) {
                const Bytes cmyk = randomBytes(std::size_t(image.width) * image.height * 4, 1);
                return ResourceEngine::ExportCMYKTIFFToMemory(
                    data, cmyk, image.width, image.height, tiffSettings(profile, 0, 0), callbackOf(progress), progress);
            }};
}

ResourceEngine::ExportPNGSettings pngSettings(const Hash& profile, unsigned int alpha, unsigned int bitDepth)
{
    ResourceEngine::ExportPNGSettings settings;
    settings.compressionLevel = 6;
    settings.colorProfile = profile;
    settings.alpha = alpha;
    settings.bitDepth = bitDepth;
    return settings;
}

ResourceEngine::ExportTIFFSettings tiffSettings(const Hash& profile, unsigned int alpha, unsigned int bitDepth)
{
    ResourceEngine::ExportTIFFSettings settings;
    settings.colorProfile = profile;
    settings.alpha = alpha;
    settings.bitDepth = bitDepth;
    return settings;
}

Image standardImage(unsigned int width, unsigned int height)
{
    Ondrel::ColorManager::get();
    Image image = randomImage(width, height, width + height);
    image.colorProfile = Ondrel::DefaultColorProfileHash;
    return image;
}

Image everyValue()
{
    Image image(256, 256);
    for (unsigned int i = 0; i < 65536; ++i)
        setPixel(image, i % 256, i / 256,
                 {std::uint16_t(i), std::uint16_t(65535 - i), std::uint16_t(i * 7), std::uint16_t(i * 3)});
    return image;
}

PngContent decodePng(const Bytes& file)
{
    PngSource source{file, 0};
    png_struct* png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_info* info = png_create_info_struct(png);
    png_set_read_fn(png, &source, takeFromBytes);
    png_read_info(png, info);
    PngContent content;
    PngPicture& picture = content.picture;
    picture.width = png_get_image_width(png, info);
    picture.height = png_get_image_height(png, info);
    picture.colorType = png_get_color_type(png, info);
    picture.bitDepth = png_get_bit_depth(png, info);
    picture.interlaced = png_get_interlace_type(png, info) != PNG_INTERLACE_NONE;
    content.otherInfo = png_get_valid(png, info, PNG_INFO_sRGB | PNG_INFO_gAMA | PNG_INFO_cHRM | PNG_INFO_tRNS);
    char* name = nullptr;
    png_byte* icc = nullptr;
    int compression = 0;
    png_uint_32 size = 0;
    if (png_get_iCCP(png, info, &name, &compression, &icc, &size) != 0) {
        content.iccName = name;
        content.icc.assign(icc, icc + size);
    }
    picture.rows.resize(picture.rowBytes() * picture.height);
    for (unsigned int y = 0; y < picture.height; ++y)
        png_read_row(png, &picture.rows[picture.rowBytes() * y], nullptr);
    png_read_end(png, info);
    png_destroy_read_struct(&png, &info, nullptr);
    EXPECT_EQ(source.position, file.size());
    return content;
}

std::vector<Bytes> iccMarkers(const Bytes& jpegFile)
{
    jpeg_decompress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, jpegFile.data(), static_cast<unsigned long>(jpegFile.size()));
    jpeg_save_markers(&jpeg, JPEG_APP0 + 2, 0xFFFF);
    jpeg_read_header(&jpeg, TRUE);
    std::vector<Bytes> markers;
    for (const jpeg_marker_struct* marker = jpeg.marker_list; marker; marker = marker->next)
        markers.emplace_back(marker->data, marker->data + marker->data_length);
    jpeg_destroy_decompress(&jpeg);
    return markers;
}

Bytes iccTag(const Bytes& tiffFile)
{
    Bytes icc;
    withTiff(tiffFile, [&](TIFF* tiff) {
        std::uint32_t size = 0;
        void* data = nullptr;
        if (TIFFGetField(tiff, TIFFTAG_ICCPROFILE, &size, &data) != 0)
            icc.assign(static_cast<unsigned char*>(data), static_cast<unsigned char*>(data) + size);
    });
    return icc;
}

void withTiff(const Bytes& file, const std::function<void(TIFF*)>& use)
{
    const TemporaryFolder folder;
    writeFile(folder.path("file.tif"), file);
    TIFF* const tiff = TIFFOpen(qPrintable(folder.path("file.tif")), "r");
    ASSERT_NE(tiff, nullptr);
    use(tiff);
    TIFFClose(tiff);
}

} // namespace OndrelTest
