#pragma once

#include "graph.h"

#include <ondrel/resources/resourceid.h>

#include <nlohmann/json.hpp>

#include <QByteArray>
#include <QStringList>

#include <optional>

namespace Host
{

// What a project file holds. Resources are named in the graph by their handles in the store of this process.
struct Project {
    Graph graph;
    nlohmann::ordered_json view = nlohmann::ordered_json::object(); // the editor's own: an object with what it likes
};

// Of a project that was read. Either there is a project, perhaps with notes, or there is an error.
struct ProjectReading {
    std::optional<Project> project;
    QString error; // a sentence, with line and column where the file is at fault
    // One sentence each: pictures and kinds of nodes that are missing, pictures that were mended, and with line and
    // column values and connections that do not fit the kinds of nodes that are loaded.
    QStringList notes;
};

// A project file is JSON, told apart by {"format": "ondrel-project", "version": 1}. Whatever is not as this version
// writes it is refused with the line and column (in bytes, from 1) of the value at fault; nodes of kinds that are not
// loaded are taken as they are, kept in NodeRecord::unread, and written again with all they had. Plug-ins change:
// connections between fields that their nodes do not have, or of different types, and values that their inputs cannot
// hold are kept too, unused, with a note.
//
// Pictures are added to the store under new handles: those with a path from their files, relative paths starting from
// `folder`; those with bytes through the store's manual mode. One that cannot be read keeps its handle, path and wires,
// and has no size; a note names it. If there is an error the store is as before.
//
// All functions below block, for files and for the store: not for the user-interface thread.
ProjectReading readProject(const QByteArray& text, const QString& folder, const NodeTypes& types);
ProjectReading loadProject(const QString& fileName, const NodeTypes& types);

// The most bytes that a project's text may have, and a little less than a byte array of the toolkit.
constexpr std::size_t kLargestProject = 2'000'000'000;

// The file's text, or none at all if it would be larger than that. The same project gives the same bytes, and so does
// one that was read from them with the same folder. Pictures below `folder` are named by a relative path. Those without
// a file name, and buffers, are always embedded.
QByteArray writeProject(const Project& project, const QString& folder, std::size_t largest = kLargestProject);

// Puts the file in place as a whole, or leaves what was there. The error is a sentence; empty if all went well.
QString saveProject(const Project& project, const QString& fileName, std::size_t largest = kLargestProject);

// The handles of all resources that values of the graph name, each once, in the order of nodes and fields.
std::vector<Ondrel::ResourceId> resourcesOf(const Graph& graph);

// Where the project is saved between two saves of the user: "photo.ondrel" gives "photo.ondrel.autosave".
QString autosaveName(const QString& fileName);

// The autosave to offer when a project is opened: it is there, newer than the file or without it, and a whole JSON
// text. Empty if there is none. After a save by the user, discardAutosave() removes it.
QString recoverableAutosave(const QString& fileName);
void discardAutosave(const QString& fileName);

} // namespace Host
