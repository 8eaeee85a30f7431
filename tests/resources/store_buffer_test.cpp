// Buffer resources: generated images that the store keeps as pixels.

#include "teststore.h"

#include "tests/support/testimages.h"

#include <ondrel/pixel/painter.h>
#include <ondrel/pixel/scale.h>

namespace
{

using namespace OndrelTest;
using Ondrel::EmbeddedColorProfile;
using Ondrel::Image;
using Ondrel::ResourceId;
using Rect = Ondrel::RectT<int>;
using Holder = std::shared_ptr<const Image>;

class StoreBuffers : public StoreTest
{
protected:
    ResourceId addBuffer(const Image& image)
    {
        ResourceId id;
        EXPECT_TRUE(store.AddImageBuffer(image, id));
        return id;
    }
    bool copyInto(Holder& holder, ResourceId id) { return store.CopyImage(id, holder, EmbeddedColorProfile, {}); }
};

class StoreSubImages : public StoreBuffers
{
protected:
    const Image stored = randomImage(10, 8, 1);
    const ResourceId id = addBuffer(stored);
};

TEST_F(StoreBuffers, AreDeepCopies)
{
    Image image = randomImage(4, 3, 1);
    image.colorProfile = wordHash("profile");
    image.rawFilters = 5;
    const Image original = image;
    const ResourceId id = addBuffer(image);
    image.FastFill(0);
    const ResourceEngine::ImageInfo& info = *store.resources.at(id.id);
    EXPECT_EQ(info.format, ResourceEngine::FormatImageBuffer);
    EXPECT_TRUE(info.data.empty());
    ASSERT_NE(info.image, nullptr);
    EXPECT_TRUE(samePixels(*info.image, original));
    EXPECT_EQ(info.info.width, 4u);
    EXPECT_EQ(info.info.height, 3u);
    const auto copied = copy(id);
    ASSERT_NE(copied, nullptr);
    EXPECT_NE(copied, info.image);
    EXPECT_TRUE(samePixels(*copied, original));
    EXPECT_EQ(copied->colorProfile, original.colorProfile);
    EXPECT_EQ(copied->rawFilters, 5u);
}

TEST_F(StoreBuffers, MayBeEmpty)
{
    for (const Image& image : {Image(), Image(0, 5), Image(5, 0)}) {
        const ResourceId id = addBuffer(image);
        Ondrel::ImageInfo info;
        EXPECT_TRUE(store.CopyImageInfo(id, info));
        EXPECT_EQ(info.width, image.width);
        EXPECT_EQ(info.height, image.height);
        const auto copied = copy(id);
        ASSERT_NE(copied, nullptr);
        EXPECT_EQ(copied->width, image.width);
        EXPECT_EQ(copied->height, image.height);
    }
}

TEST_F(StoreBuffers, AreCopiedIntoAFittingHolderInPlace)
{
    const Image stored = randomImage(6, 4, 1);
    const ResourceId id = addBuffer(stored);
    Holder holder = Image(6, 4).toPtr();
    const Image* const object = holder.get();
    const std::uint16_t* const block = holder->data;
    EXPECT_TRUE(copyInto(holder, id));
    EXPECT_EQ(holder.get(), object);
    EXPECT_EQ(holder->data, block);
    EXPECT_TRUE(samePixels(*holder, stored));
}

TEST_F(StoreBuffers, ReplaceAHolderThatDoesNotFit)
{
    const Image stored = randomImage(6, 4, 1);
    const ResourceId id = addBuffer(stored);
    for (const Image& image : {Image(4, 6), Image(12, 2), Image(5, 4), Image(60, 40), Image()}) {
        const Holder before = image.toPtr();
        Holder holder = before;
        EXPECT_TRUE(copyInto(holder, id));
        EXPECT_NE(holder, before);
        EXPECT_TRUE(samePixels(*holder, stored));
        EXPECT_TRUE(samePixels(*before, image)); // what others hold is not touched
    }
}

TEST_F(StoreBuffers, CompareBlocksNotSizesWithTheHolder)
{
    // Both blocks were made for more pixels, and of the same size.
    const Image stored = shrunkImage(6, 4, 1);
    const ResourceId id = addBuffer(stored);
    Holder fitting = shrunkImage(6, 4, 2).toPtr(), exact = Image(6, 4).toPtr();
    const Image* const object = fitting.get();
    const Holder before = exact;
    EXPECT_TRUE(copyInto(fitting, id) && copyInto(exact, id));
    EXPECT_EQ(fitting.get(), object);
    EXPECT_NE(exact, before);
    EXPECT_TRUE(samePixels(*fitting, stored) && samePixels(*exact, stored));
    EXPECT_EQ(exact->sizeBytes, stored.sizeBytes);
}

TEST_F(StoreBuffers, IgnoreTheWantedProfileAndTheCache)
{
    Image stored = randomImage(6, 4, 1);
    stored.colorProfile = Ondrel::DefaultColorProfileHash;
    const ResourceId id = addBuffer(stored);
    for (const Hash& profile : {Hash{}, wordHash("unknown"), EmbeddedColorProfile}) {
        const auto copied = copy(id, profile);
        ASSERT_NE(copied, nullptr);
        EXPECT_TRUE(samePixels(*copied, stored));
        EXPECT_EQ(copied->colorProfile, Ondrel::DefaultColorProfileHash);
        EXPECT_NE(copy(id, profile), copied); // one of one's own
    }
    EXPECT_TRUE(store.cachedImages.empty());
}

TEST_F(StoreBuffers, WithoutAnImageAreRefused)
{
    ResourceMap* map = nullptr;
    store.BeginManualResources(&map);
    (*map)[3] = record({}, ResourceEngine::FormatImageBuffer);
    store.EndManualResources(ResourceEngine::EndManualNoChange);
    const Holder before = Image(2, 2).toPtr();
    Holder holder = before;
    EXPECT_FALSE(copyInto(holder, 3));
    EXPECT_FALSE(store.CopySubImage(3, holder, {2, 2}, {0, 0, 2, 2}, false));
    EXPECT_EQ(holder, before);
}

TEST_F(StoreBuffers, OfTenThousandKeepTheSizesRight)
{
    const unsigned int count = 10000;
    const Image image(1, 1);
    ResourceId id;
    for (unsigned int i = 1; i <= count; ++i) {
        ASSERT_TRUE(store.AddImageBuffer(image, id));
        ASSERT_EQ(id.id, i);
    }
    for (unsigned int i = 1; i <= count; i += 2)
        ASSERT_TRUE(store.RemoveResource(i));
    Ondrel::ImageInfo info;
    std::vector<ResourceId> ids;
    for (unsigned int i = 1; i <= count; ++i) {
        ids.push_back(i);
        ASSERT_EQ(store.CopyImageInfo(i, info), i % 2 == 0) << i;
    }
    EXPECT_EQ(store.SumMemorySizes(ids), count / 2 * 8);
    EXPECT_EQ(store.sizeCache.size(), count / 2);
    for (unsigned int i = 2; i <= count; i += 2)
        ASSERT_TRUE(store.RemoveResource(i));
    EXPECT_EQ(store.SumMemorySizes(ids), 0u);
    EXPECT_TRUE(store.sizeCache.empty());
}

TEST_F(StoreSubImages, UpdateTheRectangleInTheHoldersOwnImage)
{
    const Image before = randomImage(10, 8, 2);
    Holder holder = before.toPtr();
    const Image* const object = holder.get();
    const Rect rect(2, 3, 5, 4);
    EXPECT_TRUE(store.CopySubImage(id, holder, {10, 8}, rect, false));
    EXPECT_EQ(holder.get(), object);
    for (unsigned int y = 0; y < 8; ++y)
        for (unsigned int x = 0; x < 10; ++x) {
            const bool inside = x >= 2 && x < 7 && y >= 3 && y < 7;
            EXPECT_EQ(pixelAt(*holder, x, y), pixelAt(inside ? stored : before, x, y)) << x << ' ' << y;
        }
}

TEST_F(StoreSubImages, CutTheRectangleAsThePainterDoes)
{
    const Rect rects[] = {{0, 0, 10, 8},  {0, 0, 100, 100}, {9, 7, 5, 5},         {10, 8, 5, 5},
                          {4, 4, 0, 0},   {-3, 2, 6, 6},    {2, -3, 6, 6},        {-5, -5, 3, 3},
                          {50, 50, 2, 2}, {3, 3, 0, 4},     {0, 0, 2147483647, 3}};
    for (const Rect& rect : rects) {
        Image expected = randomImage(10, 8, 2);
        Holder holder = expected.toPtr();
        const Image* const object = holder.get();
        PixelPainter(&expected).copyImage(rect.left(), rect.top(), rect.left(), rect.top(), rect.width(), rect.height(),
                                          stored);
        EXPECT_TRUE(store.CopySubImage(id, holder, {10, 8}, rect, false));
        EXPECT_EQ(holder.get(), object);
        EXPECT_TRUE(samePixels(*holder, expected)) << rect.left() << ' ' << rect.top();
    }
}

TEST_F(StoreSubImages, MayUpdateAHolderOfAnotherSizeThanTheBuffer)
{
    Image expected = randomImage(6, 12, 2);
    Holder holder = expected.toPtr();
    const Image* const object = holder.get();
    PixelPainter(&expected).copyImage(1, 1, 1, 1, 20, 20, stored);
    EXPECT_TRUE(store.CopySubImage(id, holder, {6, 12}, {1, 1, 20, 20}, false));
    EXPECT_EQ(holder.get(), object);
    EXPECT_TRUE(samePixels(*holder, expected));
}

TEST_F(StoreSubImages, RebuildAHolderOfTheWrongSizeWhateverTheRectangle)
{
    for (const Image& image : {Image(), Image(9, 8), Image(10, 9), Image(8, 10)})
        for (const Rect& rect : {Rect(1, 1, 2, 2), Rect::invalid()}) {
            const Holder before = image.toPtr();
            Holder holder = before;
            EXPECT_TRUE(store.CopySubImage(id, holder, {10, 8}, rect, true));
            EXPECT_NE(holder, before);
            EXPECT_TRUE(samePixels(*holder, stored));
        }
    Holder none;
    EXPECT_TRUE(store.CopySubImage(id, none, {10, 8}, {1, 1, 2, 2}, false));
    ASSERT_NE(none, nullptr);
    EXPECT_TRUE(samePixels(*none, stored));
}

TEST_F(StoreSubImages, RebuildForAnInvalidRectangle)
{
    Rect negative(4, 4, 2, 2);
    negative.setRight(3);
    for (const Rect& rect : {Rect::invalid(), negative, Rect(0, 0, 3, -1)}) {
        ASSERT_TRUE(rect.isInvalid());
        const Image before = randomImage(10, 8, 2);
        Holder holder = before.toPtr();
        const Holder held = holder;
        EXPECT_TRUE(store.CopySubImage(id, holder, {10, 8}, rect, false));
        EXPECT_NE(holder, held);
        EXPECT_TRUE(samePixels(*holder, stored));
        EXPECT_TRUE(samePixels(*held, before));
    }
}

TEST_F(StoreSubImages, CutOrExtendTheCanvasWithOpaqueWhite)
{
    for (const QSize& asked : {QSize(12, 11), QSize(4, 3), QSize(4, 11), QSize(12, 3), QSize(0, 0), QSize(0, 9)}) {
        Holder holder;
        EXPECT_TRUE(store.CopySubImage(id, holder, asked, Rect::invalid(), false));
        ASSERT_NE(holder, nullptr);
        ASSERT_EQ(holder->width, unsigned(asked.width()));
        ASSERT_EQ(holder->height, unsigned(asked.height()));
        for (unsigned int y = 0; y < holder->height; ++y)
            for (unsigned int x = 0; x < holder->width; ++x)
                EXPECT_EQ(pixelAt(*holder, x, y),
                          x < 10 && y < 8 ? pixelAt(stored, x, y) : (Pixel{65535, 65535, 65535, 65535}));
    }
}

TEST_F(StoreSubImages, GiveTheSameWhateverTheLastArgument)
{
    Holder a = randomImage(10, 8, 2).toPtr(), b = randomImage(10, 8, 2).toPtr();
    EXPECT_TRUE(store.CopySubImage(id, a, {10, 8}, {2, 2, 3, 3}, true));
    EXPECT_TRUE(store.CopySubImage(id, b, {10, 8}, {2, 2, 3, 3}, false));
    EXPECT_TRUE(samePixels(*a, *b));
}

TEST_F(StoreSubImages, OfOtherResourcesAndOfEmptyBuffersAreRefused)
{
    const ResourceId png = add(pngWith({})), narrow = addBuffer(Image(0, 5)), low = addBuffer(Image(5, 0));
    const Holder before = Image(5, 4).toPtr();
    Holder holder = before;
    for (const ResourceId refused : {png, narrow, ResourceId(0), ResourceId(99)}) {
        EXPECT_FALSE(store.CopySubImage(refused, holder, {5, 4}, {0, 0, 2, 2}, false)) << refused.id;
        EXPECT_FALSE(store.CopySubImage(refused, holder, {1, 1}, Rect::invalid(), false)) << refused.id;
    }
    EXPECT_EQ(holder, before);
    EXPECT_TRUE(store.CopySubImage(low, holder, {5, 1}, Rect::invalid(), false)); // only the width is looked at
    EXPECT_EQ(pixelAt(*holder, 4, 0), (Pixel{65535, 65535, 65535, 65535}));
}

TEST_F(StoreSubImages, OfAnImpossibleSizeAreRefused)
{
    const Holder before = Image(5, 4).toPtr();
    Holder holder = before;
    for (const QSize& asked : {QSize(-1, 5), QSize(5, -1), QSize(-1, -1), QSize(2147483647, 2147483647)})
        EXPECT_FALSE(store.CopySubImage(id, holder, asked, {0, 0, 2, 2}, false));
    EXPECT_EQ(holder, before);
}

TEST_F(StoreSubImages, AreNeitherCachedNorStored)
{
    Holder holder;
    EXPECT_TRUE(store.CopySubImage(id, holder, {4, 4}, Rect::invalid(), false));
    EXPECT_TRUE(store.cachedImages.empty());
    EXPECT_EQ(size(id), 640u);
    EXPECT_TRUE(samePixels(*copy(id), stored));
}

} // namespace
