#include <ondrel/resources/resourceengine.h>

#include <filesystem>
#include <fstream>
#include <ios>
#include <system_error>

namespace
{

std::shared_ptr<ResourceEngine::ImageInfo> loadTemporary(const QString& fileName)
{
    auto info = std::make_shared<ResourceEngine::ImageInfo>();
    info->fileName = fileName.toStdString();
    return ResourceEngine::LoadDataFromFile(info->fileName, info) ? info : nullptr;
}

// Registered nowhere, so that the readers that convert fall back to sRGB.
constexpr std::array<unsigned char, 32> kNoProfile{};

} // namespace

bool ResourceEngine::LoadDataFromFile(const std::string& fileName, std::shared_ptr<ImageInfo>& info)
{
    // Opening a pipe would wait for its writer, and a directory opens as a stream of absurd size.
    std::error_code error;
    if (!std::filesystem::is_regular_file(fileName, error))
        return false;
    std::ifstream file(fileName, std::ios::binary);
    if (!file.is_open())
        return false;
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    file.seekg(0, std::ios::beg);
    if (size < 0 || !file)
        return false;
    std::vector<unsigned char> data(static_cast<std::size_t>(size));
    file.read(reinterpret_cast<char*>(data.data()), size);
    if (!file || file.gcount() != size)
        return false;
    info->data = std::move(data);
    return true;
}

bool ResourceEngine::ImportPNG(const QString& fileName, Ondrel::Image& image)
{
    const auto info = loadTemporary(fileName);
    return info && ReadPNG(info, image, nullptr);
}

bool ResourceEngine::ImportJPEG(const QString& fileName, Ondrel::Image& image)
{
    const auto info = loadTemporary(fileName);
    return info && ReadJPEG(info, image, nullptr, kNoProfile);
}

bool ResourceEngine::ImportTIFF(const QString& fileName, Ondrel::Image& image)
{
    const auto info = loadTemporary(fileName);
    return info && ReadTIFF(info, image, nullptr, kNoProfile);
}
