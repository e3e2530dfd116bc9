#include "krgenicam/krgenparameter.h"

#include "description/lexical.h"
#include "krgenicam/krgenparameterlist.h"
#include "map/accessreason.h"
#include "map/documentationurl.h"
#include "map/nodemap.h"
#include "map/parametertext.h"
#include "nodes/enumentrynode.h"

#include <string>
#include <string_view>

using krgenicam::AccessQuestion;
using krgenicam::Evaluation;
using krgenicam::Node;
using krgenicam::NodeKind;
using krgenicam::PropertyKind;

namespace {

// An entry's name is that within its enumeration.
std::string_view FindName(const Node& aNode) {
  return aNode.GetKind() == NodeKind::EnumEntry ? static_cast<const krgenicam::EnumEntryNode&>(aNode).GetSymbolic()
                                                : aNode.GetName();
}

void AddParameters(const krgenicam::NodeMap& aMap, const std::vector<Node*>& aNodes, KrGenParameterList& aParameters) {
  aParameters.Clear();
  for (const Node* node : aNodes) {
    if (KrGenParameter* const parameter = aMap.GetParameter(*node))
      aParameters.Add(parameter);
  }
}

} // namespace

KrGenParameter::~KrGenParameter() = default;

KrResult KrGenParameter::GetName(KrString& aName) const {
  aName = GetName();
  return {};
}

KrString KrGenParameter::GetName() const {
  return FindName(mNode);
}

KrResult KrGenParameter::GetDisplayName(KrString& aDisplayName) const {
  const std::string_view text = mNode.GetText(PropertyKind::DisplayName);
  aDisplayName = text.empty() ? FindName(mNode) : text;
  return {};
}

KrResult KrGenParameter::GetToolTip(KrString& aToolTip) const {
  aToolTip = mNode.GetText(PropertyKind::ToolTip);
  return {};
}

KrResult KrGenParameter::GetDescription(KrString& aDescription) const {
  aDescription = mNode.GetText(PropertyKind::Description);
  return {};
}

KrResult KrGenParameter::GetDocuURL(KrString& aURL) const {
  aURL =
      krgenicam::CompleteDocumentationURL(mNode.GetText(PropertyKind::DocuURL), mNode.GetName(), mMap.GetDescription());
  return {};
}

KrResult KrGenParameter::GetNameSpace(KrGenNameSpace& aNameSpace) const {
  aNameSpace = mNode.IsStandard() ? KrGenNameSpace::Standard : KrGenNameSpace::Custom;
  return {};
}

KrResult KrGenParameter::GetVisibility(KrGenVisibility& aVisibility) const {
  aVisibility = mNode.GetVisibility();
  return {};
}

KrResult KrGenParameter::GetType(KrGenType& aType) const {
  aType = mNode.GetType();
  return {};
}

KrGenType KrGenParameter::GetType() const {
  return mNode.GetType();
}

bool KrGenParameter::IsVisible(KrGenVisibility aVisibility) const {
  return mNode.GetVisibility() <= aVisibility;
}

KrResult KrGenParameter::IsStreamable(bool& aIsStreamable) const {
  aIsStreamable = mNode.IsStreamable();
  return {};
}

KrResult KrGenParameter::IsDeprecated(bool& aIsDeprecated) const {
  aIsDeprecated = krgenicam::ParseYesNo(mNode.GetText(PropertyKind::IsDeprecated)).value_or(false);
  return {};
}

KrResult KrGenParameter::GetCategory(KrString& aPath) const {
  aPath = GetCategory();
  return {};
}

KrString KrGenParameter::GetCategory() const {
  return mMap.GetTree().GetFirstPath(mNode.index);
}

KrResult KrGenParameter::GetCategories(KrStringList& aPaths) const {
  aPaths.Clear();
  for (const std::string& path : mMap.GetTree().GetPaths(mNode.index))
    aPaths.Add(path);
  return {};
}

std::uint32_t KrGenParameter::GetLine() const {
  return mNode.GetLine();
}

KrGenAccessMode KrGenParameter::GetAccessMode() {
  KrGenAccessMode mode = KrGenAccessMode::NotAvailable;
  (void)mMap.Run([&](Evaluation& aEvaluation) { // A map that is closed has nothing available.
    mode = mNode.GetAccess(aEvaluation);
    return KrResult();
  });
  return mode;
}

KrResult KrGenParameter::IsImplemented(bool& aIsImplemented) {
  return mMap.AskAccess(*this, AccessQuestion::IsImplemented, aIsImplemented);
}

bool KrGenParameter::IsImplemented() {
  bool isImplemented = false;
  return IsImplemented(isImplemented).IsOK() && isImplemented;
}

KrResult KrGenParameter::IsAvailable(bool& aIsAvailable) {
  return mMap.AskAccess(*this, AccessQuestion::IsAvailable, aIsAvailable);
}

bool KrGenParameter::IsAvailable() {
  bool isAvailable = false;
  return IsAvailable(isAvailable).IsOK() && isAvailable;
}

KrResult KrGenParameter::IsReadable(bool& aIsReadable) {
  return mMap.AskAccess(*this, AccessQuestion::IsReadable, aIsReadable);
}

bool KrGenParameter::IsReadable() {
  bool isReadable = false;
  return IsReadable(isReadable).IsOK() && isReadable;
}

KrResult KrGenParameter::IsWritable(bool& aIsWritable) {
  return mMap.AskAccess(*this, AccessQuestion::IsWritable, aIsWritable);
}

bool KrGenParameter::IsWritable() {
  // As for writing itself, a lock that cannot be read counts as open.
  return krgenicam::IsWritable(GetAccessMode());
}

KrResult KrGenParameter::GetAccessReason(KrString& aReason) {
  return mMap.Run([&](Evaluation& aEvaluation) {
    aReason = krgenicam::FindAccessReason(aEvaluation, mNode).text;
    return KrResult();
  });
}

KrResult KrGenParameter::GetSelectingParameters(KrGenParameterList& aParameters) {
  AddParameters(mMap, mNode.GetSelecting(), aParameters);
  return {};
}

KrResult KrGenParameter::GetSelectedParameters(KrGenParameterList& aParameters) {
  AddParameters(mMap, mNode.GetSelected(), aParameters);
  return {};
}

KrGenParameter* KrGenParameter::GetAlias() {
  const Node* const alias = mNode.GetAlias().node;
  return alias ? mMap.GetParameter(*alias) : nullptr;
}

KrGenParameter* KrGenParameter::GetCastAlias() {
  const Node* const alias = mNode.GetCastAlias().node;
  return alias ? mMap.GetParameter(*alias) : nullptr;
}

KrResult KrGenParameter::ToString(KrString& aText) {
  return mMap.Run([&](Evaluation& aEvaluation) {
    std::string text;
    KrResult result = krgenicam::ReadAsText(aEvaluation, mNode, text);
    if (result.IsOK())
      aText = text;
    return result;
  });
}

KrResult KrGenParameter::FromString(const KrString& aText) {
  return mMap.Run(
      [&](Evaluation& aEvaluation) { return krgenicam::WriteFromText(aEvaluation, mNode, aText.ToUtf8()); });
}

KrResult KrGenParameter::RegisterEventSink(KrGenEventSink* aSink) {
  return mMap.RegisterEventSink(mNode, aSink);
}

KrResult KrGenParameter::UnregisterEventSink(KrGenEventSink* aSink) {
  return mMap.UnregisterEventSink(mNode, aSink);
}
