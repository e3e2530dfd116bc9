#include "map/nodefactory.h"
#include "map/nodemap.h"
#include "map/parameterwatch.h"
#include "nodes/portnode.h"

#include <algorithm>
#include <array>
#include <utility>

// How a map comes to be.

namespace krgenicam {

KrResult NodeMap::Open(const KrGenDescription& aDescription, IKrRegisterPort& aPort, const KrGenArrayOptions& aOptions,
                       std::unique_ptr<NodeMap>& aMap) {
  std::unique_ptr<NodeMap> map(new NodeMap(aPort, aOptions));
  KrResult result = map->Read(aDescription);
  if (result.IsOK())
    aMap = std::move(map);
  return result;
}

KrResult NodeMap::Read(const KrGenDescription& aDescription) {
  if (KrResult result = Description::Read(aDescription, mDescription); !result.IsOK())
    return result;
  MakeNodes();
  LinkNodes();
  MakeParameters();
  ListFeatures();
  ListPortsAndEvents();
  SortFaults();
  mPolledNodes = FindPolledNodes(mNodes, GetTimeMs());
  return {};
}

void NodeMap::MakeNodes() {
  const std::vector<NodeDescription>& nodes = mDescription.GetNodes();
  mNodes.reserve(nodes.size());
  for (const NodeDescription& node : nodes) {
    mNodes.push_back(MakeNode(mDescription, node));
    mNodes.back()->index = static_cast<NodeIndex>(mNodes.size() - 1);
  }
}

void NodeMap::LinkNodes() {
  for (const DescriptionFault& fault : mDescription.GetFaults())
    NoteFault(fault);
  for (const std::unique_ptr<Node>& node : mNodes)
    node->Link(*this);
  // Of these, many descriptions say on the feature what concerns its register: another bank behind a selector, a value
  // that changes by itself.
  for (const std::unique_ptr<Node>& node : mNodes)
    node->forgetsOrigins = !node->GetSelecting().empty() || node->GetPollingTimeMs() > 0 || node->GetEventID() ||
                           node->FindProperty(PropertyKind::pInvalidator);
}

template <typename Kind>
std::unique_ptr<KrGenParameter> NodeMap::Make(NodeMap& aMap, Node& aNode) {
  return std::unique_ptr<KrGenParameter>(new Kind(aMap, aNode));
}

std::unique_ptr<KrGenParameter> NodeMap::MakeParameter(Node& aNode) {
  // By KrGenType.
  constexpr std::array kMakers = {Make<KrGenInteger>, Make<KrGenEnum>,  Make<KrGenBoolean>,  Make<KrGenString>,
                                  Make<KrGenCommand>, Make<KrGenFloat>, Make<KrGenRegister>, Make<KrGenParameter>};
  if (aNode.GetKind() == NodeKind::EnumEntry)
    return Make<KrGenEnumEntry>(*this, aNode);
  return kMakers[static_cast<std::size_t>(aNode.GetType())](*this, aNode);
}

void NodeMap::MakeParameters() {
  mParameters.resize(mNodes.size());
  for (const std::unique_ptr<Node>& node : mNodes) {
    if (node->GetKind() == NodeKind::Category)
      mCategories[node.get()] = std::unique_ptr<KrGenCategory>(new KrGenCategory(*this, *node));
    else if (node->GetKind() != NodeKind::Port)
      mParameters[node->index] = MakeParameter(*node);
  }
}

void NodeMap::ListFeatures() {
  mTree = FeatureTree(mDescription);
  for (const NodeIndex feature : mTree.GetFeatures())
    mFeatures.push_back(mParameters[feature].get());
  for (const DescriptionFault& fault : mTree.GetFaults())
    NoteFault(fault);
}

void NodeMap::ListPortsAndEvents() {
  for (const std::unique_ptr<Node>& node : mNodes) {
    if (const std::optional<std::uint64_t> eventID = node->GetEventID())
      mNodesOfEvents[*eventID].push_back(node.get());
    if (node->GetKind() != NodeKind::Port)
      continue;
    PortNode& port = static_cast<PortNode&>(*node);
    if (port.IsChunkPort())
      mChunkPorts.push_back(&port);
  }
}

void NodeMap::AddFault(const Node& aNode, std::uint32_t aLine, const std::string& aText) {
  NoteFault({aLine, std::string(aNode.GetName()), aText});
}

bool NodeMap::ReserveFormulaOperations(std::size_t aCount) {
  if (aCount > kMostFormulaOperations - mFormulaOperations)
    return false;
  mFormulaOperations += aCount;
  return true;
}

void NodeMap::NoteFault(DescriptionFault aFault) {
  if (mFaults.size() < kMostFaults)
    mFaults.push_back(std::move(aFault));
  else
    ++mUnlistedFaults;
}

void NodeMap::SortFaults() {
  std::ranges::stable_sort(mFaults, {}, &DescriptionFault::line);
  if (mUnlistedFaults > 0)
    mFaults.push_back({0, {}, std::to_string(mUnlistedFaults) + " more faults are not listed."});
}

} // namespace krgenicam
