#pragma once

#include <ondrel/ondrel_export.h>

#include <array>
#include <cstddef>
#include <string>

namespace Ondrel
{

// A kernel source as it lies in the library: a zlib stream without the two bytes of its header. The array of them is
// written by the build, in the order in which the sources make one program.
struct PackedKernelSource {
    const unsigned char* bytes;
    std::size_t size;
};
constexpr std::size_t kKernelSourceCount = 8;
extern const std::array<PackedKernelSource, kKernelSourceCount> packedKernelSources;

// The text; empty if the stream is damaged. What there is of it if the stream merely ends too early.
ONDREL_EXPORT std::string unpackKernelSource(PackedKernelSource const& source);

// All texts, in their order.
ONDREL_EXPORT std::array<std::string, kKernelSourceCount> kernelSources();

} // namespace Ondrel
