#pragma once

#include <benchmarks/support/benchimages.h>
#include <benchmarks/support/figures.h>

#include <ondrel/color/colormanager.h>
#include <ondrel/resources/resourceengine.h>

#include <QTemporaryDir>

#include <string>

// The picture that all of these benchmarks read and write, tagged as sRGB, and a place for files.
namespace OndrelBench
{

inline const Ondrel::Image& picture()
{
    static const Ondrel::Image image = [] {
        Ondrel::Image made = opaqueImage(kWidth, kHeight);
        made.colorProfile = Ondrel::DefaultColorProfileHash;
        return made;
    }();
    return image;
}

inline std::string filePath(const char* name)
{
    static const QTemporaryDir folder;
    return folder.filePath(QString::fromLatin1(name)).toStdString();
}

// The content of a file, which `write(name)` makes at the first call.
template <class Write>
std::shared_ptr<ResourceEngine::ImageInfo> fileRecord(const char* name, Write write)
{
    auto info = std::make_shared<ResourceEngine::ImageInfo>();
    const std::string path = filePath(name);
    if (!ResourceEngine::LoadDataFromFile(path, info) && write(QString::fromStdString(path)))
        ResourceEngine::LoadDataFromFile(path, info);
    return info;
}

} // namespace OndrelBench
