// The kernel sources in the library and how they are unpacked.

#include <ondrel/pixel/kernelsources_p.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>
#include <zlib.h>

namespace
{

// Letters in random order, which hardly become smaller.
std::string textOf(std::size_t length)
{
    std::mt19937 random(unsigned(length) + 1);
    std::string text(length, ' ');
    for (char& letter : text)
        letter = char('!' + random() % 90);
    return text;
}

// A stream without the two bytes of its header.
std::vector<unsigned char> pack(const std::string& text)
{
    uLongf size = compressBound(uLong(text.size()));
    std::vector<unsigned char> stream(size);
    EXPECT_EQ(compress2(stream.data(), &size, reinterpret_cast<const Bytef*>(text.data()), uLong(text.size()), 9),
              Z_OK);
    stream.resize(size);
    stream.erase(stream.begin(), stream.begin() + 2);
    return stream;
}

std::string unpack(const std::vector<unsigned char>& stream)
{
    return Ondrel::unpackKernelSource({stream.data(), stream.size()});
}

} // namespace

// Space is added in steps of 512 bytes, so that a text that fills the last step exactly takes one more.
TEST(KernelSources, TextsOfAllLengthsComeOutAsTheyWentIn)
{
    for (const std::size_t length : {1u, 2u, 511u, 512u, 513u, 1023u, 1024u, 1025u, 1536u, 5120u, 70000u}) {
        const std::string text = textOf(length);
        EXPECT_EQ(unpack(pack(text)), text) << length;
    }
    EXPECT_EQ(unpack(pack("")), "");
    EXPECT_EQ(unpack(pack(std::string(512000, 'x'))), std::string(512000, 'x'));
}

// The stream has no header of its own, so every damage ends in its data or in its checksum.
TEST(KernelSources, DamagedStreamsAreEmpty)
{
    const std::vector<unsigned char> stream = pack(textOf(3000));
    for (const std::size_t at : {std::size_t(0), stream.size() - 1, stream.size() - 4}) {
        std::vector<unsigned char> damaged = stream;
        damaged[at] = static_cast<unsigned char>(~damaged[at]);
        EXPECT_EQ(unpack(damaged), "") << at;
    }
    std::mt19937 random(1);
    for (int i = 0; i < 2000; ++i) {
        std::vector<unsigned char> damaged = stream;
        damaged[random() % damaged.size()] ^= static_cast<unsigned char>(1u << random() % 8);
        EXPECT_LE(unpack(damaged).size(), 2000u * 3000u);
    }
}

// Zlib asks for more input then, which is no damage.
TEST(KernelSources, StreamsThatEndTooEarlyGiveTheirBeginning)
{
    const std::string text = textOf(3000);
    const std::vector<unsigned char> stream = pack(text);
    for (std::size_t size = 0; size < stream.size(); size += 37) {
        const std::string beginning = unpack({stream.begin(), stream.begin() + std::ptrdiff_t(size)});
        ASSERT_EQ(beginning, text.substr(0, beginning.size())) << size;
    }
}

TEST(KernelSources, AreTheFilesOfTheSourceTreeInTheirOrder)
{
    const auto sources = Ondrel::kernelSources();
    const char* const names[] = {"demosaic",   "blur",        "levels", "median",
                                 "morphology", "quarterturn", "scale",  "unsharp"};
    ASSERT_EQ(sources.size(), std::size(names));
    for (std::size_t i = 0; i < sources.size(); ++i) {
        std::ifstream file(std::string(ONDREL_KERNELS_DIR) + "/" + names[i] + ".cl", std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        ASSERT_FALSE(text.empty()) << names[i];
        EXPECT_EQ(sources[i], text) << names[i];
    }
}
