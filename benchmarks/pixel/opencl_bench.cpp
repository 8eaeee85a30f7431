// Scaling, blur and every kind of kernel on the first OpenCL device. A program of its own: once a device is chosen,
// operations that are measured on the processor elsewhere would use it.

#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"

#include <ondrel/pixel/gaussianblur.h>
#include <ondrel/pixel/scaleopencl.h>
#include <string>
#include <vector>

namespace
{

using namespace OndrelBench;
using Ondrel::Image;

// The way to the device and back included.
void scaleOnDevice(benchmark::State& state, unsigned int width, unsigned int height, Ondrel::FilterMethod filter)
{
    const Image source = syntheticImage(kWidth, kHeight);
    Image result;
    for (auto _ : state)
        if (!Scale_OpenCL(source, result, width, height, filter))
            state.SkipWithError("the device does not scale");
    const std::size_t to = std::size_t(width) * height;
    report(state, kPixels, 8 * (kPixels + to) / kPixels);
}

void blurOnDevice(benchmark::State& state, float radius)
{
    const Image source = syntheticImage(kWidth, kHeight);
    for (auto _ : state) {
        const Image result = GaussianBlur(source, radius, radius, GaussianEdge::Clamp, {});
        benchmark::DoNotOptimize(result.data);
    }
    report(state, kPixels, 16);
}

// What a kernel is given. Buffers are as large as the largest kernel needs them.
struct Job {
    cl::Kernel& kernel;
    cl_uint width, height;
    const cl::Buffer& in;
    const cl::Buffer& out;
    const cl::Buffer& table; // weights, a mask, or a second image
};

template <typename... Arguments>
bool setAll(cl::Kernel& kernel, const Arguments&... arguments)
{
    cl_uint index = 0;
    return ((kernel.setArg(index++, arguments) == CL_SUCCESS) && ...);
}

bool setDemosaic(const Job& job)
{
    return setAll(job.kernel, job.width, job.height, cl_uint(0x94949494), job.in, job.out);
}

constexpr cl_int kTaps = 61;

bool setBlur(const Job& job)
{
    return setAll(job.kernel, job.width, job.height, job.table, kTaps, job.in, job.out);
}

bool setLevels(const Job& job)
{
    constexpr cl_float zero = 0, one = 1, gamma = 0.8f;
    return setAll(job.kernel, zero, zero, zero, zero, one, one, one, one, zero, zero, zero, one, one, one, gamma, gamma,
                  gamma, gamma, cl_uint(job.width * job.height), job.in, job.out);
}

bool setPlain(const Job& job)
{
    return setAll(job.kernel, job.width, job.height, job.in, job.out);
}

bool setMorphology(const Job& job)
{
    return setAll(job.kernel, job.width, job.height, job.in, job.out, job.table);
}

bool setScale(const Job& job)
{
    return setAll(job.kernel, job.in, job.width, job.height, job.out, cl_uint(job.width / 2), cl_uint(job.height / 2));
}

bool setUnsharp(const Job& job)
{
    return setAll(job.kernel, cl_float(1.5f), cl_int(100), job.in, job.table, job.out);
}

// A kernel alone, without transfers. The buffers have a row more than the image: a7 does not test its range, and
// RunIncrementalKernel launches more than the pixels.
void runKernel(benchmark::State& state, const std::string& name, unsigned int width, unsigned int height,
               bool (*set)(const Job&))
{
    const Image source = syntheticImage(width, height + 1);
    cl::Context context;
    cl::Program program;
    cl::Device device;
    const auto token = PixelOpenCL::beginWork(context, program, device);
    if (!token)
        return state.SkipWithError("no device");
    cl::Kernel kernel(program, name.c_str());
    cl::CommandQueue queue(context, device);
    const cl::Buffer in(context, CL_MEM_COPY_HOST_PTR, source.sizeBytes, source.data);
    const cl::Buffer out(context, CL_MEM_READ_WRITE, source.sizeBytes);
    const std::vector<cl_float> weights(source.sizeBytes / sizeof(cl_float), 1.0f / float(kTaps));
    const bool isMask = set == setMorphology;
    const std::vector<cl_uchar> mask(source.sizeBytes, 1);
    const void* table = isMask ? static_cast<const void*>(mask.data()) : weights.data();
    const cl::Buffer second(context, CL_MEM_COPY_HOST_PTR, source.sizeBytes, const_cast<void*>(table));
    if (!set({kernel, width, height, in, out, second}))
        return state.SkipWithError("the device does not take the arguments");
    const unsigned int samples = (set == setScale ? width / 2 * (height / 2) : width * height) * 4;
    for (auto _ : state)
        if (!RunIncrementalKernel(queue, kernel, samples, {}))
            state.SkipWithError("the device does not run the kernel");
    report(state, std::size_t(width) * height, 16);
}

void addKernel(const std::string& name, const std::string& what, bool (*set)(const Job&), unsigned int width = 3000,
               unsigned int height = 2000)
{
    add("OpenCL kernel " + name + ", " + what + " " + std::to_string(width) + "x" + std::to_string(height), runKernel,
        name, width, height, set);
}

void addKernels()
{
    addKernel("c0", "demosaic green", setDemosaic);
    addKernel("d0", "demosaic red and blue", setDemosaic);
    for (const char* name : {"b1", "c1", "d1", "e1", "f1", "g1"})
        addKernel(name, "blur pass of 61 taps", setBlur);
    addKernel("a2", "levels", setLevels);
    addKernel("a3", "median radius 1", setPlain);
    addKernel("c3", "median radius 3", setPlain, 750, 500);
    addKernel("j3", "median radius 10", setPlain, 75, 50);
    addKernel("c4", "erosion radius 3", setMorphology);
    addKernel("m4", "dilation radius 3", setMorphology);
    addKernel("a5", "half turn", setPlain);
    addKernel("b5", "quarter turn", setPlain);
    addKernel("c5", "quarter turn back", setPlain);
    addKernel("a6", "nearest to half", setScale);
    addKernel("f6", "bilinear to half", setScale);
    addKernel("a7", "unsharp mask", setUnsharp);
}

// The first device that there is.
bool chooseDevice()
{
    PixelOpenCL& manager = *PixelOpenCL::instance();
    std::vector<PixelOpenCL::Platform> platforms;
    manager.queryDevices(platforms);
    for (std::size_t i = 0; i < platforms.size(); ++i)
        if (!platforms[i].devices.empty() && manager.setDevice(unsigned(i), 0))
            return true;
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (chooseDevice()) {
        add("Scale_OpenCL/bilinear to 1500x1000", scaleOnDevice, 1500u, 1000u, Ondrel::FilterMethod::Bilinear);
        add("Scale_OpenCL/bilinear to 182x121", scaleOnDevice, 182u, 121u, Ondrel::FilterMethod::Bilinear);
        add("Scale_OpenCL/nearest to 3000x2000", scaleOnDevice, 3000u, 2000u, Ondrel::FilterMethod::NearestNeighbor);
        for (const float radius : {5.0f, 29.0f, 100.0f})
            add("GaussianBlur on OpenCL/" + std::to_string(GaussianSampleSize(radius, radius).width()) + " taps",
                blurOnDevice, radius);
        addKernels();
    }
    benchmark::RunSpecifiedBenchmarks();
    PixelOpenCL::instance()->disable();
    return 0;
}
