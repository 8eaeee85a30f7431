#include "testnodes.h"

#include <memoryuse.h>
#include <resultcache.h>

#include <ondrel/core/image.h>
#include <ondrel/resources/resourceengine.h>

#include <gtest/gtest.h>

#include <QImage>
#include <QTemporaryDir>

namespace
{

constexpr std::size_t kPixels = 40 * 30 * 8;

// A graph with one resource, which has been decoded.
class MemoryUse : public testing::Test
{
protected:
    MemoryUse()
    {
        onWorker([this] {
            QImage picture(40, 30, QImage::Format_RGB888);
            picture.fill(Qt::red);
            EXPECT_TRUE(picture.save(folder.filePath("a.png")));
            EXPECT_TRUE(ResourceEngine::Get().AddImage(folder.filePath("a.png").toStdString(), id));
            decode();
            return 0;
        });
        Host::NodeRecord record;
        record.id = 1;
        record.type = "test/any";
        record.values["image"] = QVariant::fromValue(id);
        graph.nodes[1] = record;
    }
    ~MemoryUse() override { ResourceEngine::Get().RemoveResource(id); }

    void decode()
    {
        std::shared_ptr<const Ondrel::Image> image;
        EXPECT_TRUE(ResourceEngine::Get().CopyImage(id, image, Ondrel::EmbeddedColorProfile, Ondrel::RunStatus()));
    }

    Host::MemoryUse use()
    {
        return onWorker([this] { return Host::memoryUse(graph, cache); });
    }
    bool keep()
    {
        return onWorker([this] { return Host::keepStoreWithinBudget(graph, cache); });
    }

    QTemporaryDir folder;
    Ondrel::ResourceId id;
    Host::Graph graph;
    Host::ResultCache cache{1 << 20};
};

} // namespace

TEST_F(MemoryUse, CountsResultsResourcesAndAllPictures)
{
    EXPECT_EQ(use().results, 0u);
    EXPECT_GE(use().resources, kPixels);
    const std::size_t before = use().images;
    EXPECT_GE(before, kPixels);
    const auto image = std::make_shared<Ondrel::Image>(64, 64);
    const auto result = std::make_shared<Host::ResultCache::WorkResult>();
    result->outputs["image"] = {image, QSize(64, 64)};
    Host::ResultCache::Claim claim;
    cache.begin("key", cache.generation(), claim);
    claim.finish(result);
    EXPECT_GE(use().results, std::size_t(64 * 64 * 8));
    EXPECT_EQ(use().images, before + image->sizeBytes);
}

TEST_F(MemoryUse, StoreKeepsItsPicturesWithinTheBudget)
{
    const std::size_t before = use().resources;
    EXPECT_FALSE(keep());
    EXPECT_EQ(use().resources, before);
}

TEST_F(MemoryUse, StoreDropsItsPicturesBeyondTheBudget)
{
    const std::size_t before = use().resources;
    cache.setByteBudget(before - 1);
    EXPECT_TRUE(keep());
    EXPECT_EQ(use().resources, before - kPixels);
    cache.setByteBudget(before);
    onWorker([this] {
        decode();
        return 0;
    });
    EXPECT_EQ(use().resources, before);
    EXPECT_FALSE(keep()) << "exactly the budget is within it";
}
