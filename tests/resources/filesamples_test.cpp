#include "testfiles.h"

#include "tests/support/instructionlevels.h"

#include <ondrel/resources/samples_p.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace
{

using namespace OndrelTest;

TEST(FileSamples, AByteIsWidenedByTruncationAtEveryPlaceOfARow)
{
    Bytes bytes(256 * 3);
    std::vector<std::uint16_t> expected(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = std::uint8_t(i);
        expected[i] = static_cast<std::uint16_t>(float(bytes[i]) / 255.0f * 65535.0f);
    }
    forEveryInstructionLevel([&] {
        for (std::size_t begin = 0; begin < 40; ++begin)
            for (std::size_t count = 0; count < 300; count += 7) {
                std::vector<std::uint16_t> result(bytes.size() + 1, 4711);
                Ondrel::samplesFromBytes(bytes.data() + begin, count, result.data() + begin);
                ASSERT_TRUE(std::equal(expected.begin() + std::ptrdiff_t(begin),
                                       expected.begin() + std::ptrdiff_t(begin + count),
                                       result.begin() + std::ptrdiff_t(begin)));
                ASSERT_EQ(std::count(result.begin(), result.end(), 4711), std::ptrdiff_t(result.size() - count));
            }
    });
}

TEST(FileSamples, EverySampleIsRoundedToAByteAtEveryPlaceOfARow)
{
    std::vector<std::uint16_t> samples(65536);
    Bytes expected(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = std::uint16_t(i);
        expected[i] = std::uint8_t(std::min(std::lround(double(i) / 65535.0 * 255.0), 255L));
        ASSERT_EQ(expected[i], std::min(lroundf(float(i) * 0.0038910506f), 255L));
    }
    forEveryInstructionLevel([&] {
        for (std::size_t begin = 0; begin < 70; ++begin) {
            Bytes result(samples.size(), 0xEE);
            Ondrel::bytesRounded(samples.data() + begin, samples.size() - begin, result.data() + begin);
            ASSERT_TRUE(std::equal(expected.begin() + std::ptrdiff_t(begin), expected.end(),
                                   result.begin() + std::ptrdiff_t(begin)));
        }
        for (std::size_t count = 0; count < 300; ++count) {
            Bytes result(300, 0xEE);
            Ondrel::bytesRounded(samples.data() + 40000, count, result.data());
            ASSERT_TRUE(std::equal(result.begin(), result.begin() + std::ptrdiff_t(count), expected.begin() + 40000));
            ASSERT_TRUE(std::all_of(result.begin() + std::ptrdiff_t(count), result.end(),
                                    [](std::uint8_t byte) { return byte == 0xEE; }));
        }
    });
}

TEST(FileSamples, EverySampleIsTruncatedToAByte)
{
    for (unsigned int v = 0; v < 65536; ++v) {
        ASSERT_EQ(Ondrel::byteTruncated(std::uint16_t(v)), unsigned(float(v) / 65535.0f * 255.0f)) << v;
        ASSERT_EQ(Ondrel::byteRounded(std::uint16_t(v)), std::min(std::lround(v / 65535.0 * 255.0), 255L)) << v;
    }
    for (unsigned int v = 0; v < 256; ++v)
        ASSERT_EQ(Ondrel::sampleFromByte(std::uint8_t(v)), unsigned(float(v) / 255.0f * 65535.0f)) << v;
}

} // namespace
