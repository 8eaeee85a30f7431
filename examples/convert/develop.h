#pragma once

#include <ondrel/core/image.h>

#include <QString>

// The plain development of a RAW image as the store gives it: as-shot white balance, clipped where the first channel
// is full, and each missing colour from the nearest photosites that have it. The result is linear, in the profile of
// the camera. False for a mosaic that is neither Bayer nor X-Trans.
bool developRaw(const Ondrel::Image& raw, Ondrel::Image& developed);

// The RAW description of an image in one line of text, e.g. "Bayer mosaic, turned by 90 degrees, ...".
QString describeRaw(const Ondrel::Image& raw);
