#include "map/settingsorder.h"

#include "map/nodemap.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <queue>
#include <utility>

namespace krgenicam {

namespace {

// Beyond this many steps through a description its own order has to do.
constexpr std::size_t kMaxSteps = 50'000'000;
constexpr std::uint32_t kNone = 0xFFFFFFFF;

// The streamable nodes as a graph: which have to come behind which.
class SettingsGraph {
public:
  explicit SettingsGraph(const NodeMap& aMap)
      : mMap(aMap), mPlaces(aMap.GetDescription().GetNodes().size(), kNone), mMarks(mPlaces.size(), kNone) {
    for (NodeIndex index = 0; index < mPlaces.size(); ++index) {
      const Node* const node = aMap.GetNode(index);
      const bool hasValue =
          node != nullptr && node->GetType() != KrGenType::Command && node->GetType() != KrGenType::Other;
      if (!hasValue || !node->IsStreamable() || aMap.GetParameter(*node) == nullptr)
        continue;
      mPlaces[index] = static_cast<std::uint32_t>(mNodes.size());
      mNodes.push_back(node);
    }
  }

  std::vector<KrGenParameter*> Sort() {
    mFollowers.resize(mNodes.size());
    if (mNodes.size() * mPlaces.size() <= kMaxSteps)
      FindFollowers();
    std::vector<KrGenParameter*> parameters;
    for (const std::uint32_t place : SortPlaces())
      parameters.push_back(mMap.GetParameter(*mNodes[place]));
    return parameters;
  }

private:
  void FindFollowers() {
    for (std::uint32_t place = 0; place < mNodes.size(); ++place) {
      mWalk.clear();
      VisitWritten(*mNodes[place], place);
      // What is written at the end of a chain of pValue changes as the node itself does.
      for (std::size_t at = 0; at < mWalk.size(); ++at)
        for (const Node* dependent : mWalk[at]->GetDependents())
          VisitDependent(*dependent, place);
    }
  }

  // The node and what it writes to.
  void VisitWritten(const Node& aNode, std::uint32_t aPlace) {
    const std::size_t first = mWalk.size();
    Visit(aNode, aPlace);
    for (std::size_t at = first; at < mWalk.size(); ++at)
      for (const Property& property : mWalk[at]->GetProperties()) {
        const Node* const written = mMap.GetNode(property.target);
        if ((property.kind == PropertyKind::pValue || property.kind == PropertyKind::pValueCopy) && written != nullptr)
          Visit(*written, aPlace);
      }
  }

  // A node that is streamable itself goes before what stands on it; the walk ends there.
  void VisitDependent(const Node& aNode, std::uint32_t aPlace) {
    const std::uint32_t follower = mPlaces[aNode.index];
    if (follower == kNone)
      Visit(aNode, aPlace);
    else if (follower != aPlace && Mark(aNode, aPlace))
      mFollowers[aPlace].push_back(follower);
  }

  void Visit(const Node& aNode, std::uint32_t aPlace) {
    if (Mark(aNode, aPlace))
      mWalk.push_back(&aNode);
  }

  bool Mark(const Node& aNode, std::uint32_t aPlace) { return std::exchange(mMarks[aNode.index], aPlace) != aPlace; }

  std::vector<std::uint32_t> SortPlaces() {
    std::vector<std::uint32_t> waits(mNodes.size(), 0); // How many of those before are not placed yet.
    for (const auto& followers : mFollowers)
      for (const std::uint32_t follower : followers)
        ++waits[follower];
    std::priority_queue<std::uint32_t, std::vector<std::uint32_t>, std::greater<>> ready;
    for (std::uint32_t place = 0; place < waits.size(); ++place)
      if (waits[place] == 0)
        ready.push(place);

    std::vector<std::uint32_t> sorted;
    std::vector<bool> isPlaced(mNodes.size(), false);
    while (sorted.size() < mNodes.size()) {
      const std::uint32_t next = ready.empty() ? FindLeastWaiting(waits, isPlaced) : ready.top();
      if (!ready.empty())
        ready.pop();
      isPlaced[next] = true;
      sorted.push_back(next);
      for (const std::uint32_t follower : mFollowers[next])
        if (--waits[follower] == 0 && !isPlaced[follower])
          ready.push(follower);
    }
    return sorted;
  }

  // Where all that is left stands in circles or behind one.
  static std::uint32_t FindLeastWaiting(const std::vector<std::uint32_t>& aWaits, const std::vector<bool>& aIsPlaced) {
    std::uint32_t least = kNone;
    for (std::uint32_t place = 0; place < aWaits.size(); ++place)
      if (!aIsPlaced[place] && (least == kNone || aWaits[place] < aWaits[least]))
        least = place;
    return least;
  }

  const NodeMap& mMap;
  std::vector<std::uint32_t> mPlaces; // By NodeIndex: the place among the streamable nodes.
  std::vector<std::uint32_t> mMarks;  // By NodeIndex: the place whose walk was there last.
  std::vector<const Node*> mNodes;
  std::vector<std::vector<std::uint32_t>> mFollowers; // By place.
  std::vector<const Node*> mWalk;
};

} // namespace

std::vector<KrGenParameter*> ListSettingsOrder(const NodeMap& aMap) {
  return SettingsGraph(aMap).Sort();
}

} // namespace krgenicam
