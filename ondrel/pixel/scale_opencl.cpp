#include <ondrel/pixel/scaleopencl.h>

#include <ondrel/pixel/imageblock_p.h>
#include <ondrel/pixel/openclwork_p.h>

using namespace Ondrel;

namespace
{

// Null for a filter without a kernel.
const char* kernelName(FilterMethod filter)
{
    switch (filter) {
    case FilterMethod::NearestNeighbor:
        return "a6";
    case FilterMethod::Bilinear:
        return "f6";
    case FilterMethod::Bicubic:
        break;
    }
    return nullptr;
}

unsigned int sampleCount(unsigned int width, unsigned int height)
{
    return width * height * 4;
}

std::size_t byteCount(unsigned int width, unsigned int height)
{
    return std::size_t(sampleCount(width, height)) * 2;
}

// A source that is on the device.
struct DeviceSource {
    cl::Buffer& buffer;
    unsigned int width, height;
};

// Runs the kernel and reads the result into the mapped destination.
bool runKernel(OpenCLQueue& queue, cl::Kernel& kernel, cl::Buffer const& output, Image const& destination,
               OpenCLMapping const& mapped)
{
    const unsigned int samples = sampleCount(destination.width, destination.height);
    return RunIncrementalKernel(queue.get(), kernel, samples, RunStatus()) &&
           readOpenCLBuffer(queue, output, byteCount(destination.width, destination.height), mapped.data());
}

bool setArguments(cl::Kernel& kernel, DeviceSource const& source, cl::Buffer const& output, Image const& destination)
{
    return setOpenCLArguments(kernel, source.buffer, cl_uint(source.width), cl_uint(source.height), output,
                              cl_uint(destination.width), cl_uint(destination.height));
}

cl::Buffer overImage(OpenCLWork const& work, Image const& image)
{
    return openCLBuffer(work, CL_MEM_READ_ONLY | CL_MEM_USE_HOST_PTR, byteCount(image.width, image.height), image.data);
}

bool scaleOnDevice(OpenCLWork const& work, Image const& source, Image& destination, const char* name)
{
    const std::size_t bytes = byteCount(source.width, source.height);
    const std::size_t resultBytes = byteCount(destination.width, destination.height);
    cl::Kernel kernel = openCLKernel(work, name);
    if (!kernel())
        return false;
    // Over the images' own memory: the driver can pin it, and a device that shares it copies nothing.
    const cl::Buffer hostInput = overImage(work, source);
    cl::Buffer input = hostInput() ? openCLBuffer(work, CL_MEM_READ_WRITE, bytes) : cl::Buffer();
    const cl::Buffer hostOutput = input() ? overImage(work, destination) : cl::Buffer();
    const cl::Buffer output = hostOutput() ? openCLBuffer(work, CL_MEM_READ_WRITE, resultBytes) : cl::Buffer();
    if (!output() || !setArguments(kernel, {input, source.width, source.height}, output, destination))
        return false;
    OpenCLQueue queue(work);
    if (!queue.isValid())
        return false;
    const OpenCLMapping from(queue, hostInput, CL_FALSE, CL_MAP_WRITE, bytes);
    if (!from.data())
        return false;
    const OpenCLMapping to(queue, hostOutput, CL_TRUE, CL_MAP_READ, resultBytes);
    return to.data() && queue.get().enqueueWriteBuffer(input, CL_FALSE, 0, bytes, from.data()) == CL_SUCCESS &&
           runKernel(queue, kernel, output, destination, to);
}

bool scaleOnDevice(OpenCLWork const& work, DeviceSource const& source, Image& destination, const char* name)
{
    const std::size_t resultBytes = byteCount(destination.width, destination.height);
    cl::Kernel kernel = openCLKernel(work, name);
    if (!kernel())
        return false;
    const cl::Buffer hostOutput = overImage(work, destination);
    const cl::Buffer output = hostOutput() ? openCLBuffer(work, CL_MEM_READ_WRITE, resultBytes) : cl::Buffer();
    if (!output() || !setArguments(kernel, source, output, destination))
        return false;
    OpenCLQueue queue(work);
    if (!queue.isValid())
        return false;
    const OpenCLMapping to(queue, hostOutput, CL_TRUE, CL_MAP_READ, resultBytes);
    return to.data() && runKernel(queue, kernel, output, destination, to);
}

// `Source` is an image or a DeviceSource.
template <typename Source>
bool borrowDeviceAndScale(Source const& source, Image& destination, FilterMethod filter)
{
    const OpenCLWork work;
    const char* name = kernelName(filter);
    return work.token && name && hasPixels(destination) && scaleOnDevice(work, source, destination, name);
}

} // namespace

bool Scale_OpenCL(Ondrel::Image const& source, Ondrel::Image& destination, unsigned int width, unsigned int height,
                  Ondrel::FilterMethod filter)
{
    if (!hasPixels(source) || (source.width == width && source.height == height)) {
        destination = source;
        return true;
    }
    if (destination.width != width || destination.height != height)
        destination = Image(width, height);
    if (!borrowDeviceAndScale(source, destination, filter))
        return false;
    destination.colorProfile = source.colorProfile;
    return true;
}

bool Scale_OpenCL(cl::Buffer& source, unsigned int sourceWidth, unsigned int sourceHeight,
                  std::shared_ptr<const Ondrel::Image>& destination, unsigned int width, unsigned int height,
                  Ondrel::FilterMethod filter)
{
    if (sourceWidth == 0 || sourceHeight == 0)
        return true;
    if (sourceWidth == width && sourceHeight == height)
        return false;
    if (!destination || destination->width != width || destination->height != height)
        destination = std::make_shared<Image>(width, height);
    Image& result = const_cast<Image&>(*destination); // the contract allows it
    return borrowDeviceAndScale(DeviceSource{source, sourceWidth, sourceHeight}, result, filter);
}
