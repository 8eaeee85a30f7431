#include "failnth.h"

#include <lcms2.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <new>
#include <sys/mman.h>
#include <sys/uio.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ONDREL_OTHER_MALLOC
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ONDREL_OTHER_MALLOC
#endif
#endif

#define EXPORTED __attribute__((visibility("default")))

namespace
{

struct State {
    unsigned int kinds;
    int remaining; // calls up to the one that fails; 0: none fails
    bool onwards;
    int failures;
};
thread_local State state{};

bool failNow(unsigned int kind) noexcept
{
    if (!(state.kinds & kind) || state.remaining == 0)
        return false;
    if (state.remaining > 1) {
        --state.remaining;
        return false;
    }
    state.remaining = state.onwards ? 1 : 0;
    ++state.failures;
    return true;
}

bool failFile(int error) noexcept
{
    if (!failNow(OndrelTest::Call::File))
        return false;
    errno = error;
    return true;
}

bool failStream(std::FILE* stream, int error) noexcept
{
    if (stream == stdout || stream == stderr || !failFile(error))
        return false;
    constexpr int kErrorSeen = 0x20; // in glibc; what ferror() looks at
    stream->_flags |= kErrorSeen;
    return true;
}

// The functions behind those of this file.
template <class Function>
Function next(const char* name)
{
    void* const address = dlsym(RTLD_NEXT, name);
    if (!address)
        std::abort();
    return reinterpret_cast<Function>(address);
}

struct Next {
    using Open = int (*)(const char*, int, ...);
    using OpenStream = std::FILE* (*)(const char*, const char*);
    using CloseStream = int (*)(std::FILE*);

    Open open = next<Open>("open");
    OpenStream fopen = next<OpenStream>("fopen");
    OpenStream fopen64 = next<OpenStream>("fopen64");
    CloseStream fclose = next<CloseStream>("fclose");
    CloseStream fflush = next<CloseStream>("fflush");
    int (*close)(int) = next<int (*)(int)>("close");
    ssize_t (*read)(int, void*, size_t) = next<ssize_t (*)(int, void*, size_t)>("read");
    ssize_t (*write)(int, const void*, size_t) = next<ssize_t (*)(int, const void*, size_t)>("write");
    ssize_t (*writev)(int, const iovec*, int) = next<ssize_t (*)(int, const iovec*, int)>("writev");
    size_t (*fread)(void*, size_t, size_t, std::FILE*) = next<size_t (*)(void*, size_t, size_t, std::FILE*)>("fread");
    size_t (*fwrite)(const void*, size_t, size_t,
                     std::FILE*) = next<size_t (*)(const void*, size_t, size_t, std::FILE*)>("fwrite");
    void* (*mmap)(void*, size_t, int, int, int, off_t) = next<void* (*)(void*, size_t, int, int, int, off_t)>("mmap");
};

const Next& libc()
{
    static const Next functions;
    return functions;
}

// Where the code of a library lies in memory.
class Code
{
public:
    explicit Code(const char* function)
        : m_inside(address(next<void*>(function)))
    {
        if (!dl_iterate_phdr(&find, this))
            std::abort();
    }
    bool contains(const void* place) const noexcept { return address(place) - m_first < m_size; }

private:
    static std::uintptr_t address(const void* place) noexcept { return reinterpret_cast<std::uintptr_t>(place); }

    static int find(dl_phdr_info* library, size_t, void* code)
    {
        auto& found = *static_cast<Code*>(code);
        for (int i = 0; i < library->dlpi_phnum; ++i) {
            const auto& segment = library->dlpi_phdr[i];
            found.m_first = library->dlpi_addr + segment.p_vaddr;
            found.m_size = segment.p_memsz;
            if (segment.p_type == PT_LOAD && found.m_inside - found.m_first < found.m_size)
                return 1;
        }
        return 0;
    }

