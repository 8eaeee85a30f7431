// The manual mode: records edited directly, and what its end repairs.

#include "teststore.h"

#include "tests/support/testimages.h"

#include <ondrel/color/colorprofiles.h>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;
using Ondrel::ResourceId;

class StoreManualMode : public StoreTest
{
protected:
    ResourceMap& begin()
    {
        ResourceMap* map = nullptr;
        EXPECT_TRUE(store.BeginManualResources(&map));
        return *map;
    }
    bool end(ResourceEngine::EndManualProcessing processing) { return store.EndManualResources(processing); }

    // Whether another thread finds the store locked.
    bool locked()
    {
        return !std::async(std::launch::async, [this] {
                    ResourceMap* map = nullptr;
                    const bool begun = store.TryBeginManualResources(&map);
                    if (begun)
                        store.EndManualResources(ResourceEngine::EndManualNoChange);
                    return begun;
                }).get();
    }
};

class StoreRevalidation : public StoreManualMode
{
protected:
    void revalidate() { EXPECT_TRUE(end(ResourceEngine::EndManualRevalidate)); }

    // The embedded hashes in the order in which a pass over the records meets them.
    std::vector<Hash> hashesInRecordOrder() const
    {
        std::vector<Hash> hashes;
        for (const auto& entry : store.resources)
            if (entry.second->colorProfileHash)
                hashes.push_back(*entry.second->colorProfileHash);
        return hashes;
    }
};

TEST_F(StoreManualMode, HandsOutTheRecordsAndLocksUntilItsEnd)
{
    ResourceMap* map = nullptr;
    EXPECT_TRUE(store.BeginManualResources(&map));
    EXPECT_EQ(map, &store.resources);
    EXPECT_TRUE(locked());
    EXPECT_TRUE(end(ResourceEngine::EndManualNoChange));
    EXPECT_FALSE(locked());
}

TEST_F(StoreManualMode, IsTriedWithoutWaiting)
{
    ResourceMap* map = nullptr;
    EXPECT_TRUE(store.TryBeginManualResources(&map));
    EXPECT_EQ(map, &store.resources);
    EXPECT_TRUE(locked());
    auto other = std::async(std::launch::async, [this] {
        ResourceMap marker;
        ResourceMap* untouched = &marker;
        return !store.TryBeginManualResources(&untouched) && untouched == &marker;
    });
    EXPECT_TRUE(returns(other));
    EXPECT_TRUE(end(ResourceEngine::EndManualNoChange));
    EXPECT_TRUE(other.get());
    EXPECT_FALSE(locked());
}

TEST_F(StoreManualMode, LetsSizesBeAskedMeanwhile)
{
    const ResourceId id = add(pngWith({}));
    begin();
    auto other = std::async(std::launch::async, [this, id] {
        Ondrel::ImageInfo info;
        return store.CopyImageInfo(id, info) && info.width == 5;
    });
    EXPECT_TRUE(returns(other));
    end(ResourceEngine::EndManualNoChange);
    EXPECT_TRUE(other.get());
}

