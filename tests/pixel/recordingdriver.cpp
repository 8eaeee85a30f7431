// The driver behind recordingdriver.h.

#define CL_TARGET_OPENCL_VERSION 120
#include "recordingdriver.h"

#include <CL/cl_ext.h>
#include <CL/cl_icd.h>

#include <algorithm>
#include <cstring>

using OndrelTest::RecordingDriver;

// The loader reads the dispatch table at the start of every object.
#define DRIVER_OBJECT const cl_icd_dispatch* dispatch = &table()

namespace
{

const cl_icd_dispatch& table();

RecordingDriver& recorder()
{
    static RecordingDriver* const instance = new RecordingDriver; // never destroyed: objects are released at exit
    return *instance;
}

bool fails(const char* call)
{
    RecordingDriver& s = recorder();
    if (s.failName.empty() || s.failName == call) {
        s.calls.push_back(call);
        const int number = int(s.calls.size());
        if (s.failAt > 0 && (s.failOn ? number >= s.failAt : number == s.failAt)) {
            s.failedCall = call;
            return true;
        }
    }
    return false;
}

} // namespace

struct _cl_platform_id {
    DRIVER_OBJECT;
    std::size_t number = 0;
};

struct _cl_device_id {
    DRIVER_OBJECT;
    std::size_t platform = 0, number = 0;

    const std::string& name() const { return recorder().devices[platform].at(number); }
};

namespace
{

// What has a reference count and is counted by its kind.
struct Counted {
    DRIVER_OBJECT;
    const char* kind;
    int references = 1;

