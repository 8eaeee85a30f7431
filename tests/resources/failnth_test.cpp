// Every allocation, mapping and file operation behind the main operations fails once, and from some point on for good:
// nothing crashes or leaks, and a call that does not succeed leaves store, registry and pixel memory as they were.

#include "teststore.h"

#include "tests/support/failnth.h"
#include "tests/support/testimages.h"

#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/colortransformer.h>
#include <ondrel/core/parallel_p.h>
#include <ondrel/core/runtimestatistics.h>

#include <QDir>

#include <iostream>
#include <new>

namespace
{

using namespace OndrelTest;
using Ondrel::ColorManager;
using Ondrel::Image;
using Ondrel::ResourceId;

Hash proPhoto()
{
    static const Hash hash =
        ColorManager::buildColorProfileHash(Profile(Ondrel::CreateProPhotoRGBColorProfile()).get());
    return hash;
}

// What a failed call may not change, the store aside.
struct Surroundings {
    std::set<Hash> profiles = registeredProfiles();
    std::uint64_t imageMemory = RunTimeStatistics::Get(RunTimeStatistics::ImageMemory);
    int openFiles = QDir("/proc/self/fd").entryList(QDir::NoFilter).size();

    bool operator==(const Surroundings& o) const
    {
        return profiles == o.profiles && imageMemory == o.imageMemory && openFiles == o.openFiles;
    }
};

struct StoreState {
    explicit StoreState(const FreshStore& store)
        : nextId(store.nextId)
        , resources(store.resources)
        , usedColorProfiles(store.usedColorProfiles)
        , sizes(store.sizeCache.size())
        , cached(store.cachedImages.size())
    {
    }
    bool operator==(const StoreState& o) const
    {
        return nextId == o.nextId && resources == o.resources && usedColorProfiles == o.usedColorProfiles &&
               sizes == o.sizes && cached == o.cached;
    }
    unsigned int nextId;
    ResourceMap resources;
    std::vector<Hash> usedColorProfiles;
    std::size_t sizes, cached;
};

bool unlocked(FreshStore& store)
{
    ResourceMap* map = nullptr;
    return store.TryBeginManualResources(&map) && store.EndManualResources(ResourceEngine::EndManualNoChange);
}

class FailingCalls : public testing::Test
{
protected:
    FailingCalls()
    {
        // Row loops run on the thread whose calls fail, so that each run makes the same calls.
        Ondrel::setParallelEngine(Ondrel::ParallelEngine::Shuffled);
        ColorManager::get();
        std::cout.setstate(std::ios::failbit); // no hundred warnings about duplicates
        testing::internal::CaptureStderr();    // nor libjpeg's about memory
    }
    ~FailingCalls() override
    {
        testing::internal::GetCapturedStderr();
        std::cout.clear();
        Ondrel::setParallelEngine(m_engine);
    }

    // Runs run() once as it is, when it must succeed, then with the first, second, third... call of a kind failing,
    // until none is left to fail. check(ok) looks at the outcome of each run and prepares the next.
    template <class Run, class Check>
    void failInTurn(Run run, Check check)
    {
        check(run());
        for (const unsigned int kind : {Call::New, Call::Malloc, Call::Map, Call::File, Call::Profile})
            for (const FailNth::Mode mode : {FailNth::Once, FailNth::Onwards}) {
                if (kind == Call::Malloc && !canFailMalloc())
                    continue;
                failInTurn(kind, mode, run, check);
            }
        EXPECT_GT(m_allFailures, 0);
    }

    // Whether, in the run that is being looked at, a file could not be opened, read, written or closed.
    bool fileFailed() const { return m_kind == Call::File && m_failures > 0; }

    // Whether a run that is repeated may leave more on the heap: the registry keeps what it has for removed profiles.
    bool heapMayGrow = false;

private:
    template <class Run, class Check>
    void failInTurn(unsigned int kind, FailNth::Mode mode, Run run, Check check)
    {
        m_kind = kind;
        for (int nth = 1; nth < 20000; ++nth) {
            const std::string where =
                "kind " + std::to_string(kind) + ", mode " + std::to_string(mode) + ", call " + std::to_string(nth);
            SCOPED_TRACE(where);
            bool ok = runFailing(kind, mode, nth, run);
            check(ok);
            if (m_failures == 0) {
                EXPECT_TRUE(ok);
                return;
            }
            const long heap = heapBlocks();
            ok = runFailing(kind, mode, nth, run);
            check(ok);
            EXPECT_TRUE(heapBlocks() == heap || heapMayGrow) << heapBlocks() - heap << " blocks leaked";
            if (testing::Test::HasFailure())
                return;
        }
        ADD_FAILURE() << "There is no end.";
    }

