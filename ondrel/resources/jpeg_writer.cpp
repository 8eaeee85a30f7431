#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/exportfile_p.h>
#include <ondrel/resources/jpegboundary_p.h>
#include <ondrel/resources/jpegicc.h>
#include <ondrel/resources/resourceengine.h>
#include <ondrel/resources/rowbands_p.h>
#include <ondrel/resources/samples_p.h>

#include <utility>

namespace Ondrel
{
namespace
{

struct JpegWriter {
    JpegErrors errors;
    jpeg_compress_struct jpeg{};

    JpegWriter() { jpeg.err = &errors; }
    JpegWriter(const JpegWriter&) = delete;
    JpegWriter& operator=(const JpegWriter&) = delete;
    ~JpegWriter() { jpeg_destroy_compress(&jpeg); }
};

bool create(JpegWriter& writer)
{
    return jpegStep(writer.errors, [&writer] { jpeg_create_compress(&writer.jpeg); });
}

// Rows are handed over with their fourth sample, which libjpeg drops: the file is the same as from packed RGB.
bool start(JpegWriter& writer, std::FILE* file, const Image& image, const ResourceEngine::ExportJPEGSettings& settings)
{
    return jpegStep(writer.errors, [&writer, file, &image, &settings] {
        jpeg_compress_struct& jpeg = writer.jpeg;
        jpeg_stdio_dest(&jpeg, file);
        jpeg.input_components = 4;
        jpeg.in_color_space = JCS_EXT_RGBX;
        jpeg.input_gamma = 2.2;
        jpeg.image_width = image.width;
        jpeg.image_height = image.height;
        jpeg_set_defaults(&jpeg);
        jpeg_set_quality(&jpeg, settings.quality, FALSE);
        if (settings.progressive)
            jpeg_simple_progression(&jpeg);
        jpeg.optimize_coding = settings.optimizeCoding ? TRUE : FALSE;
        jpeg.smoothing_factor = settings.smoothingFactor;
        jpeg.dct_method = JDCT_ISLOW;
        jpeg_start_compress(&jpeg, TRUE);
    });
}

bool writeProfile(JpegWriter& writer, const std::vector<unsigned char>& icc)
{
    return jpegStep(writer.errors,
                    [&writer, &icc] { JPEGWriteICCProfile(&writer.jpeg, icc.data(), unsigned(icc.size())); });
}

bool writeRows(JpegWriter& writer, const Image& image, ExportProgress& progress)
{
    const std::size_t samples = std::size_t(image.width) * 4;
    const std::size_t bandRows = rowsOfBand(samples, image.height);
    std::vector<std::uint8_t> bands(samples * bandRows * 2);
    const auto fill = [&](std::size_t y, unsigned char* row) { bytesRounded(image.data + y * samples, samples, row); };
    const auto take = [&](std::size_t y, unsigned char* row) {
        if (!jpegStep(writer.errors, [&writer, row]() mutable { jpeg_write_scanlines(&writer.jpeg, &row, 1); }))
            return RowsTaken::Failed;
        return progress.rowWritten(unsigned(y)) ? RowsTaken::All : RowsTaken::Stopped;
    };
    const RowsTaken taken =
        takeRows({bands.data(), bands.data() + samples * bandRows, samples, bandRows}, image.height, fill, take);
    if (taken != RowsTaken::All)
        return taken == RowsTaken::Stopped;
    return jpegStep(writer.errors, [&writer] { jpeg_finish_compress(&writer.jpeg); });
}

} // namespace
} // namespace Ondrel

bool ResourceEngine::ExportJPEG(const QString& fileName, const Ondrel::Image& image, const ExportJPEGSettings& settings,
                                bool (*progress)(int, void*), void* userData)
{
    using namespace Ondrel;
    if (!holdsAllPixels(image))
        return false;
    ExportProgress reported(progress, userData, image.height);
    OwnedFile file = openForExport(fileName);
    if (!file)
        return false;
    {
        JpegWriter writer;
        if (!create(writer) || !start(writer, file.get(), image, settings))
            return false;
        std::vector<unsigned char> icc;
        PrepareImageForExport(image, settings.colorProfile, icc);
        if (!writeProfile(writer, icc) || !writeRows(writer, image, reported))
            return false;
    }
    return exportOutcome(closeExport(std::move(file)), reported, fileName);
}