    explicit Counted(const char* kind)
        : kind(kind)
    {
        ++recorder().alive[kind];
    }
    ~Counted() { --recorder().alive[kind]; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
};

} // namespace

struct _cl_context : Counted {
    _cl_context()
        : Counted("context")
    {
    }
};
struct _cl_command_queue : Counted {
    _cl_command_queue()
        : Counted("queue")
    {
    }
};
struct _cl_mem : Counted {
    _cl_mem()
        : Counted("buffer")
    {
    }
    std::size_t bytes = 0;
    void* host = nullptr;
    std::vector<unsigned char> mapped;
};
struct _cl_program : Counted {
    _cl_program()
        : Counted("program")
    {
    }
};
struct _cl_kernel : Counted {
    explicit _cl_kernel(const char* name)
        : Counted("kernel")
        , name(name)
    {
    }
    std::string name;
};
struct _cl_event : Counted {
    _cl_event()
        : Counted("event")
    {
    }
};

namespace
{

template <typename Object>
cl_int retain(Object object)
{
    ++object->references;
    return CL_SUCCESS;
}

template <typename Object>
cl_int release(Object object)
{
    if (--object->references == 0)
        delete object;
    return CL_SUCCESS;
}

void setError(cl_int* error, cl_int value)
{
    if (error)
        *error = value;
}

// The answer to a question for information.
cl_int answer(const void* value, std::size_t bytes, std::size_t size, void* to, std::size_t* sizeRet)
{
    if (sizeRet)
        *sizeRet = bytes;
    if (to) {
        if (size < bytes)
            return CL_INVALID_VALUE;
        std::memcpy(to, value, bytes);
    }
    return CL_SUCCESS;
}

cl_int answer(const std::string& text, std::size_t size, void* to, std::size_t* sizeRet)
{
    return answer(text.c_str(), text.size() + 1, size, to, sizeRet);
}

_cl_platform_id* platforms()
{
    static _cl_platform_id all[RecordingDriver::kPlatforms];
    for (std::size_t i = 0; i < RecordingDriver::kPlatforms; ++i)
        all[i].number = i;
    return all;
}

constexpr std::size_t kMostDevices = 8;

cl_device_id deviceOf(std::size_t platform, std::size_t number)
{
    static _cl_device_id all[RecordingDriver::kPlatforms][kMostDevices];
    all[platform][number].platform = platform;
    all[platform][number].number = number;
    return &all[platform][number];
}

cl_int CL_API_CALL getPlatformIDs(cl_uint entries, cl_platform_id* to, cl_uint* number)
{
    if (number)
        *number = cl_uint(RecordingDriver::kPlatforms);
    for (cl_uint i = 0; to && i < entries && i < RecordingDriver::kPlatforms; ++i)
        to[i] = platforms() + i;
    return CL_SUCCESS;
}

cl_int CL_API_CALL getPlatformInfo(cl_platform_id platform, cl_platform_info what, std::size_t size, void* to,
                                   std::size_t* sizeRet)
{
    switch (what) {
    case CL_PLATFORM_VERSION:
        return answer("OpenCL 1.2 recorder", size, to, sizeRet);
    case CL_PLATFORM_EXTENSIONS:
        return answer("cl_khr_icd", size, to, sizeRet);
    case CL_PLATFORM_ICD_SUFFIX_KHR:
        return answer("REC", size, to, sizeRet);
    case CL_PLATFORM_PROFILE:
        return answer("FULL_PROFILE", size, to, sizeRet);
    default:
        return answer("Recorder " + std::to_string(platform->number), size, to, sizeRet);
    }
}

cl_int CL_API_CALL getDeviceIDs(cl_platform_id platform, cl_device_type type, cl_uint entries, cl_device_id* to,
                                cl_uint* number)
{
    const std::size_t count = recorder().devices[platform->number].size();
    if (number)
        *number = 0;
    if (fails("clGetDeviceIDs"))
        return recorder().failWith;
    // Each device is an accelerator, which only a question for all kinds finds.
    if (count == 0 || (type != CL_DEVICE_TYPE_ALL && !(type & CL_DEVICE_TYPE_ACCELERATOR)))
        return CL_DEVICE_NOT_FOUND;
    if (number)
        *number = cl_uint(count);
    for (std::size_t i = 0; to && i < std::min<std::size_t>(entries, count); ++i)
        to[i] = deviceOf(platform->number, i);
    return CL_SUCCESS;
}

cl_int CL_API_CALL getDeviceInfo(cl_device_id device, cl_device_info what, std::size_t size, void* to,
                                 std::size_t* sizeRet)
{
    const cl_platform_id platform = platforms() + device->platform;
    switch (what) {
    case CL_DEVICE_NAME:
        return answer(device->name(), size, to, sizeRet);
    case CL_DEVICE_PLATFORM:
        return answer(&platform, sizeof platform, size, to, sizeRet);
    case CL_DEVICE_VERSION:
        return answer("OpenCL 1.2 recorder", size, to, sizeRet);
    default:
        return CL_INVALID_VALUE;
    }
}

cl_int CL_API_CALL keepDevice(cl_device_id)
{
    return CL_SUCCESS;
}

cl_context CL_API_CALL createContext(const cl_context_properties* properties, cl_uint number,
                                     const cl_device_id* devices,
                                     void(CL_CALLBACK* callback)(const char*, const void*, std::size_t, void*), void*,
                                     cl_int* error)
{
    RecordingDriver::Context context;
    for (cl_uint i = 0; i < number; ++i)
        context.devices.push_back(devices[i]->name());
    context.hasProperties = properties != nullptr;
    context.hasCallback = callback != nullptr;
    recorder().contexts.push_back(context);
    const bool failed = fails("clCreateContext");
    setError(error, failed ? recorder().failWith : CL_SUCCESS);
    return failed ? nullptr : new _cl_context;
}

cl_command_queue CL_API_CALL createCommandQueue(cl_context, cl_device_id, cl_command_queue_properties properties,
                                                cl_int* error)
{
    recorder().queueProperties.push_back(properties);
    const bool failed = fails("clCreateCommandQueue");
    setError(error, failed ? recorder().failWith : CL_SUCCESS);
    return failed ? nullptr : new _cl_command_queue;
}

cl_mem CL_API_CALL createBuffer(cl_context, cl_mem_flags flags, std::size_t bytes, void* host, cl_int* error)
{
    recorder().buffers.push_back({flags, bytes, host, nullptr});
    if (fails("clCreateBuffer") || bytes == 0) {
        setError(error, bytes == 0 ? CL_INVALID_BUFFER_SIZE : recorder().failWith);
        return nullptr;
    }
    setError(error, CL_SUCCESS);
    _cl_mem* const buffer = new _cl_mem;
    buffer->bytes = bytes;
    buffer->host = host;
    recorder().buffers.back().handle = buffer;
    return buffer;
}

cl_program CL_API_CALL createProgram(cl_context, cl_uint number, const char** texts, const std::size_t* lengths,
                                     cl_int* error)
{
    recorder().sources.clear();
    recorder().sourcesHaveLengths = lengths != nullptr;
    for (cl_uint i = 0; i < number; ++i)
        recorder().sources.push_back(lengths ? std::string(texts[i], lengths[i]) : std::string(texts[i]));
    const bool failed = fails("clCreateProgramWithSource");
    setError(error, failed ? recorder().failWith : CL_SUCCESS);
    return failed ? nullptr : new _cl_program;
}

cl_int CL_API_CALL buildProgram(cl_program, cl_uint number, const cl_device_id* devices, const char* options,
                                void(CL_CALLBACK*)(cl_program, void*), void*)
{
    recorder().buildOptions = options ? options : "";
    recorder().builtFor.clear();
    for (cl_uint i = 0; i < number; ++i)
        recorder().builtFor.push_back(devices[i]->name());
    return fails("clBuildProgram") ? recorder().failWith : recorder().buildResult;
}

cl_int CL_API_CALL getBuildInfo(cl_program, cl_device_id, cl_program_build_info what, std::size_t size, void* to,
                                std::size_t* sizeRet)
{
    if (fails("clGetProgramBuildInfo"))
        return recorder().failWith;
    const cl_build_status status = recorder().buildResult == CL_SUCCESS ? CL_BUILD_SUCCESS : CL_BUILD_ERROR;
    if (what == CL_PROGRAM_BUILD_STATUS)
        return answer(&status, sizeof status, size, to, sizeRet);
    return answer(what == CL_PROGRAM_BUILD_LOG ? recorder().buildLog : recorder().buildOptions, size, to, sizeRet);
}

cl_kernel CL_API_CALL createKernel(cl_program, const char* name, cl_int* error)
{
    recorder().kernels.push_back(name);
    const bool failed = fails("clCreateKernel") || recorder().buildResult != CL_SUCCESS;
    setError(error, failed ? recorder().failWith : CL_SUCCESS);
    return failed ? nullptr : new _cl_kernel(name);
}

cl_int CL_API_CALL setKernelArg(cl_kernel kernel, cl_uint index, std::size_t bytes, const void* value)
{
    const std::string text = value ? std::string(static_cast<const char*>(value), bytes) : std::string();
    recorder().arguments[kernel->name][index] = text;
    return fails("clSetKernelArg") ? recorder().failWith : CL_SUCCESS;
}

void giveEvent(cl_event* event)
{
    if (event)
        *event = new _cl_event;
}

cl_int CL_API_CALL waitForEvents(cl_uint, const cl_event*)
{
    if (recorder().onWait)
        recorder().onWait();
    return fails("clWaitForEvents") ? recorder().failWith : CL_SUCCESS;
}

cl_int CL_API_CALL launch(cl_command_queue, cl_kernel kernel, cl_uint dimensions, const std::size_t* offset,
                          const std::size_t* global, const std::size_t* local, cl_uint, const cl_event*,
                          cl_event* event)
{
    if (fails("clEnqueueNDRangeKernel"))
        return recorder().failWith;
    recorder().launches.push_back(
        {kernel->name, dimensions, offset ? *offset : 0, *global, local ? *local : 0, event != nullptr});
    if (recorder().onLaunch)
        recorder().onLaunch();
    giveEvent(event);
    return CL_SUCCESS;
}

cl_int CL_API_CALL readBuffer(cl_command_queue, cl_mem buffer, cl_bool blocking, std::size_t offset, std::size_t bytes,
                              void* to, cl_uint, const cl_event*, cl_event* event)
{
    recorder().reads.push_back({buffer, blocking != CL_FALSE, event != nullptr, offset, bytes, to, {}});
    if (fails("clEnqueueReadBuffer"))
        return recorder().failWith;
    if (offset + bytes > buffer->bytes)
        return CL_INVALID_VALUE;
    std::memset(to, RecordingDriver::kResult, bytes);
    if (recorder().onRead)
        recorder().onRead();
    giveEvent(event);
    return CL_SUCCESS;
}

cl_int CL_API_CALL writeBuffer(cl_command_queue, cl_mem buffer, cl_bool blocking, std::size_t offset, std::size_t bytes,
                               const void* from, cl_uint, const cl_event*, cl_event* event)
{
    const auto* const bytesFrom = static_cast<const unsigned char*>(from);
    recorder().writes.push_back({buffer, blocking != CL_FALSE, event != nullptr, offset, bytes, from,
                                 std::vector<unsigned char>(bytesFrom, bytesFrom + bytes)});
    if (fails("clEnqueueWriteBuffer"))
        return recorder().failWith;
    if (offset + bytes > buffer->bytes)
        return CL_INVALID_VALUE;
    giveEvent(event);
    return CL_SUCCESS;
}

// Maps are places of the driver's own, copied to the host's memory by the unmap: so a result that was read past the map
// is lost.
void* CL_API_CALL mapBuffer(cl_command_queue, cl_mem buffer, cl_bool blocking, cl_map_flags flags, std::size_t offset,
                            std::size_t bytes, cl_uint, const cl_event*, cl_event* event, cl_int* error)
{
    if (fails("clEnqueueMapBuffer")) {
        setError(error, recorder().failWith);
        return nullptr;
    }
    if (offset + bytes > buffer->bytes || !buffer->host || !buffer->mapped.empty()) {
        setError(error, CL_INVALID_VALUE);
        return nullptr;
    }
    const auto* const host = static_cast<const unsigned char*>(buffer->host);
    buffer->mapped.assign(host, host + buffer->bytes);
    recorder().maps.push_back({flags, blocking != CL_FALSE, offset, bytes, buffer->host, buffer->mapped.data()});
    ++recorder().alive["map"];
    retain(buffer);
    giveEvent(event);
    setError(error, CL_SUCCESS);
    return buffer->mapped.data() + offset;
}

cl_int CL_API_CALL unmap(cl_command_queue, cl_mem buffer, void* pointer, cl_uint, const cl_event*, cl_event* event)
{
    if (buffer->mapped.empty() || pointer != buffer->mapped.data())
        return CL_INVALID_VALUE;
    const bool failed = fails("clEnqueueUnmapMemObject");
    std::copy(buffer->mapped.begin(), buffer->mapped.end(), static_cast<unsigned char*>(buffer->host));
    buffer->mapped.clear();
    --recorder().alive["map"];
    release(buffer);
    if (!failed)
        giveEvent(event);
    return failed ? recorder().failWith : CL_SUCCESS;
}

cl_int CL_API_CALL flush(cl_command_queue)
{
    return fails("clFlush") ? recorder().failWith : CL_SUCCESS;
}

cl_int CL_API_CALL finish(cl_command_queue)
{
    return fails("clFinish") ? recorder().failWith : CL_SUCCESS;
}

cl_icd_dispatch makeTable()
{
    cl_icd_dispatch t = {};
    t.clGetPlatformIDs = getPlatformIDs;
    t.clGetPlatformInfo = getPlatformInfo;
    t.clGetDeviceIDs = getDeviceIDs;
    t.clGetDeviceInfo = getDeviceInfo;
    t.clRetainDevice = keepDevice;
    t.clReleaseDevice = keepDevice;
    t.clCreateContext = createContext;
    t.clRetainContext = retain<cl_context>;
    t.clReleaseContext = release<cl_context>;
    t.clCreateCommandQueue = createCommandQueue;
    t.clRetainCommandQueue = retain<cl_command_queue>;
    t.clReleaseCommandQueue = release<cl_command_queue>;
    t.clCreateBuffer = createBuffer;
    t.clRetainMemObject = retain<cl_mem>;
    t.clReleaseMemObject = release<cl_mem>;
    t.clCreateProgramWithSource = createProgram;
    t.clRetainProgram = retain<cl_program>;
    t.clReleaseProgram = release<cl_program>;
    t.clBuildProgram = buildProgram;
    t.clGetProgramBuildInfo = getBuildInfo;
    t.clCreateKernel = createKernel;
    t.clRetainKernel = retain<cl_kernel>;
    t.clReleaseKernel = release<cl_kernel>;
    t.clSetKernelArg = setKernelArg;
    t.clWaitForEvents = waitForEvents;
    t.clRetainEvent = retain<cl_event>;
    t.clReleaseEvent = release<cl_event>;
    t.clFlush = flush;
    t.clFinish = finish;
    t.clEnqueueReadBuffer = readBuffer;
    t.clEnqueueWriteBuffer = writeBuffer;
    t.clEnqueueMapBuffer = mapBuffer;
    t.clEnqueueUnmapMemObject = unmap;
    t.clEnqueueNDRangeKernel = launch;
    return t;
}

const cl_icd_dispatch& table()
{
    static const cl_icd_dispatch instance = makeTable();
    return instance;
}

} // namespace

extern "C" {

// The only two names that can be seen from outside: one for the loader, one for the tests.
__attribute__((visibility("default"))) void* clGetExtensionFunctionAddress(const char* name)
{
    if (std::strcmp(name, "clIcdGetPlatformIDsKHR") == 0)
        return reinterpret_cast<void*>(&getPlatformIDs);
    if (std::strcmp(name, "clGetPlatformInfo") == 0)
        return reinterpret_cast<void*>(&getPlatformInfo);
    return nullptr;
}

__attribute__((visibility("default"))) OndrelTest::RecordingDriver* ondrelRecordingDriver()
{
    return &recorder();
}
}
