#pragma once

#include "graph.h"

#include <optional>

namespace Host
{

// Nodes with their values and the wires among them as JSON text, for the clipboard. Resources keep the handles of this
// process, and are left out of what another one reads.
QByteArray graphToText(const Graph& graph);

// None if the text is not of that form.
std::optional<Graph> graphFromText(const QByteArray& text);

// User-interface thread only.
void putOnClipboard(const Graph& graph);
std::optional<Graph> graphOnClipboard(); // none if it has no nodes

} // namespace Host
