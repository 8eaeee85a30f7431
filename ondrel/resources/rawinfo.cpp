#include <ondrel/core/curves.h>
#include <ondrel/resources/raw.h>

#include <libraw/libraw.h>

#include <algorithm>

namespace
{

using Points = std::vector<Ondrel::CubicBezierSpline::Point>;

// A field with both bits set loses the upper one: the two greens get one code.
unsigned int withOneGreen(unsigned int filters)
{
    const unsigned int secondGreens = filters & (filters >> 1) & 0x55555555u;
    return filters & ~(secondGreens << 1);
}

bool hasIdentityMatrix(const libraw_colordata_t& color)
{
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            if (color.rgb_cam[row][column] != (row == column ? 1.0f : 0.0f))
                return false;
    return true;
}

// What a scan of LibRaw's curve finds of its strictly rising start.
struct RisingStart {
    int count = 65535;
    unsigned int maximum = 0;
    bool isIdentity = true;
};

// The entry that ends the start has been scanned too: a ramp that breaks off is not the identity.
RisingStart scanCurve(const unsigned short* curve)
{
    RisingStart start;
    for (int i = 0; i < 65535; ++i) {
        start.maximum = std::max<unsigned int>(start.maximum, curve[i]);
        start.isIdentity = start.isIdentity && curve[i] == i;
        if (i > 0 && curve[i] <= curve[i - 1]) {
            start.count = i - 1;
            break;
        }
    }
    return start;
}

// The curve turned by 180 degrees.
Points toneCurvePoints(const unsigned short* curve, const RisingStart& start)
{
    Points points(static_cast<std::size_t>(start.count));
    const auto count = static_cast<float>(start.count);
    const auto maximum = static_cast<float>(start.maximum);
    for (int j = 0; j < start.count; ++j) {
        auto& point = points[static_cast<std::size_t>(start.count - 1 - j)];
        point.x = 65535 - static_cast<int>(static_cast<float>(j) / count * 65535.0f);
        point.y = std::min(65535 - static_cast<int>(static_cast<float>(curve[j]) / maximum * 65535.0f), 65535);
    }
    Ondrel::ValidateCurve(points);
    return points;
}

std::shared_ptr<const Points> toneCurveOf(const libraw_colordata_t& color)
{
    const RisingStart start = scanCurve(color.curve);
    if (start.maximum == 0 || start.isIdentity || start.count == 0)
        return nullptr;
    return std::make_shared<Points>(toneCurvePoints(color.curve, start)); // not const, for the images that share it
}

} // namespace

void GetRawInfo(const LibRaw& raw, bool& isMosaic, unsigned int& filters, bool& hasInfo, float* preMultipliers,
                float* cameraMultipliers, bool& identityMatrix,
                std::shared_ptr<const std::vector<Ondrel::CubicBezierSpline::Point>>& toneCurve)
{
    const libraw_colordata_t& color = raw.imgdata.color;
    isMosaic = raw.imgdata.idata.filters != 0;
    filters = withOneGreen(raw.imgdata.idata.filters);
    hasInfo = true;
    identityMatrix = hasIdentityMatrix(color);
    const bool knowsShot = std::all_of(color.cam_mul, color.cam_mul + 3, [](float m) { return m > 0.0f; });
    std::copy_n(knowsShot ? color.cam_mul : color.pre_mul, 3, cameraMultipliers);
    std::copy_n(color.pre_mul, 3, preMultipliers);
    if (std::all_of(cameraMultipliers, cameraMultipliers + 3, [](float m) { return m == 0.0f; })) {
        constexpr float daylight[3] = {2.0f, 1.0f, 1.5f}; // of a usual sensor
        std::copy_n(daylight, 3, cameraMultipliers);
    }
    toneCurve = toneCurveOf(color);
}
