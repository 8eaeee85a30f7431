#pragma once

#include <ondrel/resources/resourceengine.h>

#include <QStringList>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace Host
{

// A picture as a project file names it: by its path, or by its bytes and the name that it came with.
struct StoredResource {
    enum Form { File, RawFile, Buffer } form = File;
    QString path;
    std::vector<unsigned char> data;
    bool embedded = false;
};

// Adds the pictures to the store, those with bytes in one go, and gives their handles in the same order. One that
// cannot be read gets a handle of which the store knows but the path; a note says so. Files are added as importImage()
// does, with its notes.
std::vector<std::uint32_t> addToStore(const std::vector<StoredResource>& resources, QStringList& notes);

// What the store has of a handle; with the bytes only if they are wanted or there is no path. A handle that is unknown,
// or of an empty buffer, gives no path and no bytes.
StoredResource copyFromStore(std::uint32_t handle, bool wantsData);

} // namespace Host
