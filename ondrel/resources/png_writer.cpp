#include <ondrel/color/colorprofiles.h>
#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/exportfile_p.h>
#include <ondrel/resources/pngboundary_p.h>
#include <ondrel/resources/resourceengine.h>
#include <ondrel/resources/samples_p.h>

#include <QByteArray>

#include <utility>

namespace Ondrel
{
namespace
{

struct PngWriter {
    PngErrors errors;
    png_structp png = nullptr;
    png_infop info = nullptr;

    PngWriter() = default;
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;
    ~PngWriter() { png_destroy_write_struct(&png, &info); }
};

struct PngFormat {
    unsigned int channels;
    bool wide; // 16 bits a sample
};

bool create(PngWriter& writer)
{
    const bool created = pngStep(writer.errors, [&writer] {
        writer.png = png_create_write_struct(kPngVersion, &writer.errors, &leavePng, &ignorePngWarning);
        if (writer.png)
            writer.info = png_create_info_struct(writer.png);
    });
    return created && writer.info;
}

bool setHeader(PngWriter& writer, std::FILE* file, const Image& image, const PngFormat& format, int compressionLevel)
{
    return pngStep(writer.errors, [&writer, file, &image, &format, compressionLevel] {
        png_structp png = writer.png;
        png_set_check_for_invalid_index(png, 0);
        png_init_io(png, file);
        png_set_IHDR(png, writer.info, image.width, image.height, format.wide ? 16 : 8,
                     format.channels == 4 ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_set_compression_level(png, compressionLevel);
    });
}

// libpng refuses a profile that is not RGB or has no name, and with it the export.
bool setProfile(PngWriter& writer, const std::vector<unsigned char>& icc)
{
    if (icc.empty())
        return true;
    const QByteArray name = GetICCProfileName(icc.data(), static_cast<unsigned long>(icc.size())).toLatin1();
    return pngStep(writer.errors, [&writer, &icc, text = name.constData()] {
        png_set_iCCP(writer.png, writer.info, text, PNG_COMPRESSION_TYPE_BASE, icc.data(), png_uint_32(icc.size()));
    });
}

bool writeInfo(PngWriter& writer, bool wide)
{
    return pngStep(writer.errors, [&writer, wide] {
        png_write_info(writer.png, writer.info);
        if (wide)
            png_set_swap(writer.png);
        png_set_flush(writer.png, 100);
    });
}

// Turns rows of the image into rows of the file, in a buffer of its own where they differ.
class PngRows
{
public:
    PngRows(const Image& image, const PngFormat& format)
        : image(image)
        , format(format)
        , bytes(format.wide ? 0 : std::size_t(image.width) * 4)
        , samples(format.wide && format.channels < 4 ? std::size_t(image.width) * 3 : 0)
    {
    }

    png_const_bytep row(unsigned int y)
    {
        const std::uint16_t* in = image.data + std::size_t(y) * image.width * 4;
        if (!format.wide) {
            bytesTruncated(in, std::size_t(image.width) * 4, bytes.data());
            if (format.channels < 4) // towards the front, so in place
                copyChannels(bytes.data(), image.width, 3, bytes.data());
            return bytes.data();
        }
        if (format.channels == 4)
            return reinterpret_cast<png_const_bytep>(in);
        copyChannels(in, image.width, 3, samples.data());
        return reinterpret_cast<png_const_bytep>(samples.data());
    }

private:
    const Image& image;
    PngFormat format;
    std::vector<std::uint8_t> bytes;
    std::vector<std::uint16_t> samples;
};

bool writeRows(PngWriter& writer, const Image& image, const PngFormat& format, ExportProgress& progress)
{
    PngRows rows(image, format);
    for (unsigned int y = 0; y < image.height; ++y) {
        png_const_bytep row = rows.row(y);
        if (!pngStep(writer.errors, [&writer, row] { png_write_row(writer.png, row); }))
            return false;
        if (!progress.rowWritten(y))
            return true;
    }
    return pngStep(writer.errors, [&writer] { png_write_end(writer.png, writer.info); });
}

} // namespace
} // namespace Ondrel

bool ResourceEngine::ExportPNG(const QString& fileName, const Ondrel::Image& image, const ExportPNGSettings& settings,
                               bool (*progress)(int, void*), void* userData)
{
    using namespace Ondrel;
    if (!holdsAllPixels(image))
        return false;
    const PngFormat format{settings.alpha == 1 ? 4u : 3u, settings.bitDepth != 0};
    ExportProgress reported(progress, userData, image.height);
    OwnedFile file = openForExport(fileName);
    if (!file)
        return false;
    {
        PngWriter writer;
        if (!create(writer) || !setHeader(writer, file.get(), image, format, settings.compressionLevel))
            return false;
        std::vector<unsigned char> icc;
        PrepareImageForExport(image, settings.colorProfile, icc);
        if (!setProfile(writer, icc) || !writeInfo(writer, format.wide) || !writeRows(writer, image, format, reported))
            return false;
    }
    return exportOutcome(closeExport(std::move(file)), reported, fileName);
}
