// A camera file of 6000 x 4000 photosites: a Bayer mosaic of 16-bit samples without compression, so that what is
// measured is our share.

#include "samplefiles.h"

#include "tests/support/dngfile.h"

#include <ondrel/resources/raw.h>
#include <ondrel/resources/rawscale_p.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>
#include <unistd.h>

namespace
{

using namespace OndrelBench;
using Record = std::shared_ptr<ResourceEngine::ImageInfo>;

Record cameraFile(unsigned short orientation)
{
    OndrelTest::DngFile file;
    file.width = kWidth;
    file.height = kHeight;
    file.orientation = orientation;
    file.black = 1024;
    file.white = 16383;
    file.samples.resize(kPixels);
    for (std::size_t i = 0; i < kPixels; ++i)
        file.samples[i] = static_cast<std::uint16_t>(1024 + (picture().data[i * 4 + i % 3] >> 3));
    auto record = std::make_shared<ResourceEngine::ImageInfo>();
    record->format = ResourceEngine::FormatRAW;
    record->data = file.bytes();
    return record;
}

// A resource of the one store, which ProcessRaw asks.
class Resource
{
public:
    explicit Resource(unsigned short orientation)
    {
        ResourceEngine::Get().AddImageByData(ResourceEngine::FormatRAW, cameraFile(orientation)->data, "raw", m_id);
    }
    ~Resource() { ResourceEngine::Get().RemoveResource(m_id); }
    Resource(const Resource&) = delete;
    Resource& operator=(const Resource&) = delete;
    Ondrel::ResourceId id() const { return m_id; }

private:
    Ondrel::ResourceId m_id;
};

std::size_t residentBytes()
{
    long pages = 0, resident = 0;
    if (std::FILE* const file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%ld %ld", &pages, &resident) != 2)
            resident = 0;
        std::fclose(file);
    }
    return static_cast<std::size_t>(resident) * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

// The most memory that the process has above the present while `body` runs, looked at each millisecond.
template <class Body>
std::size_t peakBytes(Body body)
{
    std::atomic<bool> stop{false};
    std::size_t peak = 0;
    const std::size_t before = residentBytes();
    std::thread watcher([&] {
        while (!stop) {
            peak = std::max(peak, residentBytes());
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    body();
    stop = true;
    watcher.join();
    return peak > before ? peak - before : 0;
}

void validateRaw(benchmark::State& state)
{
    const Record file = cameraFile(1);
    for (auto _ : state)
        if (!ResourceEngine::ValidateRawImage(file, nullptr))
            state.SkipWithError("not valid");
    report(state, kPixels, 2);
}

void processRaw(benchmark::State& state, unsigned short orientation)
{
    const Resource resource(orientation);
    for (auto _ : state)
        if (ProcessRaw(resource.id(), {}).width == 0)
            state.SkipWithError("not decoded");
    const std::size_t peak = peakBytes([&] { ProcessRaw(resource.id(), {}); });
    report(state, kPixels, 8);
    state.counters["peak bytes/pixel"] = static_cast<double>(peak) / static_cast<double>(kPixels);
}

void scaleColors(benchmark::State& state)
{
    Ondrel::Image image = picture();
    for (auto _ : state)
        Ondrel::ScaleColors(1024, 16383, image);
    report(state, kPixels, 16);
}

// The same samples read and written, with the least to do to each.
void scaleColorsFloor(benchmark::State& state)
{
    Ondrel::Image image = picture();
    for (auto _ : state) {
        for (std::size_t i = 0; i < kPixels * 4; ++i)
            image.data[i] = static_cast<std::uint16_t>(image.data[i] ^ 1);
        benchmark::ClobberMemory();
    }
    report(state, kPixels, 16);
}

const bool added = [] {
    add("ValidateRawImage", validateRaw);
    add("ProcessRaw", processRaw, static_cast<unsigned short>(1));
    add("ProcessRaw, turned", processRaw, static_cast<unsigned short>(6));
    add("ScaleColors", scaleColors);
    add("ScaleColors/floor", scaleColorsFloor);
    return true;
}();

} // namespace
