#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

// An OpenCL driver for tests, loaded by the ICD loader like any other. It computes nothing: it keeps a record of what
// it is asked for, counts what is alive, and can let any one call fail. Tests reach the record of the loaded driver by
// recordingDriver().
namespace OndrelTest
{

struct RecordingDriver {
    struct Launch {
        std::string kernel;
        unsigned int dimensions = 0;
        std::size_t offset = 0, global = 0;
        std::size_t local = 0; // 0: none given
        bool hasEvent = false;
    };
    struct Buffer {
        unsigned long long flags = 0;
        std::size_t bytes = 0;
        const void* host = nullptr;
        const void* handle = nullptr; // null if it was refused
    };
    struct Map {
        unsigned long long flags = 0;
        bool blocking = false;
        std::size_t offset = 0, bytes = 0;
        const void* host = nullptr;    // of the buffer
        const void* pointer = nullptr; // what the caller got: a place of the driver's own
    };
    struct Transfer {
        const void* buffer = nullptr;
        bool blocking = false, hasEvent = false;
        std::size_t offset = 0, bytes = 0;
        const void* pointer = nullptr;           // of the caller
        std::vector<unsigned char> bytesWritten; // of a write
    };
    struct Context {
        std::vector<std::string> devices;
        bool hasProperties = false, hasCallback = false;
    };

    // What there is. A platform without devices reports an error for its list. The number of platforms is fixed, since
    // the loader asks for it once.
    static constexpr std::size_t kPlatforms = 3;
    std::vector<std::string> devices[kPlatforms];
    std::string buildLog;
    int buildResult = 0;

    // From the next call that can fail: the number of the one that does, from 1; 0 is none. `failWith` is its error.
    int failAt = 0;
    int failWith = -5;
    bool failOn = false;  // that call and all that follow
    std::string failName; // if set, calls of this name alone count

    // What happened since the last forget(). `calls` has the names of all calls that can fail, in order.
    std::vector<std::string> calls;
    std::string failedCall;
    std::vector<Context> contexts;
    std::vector<std::string> sources; // as long as their lengths said
    bool sourcesHaveLengths = false;
    std::string buildOptions;
    std::vector<std::string> builtFor; // devices
    std::vector<unsigned long long> queueProperties;
    std::vector<std::string> kernels;
    std::vector<Buffer> buffers;
    std::map<std::string, std::map<unsigned int, std::string>> arguments; // by kernel and index: the bytes
    std::vector<Map> maps;
    std::vector<Transfer> writes, reads;
    std::vector<Launch> launches;

    // Called after a launch, in the middle of the wait for an event, and when a buffer is read.
    std::function<void()> onLaunch, onWait, onRead;

    // Objects by kind that are not released, and maps without an unmap.
    std::map<std::string, int> alive;

    // What a kernel is taken to have computed: every byte of a buffer that is read back.
    static constexpr unsigned char kResult = 0x5A;

    // Clears the record and all settings; what is alive stays counted.
    void forget()
    {
        std::map<std::string, int> counts = std::move(alive);
        *this = RecordingDriver();
        alive = std::move(counts);
    }
};

} // namespace OndrelTest
