#pragma once

#include <ondrel/resources/landing_p.h>

#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

#include <csetjmp>

// The one landing place for errors of libjpeg, as in pngboundary_p.h. Messages go to libjpeg's own output.

namespace Ondrel
{

struct JpegErrors : jpeg_error_mgr {
    std::jmp_buf landing;

    JpegErrors()
    {
        jpeg_std_error(this);
        error_exit = [](j_common_ptr jpeg) {
            jpeg->err->output_message(jpeg);
            leave(jpeg);
        };
    }
    [[noreturn]] static void leave(j_common_ptr jpeg) { std::longjmp(static_cast<JpegErrors*>(jpeg->err)->landing, 1); }
};

// False if libjpeg gave up inside `step`.
template <class Step>
[[nodiscard]] bool jpegStep(JpegErrors& errors, Step step)
{
    return runWithLanding(errors.landing, step);
}

} // namespace Ondrel