    std::uintptr_t m_inside, m_first = 0, m_size = 0;
};

const Code& lcms()
{
    static const Code code("cmsDoTransform");
    return code;
}

const Code& libtiff()
{
    static const Code code("TIFFClose");
    return code;
}

bool failMalloc(const void* returnAddress) noexcept
{
    if (!(state.kinds & OndrelTest::Call::Malloc) || lcms().contains(returnAddress) ||
        !failNow(OndrelTest::Call::Malloc))
        return false;
    errno = ENOMEM;
    return true;
}

bool failProfile(const void* returnAddress) noexcept
{
    return (state.kinds & OndrelTest::Call::Profile) && !lcms().contains(returnAddress) &&
           failNow(OndrelTest::Call::Profile);
}

std::atomic<long> blocksInUse{0};

void* allocateOrThrow(std::size_t size)
{
    if (failNow(OndrelTest::Call::New))
        throw std::bad_alloc();
    void* const block = std::malloc(size ? size : 1);
    if (!block)
        throw std::bad_alloc();
    return block;
}

void* allocateOrNull(std::size_t size) noexcept
{
    return failNow(OndrelTest::Call::New) ? nullptr : std::malloc(size ? size : 1);
}

} // namespace

namespace OndrelTest
{

FailNth::FailNth(unsigned int kinds, int nth, Mode mode)
{
    libc(); // looked up now, not by a call that is counted
    lcms();
    libtiff();
    state = {kinds, nth, mode == Onwards, 0};
}

FailNth::~FailNth()
{
    state = {};
}

int FailNth::failures() const
{
    return state.failures;
}

bool canFailMalloc()
{
#ifdef ONDREL_OTHER_MALLOC
    return false;
#else
    return true;
#endif
}

long heapBlocks()
{
    return blocksInUse;
}

} // namespace OndrelTest

// Over-aligned new is left alone: nothing here uses it where it could be told apart from std::aligned_alloc.
EXPORTED void* operator new(std::size_t size)
{
    return allocateOrThrow(size);
}
EXPORTED void* operator new[](std::size_t size)
{
    return allocateOrThrow(size);
}
EXPORTED void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return allocateOrNull(size);
}
EXPORTED void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return allocateOrNull(size);
}
EXPORTED void operator delete(void* block) noexcept
{
    std::free(block);
}
EXPORTED void operator delete[](void* block) noexcept
{
    std::free(block);
}
EXPORTED void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}
EXPORTED void operator delete[](void* block, std::size_t) noexcept
{
    std::free(block);
}

