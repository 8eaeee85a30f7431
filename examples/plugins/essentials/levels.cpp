#include "../../common/rows.h"

#include "device.h"
#include "nodes.h"
#include "values.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace Essentials
{
namespace
{

// The arguments of the kernel a2, with samples from 0 to 1.
struct Channel {
    float black = 0, inputGain = 1, power = 1, gain = 1, offset = 0;
};

struct Levels {
    Channel channels[3];
    float power, gain, offset; // of all three, afterwards
};

const char* const kChannels[] = {"red", "green", "blue"};

float percent(const QVariantMap& values, const QString& name, double least, double greatest, double otherwise)
{
    return float(number(values, name, least, greatest, otherwise) / 100);
}

float power(const QVariantMap& values, const QString& name)
{
    return float(1 / number(values, name, 0.01, 100, 1));
}

Channel channelOf(const QVariantMap& values, const QString& name)
{
    Channel channel;
    channel.black = percent(values, name + "black", 0, 100, 0);
    const float white = percent(values, name + "white", 0, 100, 100);
    channel.inputGain = 1 / std::max(white - channel.black, 0.0001f);
    channel.power = power(values, name + "gamma");
    channel.gain = percent(values, name + "gain", 0, 1000, 100);
    channel.offset = percent(values, name + "offset", -100, 100, 0);
    return channel;
}

Levels levelsOf(const QVariantMap& values)
{
    return {{channelOf(values, kChannels[0]), channelOf(values, kChannels[1]), channelOf(values, kChannels[2])},
            power(values, "gamma"),
            percent(values, "gain", 0, 1000, 100),
            percent(values, "offset", -100, 100, 0)};
}

// What becomes of a sample: 0 where the kernel has no power of a negative number.
std::uint16_t leveled(std::uint16_t sample, const Levels& levels, const Channel& channel)
{
    float v = float(sample) * (1.0f / 65535.0f);
    v = std::max(0.0f, v - channel.black) * channel.inputGain;
    v = std::pow(v, channel.power) * channel.gain + channel.offset;
    if (v < 0)
        return 0;
    v = std::pow(v, levels.power) * levels.gain + levels.offset;
    return v > 0 ? std::uint16_t(std::min(v * 65535.0f, 65535.0f)) : std::uint16_t(0);
}

std::vector<std::uint16_t> tableOf(const Levels& levels, const Channel& channel)
{
    std::vector<std::uint16_t> table(65536);
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = leveled(std::uint16_t(i), levels, channel);
    return table;
}

void levelOnProcessor(const Image& image, const Levels& levels, Image& result, const Ondrel::RunStatus& status)
{
    const std::vector<std::uint16_t> tables[] = {
        tableOf(levels, levels.channels[0]), tableOf(levels, levels.channels[1]), tableOf(levels, levels.channels[2])};
    Examples::forRows(0, image.height, status, [&](unsigned int y) {
        const std::size_t first = std::size_t(y) * image.width * 4, end = first + std::size_t(image.width) * 4;
        for (std::size_t i = first; i < end; i += 4) {
            for (std::size_t c = 0; c < 3; ++c)
                result.data[i + c] = tables[c][image.data[i + c]];
            result.data[i + 3] = image.data[i + 3];
        }
    });
}

bool levelOnDevice(const Image& image, const Levels& levels, Image& result, const Ondrel::RunStatus& status)
{
    const Channel &r = levels.channels[0], &g = levels.channels[1], &b = levels.channels[2];
    return runOnDevice("a2", image, result, [&](const DeviceJob& job) {
        return job.set(0, levels.offset, r.offset, g.offset, b.offset, levels.gain, r.gain, g.gain, b.gain, r.black,
                       g.black, b.black, r.inputGain, g.inputGain, b.inputGain, levels.power, r.power, g.power, b.power,
                       cl_uint(image.width * image.height), job.in, job.out) &&
               RunIncrementalKernel(job.queue, job.kernel, image.width * image.height * 4, status);
    });
}

class LevelsNode : public Filter
{
protected:
    ImagePtr process(const Work& work) const override
    {
        const Image& image = *work.image;
        const Levels levels = levelsOf(work.values);
        Image result(image.width, image.height);
        if (!levelOnDevice(image, levels, result, work.status))
            levelOnProcessor(image, levels, result, work.status);
        return withProfile(std::move(result), image.colorProfile);
    }
};

} // namespace

Host::NodeEntry levelsNode()
{
    return entryOf<LevelsNode>("Levels");
}

} // namespace Essentials
