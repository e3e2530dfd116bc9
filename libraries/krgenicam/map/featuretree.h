#pragma once
// Which features a description's categories reach, in which order, and by which paths. Works on the description alone;
// what features are is left to the nodes.

#include "description/description.h"

#include <cstdint>
#include <string>
#include <vector>

namespace krgenicam {

/// Thread: constant once made. Ownership: borrows the description.
class FeatureTree {
public:
  /// Limits on the paths that are kept, as categories that share categories have more of them than fit into memory.
  static constexpr std::size_t kMostPlacesOfOne = 64;
  static constexpr std::size_t kMostPlaces = std::size_t{1} << 18;
  /// What is in a deeper category counts as in the one of the last level, as trees are laid out recursively.
  static constexpr std::size_t kMostLevels = 256;

  FeatureTree() = default;
  /// From the category "Root", or, where there is none, from all categories that no other holds.
  explicit FeatureTree(const Description& aDescription);

  /// All features, each once, in the order in which the categories name them.
  const std::vector<NodeIndex>& GetFeatures() const { return mFeatures; }
  /// The paths of the categories that hold a node, from the root on, parted by backslashes; the one by which it is
  /// reached first is the first.
  std::vector<std::string> GetPaths(NodeIndex aNode) const;
  std::string GetFirstPath(NodeIndex aNode) const;
  /// What was left out because of the limits, or stands in itself.
  const std::vector<DescriptionFault>& GetFaults() const { return mFaults; }

private:
  // One category at the end of one path.
  struct Place {
    NodeIndex category;
    std::uint32_t parent; // Into mPlaces; kNoPlace for a root.
  };
  struct Step;
  static constexpr std::uint32_t kNoPlace = 0xFFFFFFFF;

  std::vector<NodeIndex> FindRoots() const;
  void Walk(NodeIndex aRoot);
  void Enter(NodeIndex aCategory, std::uint32_t aParent, std::vector<Step>& aSteps);
  std::uint32_t FindPlace(NodeIndex aCategory, std::uint32_t aParent, std::size_t aLevels);
  void AddFeature(NodeIndex aFeature, std::uint32_t aPlace);
  std::string MakePath(std::uint32_t aPlace) const;
  void AddFault(NodeIndex aNode, const std::string& aText);

  const Description* mDescription = nullptr;
  std::vector<NodeIndex> mFeatures;
  std::vector<Place> mPlaces;
  std::vector<std::vector<std::uint32_t>> mPlacesOf; // By node: of a feature those that hold it, of a category its own.
  std::size_t mKeptPlaces = 0;
  std::vector<bool> mIsOnPath;  // By node; categories between the root and where the walk is.
  std::vector<bool> mIsInFault; // By node; categories that were found to stand in themselves.
  bool mHasLeftOut = false;
  bool mHasCutLevels = false;
  std::vector<DescriptionFault> mFaults;
};

} // namespace krgenicam