TEST_F(StoreManualMode, KeepsAllOtherOperationsWaiting)
{
    const ResourceId id = add(pngWith({}));
    const std::vector<std::function<bool()>> operations = {
        [&] {
            ResourceId added;
            return store.AddImageBuffer(Image(1, 1), added);
        },
        [&] { return copy(id) != nullptr; },
        [&] { return store.SumMemorySizes({id}) > 0; },
        [&] { return store.ClearCache(); },
        [&] {
            ResourceEngine::Format format;
            Bytes data;
            std::string name;
            return store.CopyData(id, format, data, name);
        },
        [&] { return store.RemoveResource(id); },
    };
    for (const auto& operation : operations) {
        begin();
        std::promise<void> started;
        auto other = std::async(std::launch::async, [&] {
            started.set_value();
            return operation();
        });
        started.get_future().wait();
        EXPECT_EQ(other.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
        end(ResourceEngine::EndManualNoChange);
        EXPECT_TRUE(other.get());
    }
}

TEST_F(StoreManualMode, EndsWithNothingButUnlockingForTwoAndMore)
{
    const ResourceId id = add(pngWith({}));
    const auto image = copy(id);
    for (const unsigned int processing : {2u, 3u, 0xFFFFFFFFu}) {
        begin()[50] = record(pngWith(iccOfGamma(1.81)), ResourceEngine::FormatPNG);
        EXPECT_TRUE(end(ResourceEngine::EndManualProcessing(processing)));
        EXPECT_FALSE(locked());
        Ondrel::ImageInfo info;
        EXPECT_FALSE(store.CopyImageInfo(50, info));
        EXPECT_FALSE(isRegistered(hashOf(iccOfGamma(1.81))));
        EXPECT_EQ(copy(id), image);
    }
}

TEST_F(StoreManualMode, CanEndWithTheSizesRebuiltAlone)
{
    const ResourceId id = add(pngWith({}));
    const auto image = copy(id);
    const auto added = record(pngWith(iccOfGamma(1.82)), ResourceEngine::FormatPNG);
    added->info.width = 123; // nothing is validated
    ResourceMap& map = begin();
    map[50] = added;
    map[51] = record({}, ResourceEngine::FormatPNG);
    EXPECT_TRUE(end(ResourceEngine::EndManualRebuildSizes));
    EXPECT_FALSE(locked());
    Ondrel::ImageInfo info;
    EXPECT_TRUE(store.CopyImageInfo(50, info));
    EXPECT_EQ(info.width, 123u);
    EXPECT_TRUE(store.CopyImageInfo(51, info));
    EXPECT_EQ(added->colorProfileHash, nullptr);
    EXPECT_FALSE(isRegistered(hashOf(iccOfGamma(1.82))));
    EXPECT_EQ(copy(id), image); // the cache stays
    begin().erase(50);
    end(ResourceEngine::EndManualRebuildSizes);
    EXPECT_FALSE(store.CopyImageInfo(50, info));
}

TEST_F(StoreRevalidation, CompletesRecordsThatOnlyHaveData)
{
    const Bytes icc = iccOfGamma(1.83);
    ResourceMap& map = begin();
    map[7] = record(pngWith(icc), ResourceEngine::FormatTIFF); // the wrong word
    map[4000000000u] = record(jpegWith({}), ResourceEngine::FormatJPEG);
    revalidate();
    const ResourceEngine::ImageInfo& png = *store.resources.at(7);
    EXPECT_EQ(png.format, ResourceEngine::FormatPNG);
    EXPECT_EQ(png.fileName, "record");
    ASSERT_NE(png.colorProfileHash, nullptr);
    EXPECT_EQ(*png.colorProfileHash, hashOf(icc));
    EXPECT_EQ(Ondrel::ColorManager::copyColorProfileDataByHash(hashOf(icc)), png.iccProfile);
    EXPECT_EQ(std::count(store.usedColorProfiles.begin(), store.usedColorProfiles.end(), hashOf(icc)), 1);
    Ondrel::ImageInfo info;
    EXPECT_TRUE(store.CopyImageInfo(7, info));
    EXPECT_EQ(info.width, 5u);
    EXPECT_TRUE(store.CopyImageInfo(4000000000u, info));
    EXPECT_EQ(info.width, 6u);
    EXPECT_NE(copy(7), nullptr);
}

TEST_F(StoreRevalidation, RegistersNewProfilesAndForgetsThoseThatAreGone)
{
    const Bytes stays = iccOfGamma(1.84), goes = iccOfGamma(1.85), comes = iccOfGamma(1.86);
    add(pngWith(stays));
    const ResourceId removed = add(jpegWith(goes));
    ResourceMap& map = begin();
    map.erase(removed.id);
    map[20] = record(tiffWith(comes), ResourceEngine::FormatTIFF);
    map[21] = record(pngWith(comes), ResourceEngine::FormatPNG);
    revalidate();
    EXPECT_TRUE(isRegistered(hashOf(stays)));
    EXPECT_FALSE(isRegistered(hashOf(goes)));
    EXPECT_TRUE(isRegistered(hashOf(comes)));
    EXPECT_EQ(store.usedColorProfiles.size(), 2u);
    EXPECT_TRUE(store.RemoveResource(20));
    EXPECT_TRUE(isRegistered(hashOf(comes)));
    EXPECT_TRUE(store.RemoveResource(21));
    EXPECT_FALSE(isRegistered(hashOf(comes)));
}

TEST_F(StoreRevalidation, FollowsARecordWhoseFileWasExchanged)
{
    const Bytes before = iccOfGamma(1.87), after = iccOfGamma(1.88);
    const ResourceId id = add(pngWith(before));
    copy(id);
    begin().at(id.id)->data = jpegWith(after);
    revalidate();
    EXPECT_FALSE(isRegistered(hashOf(before)));
    EXPECT_TRUE(isRegistered(hashOf(after)));
    EXPECT_EQ(*store.resources.at(id.id)->colorProfileHash, hashOf(after));
    EXPECT_EQ(store.usedColorProfiles, std::vector<Hash>{hashOf(after)});
    const auto image = copy(id);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->width, 6u);
}

