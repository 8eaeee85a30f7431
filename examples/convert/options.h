#pragma once

#include <QString>
#include <QStringList>

#include <variant>
#include <vector>

#include <ondrel/pixel/scale.h>

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
struct QuarterTurns { // counter-clockwise
    int count = 0;
};
using Operation = std::variant<ScaleTo, CropTo, QuarterTurns>;

struct Options {
    enum class Mode { Convert, ListProfiles, Info, Help, Version };
    Mode mode = Mode::Convert;
    QStringList inputs;
    QString output; // a file, or a folder for several inputs
    bool outputIsFolder = false;
    QString format; // for files in a folder: png, jpeg, tiff; empty keeps the input's
    QString profile;
    unsigned int intent = 0;
    Ondrel::FilterMethod filter = Ondrel::FilterMethod::Bicubic;
    std::vector<Operation> operations; // in the order of the command line
    bool sixteenBits = false;
    bool alpha = true;
    int quality = 90;
    int pngLevel = 6;
    unsigned int tiffCompression = 1;
    QString display; // where to save the rendering for the display
    bool timings = false;
    bool quiet = false;
};

// Reads the command line. False with a reason in `error` if it makes no sense; `error` is the help text for --help and
// the version text for --version.
bool parseOptions(const QStringList& arguments, Options& options, QString& message);
