#include "map/featuretree.h"

#include <algorithm>
#include <utility>

namespace krgenicam {

// How far the walk has come in a category on the path.
struct FeatureTree::Step {
  NodeIndex category;
  std::uint32_t place; // The category's own, or that of the last level.
  std::uint32_t nextProperty;
};

FeatureTree::FeatureTree(const Description& aDescription) : mDescription(&aDescription) {
  const std::size_t count = aDescription.GetNodes().size();
  mPlacesOf.resize(count);
  mIsOnPath.resize(count);
  mIsInFault.resize(count);
  for (const NodeIndex root : FindRoots())
    Walk(root);
  // Only the walk needs these.
  mIsOnPath = {};
  mIsInFault = {};
}

std::vector<NodeIndex> FeatureTree::FindRoots() const {
  const std::vector<NodeDescription>& nodes = mDescription->GetNodes();
  const NodeIndex root = mDescription->Find("Root");
  if (root != kNoNode && nodes[root].kind == NodeKind::Category)
    return {root};
  std::vector<bool> isHeld(nodes.size());
  for (const NodeDescription& node : nodes) {
    for (const Property& property : mDescription->GetProperties(node)) {
      if (node.kind == NodeKind::Category && property.kind == PropertyKind::pFeature && property.target != kNoNode)
        isHeld[property.target] = true;
    }
  }
  std::vector<NodeIndex> roots;
  for (NodeIndex i = 0; i < nodes.size(); ++i) {
    if (nodes[i].kind == NodeKind::Category && !isHeld[i])
      roots.push_back(i);
  }
  return roots;
}

void FeatureTree::Walk(NodeIndex aRoot) {
  std::vector<Step> steps;
  Enter(aRoot, kNoPlace, steps);
  while (!steps.empty()) {
    Step& step = steps.back();
    const std::uint32_t place = step.place;
    const NodeIndex category = step.category;
    const auto properties = mDescription->GetProperties(mDescription->GetNodes()[category]);
    if (step.nextProperty == properties.size()) {
      mIsOnPath[category] = false;
      steps.pop_back();
      continue;
    }
    const Property& property = properties[step.nextProperty++];
    if (property.kind != PropertyKind::pFeature || property.target == kNoNode)
      continue;
    if (mDescription->GetNodes()[property.target].kind == NodeKind::Category)
      Enter(property.target, place, steps);
    else
      AddFeature(property.target, place);
  }
}

void FeatureTree::Enter(NodeIndex aCategory, std::uint32_t aParent, std::vector<Step>& aSteps) {
  if (mIsOnPath[aCategory]) {
    if (!mIsInFault[aCategory])
      AddFault(aCategory, "The category stands in itself.");
    mIsInFault[aCategory] = true;
    return;
  }
  // The first place of each is always taken, so that no feature gets lost.
  std::vector<std::uint32_t>& places = mPlacesOf[aCategory];
  if (!places.empty() && (places.size() >= kMostPlacesOfOne || mKeptPlaces >= kMostPlaces)) {
    if (!std::exchange(mHasLeftOut, true))
      AddFault(aCategory, "The category, and perhaps others, is in more places than are kept.");
    return;
  }
  ++mKeptPlaces;
  const std::uint32_t place = FindPlace(aCategory, aParent, aSteps.size());
  places.push_back(place);
  mIsOnPath[aCategory] = true;
  aSteps.push_back({aCategory, place, 0});
}

// A new one, as long as there are fewer levels above it than may be.
std::uint32_t FeatureTree::FindPlace(NodeIndex aCategory, std::uint32_t aParent, std::size_t aLevels) {
  if (aLevels < kMostLevels) {
    mPlaces.push_back({aCategory, aParent});
    return static_cast<std::uint32_t>(mPlaces.size() - 1);
  }
  if (!std::exchange(mHasCutLevels, true))
    AddFault(aCategory, "The category, and perhaps others, is deeper than the " + std::to_string(kMostLevels) +
                            " levels that are kept: what is in it counts as in the one of the last level.");
  return aParent;
}

void FeatureTree::AddFeature(NodeIndex aFeature, std::uint32_t aPlace) {
  if (mDescription->GetNodes()[aFeature].kind == NodeKind::Port)
    return;
  std::vector<std::uint32_t>& places = mPlacesOf[aFeature];
  if (places.empty())
    mFeatures.push_back(aFeature);
  else if (std::ranges::find(places, aPlace) != places.end())
    return;
  else if (places.size() >= kMostPlacesOfOne || mKeptPlaces >= kMostPlaces) {
    if (!std::exchange(mHasLeftOut, true))
      AddFault(aFeature, "The feature, and perhaps others, is in more places than are kept.");
    return;
  }
  ++mKeptPlaces;
  places.push_back(aPlace);
}

std::vector<std::string> FeatureTree::GetPaths(NodeIndex aNode) const {
  std::vector<std::string> paths;
  for (const std::uint32_t place : mPlacesOf[aNode])
    paths.push_back(MakePath(place));
  return paths;
}

std::string FeatureTree::GetFirstPath(NodeIndex aNode) const {
  const std::vector<std::uint32_t>& places = mPlacesOf[aNode];
  return places.empty() ? std::string() : MakePath(places.front());
}

std::string FeatureTree::MakePath(std::uint32_t aPlace) const {
  std::vector<std::string_view> names;
  for (std::uint32_t place = aPlace; place != kNoPlace; place = mPlaces[place].parent)
    names.push_back(mDescription->GetNodes()[mPlaces[place].category].name);
  std::string path(names.back());
  for (auto name = names.rbegin() + 1; name != names.rend(); ++name)
    path.append("\\").append(*name);
  return path;
}

void FeatureTree::AddFault(NodeIndex aNode, const std::string& aText) {
  const NodeDescription& node = mDescription->GetNodes()[aNode];
  mFaults.push_back({node.line, std::string(node.name), aText});
}

} // namespace krgenicam
