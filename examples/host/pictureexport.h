#pragma once

#include "graph.h"

#include <ondrel/core/image.h>

#include <QString>
#include <QVariantMap>

#include <functional>

namespace Host
{

struct Outcome;

enum class FileFormat { Png, Jpeg, Tiff };

// The format that the values of an "Output" node ask for, PNG if none.
FileFormat formatOf(const QVariantMap& outputValues);

// "png", "jpg", "tif".
QString suffixOf(FileFormat format);

// The format that a file name's ending stands for; false if it is none of "png", "jpg", "jpeg", "tif", "tiff".
bool formatFromName(const QString& fileName, FileFormat& format);

// Why the picture of an evaluation that was not cancelled is not for a file; empty if it is. One that is not what its
// nodes should make of it is not, although it may do for the screen: the nodes are named with their reasons, in
// alphabetical order.
QString whyNotExport(const Graph& graph, const Outcome& outcome);

struct ExportResult {
    QString error; // a sentence; empty if all went well or it was stopped
    bool stopped = false;
};

// Writes the picture with the depth, quality, compression, alpha and profile that the values of an "Output" node say,
// beside its place, and renames it when it is whole; a file that is there is replaced. Makes the folder. `progress`
// gets percentages below 100 and stops the export by false; nothing is left of it then, nor after an error. Changes
// `image`, which is the caller's own copy.
ExportResult exportPicture(Ondrel::Image image, FileFormat format, const QVariantMap& outputValues,
                           const QString& fileName, const std::function<bool(int)>& progress);

} // namespace Host