TEST_F(StoreRevalidation, KeepsTheFormerHashOfARecordWithoutAProfile)
{
    const Bytes icc = iccOfGamma(1.89);
    const ResourceId id = add(pngWith(icc));
    begin().at(id.id)->data = pngFile(randomPng(4, 4, PNG_COLOR_TYPE_GRAY, 8), [](png_struct* png, png_info* info) {
        const Bytes grey = savedBytes(greyProfile().get());
        png_set_iCCP(png, info, "Grey", 0, grey.data(), png_uint_32(grey.size()));
    });
    revalidate();
    ASSERT_NE(store.resources.at(id.id)->colorProfileHash, nullptr);
    EXPECT_EQ(*store.resources.at(id.id)->colorProfileHash, hashOf(icc));
    EXPECT_TRUE(store.usedColorProfiles.empty()); // it counts as used no more
    EXPECT_FALSE(isRegistered(hashOf(icc)));
    EXPECT_EQ(store.resources.at(id.id)->info.width, 4u);
}

TEST_F(StoreRevalidation, KeepsARecordThatFailsWithItsFormerDescription)
{
    const Bytes icc = iccOfGamma(1.91);
    const ResourceId id = add(jpegWith(icc));
    const Bytes profile = store.resources.at(id.id)->iccProfile;
    begin().at(id.id)->data = Bytes(50, 9);
    revalidate();
    const ResourceEngine::ImageInfo& info = *store.resources.at(id.id);
    EXPECT_EQ(info.format, ResourceEngine::FormatJPEG);
    EXPECT_EQ(info.info.width, 6u);
    EXPECT_EQ(info.iccProfile, profile);
    EXPECT_EQ(*info.colorProfileHash, hashOf(icc));
    EXPECT_FALSE(isRegistered(hashOf(icc)));
    Ondrel::ImageInfo copied;
    EXPECT_TRUE(store.CopyImageInfo(id, copied));
    EXPECT_EQ(copied.width, 6u);
    EXPECT_EQ(copy(id), nullptr);
}

TEST_F(StoreRevalidation, LeavesBuffersAlone)
{
    ResourceId id;
    ASSERT_TRUE(store.AddImageBuffer(randomImage(3, 3, 1), id));
    ResourceEngine::ImageInfo& info = *begin().at(id.id);
    info.info.width = 77; // not looked at
    info.data = pngWith(iccOfGamma(1.92));
    revalidate();
    EXPECT_EQ(info.format, ResourceEngine::FormatImageBuffer);
    EXPECT_EQ(info.colorProfileHash, nullptr);
    Ondrel::ImageInfo copied;
    EXPECT_TRUE(store.CopyImageInfo(id, copied));
    EXPECT_EQ(copied.width, 77u);
    EXPECT_FALSE(isRegistered(hashOf(iccOfGamma(1.92))));
}

