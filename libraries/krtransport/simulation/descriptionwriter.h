#pragma once
// Writes features as the nodes of a GenICam description. Which features a camera has, and the head of its description,
// are left to others.

#include "simulation/camerafeatures.h"

#include <span>
#include <string>
#include <string_view>

namespace krtransport {

/// A category of features.
struct DescriptionCategory {
  std::string_view name;
  std::string_view tip;
  bool isStandard = true; ///< Whether its name and its entries are the standard's.
};

/// What a description says of the camera, and its version.
struct DescriptionHead {
  KrString modelName;
  KrString vendorName;
  std::string_view nameSpace;     ///< Of the technology, as GenApi writes it.
  std::uint32_t minorVersion = 1; ///< Of major version 1; one digit.
};

/// The text of a description: nodes in the order in which GenApi's schema 1.1 wants their children.
///
/// Thread: one at a time. Ownership: borrows features and categories.
class DescriptionWriter {
public:
  DescriptionWriter(const CameraFeatures& aFeatures, std::span<const DescriptionCategory> aCategories)
      : mFeatures(aFeatures), mCategories(aCategories) {}

  /// The whole description.
  std::string Write(const DescriptionHead& aHead);

private:
  void AddHead(const DescriptionHead& aHead);
  void AddRoot();
  void AddCategory(const DescriptionCategory& aCategory);
  void AddFeature(const Feature& aFeature);
  void AddChunk(const FeatureEntry& aChunk);
  void Open(std::string_view aNode, std::string_view aName, bool aIsStandard);
  void Close(std::string_view aNode) { mText += "  </" + std::string(aNode) + ">\n"; }
  void AddChild(std::string_view aElement, std::string_view aContent);
  void AddCommonChildren(const Feature& aFeature);
  void AddRange(const Feature& aFeature);
  void AddCommandChildren(const Feature& aFeature);
  void AddEntries(const Feature& aFeature);
  void AddEntryConditions(const Feature& aFeature);
  bool IsConditional(const Feature& aFeature, const FeatureEntry& aEntry) const;
  void AddSelected(const Feature& aFeature);
  void AddRegisterChildren(const Feature& aFeature);
  void AddRegister(const Feature& aFeature);
  void AddKnife(const std::string& aName, std::string_view aFirst, std::string_view aSecond,
                const std::string& aFormula);

  const CameraFeatures& mFeatures;
  const std::span<const DescriptionCategory> mCategories;
  std::string mText;
};

} // namespace krtransport
