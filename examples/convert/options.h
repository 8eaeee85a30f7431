#pragma once

#include <ondrel/pixel/gaussianblur.h>
#include <ondrel/pixel/geometry.h>
#include <ondrel/pixel/gradient.h>
#include <ondrel/pixel/scale.h>

#include <QPointF>
#include <QString>
#include <QStringList>

#include <array>
#include <variant>
#include <vector>

// What the command line asks for.

struct ScaleTo { // a size in pixels (0: from the aspect) or a percentage
    QString unit;
    QString aspect;
    float percent = 0;
    unsigned int width = 0, height = 0;
};
struct CropTo {
    unsigned int width = 0, height = 0, x = 0, y = 0;
};
struct RotateBy { // degrees, counter-clockwise
    float angle = 0;
};
struct BlurBy { // radii in pixels
    float x = 0, y = 0;
};
struct MoveCorners { // to where the top left, top right, bottom right and bottom left corner go, in pixels
    std::array<QPointF, 4> corners;
};
struct GradientOver { // drawn over the picture; geometry in fractions of its sides
    std::variant<GradientLinearGeometry, GradientRadialGeometry> geometry;
    std::vector<Ondrel::GradientStop> stops;
};
struct WhiteBalance { // the light that the photograph was taken in
    float kelvin = 6500, tint = 1000;
};
struct ProofFor { // a profile as --profile names it
    QString profile;
};
using Operation = std::variant<ScaleTo, CropTo, RotateBy, BlurBy, MoveCorners, GradientOver, WhiteBalance, ProofFor>;

struct Options {
    enum class Mode { Convert, ListProfiles, ListDevices, Info, Help, Version };
    Mode mode = Mode::Convert;
    QStringList inputs;
    QString output; // a file, or a folder for several inputs
    bool outputIsFolder = false;
    QString format; // for files in a folder: png, jpeg, tiff; empty keeps the input's
    QString profile;
    unsigned int intent = 0;
    // How operations of their kind work.
    Ondrel::FilterMethod filter = Ondrel::FilterMethod::Bicubic;
    GaussianEdge edge = GaussianEdge::Clamp;
    RotateSize rotateSize = RotateSizeBounding;
    bool mixLightnessAndHue = false;
    bool gamutWarning = false;
    std::vector<Operation> operations; // in the order of the command line
    bool sixteenBits = false;
    bool alpha = true;
    int quality = 90;
    int pngLevel = 6;
    unsigned int tiffCompression = 1;
    bool raw = false;     // inputs are camera RAW files
    bool develop = false; // RAW files come out as pictures, not as the mosaic
    bool preview = false; // RAW files give the preview that they carry
    QString display;      // where to save the rendering for the display
    bool opencl = false;
    QString device; // "P:D" for OpenCL, or empty for the first one
    bool timings = false;
    bool quiet = false;
};

// Reads the numbers of "1,2.5,-3": as many as there are, each finite. False for anything else.
bool parseNumbers(const QString& text, std::vector<float>& numbers);

// Reads "linear,X1,Y1,X2,Y2,COLOR[@POS],COLOR..." or "radial,CX,CY,RX,RY,DEGREES,FX,FY,COLOR[@POS],...".
bool parseGradient(const QString& text, Operation& operation);

// Reads the command line. False with a reason in `error` if it makes no sense; `error` is the help text for --help and
// the version text for --version.
bool parseOptions(const QStringList& arguments, Options& options, QString& message);
