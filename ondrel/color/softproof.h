#pragma once

#include <ondrel/ondrel_export.h>

#include <ondrel/core/image.h>

#include <QByteArray>

// How the image would come out on another device, rendered for the display: a new image of the same size.
// `proofProfile` is the hash of the device's profile, 32 bytes; shorter ones are padded with zeros, longer ones cut.
// `intent`, a number of Little CMS, and black point compensation go to its proofing transform, together with the
// display's intent from the settings. With `gamutCheck`, colours that the device cannot reach become (65535, 0, 0).
// Alpha is that of the image.
//
// The caller tells three outcomes apart by the hash in `colorProfile`: the display's profile for a proof; the image's
// own for a frame of opaque black, if its profile or the device's is unknown or unfit for pixels of three channels; and
// DefaultColorProfileHash for a notice painted in place of the picture, if colour management is off (from column or row
// 32767 on it is of one colour). The result has no RAW description. Of an image whose block is smaller than its sides
// say, no more is read and written than the blocks hold.
//
// Any thread, also several at once; a QGuiApplication must exist, for the notice takes its palette and font. Each call
// builds its transforms anew, one for each thread. Throws std::bad_alloc.
ONDREL_EXPORT Ondrel::Image SoftProof(const Ondrel::Image& image, const QByteArray& proofProfile, unsigned int intent,
                                      bool gamutCheck, bool blackPointCompensation);
