#include <ondrel/pixel/openclwork_p.h>

namespace Ondrel
{

cl::Kernel openCLKernel(OpenCLWork const& work, const char* name)
{
    cl_int error = CL_SUCCESS;
    cl_kernel kernel = clCreateKernel(work.program(), name, &error);
    return cl::Kernel(error == CL_SUCCESS ? kernel : nullptr);
}

cl::Buffer openCLBuffer(OpenCLWork const& work, cl_mem_flags flags, std::size_t bytes, void* host)
{
    cl_int error = CL_SUCCESS;
    cl_mem buffer = clCreateBuffer(work.context(), flags, bytes, host, &error);
    return cl::Buffer(error == CL_SUCCESS ? buffer : nullptr);
}

bool readOpenCLBuffer(OpenCLQueue& queue, cl::Buffer const& from, std::size_t bytes, void* to)
{
    cl::Event read;
    return queue.get().enqueueReadBuffer(from, CL_TRUE, 0, bytes, to, nullptr, &read) == CL_SUCCESS &&
           read.wait() == CL_SUCCESS;
}

} // namespace Ondrel
