#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>

#include <QByteArray>
#include <QCryptographicHash>

#include <algorithm>
#include <functional>
#include <string_view>

namespace Ondrel
{
namespace
{

constexpr std::size_t kHeaderBytes = 128;

// Header fields that may differ between copies of one profile (ICC.1, profile header).
struct BlankedField {
    std::size_t first;
    std::size_t size;
};
constexpr BlankedField kBlanked[] = {
    {24, 12}, // creation date and time
    {40, 4},  // primary platform
    {56, 8},  // device attributes
    {64, 4},  // rendering intent
    {84, 16}, // profile ID
};

} // namespace

std::size_t ColorProfileHashHasher::operator()(const std::array<unsigned char, 32>& hash) const
{
    // The hash of an equal std::string, without an allocation: a look-up must not fail where something is undone.
    return std::hash<std::string_view>()({reinterpret_cast<const char*>(hash.data()), hash.size()});
}

std::array<unsigned char, 32> ColorManager::buildColorProfileHash(const std::vector<unsigned char>& data)
{
    QCryptographicHash digest(QCryptographicHash::Keccak_256);
    const auto feed = [&digest](const unsigned char* bytes, std::size_t size) {
        constexpr std::size_t most = std::size_t{1} << 30; // addData() counts in int
        for (; size > most; bytes += most, size -= most)
            digest.addData(reinterpret_cast<const char*>(bytes), static_cast<int>(most));
        digest.addData(reinterpret_cast<const char*>(bytes), static_cast<int>(size));
    };
    std::size_t fed = 0;
    if (data.size() >= kHeaderBytes) {
        std::array<unsigned char, kHeaderBytes> header;
        std::copy_n(data.begin(), header.size(), header.begin());
        for (const BlankedField& field : kBlanked)
            std::fill_n(header.begin() + field.first, field.size, static_cast<unsigned char>(0));
        feed(header.data(), header.size());
        fed = header.size();
    }
    feed(data.data() + fed, data.size() - fed);
    return QByteArrayToColorProfileHash(digest.result());
}

std::array<unsigned char, 32> ColorManager::buildColorProfileHash(void* profile)
{
    std::vector<unsigned char> data;
    GetICCProfileData(profile, data);
    return buildColorProfileHash(data);
}

} // namespace Ondrel
