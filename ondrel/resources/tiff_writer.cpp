#include <ondrel/color/colormanager.h>
#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/exportfile_p.h>
#include <ondrel/resources/resourceengine.h>
#include <ondrel/resources/rowbands_p.h>
#include <ondrel/resources/samples_p.h>
#include <ondrel/resources/tiffmemory_p.h>

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include <unistd.h>

namespace Ondrel
{
namespace
{

struct TiffPicture {
    unsigned int width, height;
    std::uint16_t photometric;
    std::uint16_t channels; // samples a pixel in the file
    std::uint16_t bits;
    bool alpha; // the fourth channel is declared as unassociated alpha
};

std::uint16_t compressionTag(unsigned int compression)
{
    switch (compression) {
    case 1:
        return COMPRESSION_DEFLATE;
    case 2:
        return COMPRESSION_LZW;
    case 3:
        return COMPRESSION_PACKBITS;
    default:
        return COMPRESSION_NONE;
    }
}

// libtiff does not tell when it had no memory for the content of these two, and would write from a null pointer, even
// while it closes the file. Without such a tag it can at least be closed.
bool keptArrays(TIFF* tiff)
{
    const char* software = nullptr;
    if (!TIFFGetField(tiff, TIFFTAG_SOFTWARE, &software) || !software) {
        TIFFUnsetField(tiff, TIFFTAG_SOFTWARE);
        return false;
    }
    std::uint16_t count = 0;
    const std::uint16_t* kinds = nullptr;
    if (TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds) && !kinds) {
        TIFFUnsetField(tiff, TIFFTAG_EXTRASAMPLES);
        return false;
    }
    return true;
}

// False if libtiff had no memory for a tag; it must not be given another one then.
bool setTags(TIFF* tiff, const TiffPicture& picture, unsigned int compression, const std::vector<unsigned char>& icc)
{
    const std::uint16_t alphaKind = EXTRASAMPLE_UNASSALPHA;
    const QString software =
        QCoreApplication::applicationName() + QLatin1Char(' ') + QCoreApplication::applicationVersion();
    const bool set =
        (icc.empty() || TIFFSetField(tiff, TIFFTAG_ICCPROFILE, std::uint32_t(icc.size()), icc.data())) &&
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, int(picture.photometric)) &&
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, int(picture.channels)) &&
        (picture.photometric != PHOTOMETRIC_SEPARATED || TIFFSetField(tiff, TIFFTAG_INKSET, INKSET_CMYK)) &&
        (!picture.alpha || TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alphaKind)) &&
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, int(picture.bits)) &&
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, picture.width) &&
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, picture.height) &&
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, int(compressionTag(compression))) &&
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 1u) && TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 90.0) &&
        TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 90.0) && TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH) &&
        TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) &&
        TIFFSetField(tiff, TIFFTAG_SOFTWARE, software.toUtf8().constData());
    return keptArrays(tiff) && set;
}

struct FreeBand {
    void operator()(unsigned char* band) const noexcept { _TIFFfree(band); }
};
using Band = std::unique_ptr<unsigned char, FreeBand>;

Band makeBand(std::size_t size)
{
    return Band(static_cast<unsigned char*>(_TIFFmalloc(tmsize_t(size))));
}

// Writes the rows that `fill(y, row)` puts into the row buffer, on any thread, then the directory. libtiff swaps the
// bytes of a row in place. False on failure; a stopped export is none, and has no directory.
template <class Fill>
bool writePicture(TIFF* tiff, const TiffPicture& picture, ExportProgress& progress, Fill fill)
{
    const std::size_t rowSize = std::size_t(picture.width) * picture.channels * (picture.bits / 8u);
    const std::size_t bandRows = rowsOfBand(rowSize, picture.height);
    const Band first = makeBand(rowSize * bandRows), second = makeBand(rowSize * bandRows);
    if (!first || !second)
        return false;
    const RowsTaken taken = takeRows({first.get(), second.get(), rowSize, bandRows}, picture.height, fill,
                                     [&](std::size_t y, unsigned char* row) {
                                         const auto strip = static_cast<unsigned int>(y);
                                         if (TIFFWriteEncodedStrip(tiff, strip, row, tmsize_t(rowSize)) == -1)
                                             return RowsTaken::Failed;
                                         return progress.rowWritten(strip) ? RowsTaken::All : RowsTaken::Stopped;
                                     });
    return taken == RowsTaken::All ? TIFFWriteDirectory(tiff) == 1 : taken == RowsTaken::Stopped;
}

// The colours of a row in 8 bits, without its alpha.
void threeBytesRounded(const std::uint16_t* in, std::size_t pixels, std::uint8_t* out)
{
    std::array<std::uint8_t, 4096> bytes;
    for (std::size_t left = pixels; left > 0;) {
        const std::size_t count = std::min(left, bytes.size() / 4);
        bytesRounded(in, count * 4, bytes.data());
        copyChannels(bytes.data(), count, 3, out);
        in += count * 4;
        out += count * 3;
        left -= count;
    }
}

