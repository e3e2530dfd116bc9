#include "krgenicam/krgencategory.h"

#include "map/nodemap.h"
#include "nodes/categorynode.h"

#include <string_view>
#include <unordered_set>

using krgenicam::CategoryNode;
using krgenicam::Evaluation;
using krgenicam::Node;
using krgenicam::NodeKind;
using krgenicam::PropertyKind;

namespace {

// Whether a category has something implemented in it, however deep. Walks without recursion, as descriptions may nest
// categories as deep as they like, and in circles.
bool HasImplemented(Evaluation& aEvaluation, Node& aCategory) {
  std::vector<Node*> open{&aCategory};
  std::unordered_set<const Node*> seen{&aCategory};
  while (!open.empty()) {
    Node& category = *open.back();
    open.pop_back();
    if (category.GetAccess(aEvaluation) == KrGenAccessMode::NotImplemented)
      continue;
    for (Node* feature : static_cast<CategoryNode&>(category).GetFeatures()) {
      if (!seen.insert(feature).second || feature->GetKind() == NodeKind::Port)
        continue;
      if (feature->GetKind() == NodeKind::Category)
        open.push_back(feature);
      else if (feature->GetAccess(aEvaluation) != KrGenAccessMode::NotImplemented)
        return true;
    }
  }
  return false;
}

} // namespace

KrResult KrGenCategory::GetName(KrString& aName) const {
  aName = mNode.GetName();
  return {};
}

KrString KrGenCategory::GetName() const {
  return mNode.GetName();
}

KrResult KrGenCategory::GetDisplayName(KrString& aDisplayName) const {
  const std::string_view text = mNode.GetText(PropertyKind::DisplayName);
  aDisplayName = text.empty() ? mNode.GetName() : text;
  return {};
}

KrResult KrGenCategory::GetToolTip(KrString& aToolTip) const {
  aToolTip = mNode.GetText(PropertyKind::ToolTip);
  return {};
}

KrResult KrGenCategory::GetDescription(KrString& aDescription) const {
  aDescription = mNode.GetText(PropertyKind::Description);
  return {};
}

KrResult KrGenCategory::GetNameSpace(KrGenNameSpace& aNameSpace) const {
  aNameSpace = mNode.IsStandard() ? KrGenNameSpace::Standard : KrGenNameSpace::Custom;
  return {};
}

KrResult KrGenCategory::GetVisibility(KrGenVisibility& aVisibility) const {
  aVisibility = mNode.GetVisibility();
  return {};
}

bool KrGenCategory::IsVisible(KrGenVisibility aVisibility) const {
  return mNode.GetVisibility() <= aVisibility;
}

KrResult KrGenCategory::IsImplemented(bool& aIsImplemented) {
  return mMap.Run([&](Evaluation& aEvaluation) {
    aIsImplemented = HasImplemented(aEvaluation, mNode);
    return KrResult();
  });
}

bool KrGenCategory::IsImplemented() {
  bool isImplemented = false;
  return IsImplemented(isImplemented).IsOK() && isImplemented;
}

KrResult KrGenCategory::GetParameters(KrGenParameterList& aParameters) {
  aParameters.Clear();
  for (const Node* node : static_cast<CategoryNode&>(mNode).GetFeatures()) {
    if (KrGenParameter* const parameter = mMap.GetParameter(*node))
      aParameters.Add(parameter);
  }
  return {};
}

KrResult KrGenCategory::GetCategories(std::vector<KrGenCategory*>& aCategories) {
  aCategories.clear();
  for (const Node* node : static_cast<CategoryNode&>(mNode).GetFeatures()) {
    if (KrGenCategory* const category = mMap.GetCategory(*node))
      aCategories.push_back(category);
  }
  return {};
}
