// Text as a colour value: whatever it is, the colour that comes of it survives its own text form.

#include "checks.h"

#include <ondrel/core/color.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Ondrel::Color color(QString::fromUtf8(reinterpret_cast<const char*>(data), int(size)));
    OndrelFuzz::require(Ondrel::Color(color.name()) == color, "a colour survives its text form");
    return 0;
}
