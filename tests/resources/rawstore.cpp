#include "rawstore.h"

#include <ondrel/core/runtimestatistics.h>

#include <cstring>
#include <random>

namespace OndrelTest
{
namespace
{

using Points = std::vector<Ondrel::CubicBezierSpline::Point>;

void expectSameCurve(const Points* actual, const Points* expected)
{
    ASSERT_EQ(actual == nullptr, expected == nullptr);
    if (!actual)
        return;
    ASSERT_EQ(actual->size(), expected->size());
    for (std::size_t i = 0; i < actual->size(); ++i) {
        ASSERT_EQ((*actual)[i].x, (*expected)[i].x) << i;
        ASSERT_EQ((*actual)[i].y, (*expected)[i].y) << i;
    }
}

// What Image and ImageInfo have in common, under the same names.
template <class Actual>
void expectSameDescription(const Actual& actual, const Ondrel::Image& expected)
{
    EXPECT_EQ(actual.width, expected.width);
    EXPECT_EQ(actual.height, expected.height);
    EXPECT_EQ(actual.rawIsMosaic, expected.rawIsMosaic);
    EXPECT_EQ(actual.rawFilters, expected.rawFilters);
    EXPECT_EQ(actual.rawHasInfo, expected.rawHasInfo);
    EXPECT_EQ(actual.rawIdentityMatrix, expected.rawIdentityMatrix);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(actual.rawPreMultipliers[i], expected.rawPreMultipliers[i]) << i;
        EXPECT_EQ(actual.rawCameraMultipliers[i], expected.rawCameraMultipliers[i]) << i;
    }
    expectSameCurve(actual.rawToneCurve.get(), expected.rawToneCurve.get());
}

} // namespace

DngFile randomDng(DngFile::Kind kind, std::uint32_t width, std::uint32_t height, unsigned int seed)
{
    DngFile file;
    file.kind = kind;
    file.width = width;
    file.height = height;
    file.black = 256;
    file.white = 4095;
    file.neutral = {0.5, 1.0, 0.65};
    file.matrix = {1.6202, -0.7686, -0.2493, -0.9693, 1.8760, 0.0416, 0.0362, -0.1326, 0.6872};
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> sample(0, 4300);
    for (std::size_t i = 0; i < std::size_t(width) * height * (kind == DngFile::Kind::Linear ? 3 : 1); ++i)
        file.samples.push_back(static_cast<std::uint16_t>(sample(random)));
    return file;
}

void StoredRaw::exchange(const Bytes& file) const
{
    ResourceMap* map = nullptr;
    ASSERT_TRUE(ResourceEngine::Get().BeginManualResources(&map));
    map->at(id.id)->data = file;
    ResourceEngine::Get().EndManualResources(ResourceEngine::EndManualNoChange);
}

void expectSameRaw(const Ondrel::Image& actual, const Ondrel::Image& expected)
{
    expectSameDescription(actual, expected);
    EXPECT_TRUE(samePixels(actual, expected));
    EXPECT_EQ(actual.rawRotation, expected.rawRotation);
    EXPECT_EQ(std::memcmp(actual.rawXTrans, expected.rawXTrans, sizeof actual.rawXTrans), 0);
    EXPECT_EQ(actual.colorProfile, expected.colorProfile);
}

void expectSameRaw(const Ondrel::ImageInfo& actual, const Ondrel::Image& expected)
{
    expectSameDescription(actual, expected);
}

std::size_t resourcesOfTheProcess()
{
    ResourceMap* map = nullptr;
    ResourceEngine::Get().BeginManualResources(&map);
    const std::size_t count = map->size();
    ResourceEngine::Get().EndManualResources(ResourceEngine::EndManualNoChange);
    return count;
}

RawTest::RawTest()
    : m_registered(registeredProfiles())
    , m_memory(RunTimeStatistics::Get(RunTimeStatistics::ImageMemory))
    , m_resources(resourcesOfTheProcess())
{
}

RawTest::~RawTest()
{
    EXPECT_EQ(registeredProfiles(), m_registered);
    EXPECT_EQ(RunTimeStatistics::Get(RunTimeStatistics::ImageMemory), m_memory);
    EXPECT_EQ(resourcesOfTheProcess(), m_resources);
}

} // namespace OndrelTest
