// c0 and d0 against the reference. Integers all the way: the bound is 0.

#include "opencldevice.h"

#include "../reference/kernels_reference.h"

using namespace OndrelTest;

namespace
{

using KernelsDemosaic = OnDevice;

// The four ways in which the pattern can begin.
constexpr unsigned int kPhases[] = {0x94949494, 0x49494949, 0x61616161, 0x16161616};

// Around the sides at which there is something to do at all, and odd ones.
const std::vector<Size> kMosaics = {{1, 1}, {4, 70}, {70, 4}, {3, 3},   {5, 5},   {6, 5},
                                    {5, 8}, {7, 7},  {8, 6},  {13, 21}, {34, 33}, {70, 50}};

// `inner` pixels away from each edge and further in.
bool inside(const Size& size, std::size_t pixel, unsigned int inner)
{
    const std::size_t x = pixel % size.width, y = pixel / size.width;
    return x >= inner && y >= inner && x + inner < size.width && y + inner < size.height;
}

struct Mosaic {
    Size size;
    unsigned int filters;
    Samples in, before;
};

Samples greenStage(const Mosaic& m)
{
    return runKernel("c0", m.size, m.in, m.before, cl_uint(m.filters));
}

Samples bothStages(const Mosaic& m)
{
    const std::size_t pixels = std::size_t(m.size.width) * m.size.height;
    DeviceWork work;
    Output out(work, m.before);
    const cl::Buffer input = work.upload(m.in);
    for (const char* const name : {"c0", "d0"})
        work.run(
            work.kernel(name, cl_uint(m.size.width), cl_uint(m.size.height), cl_uint(m.filters), input, out.buffer()),
            pixels);
    return out.take();
}

// Calls `check` with the mosaics of all sizes, phases and kinds of values. The channels that a pixel does not have are
// filled too: nothing may read them.
template <typename Check>
void forMosaics(Check check)
{
    unsigned int seed = 1;
    for (const Size& size : kMosaics)
        for (const unsigned int filters : kPhases)
            for (const Samples& in : pictures(size, seed++)) {
                SCOPED_TRACE(testing::Message() << size << ", filters " << filters);
                check(Mosaic{size, filters, in, randomSamples(size.samples(), seed + 1000)});
                if (testing::Test::HasFailure())
                    return;
            }
}

} // namespace

TEST_F(KernelsDemosaic, GreenAndAlphaEqualTheReference)
{
    forMosaics([](const Mosaic& m) {
        Samples expected = m.before;
        OndrelReference::demosaicGreen(m.size.width, m.size.height, m.filters, m.in.data(), expected.data());
        const Samples actual = greenStage(m);
        for (std::size_t pixel = 0; pixel < actual.size() / 4; ++pixel) {
            ASSERT_EQ(actual[pixel * 4 + 1], expected[pixel * 4 + 1]) << "green of pixel " << pixel;
            ASSERT_EQ(actual[pixel * 4 + 3], expected[pixel * 4 + 3]) << "alpha of pixel " << pixel;
        }
    });
}

// The ring at a distance of 2 depends on what the picture held in its border before, so it is left out.
TEST_F(KernelsDemosaic, BothStagesEqualTheReferenceFromTheFourthPixelOn)
{
    forMosaics([](const Mosaic& m) {
        Samples expected = m.before;
        OndrelReference::demosaicGreen(m.size.width, m.size.height, m.filters, m.in.data(), expected.data());
        OndrelReference::demosaicRedBlue(m.size.width, m.size.height, m.filters, m.in.data(), expected.data());
        const Samples actual = bothStages(m);
        for (std::size_t i = 0; i < actual.size(); ++i) {
            if (inside(m.size, i / 4, 3)) {
                ASSERT_EQ(actual[i], expected[i]) << "pixel " << i / 4 << ", channel " << i % 4;
            }
        }
    });
}

TEST_F(KernelsDemosaic, TheTwoOutermostPixelsStayAsTheyAre)
{
    forMosaics([](const Mosaic& m) {
        const Samples actual = bothStages(m);
        for (std::size_t i = 0; i < actual.size(); ++i) {
            if (!inside(m.size, i / 4, 2)) {
                ASSERT_EQ(actual[i], m.before[i]) << "pixel " << i / 4 << ", channel " << i % 4;
            }
        }
    });
}

TEST_F(KernelsDemosaic, SidesOfFourAndLessChangeNothing)
{
    for (const Size& size : {Size{4, 4}, Size{4, 50}, Size{50, 4}, Size{3, 9}, Size{9, 2}, Size{1, 1}, Size{1, 70}}) {
        const Samples before = randomSamples(size.samples(), 7);
        const Mosaic mosaic{size, kPhases[0], randomSamples(size.samples(), 8), before};
        EXPECT_TRUE(within(0, before, bothStages(mosaic))) << size;
    }
}

// Flat green around a red pixel, so that only the distances of its own colour decide; the smallest of equal ones is
// taken in the order north, east, west, south.
TEST_F(KernelsDemosaic, EqualGradientsAreTakenInTheOrderNorthEastWestSouth)
{
    const Size size{9, 9};
    const unsigned int filters = kPhases[0];
    struct {
        int north2, east2, west2, south2, expected;
    } const cases[] = {
        {900, 900, 900, 900, (3 * 2000 + 2000 + 1000 - 900) / 4},
        {900, 1100, 900, 900, (8000 + 1000 - 900) / 4},
        {0, 1100, 900, 900, (8000 + 1000 - 1100) / 4},
        {0, 0, 1100, 900, (8000 + 1000 - 1100) / 4},
        {0, 0, 0, 1100, (8000 + 1000 - 1100) / 4},
        {1100, 900, 900, 900, (8000 + 1000 - 1100) / 4},
    };
    for (const auto& c : cases) {
        Mosaic mosaic{size, filters, Samples(size.samples(), 2000), Samples(size.samples(), 0)};
        const auto red = [&](int x, int y) -> std::uint16_t& { return mosaic.in[std::size_t(y * 9 + x) * 4]; };
        red(4, 4) = 1000;
        red(4, 2) = std::uint16_t(c.north2);
        red(6, 4) = std::uint16_t(c.east2);
        red(2, 4) = std::uint16_t(c.west2);
        red(4, 6) = std::uint16_t(c.south2);
        EXPECT_EQ(greenStage(mosaic)[(4 * 9 + 4) * 4 + 1], c.expected);
    }
}

// Each pixel of a mosaic of one colour is that colour again.
TEST_F(KernelsDemosaic, OneColourComesOutAsItIs)
{
    const Size size{21, 18};
    for (const unsigned int filters : kPhases) {
        Mosaic mosaic{size, filters, Samples(size.samples()), Samples(size.samples())};
        for (std::size_t i = 0; i < mosaic.in.size(); ++i)
            mosaic.in[i] = std::uint16_t(i % 4 == 0 ? 50000 : i % 4 == 1 ? 30000 : 10000);
        const Samples actual = bothStages(mosaic);
        for (std::size_t i = 0; i < actual.size(); ++i) {
            if (!inside(size, i / 4, 3))
                continue;
            ASSERT_EQ(actual[i], i % 4 == 3 ? 65535 : mosaic.in[i]) << "pixel " << i / 4 << ", channel " << i % 4;
        }
    }
}
