#include "testfiles.h"

#include <QFile>

#include <random>

namespace OndrelTest
{

std::shared_ptr<ResourceEngine::ImageInfo> recordOf(const Bytes& data)
{
    auto record = std::make_shared<ResourceEngine::ImageInfo>();
    record->data = data;
    return record;
}

Bytes randomBytes(std::size_t count, unsigned int seed)
{
    std::mt19937 random(seed);
    Bytes bytes(count);
    for (unsigned char& byte : bytes)
        byte = static_cast<unsigned char>(random());
    return bytes;
}

void append(Bytes& bytes, const Bytes& more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

Bytes bigEndian(unsigned int value)
{
    return {std::uint8_t(value >> 24), std::uint8_t(value >> 16), std::uint8_t(value >> 8), std::uint8_t(value)};
}

Bytes readFile(const QString& name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    return Bytes(bytes.begin(), bytes.end());
}

void writeFile(const QString& name, const Bytes& data)
{
    QFile file(name);
    if (file.open(QIODevice::WriteOnly))
        file.write(reinterpret_cast<const char*>(data.data()), qint64(data.size()));
}

} // namespace OndrelTest
