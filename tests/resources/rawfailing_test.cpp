// Allocations, mappings and profiles fail while a camera RAW file is added, decoded and previewed.

#include "rawstore.h"

#include "tests/support/failnth.h"

#include <ondrel/core/parallel_p.h>

#include <iostream>
#include <new>

namespace
{

using namespace OndrelTest;
using Ondrel::Image;

class RawFailing : public RawTest
{
protected:
    RawFailing()
    {
        // Row loops run on the thread whose calls fail.
        Ondrel::setParallelEngine(Ondrel::ParallelEngine::Shuffled);
        std::cout.setstate(std::ios::failbit); // no warning about the same profile again and again
        testing::internal::CaptureStderr();    // nor LibRaw's about memory
    }
    ~RawFailing() override
    {
        testing::internal::GetCapturedStderr();
        std::cout.clear();
        Ondrel::setParallelEngine(m_engine);
    }

    // Calls run() with the first, the second, the third... call of a kind failing, until none is left to fail.
    template <class Run>
    static void failInTurn(Run run)
    {
        for (const unsigned int kind : {Call::New, Call::Map, Call::Profile})
            for (const FailNth::Mode mode : {FailNth::Once, FailNth::Onwards})
                for (int nth = 1, failures = 1; failures > 0; ++nth) {
                    ASSERT_LT(nth, 20000);
                    SCOPED_TRACE(std::to_string(kind) + ", call " + std::to_string(nth));
                    const FailNth failing(kind, nth, mode);
                    try {
                        run();
                    } catch (const std::bad_alloc&) {
                    }
                    failures = failing.failures();
                }
    }

private:
    const Ondrel::ParallelEngine m_engine = Ondrel::parallelEngine();
};

TEST_F(RawFailing, AdditionLeavesNoTrace)
{
    const Bytes file = randomDng(DngFile::Kind::Bayer, 24, 24).bytes();
    FreshStore store;
    failInTurn([&] {
        Ondrel::ResourceId id;
        if (store.AddImageByData(ResourceEngine::FormatRAW, file, "raw", id))
            store.removeAll();
    });
    EXPECT_TRUE(store.resources.empty() && store.sizeCache.empty());
}

TEST_F(RawFailing, DecodingComesBackAndLeavesTheStoreUnlocked)
{
    DngFile file = randomDng(DngFile::Kind::Bayer, 24, 26);
    file.orientation = 6;
    const StoredRaw stored(file.bytes());
    failInTurn([&] { ProcessRaw(stored.id, {}); });
    EXPECT_NE(stored.image(), nullptr);
}

TEST_F(RawFailing, PreviewIsRefusedOrWhole)
{
    const TemporaryFolder folder;
    DngFile file = randomDng(DngFile::Kind::Bayer, 48, 40);
    file.preview = DngFile::Preview::Bitmap;
    file.previewWidth = file.previewHeight = 20;
    file.previewData = randomBytes(1200, 1);
    writeFile(folder.path("a.dng"), file.bytes());
    const QString name = folder.path("a.dng");
    failInTurn([&] {
        Image image;
        const bool ok = ResourceEngine::ImportRawThumbnail(name, image);
        EXPECT_EQ(image.width, ok ? 20u : 0u);
    });
}

} // namespace