    template <class Run>
    bool runFailing(unsigned int kind, FailNth::Mode mode, int nth, Run run)
    {
        bool ok = false;
        const FailNth failing(kind, nth, mode);
        try {
            ok = run();
        } catch (const std::bad_alloc&) {
        }
        m_failures = failing.failures();
        m_allFailures += m_failures;
        return ok;
    }

    const Ondrel::ParallelEngine m_engine = Ondrel::parallelEngine();
    unsigned int m_kind = 0;
    int m_failures = 0; // in the last run
    int m_allFailures = 0;
};

class FailingStore : public FailingCalls
{
protected:
    // Adds to a store of two resources. After a failure it is as before, after success it has three.
    template <class Add>
    void addInTurn(Add add)
    {
        std::unique_ptr<FreshStore> store;
        std::unique_ptr<StoreState> before;
        Surroundings around;
        const auto begin = [&] {
            store = std::make_unique<FreshStore>();
            prepare(*store);
            before = std::make_unique<StoreState>(*store);
            around = Surroundings();
        };
        begin();
        ResourceId id(77); // what a failed call must leave
        failInTurn([&] { return add(*store, id); },
                   [&](bool ok) {
                       EXPECT_TRUE(unlocked(*store));
                       Ondrel::ImageInfo info;
                       if (ok) {
                           EXPECT_EQ(store->resources.size(), 3u);
                           EXPECT_TRUE(store->CopyImageInfo(id, info));
                           expectSoundProfile(*store, id);
                       } else {
                           EXPECT_TRUE(StoreState(*store) == *before);
                           EXPECT_TRUE(Surroundings() == around);
                           EXPECT_EQ(id.id, 77u);
                       }
                       EXPECT_TRUE(store->CopyImageInfo(1, info));
                       EXPECT_TRUE(store->CopyImageInfo(2, info));
                       id = 77;
                       begin();
                   });
    }

    static void prepare(FreshStore& store)
    {
        ResourceId id;
        store.AddImageBuffer(randomImage(4, 4, 1), id);
        store.AddImageByData(ResourceEngine::FormatPNG, sRGBPng(), "before", id);
    }

    // A record either names a registered profile or none.
    static void expectSoundProfile(const FreshStore& store, ResourceId id)
    {
        const ResourceEngine::ImageInfo& info = *store.resources.at(id.id);
        if (info.colorProfileHash) {
            EXPECT_TRUE(isRegistered(*info.colorProfileHash));
        }
        for (const Hash& hash : store.usedColorProfiles)
            EXPECT_TRUE(isRegistered(hash));
    }

