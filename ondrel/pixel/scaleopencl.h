#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/pixel/opencl.h>
#include <ondrel/pixel/scale.h>

// Scaling on the device of PixelOpenCL, with the kernels a6 (nearest neighbour) and f6 (bilinear). Both forms hold the
// device from its borrowing to their return, and so wait for any other job on it; a caller that holds a token of
// PixelOpenCL::beginWork must drop it before. They may be called on any thread.
//
// True means that `destination` holds the result. False means that it was not made: OpenCL is off, the filter has no
// kernel (bicubic), a side of the result is 0, or the driver refused a step; `destination` then has the asked size, but
// no valid pixels, and Scale_CPU may write into it. OpenCL stays on after a failure. std::bad_alloc passes through, and
// leaves the device free.
//
// Nearest neighbour gives the pixels of Scale_CPU. Bilinear differs by the device's rounding in single precision, which
// is up to one step of a premultiplied sample: colours divided by a small alpha may so differ by more. Reductions by
// more than 64 times take 64 x 64 samples for each pixel, where Scale_CPU takes more.

// From and to images. A source without pixels or of the asked size is copied whole, with all metadata, without the
// device. Otherwise the result has the colour profile hash of the source; a destination that has the asked size keeps
// its block and its other metadata, any other is replaced. Source and destination must not be the same image.
ONDREL_EXPORT bool Scale_OpenCL(Ondrel::Image const& source, Ondrel::Image& destination, unsigned int width,
                                unsigned int height, Ondrel::FilterMethod filter);

// From a buffer that a plug-in has on the device: sourceWidth * sourceHeight pixels in the layout of Ondrel::Image, of
// the context that PixelOpenCL::beginWork gives. A source with a side of 0 gives true, one of the asked size false;
// `destination` is left as it is in both cases. A destination that is null or of another size is replaced by a new
// image without metadata; one of the asked size is written to as it is, and must have been made as an image that may
// change and be read by nobody else meanwhile.
ONDREL_EXPORT bool Scale_OpenCL(cl::Buffer& source, unsigned int sourceWidth, unsigned int sourceHeight,
                                std::shared_ptr<const Ondrel::Image>& destination, unsigned int width,
                                unsigned int height, Ondrel::FilterMethod filter);
