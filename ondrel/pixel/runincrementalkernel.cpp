#include <ondrel/pixel/opencl.h>

#include <cstdio>

namespace
{

constexpr unsigned int kGroup = 32;
constexpr unsigned int kSliceBits = 14;
constexpr unsigned int kSlice = 1u << kSliceBits;

bool runSlice(cl::CommandQueue& queue, cl::Kernel& kernel, unsigned int first, unsigned int items,
              cl::NDRange const& group)
{
    cl::Event done;
    const cl_int error =
        queue.enqueueNDRangeKernel(kernel, cl::NDRange(first), cl::NDRange(items), group, nullptr, &done);
    if (error != CL_SUCCESS) {
        std::printf("%d\n", error);
        std::fflush(stdout);
        return false;
    }
    // A slice that fails on the device shows when the result is read back.
    done.wait();
    return true;
}

bool isCancelled(Ondrel::RunStatus const& status)
{
    return status.state && *status.state == 1;
}

} // namespace

bool RunIncrementalKernel(cl::CommandQueue& queue, cl::Kernel& kernel, unsigned int sampleCount,
                          Ondrel::RunStatus const& status)
{
    const unsigned int items = ((sampleCount >> 7) << 5) + kGroup;
    const unsigned int fullSlices = items >> kSliceBits;
    for (unsigned int i = 0; i < fullSlices; ++i)
        if (!runSlice(queue, kernel, i << kSliceBits, kSlice, cl::NDRange(kGroup)) || isCancelled(status))
            return false;
    const unsigned int rest = items & (kSlice - 1);
    if (rest == 0)
        return true;
    return runSlice(queue, kernel, fullSlices << kSliceBits, rest, cl::NullRange) && !isCancelled(status);
}
