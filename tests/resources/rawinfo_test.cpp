// The RAW description and the profile, from what LibRaw might say of any camera.

#include "rawstore.h"

#include "tests/reference/raw_reference.h"

#include <ondrel/color/colorprofiles.h>
#include <ondrel/core/curves.h>

#include <libraw/libraw.h>

#include <cmath>
#include <limits>
#include <random>

namespace
{

using namespace OndrelTest;
using Point = Ondrel::CubicBezierSpline::Point;
using Points = std::vector<Point>;

class RawInfo : public testing::Test
{
protected:
    struct Info {
        bool isMosaic = false, hasInfo = false, identityMatrix = false;
        unsigned int filters = 0;
        float pre[3] = {-1, -1, -1}, camera[3] = {-1, -1, -1};
        std::shared_ptr<const Points> curve;
    };

    // What is read, which must be what the formulas give.
    Info info()
    {
        Info i;
        GetRawInfo(*raw, i.isMosaic, i.filters, i.hasInfo, i.pre, i.camera, i.identityMatrix, i.curve);
        const OndrelReference::RawInfo wanted = OndrelReference::rawInfo(*raw);
        EXPECT_TRUE(i.hasInfo);
        EXPECT_EQ(i.isMosaic, wanted.isMosaic);
        EXPECT_EQ(i.filters, wanted.filters);
        EXPECT_EQ(i.identityMatrix, wanted.identityMatrix);
        for (std::size_t c = 0; c < 3; ++c) {
            EXPECT_EQ(i.pre[c], wanted.preMultipliers[c]);
            EXPECT_EQ(i.camera[c], wanted.cameraMultipliers[c]);
        }
        expectSamePoints(i.curve.get(), wanted.toneCurve.get());
        return i;
    }

    static void expectSamePoints(const Points* actual, const Points* wanted)
    {
        ASSERT_EQ(actual == nullptr, wanted == nullptr);
        if (!actual)
            return;
        ASSERT_EQ(actual->size(), wanted->size());
        for (std::size_t i = 0; i < actual->size(); ++i)
            ASSERT_TRUE((*actual)[i].x == (*wanted)[i].x && (*actual)[i].y == (*wanted)[i].y) << i;
    }

    template <class Function>
    void setCurve(Function value)
    {
        for (int i = 0; i < 65536; ++i)
            raw->imgdata.color.curve[i] = static_cast<unsigned short>(value(i));
    }
    void setMultipliers(const std::array<float, 4>& camera, const std::array<float, 4>& pre)
    {
        std::copy(camera.begin(), camera.end(), raw->imgdata.color.cam_mul);
        std::copy(pre.begin(), pre.end(), raw->imgdata.color.pre_mul);
    }

