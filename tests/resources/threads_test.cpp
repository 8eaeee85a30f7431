// Store, registry, background queue and colour conversions from eight threads and the thread of the application.

#include "teststore.h"

#include "tests/support/stress.h"
#include "tests/support/testimages.h"

#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/pixel/scale.h>
#include <ondrel/work/backgroundworkqueue.h>

#include <QCoreApplication>
#include <QThreadPool>

#include <atomic>
#include <thread>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::EmbeddedColorProfile;
using Ondrel::Image;
using Ondrel::ResourceId;
using Holder = std::shared_ptr<const Image>;

// What all threads use at once: one file of each format, a RAW file and a buffer, and what a copy of them must be.
class StoreThreads : public StoreTest
{
protected:
    StoreThreads()
    {
        raw.process = [](ResourceId, const Ondrel::RunStatus&) {
            Image image = randomImage(3, 2, 1);
            image.colorProfile = Ondrel::DefaultColorProfileHash;
            return image;
        };
        ids = {add(pngWith(iccOfGamma(1.95))), add(jpegWith(iccOfGamma(1.96))), add(tiffWith(iccOfGamma(1.97)))};
        ResourceId id;
        EXPECT_TRUE(store.AddImageByData(ResourceEngine::FormatRAW, Bytes(9, 1), "raw", id));
        ids.push_back(id);
        for (const ResourceId file : ids)
            for (const Hash& profile : profiles)
                expected.push_back(*copy(file, profile));
        EXPECT_TRUE(store.AddImageBuffer(buffer, bufferId));
    }

    // Whether all files come out right in one of the profiles.
    bool copiesAreRight(std::size_t profile)
    {
        for (std::size_t i = 0; i < ids.size(); ++i) {
            const Holder image = copy(ids[i], profiles[profile]);
            if (!image || !samePixels(*image, expected[i * 2 + profile]))
                return false;
        }
        return true;
    }

    // Adds a file, and finds its profile registered for as long as the file is stored.
    bool fileComesAndGoes(const Bytes& file)
    {
        ResourceId id;
        Ondrel::ImageInfo info;
        return store.AddImageByData(ResourceEngine::FormatPNG, file, "name", id) && store.CopyImageInfo(id, info) &&
               copy(id, profiles[1]) && store.RemoveResource(id) && !store.CopyImageInfo(id, info);
    }

    bool bufferIsCopied(Holder& holder)
    {
        ResourceId id;
        return store.CopyImage(bufferId, holder, EmbeddedColorProfile, {}) && samePixels(*holder, buffer) &&
               store.CopySubImage(bufferId, holder, {20, 10}, {5, 5, 3, 3}, false) && samePixels(*holder, buffer) &&
               store.AddImageBuffer(*holder, id) && store.RemoveResource(id);
    }

    bool recordsAreEdited(const Bytes& file, unsigned int turn)
    {
        ResourceMap* map = nullptr;
        if (turn % 2 == 0)
            store.BeginManualResources(&map);
        else if (!store.TryBeginManualResources(&map))
            return true;
        constexpr unsigned int id = 4000000000u;
        (*map)[id] = record(file, ResourceEngine::FormatJPEG);
        store.EndManualResources(ResourceEngine::EndManualProcessing(turn % 3));
        return store.RemoveResource(id);
    }

    bool everythingIsAsked()
    {
        Ondrel::ImageInfo info;
        ResourceEngine::Format format;
        Bytes data;
        std::string name;
        std::vector<std::pair<QString, Hash>> list;
        ColorManager::colorProfileNamesAndHashesSorted(list, {ColorManager::ColorProfile::RGB},
                                                       {ColorManager::ColorProfile::BuiltIn});
        const std::size_t files = store.SumMemorySizes({ids[0], bufferId});
        return store.CopyImageInfo(ids[0], info) && info.width == 5 && store.CopyData(ids[1], format, data, name) &&
               format == ResourceEngine::FormatJPEG && files >= buffer.sizeBytes && list.size() == 4 &&
               !ColorManager::copyColorProfileDataByHash(hashOf(iccOfGamma(1.95))).empty();
    }

