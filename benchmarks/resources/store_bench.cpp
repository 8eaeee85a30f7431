// The store itself: a decoding copy, a description while another thread decodes, and many small buffers.

#include "samplefiles.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace
{

using namespace OndrelBench;

constexpr long kBuffers = 10000;

struct Store : ResourceEngine {
};

Ondrel::ResourceId addJpeg(ResourceEngine& store)
{
    const auto file = fileRecord("picture.jpg", [](const QString& path) {
        ResourceEngine::ExportJPEGSettings settings;
        settings.quality = 90;
        settings.colorProfile = Ondrel::EmbeddedColorProfile;
        return ResourceEngine::ExportJPEG(path, picture(), settings, nullptr, nullptr);
    });
    Ondrel::ResourceId id;
    store.AddImageByData(ResourceEngine::FormatJPEG, file->data, "picture.jpg", id);
    return id;
}

void copyImageDecoding(benchmark::State& state)
{
    Store store;
    const Ondrel::ResourceId id = addJpeg(store);
    for (auto _ : state) {
        store.ClearCache();
        std::shared_ptr<const Ondrel::Image> image;
        if (!store.CopyImage(id, image, Ondrel::EmbeddedColorProfile, {}))
            state.SkipWithError("not copied");
    }
}

void copyImageCached(benchmark::State& state)
{
    Store store;
    const Ondrel::ResourceId id = addJpeg(store);
    for (auto _ : state) {
        std::shared_ptr<const Ondrel::Image> image;
        store.CopyImage(id, image, Ondrel::EmbeddedColorProfile, {});
        benchmark::DoNotOptimize(image);
    }
}

void copyImageInfoWhileDecoding(benchmark::State& state)
{
    Store store;
    const Ondrel::ResourceId id = addJpeg(store);
    std::atomic<bool> stop{false};
    std::thread decoder([&store, &stop, id] {
        std::shared_ptr<const Ondrel::Image> image;
        while (!stop) {
            store.ClearCache();
            store.CopyImage(id, image, Ondrel::EmbeddedColorProfile, {});
        }
    });
    for (auto _ : state) {
        Ondrel::ImageInfo info;
        store.CopyImageInfo(id, info);
        benchmark::DoNotOptimize(info);
    }
    stop = true;
    decoder.join();
}

// Each addition rebuilds all descriptions, so the whole is quadratic.
void addBuffers(benchmark::State& state)
{
    const Ondrel::Image buffer(8, 8);
    for (auto _ : state) {
        Store store;
        Ondrel::ResourceId id;
        for (long i = 0; i < kBuffers; ++i)
            store.AddImageBuffer(buffer, id);
    }
}

// The rule alone: a record for each addition, and then one insertion for each record there is.
void addBuffersFloor(benchmark::State& state)
{
    const Ondrel::Image buffer(8, 8);
    for (auto _ : state) {
        std::unordered_map<unsigned int, std::shared_ptr<ResourceEngine::ImageInfo>> resources;
        std::unordered_map<unsigned int, Ondrel::ImageInfo> sizes;
        for (long i = 0; i < kBuffers; ++i) {
            auto record = std::make_shared<ResourceEngine::ImageInfo>();
            record->image = std::make_shared<Ondrel::Image>(buffer);
            resources[unsigned(i)] = std::move(record);
            sizes.clear();
            for (const auto& [id, info] : resources)
                sizes.emplace(id, info->info);
        }
    }
}

const bool added = [] {
    add("CopyImage, decoding a JPEG", copyImageDecoding);
    add("CopyImage, cached", copyImageCached);
    add("CopyImageInfo during a decode", copyImageInfoWhileDecoding);
    add("AddImageBuffer, 10000 times", addBuffers);
    add("AddImageBuffer, 10000 times/floor", addBuffersFloor);
    return true;
}();

} // namespace

// The library asks Qt where the program lies.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
