#include "develop.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace
{

using Ondrel::Image;

constexpr unsigned int kXTrans = 9; // the filter word that stands for the pattern in rawXTrans

bool isBayer(const Image& raw)
{
    return raw.rawIsMosaic && raw.rawFilters > 1000; // smaller words stand for patterns that do not fit in one
}

// The colour of each photosite: the filters are described as they lie on the sensor, the image has been turned since.
class Mosaic
{
public:
    explicit Mosaic(const Image& raw)
        : m_raw(raw)
    {
    }

    unsigned int colorAt(unsigned int x, unsigned int y) const
    {
        const auto [column, row] = onSensor(x, y);
        if (m_raw.rawFilters == kXTrans)
            return m_raw.rawXTrans[row % 6][column % 6];
        return (m_raw.rawFilters >> ((((row << 1) & 14) | (column & 1)) << 1)) & 3;
    }

private:
    std::pair<unsigned int, unsigned int> onSensor(unsigned int x, unsigned int y) const
    {
        const unsigned int right = m_raw.width - 1, bottom = m_raw.height - 1;
        switch (m_raw.rawRotation) {
        case 1:
            return {right - x, bottom - y};
        case 2:
            return {y, right - x};
        case 3:
            return {bottom - y, x};
        default:
            return {x, y};
        }
    }

    const Image& m_raw;
};

// Gains of at least 1, so that what is full in all channels stays white.
std::array<float, 3> gains(const Image& raw)
{
    const float* const m = raw.rawCameraMultipliers;
    const float least = std::min({m[0], m[1], m[2]});
    if (!(least > 0))
        return {1, 1, 1};
    return {m[0] / least, m[1] / least, m[2] / least};
}

std::uint16_t limited(float v)
{
    return std::uint16_t(std::min(v + 0.5f, 65535.0f));
}

void balance(Image& image)
{
    const auto gain = gains(image);
    const std::size_t samples = std::size_t(image.width) * image.height * 4;
    for (std::size_t i = 0; i < samples; i += 4)
        for (std::size_t c = 0; c < 3; ++c)
            image.data[i + c] = limited(float(image.data[i + c]) * gain[c]);
}

// The mean of the neighbours of each colour. Within a distance of 1 that is bilinear interpolation for Bayer; the
// colours of X-Trans lie up to 2 apart, and nearer ones count more.
class Demosaicer
{
public:
    explicit Demosaicer(const Image& balanced)
        : m_in(balanced)
        , m_reach(balanced.rawFilters == kXTrans ? 2 : 1)
        , m_colors(std::size_t(balanced.width) * balanced.height)
    {
        const Mosaic mosaic(balanced);
        for (unsigned int y = 0; y < m_in.height; ++y)
            for (unsigned int x = 0; x < m_in.width; ++x)
                m_colors[index(int(x), int(y))] = std::uint8_t(std::min(mosaic.colorAt(x, y), 2u));
    }

    void run(Image& out) const
    {
        for (int y = 0; y < int(m_in.height); ++y)
            for (int x = 0; x < int(m_in.width); ++x)
                pixel(x, y, out.data + index(x, y) * 4);
    }

private:
    std::size_t index(int x, int y) const { return std::size_t(y) * m_in.width + std::size_t(x); }

    void pixel(int x, int y, std::uint16_t* out) const
    {
        float sums[3] = {}, weights[3] = {};
        for (int v = std::max(y - m_reach, 0); v <= std::min(y + m_reach, int(m_in.height) - 1); ++v) {
            for (int u = std::max(x - m_reach, 0); u <= std::min(x + m_reach, int(m_in.width) - 1); ++u) {
                const int distance = (u - x) * (u - x) + (v - y) * (v - y);
                const float weight = m_reach == 1 ? 1.0f : 1.0f / float(std::max(distance, 1));
                const std::size_t color = m_colors[index(u, v)];
                sums[color] += weight * float(m_in.data[index(u, v) * 4 + color]);
                weights[color] += weight;
            }
        }
        for (std::size_t c = 0; c < 3; ++c)
            out[c] = weights[c] > 0 ? limited(sums[c] / weights[c]) : std::uint16_t(0);
        const std::size_t own = m_colors[index(x, y)];
        out[own] = m_in.data[index(x, y) * 4 + own];
        out[3] = 65535;
    }

    const Image& m_in;
    int m_reach;
    std::vector<std::uint8_t> m_colors;
};

} // namespace

bool developRaw(const Image& raw, Image& developed)
{
    if (raw.rawIsMosaic && !isBayer(raw) && raw.rawFilters != kXTrans)
        return false;
    Image balanced(raw);
    balance(balanced);
    developed = balanced;
    if (raw.rawIsMosaic)
        Demosaicer(balanced).run(developed);
    developed.rawIsMosaic = false;
    return true;
}

QString describeRaw(const Image& raw)
{
    static const char* const turns[] = {"not turned", "turned by 180 degrees", "turned by 270 degrees",
                                        "turned by 90 degrees"};
    QStringList facts;
    facts << (!raw.rawIsMosaic ? "no mosaic"
              : isBayer(raw)   ? QString("Bayer mosaic %1").arg(raw.rawFilters, 8, 16, QChar('0'))
                               : QString(raw.rawFilters == kXTrans ? "X-Trans mosaic" : "other mosaic"));
    facts << turns[raw.rawRotation % 4];
    const auto list = [](const float* m) {
        return QString("%1 %2 %3").arg(double(m[0])).arg(double(m[1])).arg(double(m[2]));
    };
    facts << "as-shot multipliers " + list(raw.rawCameraMultipliers);
    facts << "daylight multipliers " + list(raw.rawPreMultipliers);
    facts << (raw.rawIdentityMatrix ? "identity matrix" : "camera matrix");
    facts << (raw.rawToneCurve ? QString("tone curve of %1 points").arg(raw.rawToneCurve->size()) : "no tone curve");
    return facts.join(", ");
}