    ScriptedRawDecoder raw;
    const std::vector<Hash> profiles = {
        EmbeddedColorProfile,
        ColorManager::buildColorProfileHash(Profile(Ondrel::CreateProPhotoRGBColorProfile()).get())};
    std::vector<ResourceId> ids;
    std::vector<Image> expected; // of each file in each profile
    const Image buffer = randomImage(20, 10, 5);
    ResourceId bufferId;
};

// Counts what the queue delivers.
class Renderings : public QObject
{
    Q_OBJECT
public:
    explicit Renderings(const QImage& expectedImage)
        : expected(expectedImage)
    {
    }
    const QImage expected;
    int right = 0, wrong = 0;

public Q_SLOTS:
    void take(const QImage& image) { ++(image == expected ? right : wrong); }
};

TEST_F(StoreThreads, ShareStoreRegistryQueueAndConversions)
{
    // The road of an image: copied from the store, scaled, rendered for the display.
    const auto render = [this](const Holder& image) {
        return Ondrel::ColorTransformer::toQImage(Scale(*image, 30, 20, Ondrel::FilterMethod::Bilinear), false);
    };
    Renderings renderings(render(copy(ids[0], profiles[1])));
    BackgroundWorkQueue queue(nullptr);
    ASSERT_TRUE(
        QObject::connect(&queue, SIGNAL(qImageFinished(QImage, int, QVariant)), &renderings, SLOT(take(QImage))));
    std::atomic<int> wrong{0};
    Holder holder;
    unsigned int turn = 0;
    const Bytes shared = pngWith(iccOfGamma(1.98)), alsoShared = jpegWith(iccOfGamma(1.98)),
                edited = jpegWith(iccOfGamma(1.99));
    testing::internal::CaptureStdout(); // duplicates are reported
    runTogether({[&] { wrong += !copiesAreRight(0); }, [&] { wrong += !copiesAreRight(1); },
                 [&] { wrong += !fileComesAndGoes(shared); }, [&] { wrong += !fileComesAndGoes(alsoShared); },
                 [&] { wrong += !bufferIsCopied(holder); }, [&] { wrong += !recordsAreEdited(edited, turn++); },
                 [&] { wrong += !everythingIsAsked(); },
                 [&] {
                     wrong += !store.ClearCache();
                     ColorManager::reload();
                 }},
                [&] {
                    if (!queue.isWorking())
                        queue.queueWork(std::function<QImage()>([&] { return render(copy(ids[0], profiles[1])); }), 1,
                                        false, false, QVariant());
                    QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
                    std::this_thread::yield();
                });
    while (queue.isWorking())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(renderings.wrong, 0);
    EXPECT_GT(renderings.right, 0);
    EXPECT_GT(turn, 0u);
    EXPECT_EQ(store.resources.size(), ids.size() + 1);
    EXPECT_EQ(store.sizeCache.size(), ids.size() + 1);
    EXPECT_EQ(store.usedColorProfiles.size(), 3u);
    EXPECT_FALSE(isRegistered(hashOf(iccOfGamma(1.98))));
    EXPECT_FALSE(isRegistered(hashOf(iccOfGamma(1.99))));
    QThreadPool::globalInstance()->waitForDone();
}

// The only lock that these two need is never held for longer than a copy.
TEST_F(StoreThreads, AskForSizesWithoutWaitingWhileOthersDecodeAndAdd)
{
    std::atomic<int> wrong{0};
    const auto ask = [&] {
        Ondrel::ImageInfo info;
        wrong += !store.CopyImageInfo(ids[1], info) || info.width != 6;
        wrong += store.CopyImageInfo(0, info);
    };
    const auto copyBoth = [&] { wrong += !copiesAreRight(0) || !copiesAreRight(1); };
    const auto churn = [&] {
        ResourceId id;
        wrong += !store.AddImageBuffer(buffer, id) || !store.RemoveResource(id);
    };
    runTogether({ask, ask, ask, ask, copyBoth, copyBoth, churn, churn});
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(store.sizeCache.size(), ids.size() + 1);
}

} // namespace

#include "threads_test.moc"
