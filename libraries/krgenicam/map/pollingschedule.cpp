#include "map/pollingschedule.h"

namespace krgenicam {

std::vector<PolledNode> FindPolledNodes(const std::vector<std::unique_ptr<Node>>& aNodes, std::uint64_t aNowMs) {
  std::vector<PolledNode> polledNodes;
  for (const std::unique_ptr<Node>& node : aNodes) {
    if (node->GetPollingTimeMs() > 0 || node->GetKind() == NodeKind::Command)
      polledNodes.push_back({*node, aNowMs});
  }
  return polledNodes;
}

} // namespace krgenicam
