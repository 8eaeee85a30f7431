#include "projectresources.h"

#include "imageimport.h"
#include "settledprofiles.h"
#include "text.h"

#include <ondrel/resources/imagebuffer.h>

#include <QFile>

using Record = ResourceEngine::ImageInfo;
using Records = std::unordered_map<unsigned int, std::shared_ptr<Record>>;

namespace Host
{
namespace
{

// The manual mode, which hands out the records themselves and keeps everyone else out meanwhile.
class ManualMode
{
public:
    explicit ManualMode(ResourceEngine::EndManualProcessing ending)
        : m_ending(ending)
    {
        ResourceEngine::Get().BeginManualResources(&m_records);
    }
    ~ManualMode() { ResourceEngine::Get().EndManualResources(m_ending); }
    ManualMode(const ManualMode&) = delete;
    ManualMode& operator=(const ManualMode&) = delete;

    Records& records() { return *m_records; }

private:
    ResourceEngine::EndManualProcessing m_ending;
    Records* m_records = nullptr;
};

std::string localName(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

std::shared_ptr<Record> recordOf(const StoredResource& resource)
{
    auto record = std::make_shared<Record>();
    record->fileName = localName(resource.path);
    record->format = resource.form == StoredResource::RawFile ? ResourceEngine::FormatRAW : ResourceEngine::FormatPNG;
    if (resource.form == StoredResource::Buffer) {
        record->format = ResourceEngine::FormatImageBuffer;
        std::shared_ptr<const Ondrel::Image> image;
        if (!ReadImageBuffer(resource.data, image) || !image) {
            record->data = resource.data; // to be saved again
            return record;
        }
        record->image = std::make_shared<Ondrel::Image>(*image);
        record->info.width = image->width;
        record->info.height = image->height;
    } else {
        record->data = resource.data;
    }
    return record;
}

std::uint32_t insertRecord(Records& records, const StoredResource& resource)
{
    std::shared_ptr<Record> record = recordOf(resource);
    Ondrel::ResourceId id;
    if (ResourceEngine::Get().CreateId(id))
        records[id.id] = std::move(record);
    return id.id;
}

std::uint32_t addFile(const StoredResource& resource, QStringList& notes)
{
    const Import import =
        resource.form == StoredResource::RawFile ? importRawImage(resource.path) : importImage(resource.path);
    if (!import.note.isEmpty())
        notes.append(import.note);
    return import.id.id;
}

bool hasSize(std::uint32_t handle)
{
    Ondrel::ImageInfo info;
    return ResourceEngine::Get().CopyImageInfo(handle, info) && info.width != 0 && info.height != 0;
}

} // namespace

std::vector<std::uint32_t> addToStore(const std::vector<StoredResource>& resources, QStringList& notes)
{
    std::vector<std::uint32_t> handles(resources.size(), 0);
    bool validate = false, missing = false;
    for (std::size_t i = 0; i < resources.size(); ++i) {
        if (!resources[i].embedded)
            handles[i] = addFile(resources[i], notes);
        validate = validate || resources[i].embedded;
        missing = missing || handles[i] == 0;
    }
    if (missing) {
        ManualMode mode(validate ? ResourceEngine::EndManualRevalidate : ResourceEngine::EndManualRebuildSizes);
        for (std::size_t i = 0; i < resources.size(); ++i) {
            if (handles[i] == 0)
                handles[i] = insertRecord(mode.records(), resources[i]);
        }
    }
    settleProfiles();
    for (std::size_t i = 0; i < resources.size(); ++i) {
        if (!hasSize(handles[i]))
            notes.append(Text::tr("The picture \"%1\" cannot be read.").arg(resources[i].path));
    }
    return handles;
}

StoredResource copyFromStore(std::uint32_t handle, bool wantsData)
{
    StoredResource resource;
    ManualMode mode(ResourceEngine::EndManualNoChange);
    const auto found = mode.records().find(handle);
    if (found == mode.records().end() || !found->second)
        return resource;
    const Record& record = *found->second;
    resource.path = QFile::decodeName(QByteArray::fromStdString(record.fileName));
    if (record.format == ResourceEngine::FormatRAW)
        resource.form = StoredResource::RawFile;
    if (record.format == ResourceEngine::FormatImageBuffer) {
        resource.form = StoredResource::Buffer;
        resource.data = record.data;
        if (record.image && record.image->width != 0 && record.image->height != 0)
            WriteImageBuffer(record.image, resource.data);
    } else if (wantsData || resource.path.isEmpty()) {
        resource.data = record.data;
    }
    resource.embedded = !resource.data.empty();
    return resource;
}

} // namespace Host
