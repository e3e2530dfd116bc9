#pragma once
// Which nodes have something to poll, and when each was polled. What polling does is left to the map.

#include "nodes/node.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace krgenicam {

/// Thread: under the map's lock.
struct PolledNode {
  Node& node;
  std::uint64_t lastMs; ///< When it was polled last; in the beginning, when the map was opened.

  bool IsDue(std::uint64_t aNowMs) const { return aNowMs - lastMs >= node.GetPollingTimeMs(); }
};

/// The nodes with a polling time, and all commands, which may be under way; in the order of the description.
std::vector<PolledNode> FindPolledNodes(const std::vector<std::unique_ptr<Node>>& aNodes, std::uint64_t aNowMs);

} // namespace krgenicam
