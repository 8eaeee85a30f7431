#pragma once

#include "wires.h"

#include <vector>

namespace Viewer
{

// Places nodes from left to right along their wires, each in the last column before the nodes that it feeds and in a
// row near its sources. Nodes without wires stand below, in columns of about the same height.
void arrange(const std::vector<Ondrel::PreviewNode*>& nodes, const std::vector<Wires::Link>& links);

} // namespace Viewer
