#include "../../common/rows.h"

#include "device.h"
#include "nodes.h"
#include "values.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace Essentials
{
namespace
{

constexpr int kGreatestRadius = 10; // for which there are kernels

// The values of a window that moves, counted. Sums over 64 and over 2048 values make it quick to find a rank.
class Counts
{
public:
    void change(std::uint16_t value, int by)
    {
        m_single[value] += by;
        m_blocks[value >> 6] += by;
        m_groups[value >> 11] += by;
    }

    // How many are 65535.
    int full() const { return m_single[65535]; }

    // The value that this many others precede.
    std::uint16_t at(int rank) const
    {
        std::size_t group = 0;
        for (; m_groups[group] <= rank; ++group)
            rank -= m_groups[group];
        std::size_t block = group * 32;
        for (; m_blocks[block] <= rank; ++block)
            rank -= m_blocks[block];
        std::size_t value = block * 64;
        for (; m_single[value] <= rank; ++value)
            rank -= m_single[value];
        return std::uint16_t(value);
    }

private:
    std::vector<int> m_single = std::vector<int>(65536), m_blocks = std::vector<int>(1024),
                     m_groups = std::vector<int>(32);
};

// One channel of one row, with the window limited to the image.
class MedianRow
{
public:
    MedianRow(const Image& image, int radius, int y, Counts& counts)
        : m_image(image)
        , m_radius(radius)
        , m_y(y)
        , m_counts(counts)
    {
    }

    void run(std::size_t channel, std::uint16_t* out) const
    {
        const int width = int(m_image.width);
        for (int x = -m_radius; x <= m_radius; ++x)
            changeColumn(x, channel, 1);
        for (int x = 0; x < width; ++x) {
            out[std::size_t(x) * 4 + channel] = median();
            changeColumn(x - m_radius, channel, -1);
            changeColumn(x + m_radius + 1, channel, 1);
        }
        for (int x = width - m_radius; x <= width + m_radius; ++x)
            changeColumn(x, channel, -1); // for the next row
    }

private:
    void changeColumn(int x, std::size_t channel, int by) const
    {
        const auto column = std::size_t(std::clamp(x, 0, int(m_image.width) - 1));
        for (int y = m_y - m_radius; y <= m_y + m_radius; ++y) {
            const auto row = std::size_t(std::clamp(y, 0, int(m_image.height) - 1));
            m_counts.change(m_image.data[(row * m_image.width + column) * 4 + channel], by);
        }
    }

    // As the kernels choose it: of a window with exactly as many values below 65535 as precede its middle, the least.
    std::uint16_t median() const
    {
        const int count = (2 * m_radius + 1) * (2 * m_radius + 1), middle = (count - 1) / 2;
        return m_counts.at(count - m_counts.full() == middle ? 0 : middle);
    }

    const Image& m_image;
    int m_radius, m_y;
    Counts& m_counts;
};

void medianOnProcessor(const Image& image, int radius, Image& result, const Ondrel::RunStatus& status)
{
    tbb::enumerable_thread_specific<Counts> counts;
    Examples::forRows(0, image.height, status, [&](unsigned int y) {
        const MedianRow row(image, radius, int(y), counts.local());
        for (std::size_t channel = 0; channel < 4; ++channel)
            row.run(channel, result.data + std::size_t(y) * image.width * 4);
    });
}

bool medianOnDevice(const Image& image, int radius, Image& result, const Ondrel::RunStatus& status)
{
    const char name[] = {char('a' + radius - 1), '3', '\0'};
    return runOnDevice(name, image, result, [&](const DeviceJob& job) {
        return job.set(0, cl_uint(image.width), cl_uint(image.height), job.in, job.out) &&
               RunIncrementalKernel(job.queue, job.kernel, image.width * image.height * 4, status);
    });
}

class MedianNode : public Filter
{
protected:
    ImagePtr process(const Work& work) const override
    {
        const int full = wholeNumber(work.values, "radius", 0, kGreatestRadius, 0);
        const int radius = int(std::lround(full * work.scale));
        if (radius == 0)
            return work.image;
        const Image& image = *work.image;
        Image result(image.width, image.height);
        if (!medianOnDevice(image, radius, result, work.status))
            medianOnProcessor(image, radius, result, work.status);
        return withProfile(std::move(result), image.colorProfile);
    }
};

} // namespace

Host::NodeEntry medianNode()
{
    return entryOf<MedianNode>("Median");
}

} // namespace Essentials
