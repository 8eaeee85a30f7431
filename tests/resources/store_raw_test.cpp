// RAW files: the store is unlocked while they are decoded, so everything may change meanwhile.

#include "teststore.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colorprofiles.h>

#include <atomic>
#include <new>

namespace
{

using namespace OndrelTest;
using Ondrel::EmbeddedColorProfile;
using Ondrel::Image;
using Ondrel::ResourceId;
using Ondrel::RunStatus;
using Holder = std::shared_ptr<const Image>;

class StoreRaw : public StoreTest
{
protected:
    ResourceId addRaw(const Bytes& data = Bytes(10, 1))
    {
        ResourceId id;
        EXPECT_TRUE(store.AddImageByData(ResourceEngine::FormatRAW, data, "raw", id));
        return id;
    }

    // A call that takes the lock comes through, so no one has left it locked.
    bool unlocked()
    {
        ResourceMap* map = nullptr;
        return store.TryBeginManualResources(&map) && store.EndManualResources(ResourceEngine::EndManualNoChange);
    }

    // Decoding stops at the gate.
    void stopDecodingAt(Gate& gate)
    {
        raw.process = [&gate](ResourceId, const RunStatus&) {
            gate.stopHere();
            return randomImage(3, 2, 1);
        };
    }

    ScriptedRawDecoder raw;
};

// CopyImage on a thread of its own.
struct Decoding {
    Decoding(FreshStore& store, ResourceId id, RunStatus status = {})
        : call(std::async(std::launch::async, [this, &store, id, status] {
            return store.CopyImage(id, image, EmbeddedColorProfile, status);
        }))
    {
    }
    Holder image;
    std::future<bool> call;
};

TEST_F(StoreRaw, AdditionValidatesTheBytesWithTheRawDecoderAlone)
{
    const Bytes file = pngWith({}); // that it is a PNG does not count
    Bytes seen;
    raw.validate = [&seen](const std::shared_ptr<ResourceEngine::ImageInfo>& info, void** profile) {
        EXPECT_EQ(info->format, ResourceEngine::FormatRAW);
        EXPECT_NE(profile, nullptr);
        EXPECT_EQ(*profile, nullptr);
        seen = info->data;
        info->info.width = 8;
        info->info.height = 9;
        return true;
    };
    const ResourceId id = addRaw(file);
    EXPECT_EQ(seen, file);
    EXPECT_EQ(store.resources.at(id.id)->format, ResourceEngine::FormatRAW);
    EXPECT_EQ(store.resources.at(id.id)->colorProfileHash, nullptr);
    Ondrel::ImageInfo info;
    EXPECT_TRUE(store.CopyImageInfo(id, info));
    EXPECT_EQ(info.width, 8u);
    EXPECT_EQ(info.height, 9u);
}

TEST_F(StoreRaw, AdditionFromAFileReadsItWhole)
{
    const TemporaryFolder folder;
    const Bytes data = randomBytes(1000, 1);
    writeFile(folder.path("photo.cr2"), data);
    ResourceId id;
    ASSERT_TRUE(store.AddRawImage(folder.path("photo.cr2").toStdString(), id));
    EXPECT_EQ(store.resources.at(id.id)->data, data);
    EXPECT_EQ(store.resources.at(id.id)->format, ResourceEngine::FormatRAW);
    EXPECT_EQ(store.resources.at(id.id)->fileName, folder.path("photo.cr2").toStdString());
}

TEST_F(StoreRaw, AdditionIsRefusedWithTheRawDecoder)
{
    raw.validate = [](const std::shared_ptr<ResourceEngine::ImageInfo>&, void**) { return false; };
    ResourceId id(4);
    EXPECT_FALSE(store.AddImageByData(ResourceEngine::FormatRAW, pngWith({}), "raw", id));
    EXPECT_EQ(id.id, 4u);
    EXPECT_EQ(store.nextId, 1u);
    EXPECT_TRUE(store.resources.empty());
}

TEST_F(StoreRaw, AdditionNeverAsksTheRawDecoderAboutOtherFormats)
{
    raw.validate = [](const std::shared_ptr<ResourceEngine::ImageInfo>&, void**) {
        ADD_FAILURE();
        return true;
    };
    ResourceId id;
    EXPECT_FALSE(store.AddImageByData(ResourceEngine::FormatPNG, randomBytes(100, 1), "noise", id));
}

TEST_F(StoreRaw, ProfilesAreRegisteredAsThoseOfOtherFiles)
{
    const Bytes icc = iccOfGamma(1.94);
    raw.validate = [&icc](const std::shared_ptr<ResourceEngine::ImageInfo>&, void** profile) {
        *profile = cmsOpenProfileFromMem(icc.data(), cmsUInt32Number(icc.size()));
        return true;
    };
    const ResourceId first = addRaw();
    captureStandardOutput([&] { addRaw(); });
    EXPECT_EQ(store.usedColorProfiles, std::vector<Hash>{hashOf(icc)});
    EXPECT_TRUE(store.RemoveResource(first));
    EXPECT_TRUE(isRegistered(hashOf(icc)));
    EXPECT_TRUE(store.RemoveResource(2));
    EXPECT_FALSE(isRegistered(hashOf(icc)));
}

TEST_F(StoreRaw, WithoutADecoderIsRefused)
{
    const ResourceId id = addRaw();
    Ondrel::rawDecoder() = {nullptr, nullptr};
    ResourceId refused(3);
    EXPECT_FALSE(store.AddImageByData(ResourceEngine::FormatRAW, Bytes(10, 1), "raw", refused));
    EXPECT_EQ(refused.id, 3u);
    EXPECT_EQ(copy(id), nullptr);
    EXPECT_TRUE(store.cachedImages.empty());
    EXPECT_TRUE(unlocked());
}

TEST_F(StoreRaw, DecodingGetsIdAndStatusAndMovesItsResult)
{
    const int word = 2;
    const std::uint16_t* block = nullptr;
    const ResourceId id = addRaw();
    raw.process = [&](ResourceId asked, const RunStatus& status) {
        EXPECT_EQ(asked, id);
        EXPECT_EQ(status.state, &word);
        Image image = randomImage(3, 2, 1);
        image.rawFilters = 7;
        block = image.data;
        return image;
    };
    Holder image;
    EXPECT_TRUE(store.CopyImage(id, image, EmbeddedColorProfile, {&word}));
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->data, block);
    EXPECT_EQ(image->rawFilters, 7u);
    EXPECT_EQ(copy(id), image); // it is cached, and not decoded again
}