extern "C" {

#ifndef ONDREL_OTHER_MALLOC

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void __libc_free(void* block);

EXPORTED void* malloc(size_t size) noexcept
{
    if (failMalloc(__builtin_return_address(0)))
        return nullptr;
    void* const block = __libc_malloc(size);
    blocksInUse += block != nullptr;
    return block;
}

EXPORTED void* calloc(size_t count, size_t size) noexcept
{
    if (failMalloc(__builtin_return_address(0)))
        return nullptr;
    void* const block = __libc_calloc(count, size);
    blocksInUse += block != nullptr;
    return block;
}

EXPORTED void* realloc(void* block, size_t size) noexcept
{
    const void* const caller = __builtin_return_address(0);
    if ((state.kinds & OndrelTest::Call::Malloc) && !libtiff().contains(caller) && failMalloc(caller))
        return nullptr;
    void* const moved = __libc_realloc(block, size);
    blocksInUse += (moved != nullptr) - (block != nullptr && (moved != nullptr || size == 0));
    return moved;
}

EXPORTED void free(void* block) noexcept
{
    blocksInUse -= block != nullptr;
    __libc_free(block);
}

#endif

EXPORTED void* mmap(void* address, size_t length, int protection, int flags, int file, off_t offset) noexcept
{
    if ((flags & MAP_POPULATE) && failNow(OndrelTest::Call::Map)) {
        errno = ENOMEM;
        return MAP_FAILED;
    }
    return libc().mmap(address, length, protection, flags, file, offset);
}

EXPORTED int open(const char* name, int flags, ...)
{
    mode_t mode = 0;
    if (flags & (O_CREAT | O_TMPFILE)) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    return failFile(EMFILE) ? -1 : libc().open(name, flags, mode);
}

EXPORTED std::FILE* fopen(const char* name, const char* mode)
{
    return failFile(EMFILE) ? nullptr : libc().fopen(name, mode);
}

EXPORTED std::FILE* fopen64(const char* name, const char* mode)
{
    return failFile(EMFILE) ? nullptr : libc().fopen64(name, mode);
}

EXPORTED ssize_t read(int file, void* out, size_t size)
{
    return failFile(EIO) ? -1 : libc().read(file, out, size);
}

EXPORTED ssize_t write(int file, const void* in, size_t size)
{
    return failFile(ENOSPC) ? -1 : libc().write(file, in, size);
}

EXPORTED ssize_t writev(int file, const iovec* in, int count)
{
    return failFile(ENOSPC) ? -1 : libc().writev(file, in, count);
}

EXPORTED int close(int file)
{
    const int result = libc().close(file);
    return failFile(EIO) ? -1 : result;
}

EXPORTED size_t fread(void* out, size_t size, size_t count, std::FILE* stream)
{
    return failStream(stream, EIO) ? 0 : libc().fread(out, size, count, stream);
}

EXPORTED size_t fwrite(const void* in, size_t size, size_t count, std::FILE* stream)
{
    return failStream(stream, ENOSPC) ? 0 : libc().fwrite(in, size, count, stream);
}

EXPORTED int fflush(std::FILE* stream)
{
    return failStream(stream, ENOSPC) ? EOF : libc().fflush(stream);
}

EXPORTED int fclose(std::FILE* stream)
{
    const bool standard = stream == stdout || stream == stderr;
    const int result = libc().fclose(stream);
    return !standard && failFile(EIO) ? EOF : result;
}

// Little CMS. `refused` is what it gives when it has no memory.
#define ONDREL_REFUSE(refused, name, parameters, arguments)                                                            \
    EXPORTED auto name parameters->decltype(name arguments)                                                            \
    {                                                                                                                  \
        static const auto real = next<decltype(&name)>(#name);                                                         \
        return failProfile(__builtin_return_address(0)) ? refused : real arguments;                                    \
    }

ONDREL_REFUSE(nullptr, cmsOpenProfileFromMem, (const void* data, cmsUInt32Number size), (data, size))
ONDREL_REFUSE(nullptr, cmsCreate_sRGBProfile, (), ())
ONDREL_REFUSE(nullptr, cmsCreateLab2Profile, (const cmsCIExyY* white), (white))
ONDREL_REFUSE(nullptr, cmsCreateGrayProfile, (const cmsCIExyY* white, const cmsToneCurve* curve), (white, curve))
ONDREL_REFUSE(nullptr, cmsCreateRGBProfile,
              (const cmsCIExyY* white, const cmsCIExyYTRIPLE* primaries, cmsToneCurve* const curves[3]),
              (white, primaries, curves))
ONDREL_REFUSE(nullptr, cmsBuildGamma, (cmsContext context, cmsFloat64Number gamma), (context, gamma))
ONDREL_REFUSE(nullptr, cmsBuildTabulatedToneCurve16,
              (cmsContext context, cmsUInt32Number entries, const cmsUInt16Number values[]), (context, entries, values))
ONDREL_REFUSE(nullptr, cmsMLUalloc, (cmsContext context, cmsUInt32Number items), (context, items))
ONDREL_REFUSE(FALSE, cmsWriteTag, (cmsHPROFILE profile, cmsTagSignature tag, const void* data), (profile, tag, data))
ONDREL_REFUSE(FALSE, cmsSaveProfileToMem, (cmsHPROFILE profile, void* data, cmsUInt32Number* size),
              (profile, data, size))
ONDREL_REFUSE(nullptr, cmsCreateTransform,
              (cmsHPROFILE input, cmsUInt32Number inputFormat, cmsHPROFILE output, cmsUInt32Number outputFormat,
               cmsUInt32Number intent, cmsUInt32Number flags),
              (input, inputFormat, output, outputFormat, intent, flags))

} // extern "C"
