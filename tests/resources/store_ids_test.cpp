// Handles: what they are and how they are given out.

#include "teststore.h"

#include <QVariant>

#include <type_traits>

namespace
{

using namespace OndrelTest;
using Ondrel::ResourceId;
using StoreIds = StoreTest;

TEST(ResourceIdType, IsAPlain32BitNumberAndStartsAsNoResource)
{
    static_assert(sizeof(ResourceId) == 4, "one number");
    static_assert(std::is_trivially_copyable_v<ResourceId>, "a value");
    EXPECT_EQ(ResourceId().id, 0u);
    EXPECT_TRUE(ResourceId(7) == ResourceId(7));
    EXPECT_TRUE(ResourceId(7) != ResourceId(8));
}

TEST(ResourceIdType, IsAMetaTypeUnderItsName)
{
    const int type = QMetaType::type("Ondrel::ResourceId");
    ASSERT_NE(type, int(QMetaType::UnknownType));
    EXPECT_EQ(type, qMetaTypeId<ResourceId>());
    const QVariant variant = QVariant::fromValue(ResourceId(0xFFFFFFFF));
    EXPECT_STREQ(variant.typeName(), "Ondrel::ResourceId");
    EXPECT_EQ(variant.value<ResourceId>(), ResourceId(0xFFFFFFFF));
}

TEST(StoreEnumerations, HaveTheNumbersThatHostsSave)
{
    static_assert(sizeof(ResourceEngine::Format) == 4 && sizeof(ResourceEngine::EndManualProcessing) == 4, "");
    EXPECT_EQ(unsigned(ResourceEngine::FormatPNG), 0u);
    EXPECT_EQ(unsigned(ResourceEngine::FormatJPEG), 1u);
    EXPECT_EQ(unsigned(ResourceEngine::FormatTIFF), 2u);
    EXPECT_EQ(unsigned(ResourceEngine::FormatRAW), 3u);
    EXPECT_EQ(unsigned(ResourceEngine::FormatImageBuffer), 4u);
    EXPECT_EQ(unsigned(ResourceEngine::EndManualRevalidate), 0u);
    EXPECT_EQ(unsigned(ResourceEngine::EndManualRebuildSizes), 1u);
    EXPECT_EQ(unsigned(ResourceEngine::EndManualNoChange), 2u);
}

TEST(ProfileWords, AreThePaddedBytesOfTheWordsAndNeverRegistered)
{
    EXPECT_EQ(Ondrel::NoneColorProfile, wordHash("None"));
    EXPECT_EQ(Ondrel::EmbeddedColorProfile, wordHash("Embedded"));
    EXPECT_FALSE(isRegistered(Ondrel::NoneColorProfile));
    EXPECT_FALSE(isRegistered(Ondrel::EmbeddedColorProfile));
}

TEST(StoreOfTheProcess, IsOne)
{
    EXPECT_EQ(&ResourceEngine::Get(), &ResourceEngine::Get());
}

TEST_F(StoreIds, RiseFromOneAndAreNotReused)
{
    const Ondrel::Image image(1, 1);
    ResourceId id;
    for (unsigned int expected = 1; expected <= 3; ++expected) {
        ASSERT_TRUE(store.AddImageBuffer(image, id));
        EXPECT_EQ(id.id, expected);
    }
    EXPECT_TRUE(store.RemoveResource(3));
    EXPECT_TRUE(store.RemoveResource(1));
    ASSERT_TRUE(store.AddImageBuffer(image, id));
    EXPECT_EQ(id.id, 4u);
}

TEST_F(StoreIds, WrapPastTheLastNumberOverZeroToTheFirstFreeOne)
{
    const Ondrel::Image image(1, 1);
    ResourceId id;
    ASSERT_TRUE(store.AddImageBuffer(image, id)); // 1
    ASSERT_TRUE(store.AddImageBuffer(image, id)); // 2
    ASSERT_TRUE(store.RemoveResource(1));
    store.nextId = 0xFFFFFFFE;
    store.resources[0xFFFFFFFF] = record({}, ResourceEngine::FormatImageBuffer);
    ASSERT_TRUE(store.AddImageBuffer(image, id));
    EXPECT_EQ(id.id, 0xFFFFFFFEu);
    ASSERT_TRUE(store.AddImageBuffer(image, id));
    EXPECT_EQ(id.id, 1u); // 0xFFFFFFFF is taken, 0 is none, 1 was removed
    ASSERT_TRUE(store.AddImageBuffer(image, id));
    EXPECT_EQ(id.id, 3u);
}

TEST_F(StoreIds, AreCountedOnEvenIfNothingIsStoredUnderThem)
{
    ResourceMap* map = nullptr;
    ASSERT_TRUE(store.BeginManualResources(&map));
    ResourceId id(99);
    EXPECT_TRUE(store.CreateId(id));
    EXPECT_EQ(id.id, 1u);
    EXPECT_TRUE(store.CreateId(id));
    EXPECT_EQ(id.id, 2u);
    store.nextId = 0xFFFFFFFF;
    EXPECT_TRUE(store.CreateId(id));
    EXPECT_EQ(id.id, 0xFFFFFFFFu);
    EXPECT_EQ(store.nextId, 0u);
    EXPECT_TRUE(store.CreateId(id));
    EXPECT_EQ(id.id, 1u);
    EXPECT_EQ(store.nextId, 2u);
    EXPECT_TRUE(store.EndManualResources(ResourceEngine::EndManualNoChange));
}

TEST_F(StoreIds, AreNotConsumedByAFailedAddition)
{
    ResourceId id(77);
    EXPECT_FALSE(store.AddImageByData(ResourceEngine::FormatPNG, Bytes(100, 1), "bad", id));
    EXPECT_FALSE(store.AddImage("/no such folder/file.png", id));
    EXPECT_FALSE(store.AddRawImage("/no such folder/file.raw", id));
    EXPECT_FALSE(store.AddImageByData(ResourceEngine::FormatImageBuffer, pngWith({}), "buffer", id));
    EXPECT_EQ(id.id, 77u);
    EXPECT_EQ(store.nextId, 1u);
    EXPECT_EQ(add(sRGBPng()).id, 1u);
}

TEST_F(StoreIds, OfOneFileAddedTwiceAreDifferent)
{
    const Bytes file = pngWith({});
    const ResourceId first = add(file), second = add(file);
    EXPECT_NE(first, second);
    EXPECT_EQ(store.resources.size(), 2u);
}

} // namespace
