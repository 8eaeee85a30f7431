#pragma once

#include <ondrel/resources/landing_p.h>

#include <png.h>

#include <csetjmp>

// The one landing place for errors of libpng: every call that can fail is made inside pngStep().

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
[[nodiscard]] bool pngStep(PngErrors& errors, Step step)
{
    return runWithLanding(errors.landing, step);
}

} // namespace Ondrel