TEST_F(StoreRaw, DecodingLeavesTheStoreToOthers)
{
    const Bytes png = pngWith({});
    const ResourceId id = addRaw(), other = add(png);
    Gate gate;
    stopDecodingAt(gate);
    Decoding decoding(store, id);
    gate.waitUntilReached();
    EXPECT_TRUE(unlocked());
    EXPECT_NE(copy(other), nullptr);
    ResourceEngine::Format format;
    Bytes data;
    std::string name;
    EXPECT_TRUE(store.CopyData(id, format, data, name)); // as the decoder itself does
    EXPECT_TRUE(store.RemoveResource(other));
    const ResourceId added = add(png);
    EXPECT_EQ(added.id, 3u);
    gate.open();
    EXPECT_TRUE(decoding.call.get());
    EXPECT_TRUE(samePixels(*decoding.image, randomImage(3, 2, 1)));
    EXPECT_EQ(copy(id), decoding.image);
}

TEST_F(StoreRaw, RemovedDuringDecodingFailsAndCachesNothing)
{
    const ResourceId id = addRaw();
    Gate gate;
    stopDecodingAt(gate);
    Decoding decoding(store, id);
    gate.waitUntilReached();
    EXPECT_TRUE(store.RemoveResource(id));
    gate.open();
    EXPECT_FALSE(decoding.call.get());
    EXPECT_TRUE(store.cachedImages.empty());
    EXPECT_TRUE(unlocked());
}

TEST_F(StoreRaw, ExchangedDuringDecodingIsFoundAgainById)
{
    const ResourceId id = addRaw();
    Gate gate;
    stopDecodingAt(gate);
    Decoding decoding(store, id);
    gate.waitUntilReached();
    ResourceMap* map = nullptr;
    ASSERT_TRUE(store.BeginManualResources(&map));
    (*map)[id.id] = record(Bytes(20, 2), ResourceEngine::FormatRAW);
    store.EndManualResources(ResourceEngine::EndManualNoChange);
    gate.open();
    EXPECT_TRUE(decoding.call.get());
    EXPECT_EQ(store.cachedImages.count(id.id), 1u);
}

TEST_F(StoreRaw, CancelledDuringDecodingFailsAndLeavesTheStoreUnlocked)
{
    const ResourceId id = addRaw();
    std::atomic<int> word{0};
    static_assert(sizeof(word) == sizeof(int), "read as a plain int");
    Gate gate;
    stopDecodingAt(gate);
    Decoding decoding(store, id, {reinterpret_cast<const int*>(&word)});
    gate.waitUntilReached();
    word = 1;
    gate.open();
    EXPECT_FALSE(decoding.call.get());
    EXPECT_TRUE(store.cachedImages.empty());
    EXPECT_TRUE(unlocked());
    raw.process = [](ResourceId, const RunStatus&) { return randomImage(3, 2, 2); };
    const auto image = copy(id);
    ASSERT_NE(image, nullptr);
    EXPECT_TRUE(samePixels(*image, randomImage(3, 2, 2)));
    EXPECT_TRUE(store.RemoveResource(id));
}

