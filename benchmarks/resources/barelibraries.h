#pragma once

#include <ondrel/core/image.h>

#include <string>
#include <vector>

// The least that a reader or writer must do: the library on the same settings, without profiles and checks. Readers
// leave the samples as the library gives them, in memory of the caller; writers are given samples of the file's depth.
namespace OndrelBench
{

// Rows of 8-bit RGB, one row after the other into `row`.
bool bareReadJpeg(const std::vector<unsigned char>& file, std::vector<unsigned char>& row);
bool bareWriteJpeg(const std::string& fileName, const std::vector<unsigned char>& rgb, unsigned int width,
                   unsigned int height, int quality);

// 16-bit RGBA straight into the image's memory.
bool bareReadPng(const std::vector<unsigned char>& file, Ondrel::Image& image);
// `bits` 8 or 16 a sample, RGBA, in the byte order of the machine.
bool bareWritePng(const std::string& fileName, const void* rgba, unsigned int width, unsigned int height, int bits,
                  int compressionLevel);

// Every strip, and Little CMS from sRGB to sRGB with 16 bits, which is what brings the samples into an image.
bool bareReadTiff(const std::string& fileName, Ondrel::Image& image);
// RGBA, one row a strip. The rows are copied first, since libtiff may change them.
bool bareWriteTiff(const std::string& fileName, const void* rgba, unsigned int width, unsigned int height, int bits,
                   int compression);

} // namespace OndrelBench
