#pragma once

#include <png.h>

#include <csetjmp>
#include <type_traits>

// The one landing place for errors of libpng. libpng leaves its functions by longjmp(), which runs no destructors:
// every call that can fail is made inside pngStep(), by a step that owns nothing, while the owner of the structures
// lives outside it.

namespace Ondrel
{

struct PngErrors {
    std::jmp_buf landing;
};

[[noreturn]] inline void leavePng(png_structp png, png_const_charp)
{
    std::longjmp(static_cast<PngErrors*>(png_get_error_ptr(png))->landing, 1);
}

inline void ignorePngWarning(png_structp, png_const_charp) {}

// The version that the code was written for; libpng compares its first two numbers with its own.
constexpr const char* kPngVersion = "1.6.21";

// False if libpng gave up inside `step`.
template <class Step>
[[nodiscard, gnu::noinline]] bool pngStep(PngErrors& errors, Step step)
{
    static_assert(std::is_trivially_destructible_v<Step>);
    if (setjmp(errors.landing))
        return false;
    step();
    return true;
}

} // namespace Ondrel
