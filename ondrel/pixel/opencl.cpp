#include <ondrel/pixel/kernelsources_p.h>
#include <ondrel/pixel/opencl.h>

#include <QMutexLocker>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

void doNothing(void*) {}

std::vector<cl::Device> devicesOf(cl::Platform const& platform)
{
    std::vector<cl::Device> devices;
    if (platform.getDevices(CL_DEVICE_TYPE_ALL, &devices) != CL_SUCCESS)
        devices.clear();
    return devices;
}

std::vector<cl::Platform> allPlatforms()
{
    std::vector<cl::Platform> platforms;
    if (cl::Platform::get(&platforms) != CL_SUCCESS)
        platforms.clear();
    return platforms;
}

cl::Program makeProgram(cl::Context const& context)
{
    const std::array<std::string, Ondrel::kKernelSourceCount> sources = Ondrel::kernelSources();
    std::array<const char*, sources.size()> texts;
    std::array<std::size_t, sources.size()> lengths;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        texts[i] = sources[i].c_str();
        lengths[i] = sources[i].size();
    }
    cl_int error = CL_SUCCESS;
    cl_program program =
        clCreateProgramWithSource(context(), static_cast<cl_uint>(texts.size()), texts.data(), lengths.data(), &error);
    return cl::Program(error == CL_SUCCESS ? program : nullptr);
}

// Without the zero that ends it: some drivers return that alone.
std::string buildLog(cl_program program, cl_device_id device)
{
    std::size_t size = 0;
    if (clGetProgramBuildInfo(program, device, CL_PROGRAM_BUILD_LOG, 0, nullptr, &size) != CL_SUCCESS)
        return {};
    std::string log(size, '\0');
    if (clGetProgramBuildInfo(program, device, CL_PROGRAM_BUILD_LOG, size, log.data(), nullptr) != CL_SUCCESS)
        return {};
    log.resize(std::strlen(log.c_str()));
    return log;
}

} // namespace

PixelOpenCL::PixelOpenCL() = default;

PixelOpenCL::~PixelOpenCL()
{
    if (mutex.tryLock()) {
        disableWhileHaveLock();
        mutex.unlock();
        return;
    }
    // A job is still on the device while the process ends: its objects go with the process.
    program() = nullptr;
    context() = nullptr;
}

// A driver that was loaded after this object was made ends before it, and so do the compilers that drivers load for
// their first program. The device is therefore given up by a handler that is set after a build, and so runs before.
void PixelOpenCL::releaseAtExit()
{
    static const int registered = std::atexit([] {
        PixelOpenCL* manager = instance();
        if (manager->mutex.tryLock()) {
            manager->disableWhileHaveLock();
            manager->mutex.unlock();
        }
    });
    static_cast<void>(registered);
}

PixelOpenCL* PixelOpenCL::instance()
{
    static PixelOpenCL manager;
    return &manager;
}

void PixelOpenCL::queryDevices(std::vector<PixelOpenCL::Platform>& platforms)
{
    platforms.clear();
    const QMutexLocker lock(&mutex);
    for (cl::Platform const& platform : allPlatforms()) {
        platforms.emplace_back();
        for (cl::Device const& each : devicesOf(platform))
            platforms.back().devices.push_back(each.getInfo<CL_DEVICE_NAME>());
    }
}

bool PixelOpenCL::setDevice(unsigned int platform, unsigned int number)
{
    const QMutexLocker lock(&mutex);
    // Off while it changes, so that a lack of memory cannot leave it half changed.
    enabled = false;
    if (!openDevice(platform, number)) {
        disableWhileHaveLock();
        return false;
    }
    build();
    releaseAtExit();
    enabled = true;
    return true;
}

bool PixelOpenCL::openDevice(unsigned int platform, unsigned int number)
{
    const std::vector<cl::Platform> platforms = allPlatforms();
    if (platform >= platforms.size())
        return false;
    const std::vector<cl::Device> devices = devicesOf(platforms[platform]);
    if (number >= devices.size())
        return false;
    device = devices[number];
    cl_int error = CL_SUCCESS;
    cl_device_id handle = device();
    cl_context made = clCreateContext(nullptr, 1, &handle, nullptr, nullptr, &error);
    context = cl::Context(error == CL_SUCCESS ? made : nullptr);
    if (!context())
        return false;
    program = makeProgram(context);
    return program() != nullptr;
}

void PixelOpenCL::build()
{
    cl_device_id handle = device();
    // A program that did not build has no kernels, which is what the operations look at.
    clBuildProgram(program(), 1, &handle, "-cl-mad-enable", nullptr, nullptr);
    const std::string log = buildLog(program(), handle);
    if (!log.empty()) {
        std::printf("OpenCL Build Log: \n%s\n", log.c_str());
        std::fflush(stdout);
    }
}

std::unique_ptr<void, void (*)(void*)> PixelOpenCL::beginWork(cl::Context& context, cl::Program& program,
                                                              cl::Device& device)
{
    PixelOpenCL* manager = instance();
    manager->mutex.lock();
    if (!manager->enabled) {
        manager->mutex.unlock();
        return {nullptr, doNothing};
    }
    context = manager->context;
    program = manager->program;
    device = manager->device;
    return {manager, endWork};
}

void PixelOpenCL::endWork(void* token)
{
    static_cast<PixelOpenCL*>(token)->mutex.unlock();
}

void PixelOpenCL::disable()
{
    const QMutexLocker lock(&mutex);
    disableWhileHaveLock();
}

void PixelOpenCL::disableWhileHaveLock()
{
    enabled = false;
    program = cl::Program();
    context = cl::Context();
    device = cl::Device();
}
