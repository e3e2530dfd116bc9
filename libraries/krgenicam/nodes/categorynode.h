#pragma once
// Category: a group of features and further categories.

#include "nodes/node.h"

#include <vector>

namespace krgenicam {

/// Thread, ownership: as Node.
class CategoryNode final : public Node {
public:
  using Node::Node;

  void Link(INodeIndex& aIndex) override;

  /// The nodes of the category, in the order of the description; those that do not exist are left out.
  const std::vector<Node*>& GetFeatures() const { return mFeatures; }

private:
  std::vector<Node*> mFeatures;
};

} // namespace krgenicam
