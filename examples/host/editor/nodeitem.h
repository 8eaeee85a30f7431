#pragma once

#include "graph.h"

#include <ondrel/nodes/anchor.h>
#include <ondrel/nodes/previewnode.h>

namespace Host
{

using Ondrel::Anchor; // moc writes the types of slots as they stand here, and the library's signals say no namespace
using Ondrel::Node;
using Ondrel::PreviewNode;

// The item of a node, without its values, or null if its file is broken. One whose plug-in is missing gets the fields
// that its wires name. The caller owns it.
PreviewNode* makeNodeItem(const NodeRecord& record, const NodeTypes& types, const Graph& graph);

QPointF centerOf(const Anchor& anchor); // in the scene

} // namespace Host