TEST_F(StoreRaw, GoesOnForEveryStateButOne)
{
    const ResourceId id = addRaw();
    for (const int word : {0, 2, -1, 256 + 1, 65536}) {
        Holder image;
        store.ClearCache();
        EXPECT_TRUE(store.CopyImage(id, image, EmbeddedColorProfile, {&word})) << word;
    }
    const int cancelled = 1;
    Holder image;
    store.ClearCache();
    EXPECT_FALSE(store.CopyImage(id, image, EmbeddedColorProfile, {&cancelled}));
}

TEST_F(StoreRaw, InTheCacheIsGivenEvenIfCancelled)
{
    const ResourceId id = addRaw();
    const auto image = copy(id);
    const int cancelled = 1;
    Holder again;
    EXPECT_TRUE(store.CopyImage(id, again, EmbeddedColorProfile, {&cancelled}));
    EXPECT_EQ(again, image);
}

TEST_F(StoreRaw, IsConvertedToTheWantedProfile)
{
    const Hash proPhoto =
        Ondrel::ColorManager::buildColorProfileHash(Profile(Ondrel::CreateProPhotoRGBColorProfile()).get());
    Image pixels = randomImage(3, 2, 1);
    pixels.colorProfile = Ondrel::DefaultColorProfileHash;
    pixels.rawFilters = 3;
    raw.process = [&pixels](ResourceId, const RunStatus&) { return pixels; };
    const ResourceId id = addRaw();
    const auto embedded = copy(id), converted = copy(id, proPhoto);
    ASSERT_TRUE(embedded && converted);
    EXPECT_TRUE(samePixels(*embedded, pixels));
    EXPECT_TRUE(samePixels(*converted, convertedBetween(pixels, Ondrel::DefaultColorProfileHash, proPhoto)));
    EXPECT_EQ(converted->colorProfile, proPhoto);
    EXPECT_EQ(converted->rawFilters, 3u);
    EXPECT_EQ(copy(id, wordHash("unknown")), nullptr);
    EXPECT_TRUE(unlocked());
}

TEST_F(StoreRaw, ThatCannotBeOpenedIsAnImageOfSizeZero)
{
    raw.process = [](ResourceId, const RunStatus&) { return Image(); };
    const ResourceId id = addRaw();
    const auto image = copy(id);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->width, 0u);
    EXPECT_EQ(copy(id), image);
    EXPECT_EQ(copy(id, Ondrel::DefaultColorProfileHash), nullptr); // it names no profile to convert from
}

TEST_F(StoreRaw, DecodesOnSeveralThreadsAtOnce)
{
    const ResourceId first = addRaw(), second = addRaw();
    Gate gates[2];
    raw.process = [&](ResourceId id, const RunStatus&) {
        gates[id == first ? 0 : 1].stopHere();
        return randomImage(3, 2, id.id);
    };
    Decoding a(store, first), b(store, second);
    gates[0].waitUntilReached();
    gates[1].waitUntilReached(); // both are inside
    gates[1].open();
    EXPECT_TRUE(b.call.get());
    gates[0].open();
    EXPECT_TRUE(a.call.get());
    EXPECT_TRUE(samePixels(*a.image, randomImage(3, 2, first.id)));
    EXPECT_TRUE(samePixels(*b.image, randomImage(3, 2, second.id)));
}

TEST_F(StoreRaw, DecoderThatRunsOutOfMemoryLeavesTheStoreUsable)
{
    const ResourceId id = addRaw();
    raw.process = [](ResourceId, const RunStatus&) -> Image { throw std::bad_alloc(); };
    Holder image;
    EXPECT_THROW(store.CopyImage(id, image, EmbeddedColorProfile, {}), std::bad_alloc);
    EXPECT_TRUE(store.cachedImages.empty());
    EXPECT_TRUE(unlocked());
    raw.validate = [](const std::shared_ptr<ResourceEngine::ImageInfo>&, void**) -> bool { throw std::bad_alloc(); };
    ResourceId none(8);
    EXPECT_THROW(store.AddImageByData(ResourceEngine::FormatRAW, Bytes(4, 1), "raw", none), std::bad_alloc);
    EXPECT_EQ(none.id, 8u);
    EXPECT_EQ(store.resources.size(), 1u);
    EXPECT_TRUE(unlocked());
}

} // namespace
