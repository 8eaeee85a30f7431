#pragma once

#include "wires.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace Viewer
{

struct Options {
    QStringList files;
    std::vector<Wires::Link> links;
    QString picture; // for the previews
    QString selected;
    QString primary; // the node in the primary view
    QString grab;    // where to save a picture of the canvas
    double scale = 1;
};

// Reads the command line, and ends the program for --help, --version and what makes no sense (status 2).
Options readOptions(const QStringList& arguments);

} // namespace Viewer
