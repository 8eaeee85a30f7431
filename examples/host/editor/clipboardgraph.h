#pragma once

#include "graph.h"

#include <optional>

namespace Host
{

// Nodes with their values and the wires among them as JSON text, for the clipboard. Resources keep the handles of this
// process.
QByteArray graphToText(const Graph& graph);

// None if the text is not of that form.
std::optional<Graph> graphFromText(const QByteArray& text);

} // namespace Host
