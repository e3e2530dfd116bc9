#include "nodes/categorynode.h"

namespace krgenicam {

void CategoryNode::Link(INodeIndex& aIndex) {
  Node::Link(aIndex);
  for (const Property& property : GetProperties()) {
    Node* const feature = property.kind == PropertyKind::pFeature ? aIndex.GetNode(property.target) : nullptr;
    if (feature)
      mFeatures.push_back(feature);
  }
}

} // namespace krgenicam
