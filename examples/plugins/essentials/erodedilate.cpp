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

struct Element {
    int radius;
    std::vector<unsigned char> mask; // (2 * radius + 1) squared, 1 where it counts
};

Element elementOf(int radius, bool disc)
{
    Element element{radius, {}};
    for (int y = -radius; y <= radius; ++y) {
        for (int x = -radius; x <= radius; ++x)
            element.mask.push_back(!disc || x * x + y * y <= radius * (radius + 1) ? 1 : 0);
    }
    return element;
}

bool onDevice(const Image& image, const Element& element, bool dilate, Image& result, const Ondrel::RunStatus& status)
{
    const char name[] = {char((dilate ? 'k' : 'a') + element.radius - 1), '4', '\0'};
    return runOnDevice(name, image, result, [&](const DeviceJob& job) {
        cl_int error = CL_SUCCESS;
        const cl::Buffer mask = job.copyOf(element.mask.data(), element.mask.size(), error);
        return error == CL_SUCCESS && job.set(0, cl_uint(image.width), cl_uint(image.height), job.in, job.out, mask) &&
               RunIncrementalKernel(job.queue, job.kernel, image.width * image.height * 4, status);
    });
}

// One row of the image, each end repeated as often as the window may reach beyond it.
std::vector<std::uint16_t> widened(const Image& image, int y, int radius)
{
    const auto row = std::size_t(std::clamp(y, 0, int(image.height) - 1));
    const std::uint16_t* const pixels = image.data + row * image.width * 4;
    std::vector<std::uint16_t> line;
    line.reserve((image.width + 2 * std::size_t(radius)) * 4);
    for (int i = 0; i < radius; ++i)
        line.insert(line.end(), pixels, pixels + 4);
    line.insert(line.end(), pixels, pixels + std::size_t(image.width) * 4);
    const std::uint16_t* const last = pixels + std::size_t(image.width) * 4 - 4;
    for (int i = 0; i < radius; ++i)
        line.insert(line.end(), last, last + 4);
    return line;
}

template <class Choose>
void onProcessor(const Image& image, const Element& element, Image& result, const Ondrel::RunStatus& status,
                 Choose choose)
{
    const std::size_t side = 2 * std::size_t(element.radius) + 1;
    const std::size_t samples = std::size_t(image.width) * 4;
    Examples::forRows(0, image.height, status, [&](unsigned int y) {
        std::uint16_t* const out = result.data + y * samples;
        for (std::size_t j = 0; j < side; ++j) {
            const std::vector<std::uint16_t> line = widened(image, int(y) + int(j) - element.radius, element.radius);
            for (std::size_t i = 0; i < side; ++i) {
                if (element.mask[j * side + i] == 0)
                    continue;
                const std::uint16_t* const in = line.data() + i * 4;
                for (std::size_t s = 0; s < samples; ++s)
                    out[s] = choose(out[s], in[s]);
            }
        }
    });
}

ImagePtr changed(const Image& image, const Element& element, bool dilate, const Ondrel::RunStatus& status)
{
    Image result(image.width, image.height);
    if (!onDevice(image, element, dilate, result, status)) {
        result.FastFill(dilate ? 0 : 65535);
        if (dilate)
            onProcessor(image, element, result, status, [](auto a, auto b) { return std::max(a, b); });
        else
            onProcessor(image, element, result, status, [](auto a, auto b) { return std::min(a, b); });
    }
    return withProfile(std::move(result), image.colorProfile);
}

class ErodeDilateNode : public Filter
{
protected:
    ImagePtr process(const Work& work) const override
    {
        const int full = wholeNumber(work.values, "radius", 0, kGreatestRadius, 0);
        const int radius = int(std::lround(full * work.scale));
        if (radius == 0)
            return work.image;
        const Element element = elementOf(radius, choice(work.values, "shape", {"Disc", "Square"}) == 0);
        const int operation = choice(work.values, "operation", {"Erode", "Dilate", "Open", "Close"});
        const bool dilatesFirst = operation == 1 || operation == 3;
        ImagePtr first = changed(*work.image, element, dilatesFirst, work.status);
        if (operation < 2 || isCancelled(work.status))
            return first;
        return changed(*first, element, !dilatesFirst, work.status);
    }
};

} // namespace

Host::NodeEntry erodeDilateNode()
{
    return entryOf<ErodeDilateNode>("Erode/Dilate");
}

} // namespace Essentials
