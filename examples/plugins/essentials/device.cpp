#include "device.h"

namespace Essentials
{

cl::Buffer DeviceJob::copyOf(const void* data, std::size_t bytes, cl_int& error) const
{
    // The flag promises that the memory is only read.
    return cl::Buffer(context, CL_MEM_READ_ONLY | CL_MEM_COPY_HOST_PTR, bytes, const_cast<void*>(data), &error);
}

bool runOnDevice(const char* kernelName, const Image& image, Image& result,
                 const std::function<bool(const DeviceJob&)>& work)
{
    cl::Context context;
    cl::Program program;
    cl::Device device;
    const auto token = PixelOpenCL::beginWork(context, program, device); // everything below is released before it
    if (!token)
        return false;
    const std::size_t bytes = std::size_t(image.width) * image.height * 8;
    cl_int errors[4] = {};
    cl::Kernel kernel(program, kernelName, &errors[0]);
    cl::Buffer in(context, CL_MEM_READ_ONLY | CL_MEM_COPY_HOST_PTR, bytes, image.data, &errors[1]);
    cl::Buffer out(context, CL_MEM_WRITE_ONLY, bytes, nullptr, &errors[2]);
    cl::CommandQueue queue(context, device, 0, &errors[3]);
    for (const cl_int error : errors) {
        if (error != CL_SUCCESS)
            return false;
    }
    return work({context, queue, kernel, in, out}) &&
           queue.enqueueReadBuffer(out, CL_TRUE, 0, bytes, result.data) == CL_SUCCESS;
}

} // namespace Essentials
