#pragma once

#include "clippingmarks.h"
#include "plugininterface.h"

#include <QByteArray>
#include <QImage>

#include <memory>
#include <vector>

namespace Host
{

// How a picture is made ready for the display.
struct DisplayOptions {
    bool marksClipping = false;   // red where a colour is at its end, blue where all are black
    bool proofs = false;          // shows how the picture comes out on another device
    QByteArray proofProfile;      // the device's, by its hash
    unsigned int proofIntent = 1; // of Little CMS
    bool marksGamut = false;      // red where the device cannot reach a colour

    bool operator==(const DisplayOptions& other) const;
};

// How the pictures of the primary and the secondary node are shown in the view.
struct ViewOptions : DisplayOptions {
    enum Compare { First, Second, Wipe, SideBySide };
    Compare compare = First;
    double wipe = 0.5; // where the second picture begins, as a part of the width
};

// A picture for the display: first itself, then forms that are half as large in both directions as the one before, down
// to what a small window shows. Marks of clipping are apart, as they are not to fade when the picture is shrunk. Empty
// for no picture.
struct RenderedPicture {
    std::vector<QImage> levels;
    std::shared_ptr<const ClippingMarks> marks; // null if they are not wanted

    bool isNull() const { return levels.empty(); }
    // The smallest form with at least this many pixels across, or the picture itself.
    const QImage& forWidth(double pixels) const;
    QImage marked() const; // the picture itself, with its marks
};

// The picture in the pixels that it has. Null without an image. Any thread.
QImage renderForView(const Picture& picture, const DisplayOptions& options);
RenderedPicture renderWithLevels(const Picture& picture, const DisplayOptions& options);

} // namespace Host
