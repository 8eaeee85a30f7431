#include "pictureexport.h"

#include "blocking.h"
#include "evaluation.h"
#include "text.h"

#include <ondrel/color/colorprofiles.h>
#include <ondrel/resources/resourceengine.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace Host
{
namespace
{

bool isChosen(const QVariantMap& values, const char* field, const char* choice)
{
    return values.value(field).toString() == choice;
}

int level(const QVariantMap& values, const char* field, int otherwise, int greatest)
{
    bool ok = false;
    const double number = values.value(field).toString().toDouble(&ok);
    return ok ? int(std::lround(std::clamp(number, 0.0, double(greatest)))) : otherwise;
}

std::array<unsigned char, 32> profileOf(const QVariantMap& values)
{
    if (isChosen(values, "space", "None"))
        return Ondrel::NoneColorProfile;
    if (isChosen(values, "space", "Chosen"))
        return Ondrel::QByteArrayToColorProfileHash(values.value("profile").toByteArray());
    return Ondrel::EmbeddedColorProfile;
}

unsigned int compressionOf(const QVariantMap& values)
{
    const QStringList choices{"None", "Deflate", "LZW", "PackBits"};
    return unsigned(std::max(0, choices.indexOf(values.value("tiffcompression").toString())));
}

using ProgressFunction = std::function<bool(int)>;

bool tell(int percent, void* progress)
{
    const auto& function = *static_cast<const ProgressFunction*>(progress);
    return !function || function(percent);
}

bool writeTo(const QString& file, const Ondrel::Image& image, FileFormat format, const QVariantMap& values,
             ProgressFunction progress)
{
    if (format == FileFormat::Jpeg) {
        ResourceEngine::ExportJPEGSettings settings;
        settings.quality = level(values, "quality", 90, 100);
        settings.optimizeCoding = true;
        settings.progressive = isChosen(values, "progressive", "Yes");
        settings.colorProfile = profileOf(values);
        return ResourceEngine::ExportJPEG(file, image, settings, tell, &progress);
    }
    if (format == FileFormat::Tiff) {
        ResourceEngine::ExportTIFFSettings settings;
        settings.alpha = isChosen(values, "tiffalpha", "With");
        settings.bitDepth = isChosen(values, "tiffdepth", "16 bits");
        settings.compression = compressionOf(values);
        settings.colorProfile = profileOf(values);
        return ResourceEngine::ExportTIFF(file, image, settings, tell, &progress);
    }
    ResourceEngine::ExportPNGSettings settings;
    settings.alpha = isChosen(values, "pngalpha", "With");
    settings.bitDepth = isChosen(values, "pngdepth", "16 bits");
    settings.compressionLevel = level(values, "pngcompression", 6, 9);
    settings.colorProfile = profileOf(values);
    return ResourceEngine::ExportPNG(file, image, settings, tell, &progress);
}

// A file that has its name has its content too, whatever happens to the machine.
bool putInPlace(const QString& part, const QString& fileName)
{
    QFile file(part);
    if (!file.open(QIODevice::ReadWrite) || fsync(file.handle()) != 0)
        return false;
    file.close();
    return std::rename(QFile::encodeName(part).constData(), QFile::encodeName(fileName).constData()) == 0;
}

} // namespace

FileFormat formatOf(const QVariantMap& outputValues)
{
    if (isChosen(outputValues, "format", "JPEG"))
        return FileFormat::Jpeg;
    return isChosen(outputValues, "format", "TIFF") ? FileFormat::Tiff : FileFormat::Png;
}

QString suffixOf(FileFormat format)
{
    return format == FileFormat::Png ? "png" : format == FileFormat::Jpeg ? "jpg" : "tif";
}

bool formatFromName(const QString& fileName, FileFormat& format)
{
    const QString ending = QFileInfo(fileName).suffix().toLower();
    if (ending == "png")
        format = FileFormat::Png;
    else if (ending == "jpg" || ending == "jpeg")
        format = FileFormat::Jpeg;
    else if (ending == "tif" || ending == "tiff")
        format = FileFormat::Tiff;
    else
        return false;
    return true;
}

QString whyNotExport(const Graph& graph, const Outcome& outcome)
{
    QStringList reasons;
    for (auto error = outcome.errors.begin(); error != outcome.errors.end(); ++error) {
        const NodeRecord* const node = graph.node(error.key());
        reasons.append(node ? node->name + ": " + error.value() : error.value());
    }
    reasons.sort();
    if (reasons.isEmpty() && !outcome.picture.image)
        reasons.append(Text::tr("There is no picture to export."));
    return reasons.join(' ');
}

ExportResult exportPicture(Ondrel::Image image, FileFormat format, const QVariantMap& outputValues,
                           const QString& fileName, const std::function<bool(int)>& progress)
{
    assertMayBlock("exportPicture");
    ExportResult result;
    const QFileInfo place(fileName);
    QDir().mkpath(place.path());
    const QString part = place.path() + "/." + place.fileName() + ".part";
    const auto watched = [&](int percent) {
        result.stopped = progress && !progress(percent);
        return !result.stopped;
    };
    const bool written = writeTo(part, image, format, outputValues, watched);
    if (!result.stopped && !(written && putInPlace(part, fileName)))
        result.error = Text::tr("\"%1\" cannot be written: %2.").arg(fileName, QString::fromLocal8Bit(strerror(errno)));
    if (result.stopped || !result.error.isEmpty())
        QFile::remove(part);
    return result;
}

} // namespace Host
