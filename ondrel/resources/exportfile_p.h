#pragma once

#include <ondrel/resources/progress_p.h>

#include <QString>

#include <cstdio>
#include <memory>

namespace Ondrel
{

struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using OwnedFile = std::unique_ptr<std::FILE, CloseFile>;

// A file to write, null if it cannot be made.
OwnedFile openForExport(const QString& fileName);

// Closes a file and tells whether all that was written to it has arrived.
[[nodiscard]] bool closeExport(OwnedFile file);

// What an export into a closed file returns: whether it is complete, or true if the caller stopped it. A stopped one is
// removed, unless the name is that of a device, a pipe or a link.
bool exportOutcome(bool complete, const ExportProgress& progress, const QString& fileName);

} // namespace Ondrel
