#include <ondrel/resources/jpegsource_p.h>

#include <jerror.h>

namespace Ondrel
{
namespace
{

constexpr int kMostScans = 1000; // 100 kB of empty scans can take 10 s

void stopAtTooManyScans(j_common_ptr jpeg)
{
    if (reinterpret_cast<j_decompress_ptr>(jpeg)->input_scan_number > kMostScans)
        JpegErrors::leave(jpeg);
}

void stopAtMissingData(j_common_ptr jpeg, int level)
{
    const int code = jpeg->err->msg_code;
    if (level < 0 && (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER))
        jpeg->err->error_exit(jpeg);
}

} // namespace

JpegSource::JpegSource(Ending ending)
{
    if (ending == Ending::Error)
        errors.emit_message = &stopAtMissingData;
    progress.progress_monitor = &stopAtTooManyScans;
    jpeg.err = &errors;
}

bool JpegSource::readHeader(const std::vector<unsigned char>& data)
{
    return jpegStep(errors, [this, bytes = data.data(), size = data.size()] {
        jpeg_create_decompress(&jpeg);
        jpeg.progress = &progress;
        jpeg_mem_src(&jpeg, bytes, static_cast<unsigned long>(size));
        jpeg_save_markers(&jpeg, JPEG_APP0 + 1, 65535);
        jpeg_save_markers(&jpeg, JPEG_APP0 + 2, 65535);
        jpeg_read_header(&jpeg, TRUE);
    });
}

bool JpegSource::start()
{
    return jpegStep(errors, [this] { jpeg_start_decompress(&jpeg); });
}

bool JpegSource::readRows(unsigned char* rows, std::size_t stride, unsigned int count)
{
    return jpegStep(errors, [this, rows, stride, count] {
        for (unsigned int done = 0; done < count;) {
            JSAMPROW pointers[4];
            unsigned int wanted = 0;
            for (; wanted < 4 && done + wanted < count; ++wanted)
                pointers[wanted] = rows + (done + wanted) * stride;
            done += jpeg_read_scanlines(&jpeg, pointers, wanted);
        }
    });
}

bool JpegSource::finish()
{
    return jpegStep(errors, [this] { jpeg_finish_decompress(&jpeg); });
}

} // namespace Ondrel
