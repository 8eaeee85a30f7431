#pragma once

#include "graph.h"

#include <optional>

namespace Host
{

// Nodes with their values, the wires among them, and frames as JSON text, for the clipboard. Resources keep the handles
// of this process, and are left out of what another one reads.
QByteArray graphToText(const Graph& graph);

// None if the text is not of that form. One that does not begin like it is not looked at any further.
std::optional<Graph> graphFromText(const QByteArray& text);

// User-interface thread only.
void putOnClipboard(const Graph& graph);
std::optional<Graph> graphOnClipboard(); // none if there are no nodes and no frames

} // namespace Host
