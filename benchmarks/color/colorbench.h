#pragma once

#include "benchmarks/support/benchimages.h"
#include "benchmarks/support/figures.h"

#include <ondrel/color/colormanager.h>
#include <ondrel/color/colorprofiles.h>
#include <ondrel/color/lcms_p.h>

#include <functional>

namespace OndrelBench
{

// ProPhoto RGB: as far from the display's sRGB as a photograph's profile commonly is.
std::array<unsigned char, 32> photographProfile();

// The synthetic picture in that profile.
Ondrel::Image photograph();

// Two transforms between registered profiles, as two threads use them.
class TwoTransforms
{
public:
    TwoTransforms(const std::array<unsigned char, 32>& source, void* destination, unsigned int sourceFormat,
                  unsigned int destinationFormat);

    // Converts half of the pixels on each of two threads.
    void run(const void* source, void* destination, std::size_t destinationPixelSize) const;

private:
    Ondrel::OwnedTransform m_transforms[2];
};

} // namespace OndrelBench
