#include <ondrel/core/pixelblock_p.h>
#include <ondrel/core/runtimestatistics.h>

#include <new>

#include <sys/mman.h>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ONDREL_GUARDED_PIXELS
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define ONDREL_GUARDED_PIXELS
#endif

#ifdef ONDREL_GUARDED_PIXELS
#include <sanitizer/asan_interface.h>
#include <unistd.h>
#endif

namespace Ondrel
{
namespace
{

constexpr int kProtection = PROT_READ | PROT_WRITE;
constexpr int kFlags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE;

#ifdef ONDREL_GUARDED_PIXELS

// AddressSanitizer knows nothing of mappings: two blocks may touch, and the last page of a block has slack. Here each
// block lies between two pages that cannot be touched, and the slack is poisoned.
std::size_t pageSize()
{
    static const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

std::size_t wholePages(std::size_t sizeBytes)
{
    return (sizeBytes + pageSize() - 1) / pageSize() * pageSize();
}

void* mapBlock(std::size_t sizeBytes)
{
    const std::size_t inner = wholePages(sizeBytes);
    const std::size_t outer = inner + 2 * pageSize();
    void* guarded = mmap(nullptr, outer, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (guarded == MAP_FAILED)
        return MAP_FAILED;
    char* start = static_cast<char*>(guarded) + pageSize();
    if (mmap(start, inner, kProtection, kFlags | MAP_FIXED, -1, 0) == MAP_FAILED) {
        munmap(guarded, outer);
        return MAP_FAILED;
    }
    ASAN_POISON_MEMORY_REGION(start + sizeBytes, inner - sizeBytes);
    return start;
}

void unmapBlock(void* block, std::size_t sizeBytes)
{
    const std::size_t inner = wholePages(sizeBytes);
    ASAN_UNPOISON_MEMORY_REGION(block, inner);
    munmap(static_cast<char*>(block) - pageSize(), inner + 2 * pageSize());
}

#else

// From here on huge pages pay off. To populate 180 MiB of small ones takes 65 ms, of huge ones 19 ms, and to release
// them 14 ms and 1 ms.
constexpr std::size_t kHuge = std::size_t{4} << 20;

// MAP_POPULATE leaves no time to ask for huge pages, so they are asked for and populated after the mapping. Null where
// the kernel (before 5.14) cannot.
void* mapHugePages(std::size_t sizeBytes)
{
    void* block = mmap(nullptr, sizeBytes, kProtection, kFlags & ~MAP_POPULATE, -1, 0);
    if (block == MAP_FAILED)
        return nullptr;
    madvise(block, sizeBytes, MADV_HUGEPAGE); // only a hint
    if (madvise(block, sizeBytes, MADV_POPULATE_WRITE) == 0)
        return block;
    munmap(block, sizeBytes);
    return nullptr;
}

void* mapBlock(std::size_t sizeBytes)
{
    void* const block = sizeBytes >= kHuge ? mapHugePages(sizeBytes) : nullptr;
    return block ? block : mmap(nullptr, sizeBytes, kProtection, kFlags, -1, 0);
}

void unmapBlock(void* block, std::size_t sizeBytes)
{
    munmap(block, sizeBytes);
}

#endif

} // namespace

std::uint16_t* mapPixelBlock(std::uint64_t sizeBytes)
{
    if (sizeBytes == 0)
        return nullptr;
    RunTimeStatistics::Add(RunTimeStatistics::ImageMemory, sizeBytes);
    void* block = mapBlock(sizeBytes);
    if (block == MAP_FAILED) {
        RunTimeStatistics::Subtract(RunTimeStatistics::ImageMemory, sizeBytes);
        throw std::bad_alloc();
    }
    return static_cast<std::uint16_t*>(block);
}

void unmapPixelBlock(std::uint16_t* block, std::uint64_t sizeBytes) noexcept
{
    if (!block)
        return;
    // Counted before it is done, so that the counter never shows memory that has already gone.
    RunTimeStatistics::Subtract(RunTimeStatistics::ImageMemory, sizeBytes);
    unmapBlock(block, sizeBytes);
}

} // namespace Ondrel