    const std::unique_ptr<LibRaw> raw = std::make_unique<LibRaw>(0u);
};

void expectPoint(const Point& point, int x, int y)
{
    EXPECT_EQ(point.x, x);
    EXPECT_EQ(point.y, y);
}

void expectFloats(const float (&actual)[3], float a, float b, float c)
{
    EXPECT_EQ(actual[0], a);
    EXPECT_EQ(actual[1], b);
    EXPECT_EQ(actual[2], c);
}

TEST_F(RawInfo, SecondGreenBecomesTheFirst)
{
    unsigned int& filters = raw->imgdata.idata.filters;
    filters = 0xb4b4b4b4;
    EXPECT_EQ(info().filters, 0x94949494u);
    filters = 0xffffffff;
    EXPECT_EQ(info().filters, 0x55555555u);
    filters = 9;
    EXPECT_EQ(info().filters, 9u);
    EXPECT_TRUE(info().isMosaic);
    filters = 0;
    EXPECT_EQ(info().filters, 0u);
    EXPECT_FALSE(info().isMosaic);
    std::mt19937 random(1);
    for (int i = 0; i < 100; ++i) {
        filters = unsigned(random());
        info();
    }
}

TEST_F(RawInfo, MultipliersOfTheShotCountOnlyIfAllAreAboveZero)
{
    setMultipliers({2.5f, 1, 1.25f, 1}, {3, 4, 5, 6});
    expectFloats(info().camera, 2.5f, 1, 1.25f);
    expectFloats(info().pre, 3, 4, 5);
    for (std::size_t i = 0; i < 3; ++i)
        for (const float bad : {0.0f, -1.0f, std::numeric_limits<float>::quiet_NaN()}) {
            std::array<float, 4> camera = {2.5f, 1, 1.25f, 1};
            camera[i] = bad;
            setMultipliers(camera, {3, 4, 5, 6});
            expectFloats(info().camera, 3, 4, 5);
        }
    setMultipliers({2.5f, 1, 1.25f, 0}, {3, 4, 5, 6}); // the fourth does not count
    expectFloats(info().camera, 2.5f, 1, 1.25f);
}

TEST_F(RawInfo, ThreeZerosBecomeTheDefault)
{
    setMultipliers({0, 0, 0, 0}, {0, 0, 0, 0});
    expectFloats(info().camera, 2.0f, 1.0f, 1.5f);
    expectFloats(info().pre, 0, 0, 0);
    setMultipliers({0, 0, 0, 0}, {0, 0, 1, 0});
    expectFloats(info().camera, 0, 0, 1);
    setMultipliers({0, 0, 0, 0}, {0, 0, 0, 1});
    expectFloats(info().camera, 2.0f, 1.0f, 1.5f);
    setMultipliers({1, 2, 0, 1}, {0, 0, 0, 0});
    expectFloats(info().camera, 2.0f, 1.0f, 1.5f);
    setMultipliers({-1, -1, -1, -1}, {-1, 0, 0, 0});
    expectFloats(info().camera, -1, 0, 0);
}

TEST_F(RawInfo, IdentityIsExact)
{
    auto& matrix = raw->imgdata.color.rgb_cam;
    const auto setIdentity = [&matrix] {
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 4; ++j)
                matrix[i][j] = i == j ? 1.0f : 0.0f;
    };
    setIdentity();
    EXPECT_TRUE(info().identityMatrix);
    matrix[0][3] = 7; // is not part of it
    EXPECT_TRUE(info().identityMatrix);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            setIdentity();
            matrix[i][j] = std::nextafter(matrix[i][j], 2.0f);
            EXPECT_FALSE(info().identityMatrix) << i << ' ' << j;
        }
}

TEST_F(RawInfo, CurvesWithoutARiseAreNone)
{
    setCurve([](int) { return 0; });
    EXPECT_EQ(info().curve, nullptr);
    setCurve([](int i) { return i; });
    EXPECT_EQ(info().curve, nullptr);
    setCurve([](int) { return 500; });
    EXPECT_EQ(info().curve, nullptr);
    setCurve([](int i) { return i == 0 ? 9 : i; }); // falls at once
    EXPECT_EQ(info().curve, nullptr);
    setCurve([](int i) { return i == 65535 ? 0 : i; }); // the last entry is not looked at
    EXPECT_EQ(info().curve, nullptr);
}

TEST_F(RawInfo, ARampThatBreaksOffIsACurve)
{
    setCurve([](int i) { return std::min(i, 1000); }); // the entry that ends the rise is not the identity
    const auto curve = info().curve;
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(curve->size(), 1000u);
}

TEST_F(RawInfo, LastTwoEntriesOfTheRiseAreDropped)
{
    // Rises to index 4, and stops at index 5: count is 4, the maximum that of index 4.
    setCurve([](int i) { return std::min(i, 4) * 100 + 10; });
    const auto curve = info().curve;
    ASSERT_NE(curve, nullptr);
    ASSERT_EQ(curve->size(), 4u);
    expectPoint((*curve)[0], 65535 - 49151, 65535 - int(310.0f / 410.0f * 65535.0f));
    expectPoint((*curve)[1], 65535 - 32767, 65535 - int(210.0f / 410.0f * 65535.0f));
    expectPoint((*curve)[2], 65535 - 16383, 65535 - int(110.0f / 410.0f * 65535.0f));
    expectPoint((*curve)[3], 65535, 65535 - int(10.0f / 410.0f * 65535.0f));
}

