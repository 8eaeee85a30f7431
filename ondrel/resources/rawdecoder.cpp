#include <ondrel/resources/rawdecoder_p.h>

namespace Ondrel
{

RawDecoder& rawDecoder()
{
    static RawDecoder decoder{nullptr, nullptr};
    return decoder;
}

} // namespace Ondrel
