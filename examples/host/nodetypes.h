#pragma once

#include "plugininterface.h"

#include <map>

namespace Host
{

// A kind of node that the host knows.
struct NodeType {
    QString id; // plug-in and file: "essentials/gaussianblur"; what projects name
    QString title;
    QString category;
    QStringList keywords;
    QString help;
    int version = 1;
    QString fileText; // of the node file
    std::vector<InputInfo> inputs;
    std::vector<OutputInfo> outputs;
    NodeEntry entry;

    // Null if there is no such field. An input of a variable node ("layer7") is described by what its prefix says.
    const InputInfo* input(const QString& name) const;
    const OutputInfo* output(const QString& name) const;

    QVariantMap defaults() const;
};

// All kinds of nodes. Filled at the start, then constant and readable from any thread.
class NodeTypes
{
public:
    // Registers the plug-in's folder with PlatformPrivate and takes in its nodes. A node whose file is missing or
    // malformed is left out and named in `problems`.
    void addPlugin(const QString& pluginName, const QString& folder, const NodePlugin& plugin, QStringList& problems);

    const NodeType* find(const QString& id) const; // null if unknown
    std::vector<const NodeType*> all() const;      // by title

private:
    std::map<QString, NodeType> m_types;
};

// Loads every plug-in in the folder's subfolders: "essentials/essentials.so" with its nodes in "essentials/nodes". One
// that cannot be loaded, throws or is no node plug-in is named in the result, one line each, and skipped.
QStringList loadPlugins(const QString& folder, NodeTypes& types);

} // namespace Host