    const TemporaryFolder folder;
};

TEST_F(FailingStore, AddsFilesWithAProfile)
{
    heapMayGrow = true;
    const Bytes icc = iccOfGamma(1.12);
    for (const Bytes& file : {pngWith(icc), jpegWith(icc), tiffWith(icc)}) {
        const std::string name = folder.path("file").toStdString();
        writeFile(folder.path("file"), file);
        addInTurn([&](FreshStore& store, ResourceId& id) { return store.AddImage(name, id); });
    }
}

TEST_F(FailingStore, AddsDataWithAProfileThatIsRegisteredAlready)
{
    addInTurn([file = sRGBPng(2)](FreshStore& store, ResourceId& id) {
        return store.AddImageByData(ResourceEngine::FormatPNG, file, "name", id);
    });
}

// Files that take other ways through the decoders than small RGB ones.
std::vector<Bytes> variedFiles()
{
    PngPicture interlaced = randomPng(9, 7, PNG_COLOR_TYPE_RGB, 8);
    interlaced.interlaced = true;
    JpegPicture progressive = randomJpeg(20, 12, JCS_YCbCr);
    progressive.progressive = true;
    TiffPicture tiled = randomTiff(20, 18, PHOTOMETRIC_RGB, 16, 4);
    tiled.extraSamples = {EXTRASAMPLE_ASSOCALPHA};
    tiled.tileWidth = tiled.tileLength = 16;
    tiled.planar = true;
    TiffPicture packed = randomTiff(20, 18, PHOTOMETRIC_MINISBLACK, 8, 1);
    packed.rowsPerStrip = 5;
    packed.compression = COMPRESSION_LZW;
    return {pngFile(interlaced,
                    [](png_struct* png, png_info* info) {
                        png_set_cHRM(png, info, 0.3127, 0.329, 0.64, 0.33, 0.3, 0.6, 0.15, 0.06);
                        png_set_gAMA(png, info, 0.5);
                    }),
            jpegFile(progressive, [](jpeg_compress_struct* jpeg) { writeExif(jpeg, exifOrientation(6)); }),
            tiffFile(tiled), tiffFile(packed)};
}

TEST_F(FailingStore, AddsVariedFiles)
{
    heapMayGrow = true;
    for (const Bytes& file : variedFiles())
        addInTurn([&file](FreshStore& store, ResourceId& id) {
            return store.AddImageByData(ResourceEngine::FormatPNG, file, "name", id);
        });
}

TEST_F(FailingStore, AddsDataWithoutAProfile)
{
    for (const Bytes& file : {pngWith({}), jpegWith({}), tiffWith({})})
        addInTurn([&file](FreshStore& store, ResourceId& id) {
            return store.AddImageByData(ResourceEngine::FormatPNG, file, "name", id);
        });
}

TEST_F(FailingStore, AddsBuffers)
{
    const Image image = randomImage(6, 5, 1);
    addInTurn([&](FreshStore& store, ResourceId& id) { return store.AddImageBuffer(image, id); });
}

class FailingCopies : public FailingStore
{
protected:
    // Copies into an empty holder. The decoded image is right or there is none, in the cache too.
    void copyInTurn(const Bytes& file, const Hash& profile)
    {
        FreshStore store;
        ResourceId id;
        ASSERT_TRUE(store.AddImageByData(ResourceEngine::FormatPNG, file, "name", id));
        std::shared_ptr<const Image> expected, holder;
        ASSERT_TRUE(store.CopyImage(id, expected, profile, {}));
        store.ClearCache();
        const StoreState before(store);
        const Surroundings around;
        failInTurn([&] { return store.CopyImage(id, holder, profile, {}); },
                   [&](bool ok) {
                       EXPECT_TRUE(unlocked(store));
                       EXPECT_EQ(store.cachedImages.size(), ok ? 1u : 0u);
                       if (ok) {
                           EXPECT_EQ(store.cachedImages.at(id.id).image, holder);
                           EXPECT_EQ(holder->width, expected->width);
                       }
                       holder.reset();
                       store.ClearCache();
                       EXPECT_TRUE(StoreState(store) == before);
                       EXPECT_TRUE(Surroundings() == around);
                   });
    }
};

TEST_F(FailingCopies, InTheEmbeddedProfile)
{
    const Bytes icc = iccOfGamma(1.12);
    for (const Bytes& file : {pngWith(icc), jpegWith(icc), tiffWith(icc)})
        copyInTurn(file, Ondrel::EmbeddedColorProfile);
}

TEST_F(FailingCopies, InAnotherProfile)
{
    const Bytes icc = iccOfGamma(1.12);
    for (const Bytes& file : {pngWith(icc), jpegWith(icc), tiffWith(icc)})
        copyInTurn(file, proPhoto());
}

TEST_F(FailingCopies, OfVariedFiles)
{
    for (const Bytes& file : variedFiles()) {
        copyInTurn(file, Ondrel::EmbeddedColorProfile);
        copyInTurn(file, proPhoto());
    }
}

TEST_F(FailingCopies, OfBuffers)
{
    FreshStore store;
    ResourceId id;
    const Image stored = randomImage(6, 5, 1);
    ASSERT_TRUE(store.AddImageBuffer(stored, id));
    const Surroundings around;
    std::shared_ptr<const Image> holder;
    for (const QSize& size : {QSize(6, 5), QSize(9, 9), QSize(2, 2)})
        failInTurn(
            [&] {
                holder.reset();
                return store.CopyImage(id, holder, Ondrel::EmbeddedColorProfile, {}) &&
                       store.CopySubImage(id, holder, size, {0, 0, 3, 3}, false);
            },
            [&](bool) {
                EXPECT_TRUE(unlocked(store));
                EXPECT_TRUE(samePixels(*store.resources.at(id.id)->image, stored));
                holder.reset();
                EXPECT_TRUE(Surroundings() == around);
            });
}

TEST_F(FailingStore, CopiesData)
{
    FreshStore store;
    prepare(store);
    const Surroundings around;
    failInTurn(
        [&] {
            ResourceEngine::Format format;
            Bytes data;
            std::string name;
            return store.CopyData(2, format, data, name) && store.SumMemorySizes({1, 2}) > 0;
        },
        [&](bool) {
            EXPECT_TRUE(unlocked(store));
            EXPECT_TRUE(Surroundings() == around);
        });
}

// What a failed addition undoes, it undoes in the same way, so this must need no memory at all.
TEST_F(FailingStore, RemovesResourcesWithoutAllocating)
{
    FreshStore store;
    prepare(store);
    ResourceId id;
    ASSERT_TRUE(store.AddImageByData(ResourceEngine::FormatPNG, pngWith(iccOfGamma(1.12)), "name", id));
    const FailNth failing(Call::New | Call::Malloc | Call::Map, 1, FailNth::Onwards);
    const bool removed = store.RemoveResource(3) && store.RemoveResource(2) && store.RemoveResource(1);
    EXPECT_EQ(failing.failures(), 0);
    EXPECT_TRUE(removed);
}

TEST_F(FailingStore, EndsTheManualModeUnlocked)
{
    auto store = std::make_unique<FreshStore>();
    prepare(*store);
    failInTurn(
        [&] {
            ResourceMap* map = nullptr;
            return store->BeginManualResources(&map) && store->EndManualResources(ResourceEngine::EndManualRevalidate);
        },
        [&](bool) {
            EXPECT_TRUE(unlocked(*store));
            EXPECT_EQ(store->resources.size(), 2u);
            store = std::make_unique<FreshStore>();
            prepare(*store);
        });
}

class FailingConversions : public FailingCalls
{
protected:
    FailingConversions() { image.colorProfile = proPhoto(); }
    Image image = randomImage(20, 10, 1);
};

TEST_F(FailingConversions, BetweenProfiles)
{
    const QByteArray from = toByteArray(proPhoto()), to = toByteArray(Ondrel::DefaultColorProfileHash);
    const Surroundings around;
    failInTurn([&] { return ConvertColorSpace(image, from, to, 0).width == 20; },
               [&](bool) { EXPECT_TRUE(Surroundings() == around); });
}

TEST_F(FailingConversions, ForTheDisplay)
{
    const QImage expected = Ondrel::ColorTransformer::toQImage(image, false);
    const QImage unmanaged = Ondrel::ColorTransformer::toQImage(image, true);
    const Surroundings around;
    for (const bool noColorManagement : {false, true}) {
        QImage result;
        failInTurn(
            [&] {
                result = Ondrel::ColorTransformer::toQImage(image, noColorManagement);
                return !result.isNull();
            },
            [&](bool) {
                EXPECT_TRUE(Surroundings() == around);
                EXPECT_TRUE(result.isNull() || result == expected || result == unmanaged);
                result = QImage();
                ColorManager::reload(); // the next run makes its transforms anew
            });
    }
    ColorManager::reload();
    EXPECT_EQ(Ondrel::ColorTransformer::toQImage(image, false), expected);
}

TEST_F(FailingConversions, ToLab)
{
    const Surroundings around;
    failInTurn([&] { return ColorManager::toLab(image).size() == 600; },
               [&](bool) { EXPECT_TRUE(Surroundings() == around); });
}

class FailingExports : public FailingCalls
{
protected:
    FailingExports() { original.colorProfile = proPhoto(); }

