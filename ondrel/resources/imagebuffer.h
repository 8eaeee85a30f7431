#pragma once

#include <ondrel/ondrel_export.h>

#include <memory>
#include <ondrel/core/image.h>
#include <vector>
ONDREL_EXPORT bool ReadImageBuffer(const std::vector<unsigned char>& data, std::shared_ptr<const Ondrel::Image>& image);
ONDREL_EXPORT void WriteImageBuffer(std::shared_ptr<const Ondrel::Image> image, std::vector<unsigned char>& data);
