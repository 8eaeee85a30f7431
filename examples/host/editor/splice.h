#pragma once

#include "document.h"
#include "nodeitem.h"

#include <optional>

namespace Host
{

// The two wires that a node between the ends of one wire would have.
struct Splice {
    Connection before;
    Connection after;
};

// By the node's first input that fits and is free, and its first output that fits; none if there is no such pair, or it
// would close a circle.
std::optional<Splice> findSplice(const Document& document, const PreviewNode& node, const Connection& wire);

void splice(Document& document, const Splice& splice); // one step of undo

} // namespace Host
