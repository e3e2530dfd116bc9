#include "description/descriptionreader.h"
#include "description/elementnames.h"

// Finds the nodes that properties name, once all nodes are known.

namespace krgenicam {

void DescriptionReader::Resolve() {
  const auto count = static_cast<NodeIndex>(mNodes.size());
  // A formula inside a register is no node of the map to speak of; where its name is free, others may use it.
  for (NodeIndex index = 0; index < count; ++index) {
    const NodeDescription& node = mNodes[index];
    if (node.kind == NodeKind::IntSwissKnife && node.owner != kNoNode && !node.name.empty())
      mDescription.mNames.try_emplace(node.name, index);
  }
  for (NodeIndex index = 0; index < count; ++index) {
    const NodeDescription node = mNodes[index];
    for (std::uint32_t property = 0; property < node.propertyCount; ++property)
      ResolveProperty(index, mProperties[node.firstProperty + property]);
  }
}

void DescriptionReader::ResolveProperty(NodeIndex aNode, Property& aProperty) {
  if (!NamesNode(aProperty.kind) || aProperty.target != kNoNode)
    return;
  const auto note = [&](std::string_view aElement, std::string_view aName) {
    constexpr std::size_t kLongestName = 60;
    AddFault(aProperty.line, mNodes[aNode].name,
             std::string(aElement) + " names \"" + std::string(aName.substr(0, kLongestName)) +
                 "\", and there is no such node.");
  };
  aProperty.target = FindTarget(aNode, aProperty);
  if (aProperty.target == kNoNode)
    note(GetElementName(aProperty.kind), aProperty.text);
  if (aProperty.offsetName.empty())
    return;
  aProperty.offsetTarget = mDescription.Find(aProperty.offsetName);
  if (aProperty.offsetTarget == kNoNode)
    note("pOffset", aProperty.offsetName);
}

NodeIndex DescriptionReader::FindTarget(NodeIndex aNode, const Property& aProperty) {
  if (aProperty.kind != PropertyKind::EnumEntry)
    return mDescription.Find(aProperty.text);
  const auto entry = mFreeEntries.find(aProperty.text);
  if (entry == mFreeEntries.end())
    return kNoNode;
  NodeDescription& node = mNodes[entry->second];
  if (node.owner == kNoNode)
    node.owner = aNode;
  return entry->second;
}

} // namespace krgenicam
