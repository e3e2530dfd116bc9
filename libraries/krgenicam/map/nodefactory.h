#pragma once
// Makes the node of each element's kind.

#include "nodes/node.h"

#include <memory>

namespace krgenicam {

/// The node that a description describes, not yet linked.
std::unique_ptr<Node> MakeNode(const Description& aDescription, const NodeDescription& aNode);

} // namespace krgenicam