    // What an exported file holds: all samples, then the hash of its profile. Empty if it cannot be read in full.
    using Read = bool (*)(const std::shared_ptr<ResourceEngine::ImageInfo>&, Image&);
    static Bytes content(const Bytes& file, Read read)
    {
        Image image;
        if (!read(recordOf(file), image))
            return {};
        const auto* const samples = reinterpret_cast<const unsigned char*>(image.data);
        Bytes bytes(samples, samples + std::size_t(image.width) * image.height * 8);
        bytes.insert(bytes.end(), image.colorProfile.begin(), image.colorProfile.end());
        return bytes;
    }

    // After true the file holds what is written when nothing fails, with the conversion or, where memory for it was
    // short, without it. The bytes may differ: libtiff goes on with another compressor where it cannot have the first.
    template <class Export, class File>
    void exportInTurn(Export run, File file, Read read)
    {
        Image image = original;
        std::set<Bytes> whole;
        for (const Hash& profile : {Ondrel::NoneColorProfile, Ondrel::DefaultColorProfileHash}) {
            ASSERT_TRUE(run(image, profile));
            whole.insert(content(file(), read));
        }
        ASSERT_EQ(whole.size(), 2u);
        const Surroundings around;
        failInTurn(
            [&] {
                image = original; // the last run may have converted it
                return run(image, Ondrel::DefaultColorProfileHash);
            },
            [&](bool ok) {
                EXPECT_TRUE(!ok || whole.count(content(file(), read)) == 1);
                EXPECT_FALSE(ok && fileFailed());
                QFile::remove(name);
                EXPECT_TRUE(Surroundings() == around);
            });
    }
    template <class Export>
    void exportInTurn(Export run, Read read)
    {
        exportInTurn(
            run, [this] { return readFile(name); }, read);
    }