bool writeImage(TIFF* tiff, const Image& image, const ResourceEngine::ExportTIFFSettings& settings,
                const std::vector<unsigned char>& icc, ExportProgress& progress)
{
    const TiffPicture picture{image.width,
                              image.height,
                              PHOTOMETRIC_RGB,
                              std::uint16_t(settings.alpha != 0 ? 4 : 3),
                              std::uint16_t(settings.bitDepth != 0 ? 16 : 8),
                              settings.alpha == 1};
    if (!setTags(tiff, picture, settings.compression, icc))
        return false;
    const std::size_t samples = std::size_t(image.width) * 4;
    return writePicture(tiff, picture, progress, [&](std::size_t y, unsigned char* row) {
        const std::uint16_t* in = image.data + y * samples;
        if (picture.bits == 16)
            copyChannels(in, image.width, picture.channels, reinterpret_cast<std::uint16_t*>(row));
        else if (picture.channels == 4)
            bytesRounded(in, samples, row);
        else
            threeBytesRounded(in, image.width, row);
    });
}

// TIFFClose() does not tell whether the system could close the file, and a network file system may tell only then that
// the disk is full.
bool closeExport(OwnedTiff tiff)
{
    const int file = TIFFFileno(tiff.get());
    TIFFCleanup(tiff.release());
    return ::close(file) == 0;
}

// Room for the samples and for what belongs to each strip, so that an uncompressed file does not move as it grows.
void reserve(std::vector<unsigned char>& data, const Image& image, const ResourceEngine::ExportTIFFSettings& settings)
{
    if (compressionTag(settings.compression) != COMPRESSION_NONE)
        return;
    const std::size_t row = std::size_t(image.width) * (settings.alpha != 0 ? 4 : 3) * (settings.bitDepth != 0 ? 2 : 1);
    data.reserve((row + 16) * image.height + 4096);
}

} // namespace
} // namespace Ondrel

bool ResourceEngine::ExportTIFF(const QString& fileName, const Ondrel::Image& image, const ExportTIFFSettings& settings,
                                bool (*progress)(int, void*), void* userData)
{
    using namespace Ondrel;
    if (!holdsAllPixels(image))
        return false;
    ExportProgress reported(progress, userData, image.height);
    OwnedTiff tiff(TIFFOpen(fileName.toUtf8().constData(), "w"));
    if (!tiff)
        return false;
    std::vector<unsigned char> icc;
    PrepareImageForExport(image, settings.colorProfile, icc);
    const bool written = writeImage(tiff.get(), image, settings, icc, reported);
    const bool closed = closeExport(std::move(tiff));
    return exportOutcome(written && closed, reported, fileName);
}

bool ResourceEngine::ExportTIFFToMemory(std::vector<unsigned char>& data, const Ondrel::Image& image,
                                        const ExportTIFFSettings& settings, bool (*progress)(int, void*),
                                        void* userData)
{
    using namespace Ondrel;
    data.clear();
    if (!holdsAllPixels(image))
        return false;
    reserve(data, image, settings);
    ExportProgress reported(progress, userData, image.height);
    TiffMemory memory(data);
    OwnedTiff tiff = memory.open("wb"); // in libtiff's modes the b means big-endian
    if (!tiff)
        return false;
    std::vector<unsigned char> icc;
    PrepareImageForExport(image, settings.colorProfile, icc);
    return writeImage(tiff.get(), image, settings, icc, reported);
}

bool ResourceEngine::ExportCMYKTIFFToMemory(std::vector<unsigned char>& data, const std::vector<unsigned char>& cmyk,
                                            unsigned int width, unsigned int height, const ExportTIFFSettings& settings,
                                            bool (*progress)(int, void*), void* userData)
{
    using namespace Ondrel;
    data.clear();
    if (!isDecodableSize(width, height) || cmyk.size() < std::size_t(width) * height * 4)
        return false;
    if (settings.colorProfile == NoneColorProfile)
        return false;
    const std::vector<unsigned char> icc = ColorManager::copyColorProfileDataByHash(settings.colorProfile);
    if (icc.empty())
        return false;
    ExportProgress reported(progress, userData, height);
    TiffMemory memory(data);
    const OwnedTiff tiff = memory.open("wb");
    if (!tiff)
        return false;
    const TiffPicture picture{width, height, PHOTOMETRIC_SEPARATED, 4, 8, false};
    if (!setTags(tiff.get(), picture, settings.compression, icc))
        return false;
    const std::size_t rowSize = std::size_t(width) * 4;
    return writePicture(tiff.get(), picture, reported, [&](std::size_t y, unsigned char* row) {
        std::memcpy(row, cmyk.data() + y * rowSize, rowSize);
    });
}
