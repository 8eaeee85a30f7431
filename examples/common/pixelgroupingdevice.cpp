#include "pixelgrouping.h"

#include <ondrel/pixel/opencl.h>

namespace Examples
{
namespace
{

bool run(cl::CommandQueue& queue, cl::Program& program, const char* name, const Mosaic& mosaic, cl::Buffer& in,
         cl::Buffer& out, const Ondrel::RunStatus& status)
{
    cl_int error = CL_SUCCESS;
    cl::Kernel kernel(program, name, &error);
    const cl_uint width = mosaic.image.width, height = mosaic.image.height, filters = mosaic.filters;
    return error == CL_SUCCESS && kernel.setArg(0, width) == CL_SUCCESS && kernel.setArg(1, height) == CL_SUCCESS &&
           kernel.setArg(2, filters) == CL_SUCCESS && kernel.setArg(3, in) == CL_SUCCESS &&
           kernel.setArg(4, out) == CL_SUCCESS && RunIncrementalKernel(queue, kernel, width * height * 4, status);
}

} // namespace

bool demosaicOnDevice(const Mosaic& mosaic, Ondrel::Image& picture, const Ondrel::RunStatus& status)
{
    cl::Context context;
    cl::Program program;
    cl::Device device;
    const auto token = PixelOpenCL::beginWork(context, program, device); // everything below is released before it
    if (!token)
        return false;
    cl_int error = CL_SUCCESS;
    const std::size_t bytes = std::size_t(picture.width) * picture.height * 8;
    cl::Buffer in(context, CL_MEM_READ_ONLY | CL_MEM_COPY_HOST_PTR, bytes, mosaic.image.data, &error);
    if (error != CL_SUCCESS)
        return false;
    cl::Buffer out(context, CL_MEM_READ_WRITE | CL_MEM_COPY_HOST_PTR, bytes, picture.data, &error); // for the border
    if (error != CL_SUCCESS)
        return false;
    cl::CommandQueue queue(context, device, 0, &error);
    return error == CL_SUCCESS && run(queue, program, "c0", mosaic, in, out, status) &&
           run(queue, program, "d0", mosaic, in, out, status) &&
           queue.enqueueReadBuffer(out, CL_TRUE, 0, bytes, picture.data) == CL_SUCCESS;
}

} // namespace Examples
