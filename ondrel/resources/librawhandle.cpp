#include <ondrel/resources/decodelimits_p.h>
#include <ondrel/resources/librawhandle_p.h>

#include <algorithm>
#include <string_view>

namespace Ondrel
{
namespace
{

bool beginsWith(const std::vector<unsigned char>& data, std::string_view word)
{
    return data.size() >= word.size() && std::equal(word.begin(), word.end(), data.begin());
}

// LibRaw 0.20 never returns from some files that begin with the first word, overflows its stack on others, and writes
// past an array on some that begin with the second (docs/thirdparty-findings.md). Only video frames and the previews of
// a model of 1998 begin so.
bool isSafeForLibRaw(const std::vector<unsigned char>& data)
{
    return !beginsWith(data, "RIFF") && !beginsWith(data, "DSC-Image");
}

} // namespace

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
