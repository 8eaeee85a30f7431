#include "barelibraries.h"

#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

namespace OndrelBench
{

bool bareReadJpeg(const std::vector<unsigned char>& file, std::vector<unsigned char>& row)
{
    jpeg_decompress_struct jpeg{};
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&jpeg, TRUE);
    jpeg.out_color_space = JCS_RGB;
    jpeg_start_decompress(&jpeg);
    row.resize(std::size_t(jpeg.output_width) * 3);
    JSAMPROW rows[1] = {row.data()};
    while (jpeg.output_scanline < jpeg.output_height)
        jpeg_read_scanlines(&jpeg, rows, 1);
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    return true;
}

bool bareWriteJpeg(const std::string& fileName, const std::vector<unsigned char>& rgb, unsigned int width,
                   unsigned int height, int quality)
{
    std::FILE* file = std::fopen(fileName.c_str(), "wb");
    if (!file)
        return false;
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file);
    jpeg.input_components = 3;
    jpeg.in_color_space = JCS_RGB;
    jpeg.image_width = width;
    jpeg.image_height = height;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, quality, FALSE);
    jpeg.dct_method = JDCT_ISLOW;
    jpeg_start_compress(&jpeg, TRUE);
    while (jpeg.next_scanline < height) {
        JSAMPROW rows[1] = {const_cast<JSAMPROW>(rgb.data()) + std::size_t(jpeg.next_scanline) * width * 3};
        jpeg_write_scanlines(&jpeg, rows, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    return std::fclose(file) == 0;
}

} // namespace OndrelBench
