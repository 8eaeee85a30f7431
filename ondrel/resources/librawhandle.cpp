#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/librawhandle_p.h>
#include <ondrel/resources/librawhazards_p.h>

namespace Ondrel
{

std::unique_ptr<LibRaw> openRaw(const std::vector<unsigned char>& data)
{
    if (data.empty() || !isSafeForLibRaw(data))
        return nullptr;
    auto raw = std::make_unique<LibRaw>(0);
    raw->set_dataerror_handler(nullptr, nullptr);
    raw->set_memerror_handler(nullptr, nullptr);
    auto* bytes = const_cast<unsigned char*>(data.data()); // LibRaw only reads them
    if (!librawSucceeds([&] { return raw->open_buffer(bytes, data.size()); }))
        return nullptr;
    const auto& sizes = raw->imgdata.sizes;
    if (std::uint64_t(sizes.width) * sizes.height >= kPixelLimit)
        return nullptr;
    return raw;
}

} // namespace Ondrel
