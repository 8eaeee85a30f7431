// What may happen while a decode holds the store.

#include "teststore.h"

#include "tests/support/testimages.h"

#include <atomic>
#include <thread>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;
using Ondrel::ResourceId;

// A RAW file is validated under the lock, so validation can stand for any decode that holds it.
class StoreLock : public StoreTest
{
protected:
    // The store is held by an addition on another thread until release().
    void hold()
    {
        raw.validate = [this](const std::shared_ptr<ResourceEngine::ImageInfo>&, void**) {
            gate.stopHere();
            return true;
        };
        addition = std::async(std::launch::async, [this] {
            ResourceId id;
            return store.AddImageByData(ResourceEngine::FormatRAW, Bytes(4, 1), "raw", id);
        });
        gate.waitUntilReached();
    }
    void release()
    {
        gate.open();
        EXPECT_TRUE(addition.get());
    }

    ScriptedRawDecoder raw;
    Gate gate;
    std::future<bool> addition;
};

TEST_F(StoreLock, IsTriedInVainDuringADecode)
{
    hold();
    ResourceMap marker;
    ResourceMap* map = &marker;
    EXPECT_FALSE(store.TryBeginManualResources(&map)); // would never return if it waited
    EXPECT_EQ(map, &marker);
    release();
    EXPECT_TRUE(store.TryBeginManualResources(&map));
    EXPECT_EQ(map, &store.resources);
    EXPECT_TRUE(store.EndManualResources(ResourceEngine::EndManualNoChange));
}

TEST_F(StoreLock, IsTriedInVainWhileAnImageIsCopied)
{
    ResourceId id;
    const Bytes file = pngFile(randomPng(1500, 1000, PNG_COLOR_TYPE_RGB_ALPHA, 8));
    ASSERT_TRUE(store.AddImageByData(ResourceEngine::FormatPNG, file, "large", id));
    std::atomic<bool> stop{false};
    std::thread decoder([&] {
        while (!stop) {
            copy(id);
            store.ClearCache();
        }
    });
    ResourceMap marker;
    ResourceMap* map = &marker;
    while (store.TryBeginManualResources(&map)) {
        store.EndManualResources(ResourceEngine::EndManualNoChange);
        map = &marker;
        std::this_thread::yield();
    }
    EXPECT_EQ(map, &marker);
    stop = true;
    decoder.join();
}

TEST_F(StoreLock, DoesNotKeepSizesWaitingDuringADecode)
{
    const ResourceId id = add(pngWith({}));
    hold();
    Ondrel::ImageInfo info;
    EXPECT_TRUE(store.CopyImageInfo(id, info)); // would never return if it waited
    EXPECT_EQ(info.width, 5u);
    EXPECT_FALSE(store.CopyImageInfo(2, info));
    release();
    EXPECT_TRUE(store.CopyImageInfo(2, info));
}

TEST_F(StoreLock, KeepsAllOthersWaitingDuringADecode)
{
    const ResourceId id = add(pngWith({}));
    hold();
    std::promise<void> started;
    auto other = std::async(std::launch::async, [&] {
        started.set_value();
        return copy(id);
    });
    started.get_future().wait();
    EXPECT_EQ(other.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    release();
    EXPECT_NE(other.get(), nullptr);
}

} // namespace
