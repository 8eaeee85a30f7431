#pragma once

#include "filter.h"

#include <ondrel/pixel/opencl.h>

#include <functional>

namespace Essentials
{

// What a kernel needs of the device, for as long as it is borrowed.
struct DeviceJob {
    cl::Context& context;
    cl::CommandQueue& queue;
    cl::Kernel& kernel;
    cl::Buffer& in;
    cl::Buffer& out;

    // A buffer with a copy of this memory, which must not be empty.
    cl::Buffer copyOf(const void* data, std::size_t bytes, cl_int& error) const;

    // Sets the arguments from `first` on.
    template <class... Arguments>
    bool set(cl_uint first, const Arguments&... arguments) const
    {
        return ((kernel.setArg(first++, arguments) == CL_SUCCESS) && ...);
    }
};

// Runs one of the library's kernels over an image, into another one of the same size, on the device of the process.
// False if there is none, it refuses, or the work was cancelled: then `result` is not valid. `work` sets the arguments
// and launches the kernel; everything it makes must be gone when it returns.
bool runOnDevice(const char* kernel, const Image& image, Image& result,
                 const std::function<bool(const DeviceJob&)>& work);

} // namespace Essentials
