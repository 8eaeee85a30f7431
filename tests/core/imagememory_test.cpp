#include <ondrel/core/image.h>
#include <ondrel/core/runtimestatistics.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

#include <sys/resource.h>

namespace
{

using Ondrel::Image;

std::uint64_t memory()
{
    return RunTimeStatistics::Get(RunTimeStatistics::ImageMemory);
}

class ImageMemory : public testing::Test
{
protected:
    const std::uint64_t before = memory();
    std::uint64_t added() const { return memory() - before; }
    void TearDown() override { EXPECT_EQ(added(), 0u); }
};

TEST_F(ImageMemory, IsCountedByTheBlock)
{
    Image image(10, 7);
    EXPECT_EQ(added(), 560u);
    image.width = 3;
    const Image copy = image;
    EXPECT_EQ(added(), 1120u);
}

TEST_F(ImageMemory, IgnoresEmptyImages)
{
    const Image a, b(0, 7), c(65536, 16384);
    EXPECT_EQ(added(), 0u);
}

TEST_F(ImageMemory, IsUntouchedByMoveConstruction)
{
    Image a(10, 7);
    const Image b(std::move(a));
    EXPECT_EQ(added(), 560u);
}

TEST_F(ImageMemory, LosesTheTargetsBlockInMoveAssignment)
{
    Image a(10, 7), b(20, 20);
    b = std::move(a);
    EXPECT_EQ(added(), 560u);
}

TEST_F(ImageMemory, FollowsCopyAssignment)
{
    Image a(10, 7), b(7, 10);
    b = a;
    EXPECT_EQ(added(), 1120u);
    a = Image(1, 1);
    EXPECT_EQ(added(), 568u);
}

TEST_F(ImageMemory, IsGivenBackByTheLastSharedHolder)
{
    std::shared_ptr<const Image> held = Image(8, 8).toPtr();
    EXPECT_EQ(added(), 512u);
    held.reset();
    EXPECT_EQ(added(), 0u);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // a limit would stop a sanitizer's own memory

// Runs in a process of its own, as the limit on the address space cannot be taken back.
bool refusedMappingIsClean()
{
    Image kept(100, 100);
    Image target(50, 50);
    target.colorProfile.fill(3);
    const std::uint64_t counted = memory();
    const rlimit limit{std::uint64_t(2) << 30, std::uint64_t(2) << 30};
    if (setrlimit(RLIMIT_AS, &limit) != 0)
        return false;
    try {
        const Image tooLarge(30000, 17000); // 4 GB
        return false;
    } catch (const std::bad_alloc&) {
    }
    if (memory() != counted)
        return false;
    Image source; // a block that does not exist, so that only its size is looked at
    source.width = 30000;
    source.height = 17000;
    source.sizeBytes = std::uint64_t(30000) * 17000 * 8;
    bool threw = false;
    try {
        target = source;
    } catch (const std::bad_alloc&) {
        threw = true;
    }
    source.sizeBytes = 0;
    return threw && target.data == nullptr && target.width == 0 && target.height == 0 && target.sizeBytes == 0 &&
           memory() == counted - 50 * 50 * 8 && kept.data != nullptr;
}

TEST_F(ImageMemory, ARefusedMappingThrowsAndLeavesTheEmptyState)
{
    EXPECT_EXIT(std::_Exit(refusedMappingIsClean() ? 0 : 1), testing::ExitedWithCode(0), "");
}

#endif

#ifdef __SANITIZE_ADDRESS__

// Blocks are mappings, of which the sanitizer knows nothing by itself.
TEST_F(ImageMemory, AnAccessBesideABlockIsSeenByTheSanitizer)
{
    const Image image(10, 7);
    const volatile std::uint16_t* const block = image.data;
    EXPECT_DEATH(static_cast<void>(block[10 * 7 * 4]), "");
    EXPECT_DEATH(static_cast<void>(block[-1]), "");
    EXPECT_DEATH(static_cast<void>(block[2048]), "");
}

#endif

} // namespace
