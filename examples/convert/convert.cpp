// ondrel-convert: the road of an image from a file through the store, a colour profile and some pixel operations to
// the display and to a file again. Exit status: 0 all done, 1 some file failed, 2 the command line made no sense.

#include "develop.h"
#include "devices.h"
#include "operations.h"
#include "options.h"
#include "profiles.h"
#include "progress.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/pixel/opencl.h>
#include <ondrel/resources/resourceengine.h>
#include <ondrel/work/backgroundworkqueue.h>

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <memory>

namespace
{

using Hash = ProfileHash;

int listProfiles()
{
    for (const auto& [name, hash] : allProfiles())
        std::printf("%s  %s\n", toByteArray(hash).toHex().constData(), qUtf8Printable(name));
    return 0;
}

// A resource that leaves the store when it goes out of scope.
class Resource
{
public:
    // What no other reader takes is tried as camera RAW; with `onlyRaw` nothing else is.
    Resource(const QString& file, bool onlyRaw)
    {
        const std::string name = file.toStdString();
        if (onlyRaw || !ResourceEngine::Get().AddImage(name, m_id))
            ResourceEngine::Get().AddRawImage(name, m_id);
    }
    ~Resource()
    {
        if (*this)
            ResourceEngine::Get().RemoveResource(m_id);
    }
    Resource(const Resource&) = delete;
    Resource& operator=(const Resource&) = delete;
    explicit operator bool() const { return m_id != Ondrel::ResourceId(); }
    Ondrel::ResourceId id() const { return m_id; }

private:
    Ondrel::ResourceId m_id;
};

const char* kinds(const Options& options)
{
    return options.raw ? "camera RAW" : "PNG, JPEG, TIFF or camera RAW";
}

int showInfo(const Options& options)
{
    int status = 0;
    for (const QString& file : options.inputs) {
        const Resource resource(file, options.raw);
        Ondrel::ImageInfo info;
        std::shared_ptr<const Ondrel::Image> image;
        ResourceEngine::Format format;
        std::vector<unsigned char> data;
        std::string name;
        ResourceEngine& store = ResourceEngine::Get();
        if (!resource || !store.CopyImageInfo(resource.id(), info) ||
            !store.CopyData(resource.id(), format, data, name) ||
            !store.CopyImage(resource.id(), image, Ondrel::EmbeddedColorProfile, {})) {
            std::fprintf(stderr, "%s: not a readable %s file\n", qUtf8Printable(file), kinds(options));
            status = 1;
            continue;
        }
        static const char* const formats[] = {"PNG", "JPEG", "TIFF", "camera RAW"};
        std::printf("%s: %s, %u x %u, %zu bytes, profile %s\n", qUtf8Printable(file), formats[format], info.width,
                    info.height, data.size(), qUtf8Printable(profileName(image->colorProfile)));
        if (image->rawHasInfo)
            std::printf("  %s\n", qUtf8Printable(describeRaw(*image)));
    }
    return status;
}

// Renders on a worker thread, as a preview does, and waits for the result in a local event loop.
QImage renderForDisplay(std::shared_ptr<const Ondrel::Image> image)
{
    BackgroundWorkQueue queue(nullptr);
    QEventLoop loop;
    QImage result;
    QObject::connect(&queue, QOverload<const QImage&, int, const QVariant&>::of(&BackgroundWorkQueue::qImageFinished),
                     [&](const QImage& rendered) {
                         result = rendered;
                         loop.quit();
                     });
    const std::function<QImage()> job = [image] { return Ondrel::ColorTransformer::toQImage(*image, false); };
    queue.queueWork(job, 0, true, false, QVariant());
    loop.exec();
    return result;
}

bool writeImage(const QString& file, const Ondrel::Image& image, const Hash& profile, const Options& options,
                Progress& progress)
{
    const QString suffix = QFileInfo(file).suffix().toLower();
    if (suffix == "png") {
        const ResourceEngine::ExportPNGSettings settings{options.pngLevel, profile, options.alpha, options.sixteenBits};
        return ResourceEngine::ExportPNG(file, image, settings, Progress::exportRow, &progress);
    }
    if (suffix == "jpg" || suffix == "jpeg") {
        const ResourceEngine::ExportJPEGSettings settings{options.quality, true, false, 0, profile};
        return ResourceEngine::ExportJPEG(file, image, settings, Progress::exportRow, &progress);
    }
    const ResourceEngine::ExportTIFFSettings settings{profile, options.alpha, options.sixteenBits,
                                                      options.tiffCompression};
    return ResourceEngine::ExportTIFF(file, image, settings, Progress::exportRow, &progress);
}

bool writable(const QString& file)
{
    return QStringList{"png", "jpg", "jpeg", "tif", "tiff"}.contains(QFileInfo(file).suffix().toLower());
}

QString outputFor(const QString& input, const Options& options)
{
    if (!options.outputIsFolder)
        return options.output;
    const QFileInfo info(input);
    return QDir(options.output)
        .filePath(info.completeBaseName() + '.' + (options.format.isEmpty() ? info.suffix() : options.format));
}

// Decodes what the options ask for, in its own profile, which stays registered as long as the resource. Gives the
// reason of a failure, or an empty text.
QString decode(const Resource& resource, const Options& options, std::shared_ptr<const Ondrel::Image>& image)
{
    if (!ResourceEngine::Get().CopyImage(resource.id(), image, Ondrel::EmbeddedColorProfile, {}))
        return "could not be decoded";
    if (!options.develop)
        return {};
    auto developed = std::make_shared<Ondrel::Image>();
    if (!developRaw(*image, *developed))
        return "its mosaic is of a kind that is not developed here";
    image = developed;
    return {};
}

QString importPreview(const QString& input, std::shared_ptr<const Ondrel::Image>& image)
{
    auto preview = std::make_shared<Ondrel::Image>();
    if (!ResourceEngine::ImportRawThumbnail(input, *preview))
        return "carries no readable preview";
    if (preview->colorProfile == Hash{}) // a bitmap does not say; most are meant for sRGB
        preview->colorProfile = Ondrel::DefaultColorProfileHash;
    image = preview;
    return {};
}

// Gives the reason of a failure, or an empty text.
QString convert(const QString& input, const QString& output, const Hash& profile, const Options& options,
                Progress& progress)
{
    const Resource resource(input, options.raw);
    if (!resource)
        return QString("not a readable %1 file").arg(kinds(options));
    progress.stage("into the store, validated, profile registered");

    std::shared_ptr<const Ondrel::Image> image;
    const QString reason = options.preview ? importPreview(input, image) : decode(resource, options, image);
    if (!reason.isEmpty())
        return reason;
    progress.stage(QString("%1, %2 x %3, %4")
                       .arg(options.preview   ? "preview read"
                            : options.develop ? "decoded and developed"
                                              : "decoded")
                       .arg(image->width)
                       .arg(image->height)
                       .arg(profileName(image->colorProfile)));

    const bool converts = profile != Ondrel::EmbeddedColorProfile && profile != Ondrel::NoneColorProfile;
    if (converts && Ondrel::ColorManager::copyColorProfileDataByHash(image->colorProfile).empty())
        return "its pixels are in no RGB profile to convert from";
    if (converts) {
        image = std::make_shared<Ondrel::Image>(
            ConvertColorSpace(*image, "Automatic", toByteArray(profile), options.intent));
        progress.stage("converted to " + profileName(profile));
    }
    for (const Operation& operation : options.operations) {
        image = std::make_shared<Ondrel::Image>(applyOperation(*image, operation, options));
        if (image->width == 0 || image->height == 0)
            return "nothing is left after: " + describeOperation(operation);
        progress.stage(describeOperation(operation));
    }
    if (!options.display.isEmpty()) {
        const QImage rendered = renderForDisplay(image);
        progress.stage("rendered for the display in the background");
        if (!rendered.save(options.display, "PNG"))
            return "could not write " + options.display;
        progress.stage("saved the rendering");
    }
    if (output.isEmpty())
        return {};
    // The pixels are in their final profile by now: it is embedded as it is.
    const Hash embedded = profile == Ondrel::NoneColorProfile ? profile : Ondrel::EmbeddedColorProfile;
    if (!writeImage(output, *image, embedded, options, progress))
        return "could not write " + output;
    progress.stage("exported to " + QFileInfo(output).fileName());
    return {};
}

bool knowsProfile(const QString& name, Hash& hash)
{
    const bool known = findProfile(name, hash);
    if (!known)
        std::fprintf(stderr, "ondrel-convert: no profile \"%s\"; see --list-profiles\n", qUtf8Printable(name));
    return known;
}

// A proof is made for a known device and for a display whose colours are managed.
bool canProof(const Options& options)
{
    Hash hash;
    for (const Operation& operation : options.operations) {
        const auto* proof = std::get_if<ProofFor>(&operation);
        if (proof && !knowsProfile(proof->profile, hash))
            return false;
        if (proof && !Ondrel::ColorManager::isColorManagementEnabled()) {
            std::fputs("ondrel-convert: a proof needs colour management, which the settings turn off\n", stderr);
            return false;
        }
    }
    return true;
}

int convertAll(const Options& options)
{
    Hash profile;
    if (!knowsProfile(options.profile, profile) || !canProof(options) ||
        (options.opencl && !chooseDevice(options.device)))
        return 2;
    if (options.outputIsFolder && !QDir().mkpath(options.output)) {
        std::fprintf(stderr, "ondrel-convert: cannot make the folder %s\n", qUtf8Printable(options.output));
        return 1;
    }
    Progress progress(options.quiet, options.timings);
    int status = 0;
    for (int i = 0; i < options.inputs.size(); ++i) {
        const QString& input = options.inputs[i];
        const QString output = outputFor(input, options);
        progress.begin(input, i + 1, options.inputs.size());
        const QString reason = output.isEmpty() || writable(output) ? convert(input, output, profile, options, progress)
                                                                    : "the output must end in .png, .jpg or .tif";
        if (reason.isEmpty()) {
            progress.done(output.isEmpty() ? options.display : output);
        } else {
            progress.failed(reason);
            status = 1;
        }
    }
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv); // no display is needed
    QCoreApplication::setOrganizationName("Ondrel");
    QCoreApplication::setApplicationName("ondrel-convert");
    QCoreApplication::setApplicationVersion("0.1.0");

    Options options;
    QString message;
    if (!parseOptions(QCoreApplication::arguments(), options, message)) {
        std::fprintf(stderr, "ondrel-convert: %s\nTry ondrel-convert --help.\n", qUtf8Printable(message));
        return 2;
    }
    switch (options.mode) {
    case Options::Mode::Help:
    case Options::Mode::Version:
        std::fputs(qUtf8Printable(message), stdout);
        return 0;
    case Options::Mode::ListProfiles:
        return listProfiles();
    case Options::Mode::ListDevices:
        return listDevices();
    case Options::Mode::Info:
        return showInfo(options);
    case Options::Mode::Convert:
        const int status = convertAll(options);
        PixelOpenCL::instance()->disable();
        return status;
    }
    return 0;
}
