#pragma once

#include "plugininterface.h"

#include <QByteArray>
#include <QImage>

namespace Host
{

// How pictures are shown in the view.
struct ViewOptions {
    enum Compare { First, Second, Wipe };
    Compare compare = First;
    double wipe = 0.5;            // where the second picture begins, as a part of the width
    bool marksClipping = false;   // red where a colour is at its end, blue where all are black
    bool proofs = false;          // shows how the picture comes out on another device
    QByteArray proofProfile;      // the device's, by its hash
    unsigned int proofIntent = 1; // of Little CMS
    bool marksGamut = false;      // red where the device cannot reach a colour
};

// What the view shows, rendered for the display, in the pixels of the first picture; those of the second are scaled to
// them in a wipe. Without a second picture there is nothing to compare with. Null without a first one. Any thread.
QImage renderForView(const Picture& first, const Picture& second, const ViewOptions& options);

} // namespace Host
