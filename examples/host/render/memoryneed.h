#pragma once

#include "graph.h"

#include <ondrel/resources/resourceid.h>

#include <QString>

#include <cstddef>
#include <vector>

// Upper estimates of memory, in bytes.

// What the program takes without any picture.
inline constexpr std::size_t kProgramBytes = std::size_t(96) << 20;

// Reading a project with its pictures, while that goes on.
std::size_t bytesToRead(const QString& projectFile);

// What the store keeps of these pictures, files and decoded, from their first use on.
std::size_t bytesInStore(const std::vector<Ondrel::ResourceId>& ids);

// Computing and writing the picture of a node: the picture of every node on the way, and what as many of them as may
// run at once work with.
std::size_t bytesToCompute(const Host::Graph& graph, const Host::NodeTypes& types, Host::NodeId node);

QString memoryText(std::size_t bytes); // "123 MiB"
