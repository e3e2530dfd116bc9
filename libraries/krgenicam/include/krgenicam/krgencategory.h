#pragma once
// A group of parameters and further groups, as a description arranges them for people.

#include "krgenicam/krgenparameter.h"
#include "krgenicam/krgenparameterlist.h"

#include <vector>

/// A category.
///
/// Thread, results: as KrGenParameter. Ownership: the array's.
class KR_EXPORT KrGenCategory {
public:
  KrGenCategory(const KrGenCategory&) = delete;
  KrGenCategory& operator=(const KrGenCategory&) = delete;

  /// The name by which the array knows the category.
  KrResult GetName(KrString& aName) const;
  /// The same.
  KrString GetName() const;
  /// The name for people; the name itself where the description has none.
  KrResult GetDisplayName(KrString& aDisplayName) const;
  /// What it is, in a few words; empty where the description has none.
  KrResult GetToolTip(KrString& aToolTip) const;
  /// What it is, at length; empty where the description has none.
  KrResult GetDescription(KrString& aDescription) const;
  /// Whether the name is a standard's or the maker's own.
  KrResult GetNameSpace(KrGenNameSpace& aNameSpace) const;
  /// From which level of users on it is to be seen.
  KrResult GetVisibility(KrGenVisibility& aVisibility) const;
  /// Whether users of a level are to see the category, by its own visibility.
  bool IsVisible(KrGenVisibility aVisibility) const;
  /// Whether the category is implemented and at least one parameter in it or below is.
  KrResult IsImplemented(bool& aIsImplemented);
  /// The same; false where it could not be found out.
  bool IsImplemented();
  /// The parameters directly in it, in the order of the description.
  KrResult GetParameters(KrGenParameterList& aParameters);
  /// The categories directly in it, in the order of the description.
  KrResult GetCategories(std::vector<KrGenCategory*>& aCategories);

private:
  friend class krgenicam::NodeMap;
  KrGenCategory(krgenicam::NodeMap& aMap, krgenicam::Node& aNode) : mMap(aMap), mNode(aNode) {}

  krgenicam::NodeMap& mMap;
  krgenicam::Node& mNode;
};
