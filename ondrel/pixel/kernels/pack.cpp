// Tool of the build: packs texts into a C++ source.
//
//     ondrel-pack-kernels OUTPUT SOURCE...
//
// Each text becomes a zlib stream without its two header bytes; see kernelsources_p.h.

#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>
#include <zlib.h>

namespace
{

std::string contentsOf(const std::string& fileName)
{
    std::ifstream file(fileName, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file || text.empty())
        throw std::runtime_error("cannot read " + fileName);
    return text;
}

std::vector<unsigned char> packed(const std::string& text)
{
    uLongf size = compressBound(static_cast<uLong>(text.size()));
    std::vector<unsigned char> stream(size);
    const auto* bytes = reinterpret_cast<const Bytef*>(text.data());
    if (compress2(stream.data(), &size, bytes, static_cast<uLong>(text.size()), Z_BEST_COMPRESSION) != Z_OK)
        throw std::runtime_error("zlib cannot pack a text");
    // The library puts these two back before it unpacks.
    if (stream[0] != 0x78 || stream[1] != 0xDA)
        throw std::runtime_error("zlib writes another header than 78 DA");
    return std::vector<unsigned char>(stream.begin() + 2, stream.begin() + static_cast<std::ptrdiff_t>(size));
}

void writeBytes(std::ostream& out, const std::vector<unsigned char>& bytes, std::size_t number)
{
    out << "const unsigned char kSource" << number << "[] = {";
    for (std::size_t i = 0; i < bytes.size(); ++i)
        out << (i % 24 == 0 ? "\n    " : " ") << unsigned(bytes[i]) << ',';
    out << "\n};\n";
}

void pack(const std::string& output, const std::vector<std::string>& sources)
{
    std::ofstream out(output, std::ios::binary);
    out << "// Written by the build.\n#include <ondrel/pixel/kernelsources_p.h>\n\nnamespace "
           "Ondrel\n{\nnamespace\n{\n\n";
    for (std::size_t i = 0; i < sources.size(); ++i)
        writeBytes(out, packed(contentsOf(sources[i])), i);
    out << "\n} // namespace\n\n"
           "const std::array<PackedKernelSource, kKernelSourceCount> packedKernelSources = {{\n";
    for (std::size_t i = 0; i < sources.size(); ++i)
        out << "    {kSource" << i << ", sizeof kSource" << i << "},\n";
    out << "}};\n\n} // namespace Ondrel\n";
    if (!out.flush())
        throw std::runtime_error("cannot write " + output);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::cerr << "usage: ondrel-pack-kernels OUTPUT SOURCE...\n";
        return 2;
    }
    try {
        pack(argv[1], std::vector<std::string>(argv + 2, argv + argc));
    } catch (const std::exception& error) {
        std::cerr << "ondrel-pack-kernels: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