TEST_F(StoreRevalidation, EmptiesTheCache)
{
    const ResourceId id = add(pngWith({}));
    const auto image = copy(id);
    begin();
    revalidate();
    EXPECT_TRUE(store.cachedImages.empty());
    EXPECT_NE(copy(id), image);
    EXPECT_FALSE(locked());
}

TEST_F(StoreRevalidation, AsksTheRawDecoderAboutRawFiles)
{
    ScriptedRawDecoder raw;
    const Bytes icc = iccOfGamma(1.93);
    raw.validate = [&icc](const std::shared_ptr<ResourceEngine::ImageInfo>& info, void** profile) {
        info->info.width = 40;
        *profile = cmsOpenProfileFromMem(icc.data(), cmsUInt32Number(icc.size()));
        return true;
    };
    begin()[6] = record(pngWith({}), ResourceEngine::FormatRAW); // would pass for a PNG
    revalidate();
    const ResourceEngine::ImageInfo& info = *store.resources.at(6);
    EXPECT_EQ(info.format, ResourceEngine::FormatRAW);
    EXPECT_EQ(info.info.width, 40u);
    ASSERT_NE(info.colorProfileHash, nullptr);
    EXPECT_EQ(*info.colorProfileHash, hashOf(icc));
    EXPECT_TRUE(isRegistered(hashOf(icc)));
}

TEST_F(StoreRevalidation, ListsProfilesInTheOrderOfTheRecordsEachOnce)
{
    for (const double gamma : {1.14, 1.15, 1.16, 1.17}) {
        add(pngWith(iccOfGamma(gamma)));
        add(jpegWith(iccOfGamma(gamma)));
    }
    begin();
    revalidate();
    std::vector<Hash> expected;
    for (const Hash& hash : hashesInRecordOrder())
        if (std::find(expected.begin(), expected.end(), hash) == expected.end())
            expected.push_back(hash);
    ASSERT_EQ(expected.size(), 4u);
    EXPECT_EQ(store.usedColorProfiles, expected);
}

// The profiles before and after are compared in the order in which they stand, which std::set_difference does not
// expect: where the orders differ, a profile that stays in use is taken out and registered anew.
TEST_F(StoreRevalidation, ComparesTheListsOfProfilesUnsorted)
{
    const auto less = [](const Hash& a, const Hash& b) { return std::memcmp(a.data(), b.data(), 32) < 0; };
    std::vector<Hash> hashes;
    std::vector<ResourceId> ids;
    for (const double gamma : {1.21, 1.22, 1.23, 1.24, 1.25}) {
        ids.push_back(add(pngWith(iccOfGamma(gamma))));
        hashes.push_back(hashOf(iccOfGamma(gamma)));
    }
    begin();
    const std::vector<Hash> after = hashesInRecordOrder();
    std::sort(hashes.begin(), hashes.end(), less);
    bool someStayed = false, someWereMadeAnew = false;
    for (int turn = 0; turn < 120; ++turn) {
        store.usedColorProfiles = hashes;
        std::vector<Hash> anew;
        std::set_difference(hashes.begin(), hashes.end(), after.begin(), after.end(), std::back_inserter(anew), less);
        std::vector<const void*> handles;
        for (const Hash& hash : hashes)
            handles.push_back(registeredHandle(hash));
        revalidate();
        for (std::size_t i = 0; i < hashes.size(); ++i) {
            const bool expected = std::find(anew.begin(), anew.end(), hashes[i]) != anew.end();
            ASSERT_TRUE(isRegistered(hashes[i]));
            EXPECT_EQ(registeredHandle(hashes[i]) != handles[i], expected) << "order " << turn << ", profile " << i;
            (expected ? someWereMadeAnew : someStayed) = true;
        }
        EXPECT_EQ(store.usedColorProfiles, after);
        begin();
        std::next_permutation(hashes.begin(), hashes.end(), less);
    }
    end(ResourceEngine::EndManualNoChange);
    EXPECT_TRUE(someStayed && someWereMadeAnew);
}

} // namespace
