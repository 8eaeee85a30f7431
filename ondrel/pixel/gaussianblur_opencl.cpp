#include <ondrel/pixel/gaussianblur_opencl_p.h>

#include <ondrel/pixel/gaussianblurkernel_p.h>
#include <ondrel/pixel/imageblock_p.h>
#include <ondrel/pixel/openclwork_p.h>
#include <vector>

namespace Ondrel
{
namespace
{

struct KernelNames {
    const char* horizontal;
    const char* vertical;
};

KernelNames kernelNames(GaussianEdge edge)
{
    switch (edge) {
    case GaussianEdge::Blank:
        return {"d1", "e1"};
    case GaussianEdge::Repeat:
        return {"f1", "g1"};
    case GaussianEdge::Clamp:
        break;
    }
    return {"b1", "c1"};
}

std::vector<float> weightsOf(float radius)
{
    return radius + 1 > 0 ? gaussianWeights(radius + 1) : std::vector<float>();
}

// One direction on the device. One that is left out has no weights, and nothing is made for it.
struct Pass {
    std::vector<float> const& weights;
    const char* name;
    cl::Kernel kernel = {};
    cl::Buffer buffer = {};

    bool isWanted() const { return !weights.empty(); }
    std::size_t bytes() const { return weights.size() * sizeof(float); }

    bool makeKernel(OpenCLWork const& work)
    {
        if (isWanted())
            kernel = openCLKernel(work, name);
        return !isWanted() || kernel();
    }

    bool makeBuffer(OpenCLWork const& work)
    {
        if (isWanted())
            buffer = openCLBuffer(work, CL_MEM_READ_ONLY, bytes());
        return !isWanted() || buffer();
    }

    bool setArguments(Image const& image, cl::Buffer const& from, cl::Buffer const& to)
    {
        return !isWanted() || setOpenCLArguments(kernel, cl_uint(image.width), cl_uint(image.height), buffer,
                                                 cl_int(weights.size()), from, to);
    }

    bool sendWeights(OpenCLQueue& queue) const
    {
        return !isWanted() ||
               queue.get().enqueueWriteBuffer(buffer, CL_FALSE, 0, bytes(), weights.data()) == CL_SUCCESS;
    }

    bool run(OpenCLQueue& queue, Image const& image, RunStatus const& status)
    {
        return !isWanted() || RunIncrementalKernel(queue.get(), kernel, image.width * image.height * 4, status);
    }
};

bool blur(OpenCLWork const& work, Pass& across, Pass& down, Image const& image, Image& result, RunStatus const& status)
{
    if (!across.makeKernel(work) || !down.makeKernel(work))
        return false;
    const std::size_t bytes = std::size_t(image.width * image.height * 4) * 2;
    const cl::Buffer source = openCLBuffer(work, CL_MEM_READ_ONLY | CL_MEM_USE_HOST_PTR, bytes, image.data);
    const cl::Buffer target =
        source() ? openCLBuffer(work, CL_MEM_WRITE_ONLY | CL_MEM_USE_HOST_PTR, bytes, result.data) : cl::Buffer();
    const cl::Buffer a = target() ? openCLBuffer(work, CL_MEM_READ_WRITE, bytes) : cl::Buffer();
    const cl::Buffer b = a() ? openCLBuffer(work, CL_MEM_READ_WRITE, bytes) : cl::Buffer();
    if (!b() || !across.makeBuffer(work) || !down.makeBuffer(work))
        return false;
    // The passes go to and fro between a and b.
    const bool twice = across.isWanted() && down.isWanted();
    if (!across.setArguments(image, a, b) || !down.setArguments(image, twice ? b : a, twice ? a : b))
        return false;

    OpenCLQueue queue(work);
    if (!queue.isValid())
        return false;
    const OpenCLMapping from(queue, source, CL_FALSE, CL_MAP_WRITE, bytes);
    if (!from.data())
        return false;
    const OpenCLMapping to(queue, target, CL_TRUE, CL_MAP_READ, bytes);
    return to.data() && queue.get().enqueueWriteBuffer(a, CL_FALSE, 0, bytes, from.data()) == CL_SUCCESS &&
           across.sendWeights(queue) && down.sendWeights(queue) && across.run(queue, image, status) &&
           down.run(queue, image, status) && readOpenCLBuffer(queue, twice ? a : b, bytes, to.data());
}

} // namespace

bool blurOnDevice(Image const& image, Image& result, float radiusX, float radiusY, GaussianEdge edge,
                  RunStatus const& status)
{
    const std::vector<float> weightsAcross = weightsOf(radiusX);
    const std::vector<float> weightsDown = weightsOf(radiusY);
    if ((weightsAcross.empty() && weightsDown.empty()) || !hasPixels(image))
        return false;
    const OpenCLWork work;
    if (!work.token)
        return false;
    result = Image(image.width, image.height);
    const KernelNames names = kernelNames(edge);
    Pass across{weightsAcross, names.horizontal};
    Pass down{weightsDown, names.vertical};
    return blur(work, across, down, image, result, status);
}

} // namespace Ondrel
