#include "../../common/rows.h"

#include "device.h"
#include "nodes.h"
#include "values.h"

#include <ondrel/pixel/gaussianblur.h>

#include <algorithm>

namespace Essentials
{
namespace
{

struct Sharpening {
    float amount;
    int threshold; // in samples
};

// The kernel does not look where it is, so there is exactly one work item for each pixel. In slices, so that it can be
// stopped.
bool launch(const DeviceJob& job, std::size_t pixels, const Ondrel::RunStatus& status)
{
    constexpr std::size_t slice = std::size_t(1) << 20;
    for (std::size_t first = 0; first < pixels; first += slice) {
        if (job.queue.enqueueNDRangeKernel(job.kernel, cl::NDRange(first),
                                           cl::NDRange(std::min(slice, pixels - first))) != CL_SUCCESS ||
            job.queue.finish() != CL_SUCCESS || isCancelled(status))
            return false;
    }
    return true;
}

bool sharpenOnDevice(const Image& image, const Image& blurred, const Sharpening& sharpening, Image& result,
                     const Ondrel::RunStatus& status)
{
    return runOnDevice("a7", image, result, [&](const DeviceJob& job) {
        const std::size_t pixels = std::size_t(image.width) * image.height;
        cl_int error = CL_SUCCESS;
        const cl::Buffer soft = job.copyOf(blurred.data, pixels * 8, error);
        return error == CL_SUCCESS &&
               job.set(0, cl_float(sharpening.amount), cl_int(sharpening.threshold), job.in, soft, job.out) &&
               launch(job, pixels, status);
    });
}

std::uint16_t sharpened(int sharp, int soft, const Sharpening& sharpening)
{
    const int d = int(float(sharp - soft) * sharpening.amount);
    const int part = d > 0 ? std::max(d - sharpening.threshold, 0) : std::min(d + sharpening.threshold, 0);
    return std::uint16_t(std::clamp(sharp + part, 0, 65535));
}

void sharpenOnProcessor(const Image& image, const Image& blurred, const Sharpening& sharpening, Image& result,
                        const Ondrel::RunStatus& status)
{
    Examples::forRows(0, image.height, status, [&](unsigned int y) {
        const std::size_t first = std::size_t(y) * image.width * 4, end = first + std::size_t(image.width) * 4;
        for (std::size_t i = first; i < end; i += 4) {
            for (std::size_t c = i; c < i + 3; ++c)
                result.data[c] = sharpened(image.data[c], blurred.data[c], sharpening);
            result.data[i + 3] = image.data[i + 3];
        }
    });
}

class UnsharpMaskNode : public Filter
{
protected:
    ImagePtr process(const Work& work) const override
    {
        const float radius = float(number(work.values, "radius", 0, 1000, 0) * work.scale);
        const Sharpening sharpening{float(number(work.values, "amount", 0, 1000, 0) / 100),
                                    wholeNumber(work.values, "threshold", 0, 255, 0) * 257};
        if (radius == 0 || sharpening.amount == 0)
            return work.image;
        const Image& image = *work.image;
        const Image blurred = GaussianBlur(image, radius, radius, GaussianEdge::Clamp, work.status);
        if (isCancelled(work.status))
            return nullptr;
        Image result(image.width, image.height);
        if (!sharpenOnDevice(image, blurred, sharpening, result, work.status))
            sharpenOnProcessor(image, blurred, sharpening, result, work.status);
        return withProfile(std::move(result), image.colorProfile);
    }
};

} // namespace

Host::NodeEntry unsharpMaskNode()
{
    return entryOf<UnsharpMaskNode>("Unsharp Mask");
}

} // namespace Essentials