TEST_F(RawInfo, OnePointAloneBecomesTheLinearCurve)
{
    setCurve([](int i) { return std::min(i, 1) + 5; }); // stops at index 2
    const auto curve = info().curve;
    ASSERT_NE(curve, nullptr);
    EXPECT_TRUE(Ondrel::IsCurveLinear(*curve));
}

TEST_F(RawInfo, ACurveThatRisesThroughoutGivesItsWholeLength)
{
    setCurve([](int i) { return i == 65534 ? 65535 : i; }); // the one that is not the identity; the last is not read
    auto curve = info().curve;
    ASSERT_NE(curve, nullptr);
    EXPECT_GT(curve->size(), 60000u);
    EXPECT_LE(curve->size(), 65535u);
    expectPoint(curve->back(), 65535, 65535);
    for (std::size_t i = 1; i < curve->size(); ++i)
        ASSERT_LT((*curve)[i - 1].x, (*curve)[i].x);
}

TEST_F(RawInfo, CurvesOfEverySort)
{
    std::mt19937 random(1);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const int length = round < 20 ? round : int(random() % 65537), step = 1 + int(random() % 40);
        int value = int(random() % 3);
        setCurve([&](int i) {
            if (i < length)
                value = std::min(65535, value + 1 + int(random()) % step);
            else if (i == length)
                value -= int(random() % 2);
            return value;
        });
        info();
    }
    setCurve([](int i) { return std::max(0, i - 100); }); // stops at once
    EXPECT_EQ(info().curve, nullptr);
    setCurve([](int i) { return std::min(65535, int(std::sqrt(double(i)) * 256)); });
    EXPECT_NE(info().curve, nullptr);
}

// ---- The profile

class RawProfile : public testing::Test
{
protected:
    using Matrix = std::array<float, 9>;

    void setMatrices(const Matrix& dng, const Matrix& camera)
    {
        for (std::size_t i = 0; i < 9; ++i) {
            raw->imgdata.color.dng_color[0].colormatrix[i / 3][i % 3] = dng[i];
            raw->imgdata.color.cam_xyz[i / 3][i % 3] = camera[i];
        }
    }

    // The bytes of the profile, empty without one, which must be those of the formulas.
    Bytes profile()
    {
        const Profile actual(GetRawColorProfile(*raw)), wanted(OndrelReference::rawColorProfile(*raw));
        EXPECT_EQ(actual == nullptr, wanted == nullptr);
        if (!actual || !wanted)
            return {};
        EXPECT_EQ(hash(actual.get()), hash(wanted.get()));
        return savedBytes(actual.get());
    }

    static Hash hash(void* handle)
    {
        Bytes bytes;
        Ondrel::GetICCProfileData(handle, bytes);
        return Ondrel::ColorManager::buildColorProfileHash(bytes);
    }

    const std::unique_ptr<LibRaw> raw = std::make_unique<LibRaw>(0u);
};

constexpr std::array<float, 9> kSingular = {1, 2, 3, 2, 4, 6, 0, 1, 0};
constexpr std::array<float, 9> kCamera = {0.6f, -0.1f, -0.05f, -0.45f, 1.2f, 0.25f, -0.1f, 0.2f, 0.7f};

TEST_F(RawProfile, MatrixIsThatOfTheKindOfFile)
{
    raw->imgdata.idata.dng_version = 0;
    setMatrices(kSingular, kCamera);
    EXPECT_FALSE(profile().empty());
    setMatrices(kCamera, kSingular);
    EXPECT_TRUE(profile().empty());
    raw->imgdata.idata.dng_version = 0x01040000;
    EXPECT_FALSE(profile().empty());
    setMatrices(kSingular, kCamera);
    EXPECT_TRUE(profile().empty());
}

