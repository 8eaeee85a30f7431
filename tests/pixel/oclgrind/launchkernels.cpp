// Launches every kernel over small images of odd shapes on the first device that there is. Run under oclgrind, this
// shows what a kernel reads or writes outside of its buffers, each of which is exactly as large as it must be.

#include <ondrel/pixel/opencl.h>

#include <cstdio>
#include <string>
#include <vector>

namespace
{

struct Size {
    cl_uint width, height;
    unsigned int samples() const { return width * height * 4; }
};

constexpr Size kSizes[] = {{1, 1}, {1, 7}, {9, 1}, {4, 5}, {13, 11}};

class Launcher
{
public:
    Launcher() { m_token = PixelOpenCL::beginWork(m_context, m_program, m_device); }

    bool isReady()
    {
        m_queue = cl::CommandQueue(m_context, m_device);
        return m_token && m_queue();
    }

    // A buffer of uneven values.
    cl::Buffer image(Size size) { return buffer(std::vector<cl_ushort>(size.samples(), 40000)); }

    template <typename T>
    cl::Buffer buffer(std::vector<T> values)
    {
        for (std::size_t i = 0; i < values.size(); i += 3)
            values[i] = T(values[i] / T(1 + i % 7));
        return cl::Buffer(m_context, CL_MEM_READ_WRITE | CL_MEM_COPY_HOST_PTR, values.size() * sizeof(T),
                          values.data());
    }

    template <typename... Arguments>
    void launch(const std::string& name, Size output, Arguments const&... arguments)
    {
        cl::Kernel kernel = prepared(name, arguments...);
        m_allRan = RunIncrementalKernel(m_queue, kernel, output.samples(), Ondrel::RunStatus()) && m_allRan;
    }

    // With exactly one work item a pixel, for the kernel that does not test its range.
    template <typename... Arguments>
    void launchExactly(const std::string& name, Size output, Arguments const&... arguments)
    {
        const cl::Kernel kernel = prepared(name, arguments...);
        const cl::NDRange items(output.samples() / 4);
        m_allRan = m_queue.enqueueNDRangeKernel(kernel, cl::NullRange, items) == CL_SUCCESS &&
                   m_queue.finish() == CL_SUCCESS && m_allRan;
    }

    bool allRan() const { return m_allRan; }

private:
    template <typename... Arguments>
    cl::Kernel prepared(const std::string& name, Arguments const&... arguments)
    {
        std::printf("%s\n", name.c_str());
        cl::Kernel kernel(m_program, name.c_str());
        cl_uint index = 0;
        const bool set = ((kernel.setArg(index++, arguments) == CL_SUCCESS) && ...);
        m_allRan = m_allRan && set;
        return kernel;
    }

    std::unique_ptr<void, void (*)(void*)> m_token{nullptr, [](void*) {}};
    cl::Context m_context;
    cl::Program m_program;
    cl::Device m_device;
    cl::CommandQueue m_queue;
    bool m_allRan = true;
};

std::string kernelName(char letter, int source)
{
    return letter + std::to_string(source);
}

void launchBlur(Launcher& device, Size size)
{
    for (const cl_int taps : {1, 3, 7}) {
        const cl::Buffer weights = device.buffer(std::vector<cl_float>(std::size_t(taps), 0.25f));
        for (char letter = 'b'; letter <= 'g'; ++letter)
            device.launch(kernelName(letter, 1), size, size.width, size.height, weights, taps, device.image(size),
                          device.image(size));
    }
}

// The larger windows take oclgrind long: they run on the smaller images alone.
void launchWindows(Launcher& device, Size size)
{
    const int pixels = int(size.width * size.height);
    for (int radius = 1; radius <= 10; ++radius) {
        const int side = 2 * radius + 1;
        if (side * side * side * side * pixels / 2 < 2000000)
            device.launch(kernelName(char('a' + radius - 1), 3), size, size.width, size.height, device.image(size),
                          device.image(size));
        if (side * side * pixels > 70000)
            continue;
        const cl::Buffer mask = device.buffer(std::vector<cl_uchar>(std::size_t(side * side), 1));
        for (const char first : {'a', 'k'})
            device.launch(kernelName(char(first + radius - 1), 4), size, size.width, size.height, device.image(size),
                          device.image(size), mask);
    }
}

void launchScale(Launcher& device, Size size)
{
    for (const Size result : {Size{1, 1}, Size{3, 2}, Size{5, 17}})
        for (const char letter : {'a', 'f', 'g'})
            device.launch(kernelName(letter, 6), result, device.image(size), size.width, size.height,
                          device.image(result), result.width, result.height);
}

void launchAll(Launcher& device, Size size)
{
    for (const cl_uint filters : {0x94949494u, 0x16161616u, 0x49494949u, 0x61616161u})
        for (const char letter : {'c', 'd'})
            device.launch(kernelName(letter, 0), size, size.width, size.height, filters, device.image(size),
                          device.image(size));
    launchBlur(device, size);
    const cl_float one = 1;
    device.launch("a2", size, one, one, one, one, one, one, one, one, one, one, one, one, one, one, one, one, one, one,
                  cl_uint(size.samples() / 4), device.image(size), device.image(size));
    launchWindows(device, size);
    for (char letter = 'a'; letter <= 'c'; ++letter)
        device.launch(kernelName(letter, 5), size, size.width, size.height, device.image(size), device.image(size));
    launchScale(device, size);
    device.launchExactly("a7", size, 1.5f, cl_int(10), device.image(size), device.image(size), device.image(size));
}

bool launchAllSizes()
{
    Launcher device;
    if (!device.isReady())
        return false;
    for (const Size size : kSizes)
        launchAll(device, size);
    return device.allRan();
}

} // namespace

int main()
{
    if (!PixelOpenCL::instance()->setDevice(0, 0)) {
        std::puts("no device");
        return 1;
    }
    const bool done = launchAllSizes();
    PixelOpenCL::instance()->disable();
    std::puts(done ? "all kernels ran" : "a kernel did not run");
    return done ? 0 : 1;
}
