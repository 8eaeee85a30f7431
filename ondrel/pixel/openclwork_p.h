#pragma once

#include <cstddef>
#include <memory>
#include <ondrel/pixel/opencl.h>

namespace Ondrel
{

// The device, borrowed for one operation. To be made first, so that everything made on the device goes before it.
struct OpenCLWork {
    std::unique_ptr<void, void (*)(void*)> token{nullptr, [](void*) {}};
    cl::Context context;
    cl::Program program;
    cl::Device device;

    OpenCLWork() { token = PixelOpenCL::beginWork(context, program, device); }
};

// A command queue of one operation. Its end waits for what has been put into it: memory of the host that a transfer
// still reads must outlive it.
class OpenCLQueue
{
public:
    explicit OpenCLQueue(OpenCLWork const& work)
        : m_queue(work.context, work.device, 0, &m_error)
    {
    }
    OpenCLQueue(OpenCLQueue const&) = delete;
    OpenCLQueue& operator=(OpenCLQueue const&) = delete;
    ~OpenCLQueue()
    {
        if (isValid())
            m_queue.finish();
    }

    bool isValid() const { return m_error == CL_SUCCESS && m_queue() != nullptr; }
    cl::CommandQueue& get() { return m_queue; }

private:
    cl_int m_error = CL_SUCCESS;
    cl::CommandQueue m_queue;
};

// A buffer over memory of the host, mapped while this lives.
class OpenCLMapping
{
public:
    OpenCLMapping(OpenCLQueue& queue, cl::Buffer const& buffer, cl_bool blocking, cl_map_flags flags, std::size_t bytes)
        : m_queue(queue)
        , m_buffer(buffer)
    {
        cl_int error = CL_SUCCESS;
        void* mapped = queue.get().enqueueMapBuffer(buffer, blocking, flags, 0, bytes, nullptr, nullptr, &error);
        m_data = error == CL_SUCCESS ? mapped : nullptr;
    }
    OpenCLMapping(OpenCLMapping const&) = delete;
    OpenCLMapping& operator=(OpenCLMapping const&) = delete;
    ~OpenCLMapping()
    {
        if (m_data)
            m_queue.get().enqueueUnmapMemObject(m_buffer, m_data);
    }

    void* data() const { return m_data; } // null if the buffer could not be mapped

private:
    OpenCLQueue& m_queue;
    cl::Buffer const& m_buffer;
    void* m_data = nullptr;
};

// The named kernel, or a null one if the program does not have it.
cl::Kernel openCLKernel(OpenCLWork const& work, const char* name);

// A buffer, or a null one if the device has no room for it.
cl::Buffer openCLBuffer(OpenCLWork const& work, cl_mem_flags flags, std::size_t bytes, void* host = nullptr);

// Sets arguments in order. False if the driver refuses one.
template <typename... Arguments>
bool setOpenCLArguments(cl::Kernel& kernel, Arguments const&... arguments)
{
    cl_uint index = 0;
    return ((kernel.setArg(index++, arguments) == CL_SUCCESS) && ...);
}

// Reads a device buffer into mapped memory. False on any failure.
bool readOpenCLBuffer(OpenCLQueue& queue, cl::Buffer const& from, std::size_t bytes, void* to);

} // namespace Ondrel