    static bool readPng(const std::shared_ptr<ResourceEngine::ImageInfo>& info, Image& image)
    {
        return ResourceEngine::ReadPNG(info, image, nullptr);
    }
    static bool readJpeg(const std::shared_ptr<ResourceEngine::ImageInfo>& info, Image& image)
    {
        return ResourceEngine::ReadJPEG(info, image, nullptr, Ondrel::EmbeddedColorProfile);
    }
    static bool readTiff(const std::shared_ptr<ResourceEngine::ImageInfo>& info, Image& image)
    {
        return ResourceEngine::ReadTIFF(info, image, nullptr, Ondrel::EmbeddedColorProfile);
    }

    const TemporaryFolder folder;
    const QString name = folder.path("file");
    Image original = randomImage(9, 7, 1);
};

TEST_F(FailingExports, AsPng)
{
    for (const unsigned int wide : {0u, 1u})
        exportInTurn(
            [this, wide](const Image& image, const Hash& profile) {
                const ResourceEngine::ExportPNGSettings settings{6, profile, 1, wide};
                return ResourceEngine::ExportPNG(name, image, settings, nullptr, nullptr);
            },
            &readPng);
}

TEST_F(FailingExports, AsJpeg)
{
    for (const bool progressive : {false, true})
        exportInTurn(
            [this, progressive](const Image& image, const Hash& profile) {
                const ResourceEngine::ExportJPEGSettings settings{90, true, progressive, 0, profile};
                return ResourceEngine::ExportJPEG(name, image, settings, nullptr, nullptr);
            },
            &readJpeg);
}

TEST_F(FailingExports, AsTiff)
{
    for (const unsigned int compression : {0u, 1u, 2u})
        exportInTurn(
            [this, compression](const Image& image, const Hash& profile) {
                const ResourceEngine::ExportTIFFSettings settings{profile, 1, 1, compression};
                return ResourceEngine::ExportTIFF(name, image, settings, nullptr, nullptr);
            },
            &readTiff);
}

TEST_F(FailingExports, AsTiffInMemory)
{
    Bytes data;
    for (const unsigned int compression : {0u, 1u, 3u})
        exportInTurn(
            [&data, compression](const Image& image, const Hash& profile) {
                const ResourceEngine::ExportTIFFSettings settings{profile, 1, 0, compression};
                return ResourceEngine::ExportTIFFToMemory(data, image, settings, nullptr, nullptr);
            },
            [&data] { return data; }, &readTiff);
}

TEST_F(FailingExports, AsCmykTiffInMemory)
{
    const Bytes cmyk = savedBytes(cmykProfile().get()), samples = randomBytes(9 * 7 * 4, 1);
    Hash hash{};
    ASSERT_TRUE(ColorManager::addColorProfile(cmyk, ColorManager::ColorProfile::System, &hash));
    const ResourceEngine::ExportTIFFSettings settings{hash, 0, 0, 0};
    Bytes data, whole;
    ASSERT_TRUE(ResourceEngine::ExportCMYKTIFFToMemory(whole, samples, 9, 7, settings, nullptr, nullptr));
    failInTurn([&] { return ResourceEngine::ExportCMYKTIFFToMemory(data, samples, 9, 7, settings, nullptr, nullptr); },
               [&](bool ok) { EXPECT_TRUE(!ok || data == whole); });
    ColorManager::removeColorProfile(hash, ColorManager::ColorProfile::System);
}

} // namespace