TEST_F(RawProfile, SecondMatrixAndFourthRowAreNotRead)
{
    raw->imgdata.idata.dng_version = 1;
    setMatrices(kCamera, kSingular);
    const Bytes before = profile();
    for (int i = 0; i < 3; ++i) {
        raw->imgdata.color.dng_color[1].colormatrix[i][i] = 9;
        raw->imgdata.color.dng_color[0].colormatrix[3][i] = 9;
    }
    EXPECT_EQ(hashOf(profile()), hashOf(before));
}

TEST_F(RawProfile, PrimariesAreTheRowsOfTheInverseOfTheTransposedMatrix)
{
    // The matrix from XYZ to the camera, of a camera with these primaries, is the inverse of their columns.
    raw->imgdata.idata.dng_version = 1;
    setMatrices({3.2404542f, -1.5371385f, -0.4985314f, -0.9692660f, 1.8760108f, 0.0415560f, 0.0556434f, -0.2040259f,
                 1.0572252f},
                {});
    const Bytes bytes = profile();
    ASSERT_FALSE(bytes.empty());
    const Profile handle(cmsOpenProfileFromMem(bytes.data(), cmsUInt32Number(bytes.size())));
    const Profile sRGB(cmsCreate_sRGBProfile());
    for (const cmsTagSignature tag : {cmsSigRedColorantTag, cmsSigGreenColorantTag, cmsSigBlueColorantTag}) {
        const auto* const colorant = static_cast<cmsCIEXYZ*>(cmsReadTag(handle.get(), tag));
        const auto* const wanted = static_cast<cmsCIEXYZ*>(cmsReadTag(sRGB.get(), tag));
        EXPECT_NEAR(colorant->X, wanted->X, 1e-3);
        EXPECT_NEAR(colorant->Y, wanted->Y, 1e-3);
        EXPECT_NEAR(colorant->Z, wanted->Z, 1e-3);
    }
}

TEST_F(RawProfile, SmallestDeterminantIsExcluded)
{
    raw->imgdata.idata.dng_version = 1;
    const auto isThere = [this](float determinant) {
        setMatrices({determinant, 0, 0, 0, 1, 0, 0, 0, 1}, {});
        return Profile(GetRawColorProfile(*raw)) != nullptr;
    };
    // Primaries on the axes fit no white point, or do: what counts is that the formulas say the same.
    for (const float determinant : {0.0f, 0.9e-12f, -0.9e-12f, 1.1e-12f, -1.1e-12f, 1e-6f}) {
        setMatrices({determinant, 0, 0, 0, 1, 0, 0, 0, 1}, {});
        profile();
    }
    EXPECT_FALSE(isThere(0.9e-12f));
    EXPECT_FALSE(isThere(-0.9e-12f));
    EXPECT_TRUE(isThere(1.1e-12f));
    EXPECT_TRUE(isThere(-1.1e-12f));
}

TEST_F(RawProfile, NumbersOfNoCamera)
{
    raw->imgdata.idata.dng_version = 1;
    const float infinity = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
    for (const float number : {infinity, -infinity, nan, 1e30f, 1e-30f, 3e38f})
        for (std::size_t i = 0; i < 9; ++i) {
            Matrix matrix = kCamera;
            matrix[i] = number;
            setMatrices(matrix, {});
            Profile(GetRawColorProfile(*raw)); // comes back
        }
    setMatrices({nan, nan, nan, nan, nan, nan, nan, nan, nan}, {});
    EXPECT_TRUE(profile().empty());
    setMatrices({}, {});
    EXPECT_TRUE(profile().empty());
}

TEST_F(RawProfile, MatricesOfEverySort)
{
    raw->imgdata.idata.dng_version = 1;
    std::mt19937 random(1);
    std::uniform_real_distribution<float> number(-2, 2);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        Matrix matrix;
        for (std::size_t i = 0; i < 9; ++i)
            matrix[i] = kCamera[i] + number(random) * (round % 3 ? 0.1f : 1);
        setMatrices(matrix, {});
        profile();
    }
}

} // namespace
