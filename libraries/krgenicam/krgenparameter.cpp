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

namespace {

// Whether a node's access is one of those that aMatches takes.
template <typename Matches>
KrResult AskAccess(krgenicam::NodeMap& aMap, const KrGenParameter& aParameter, bool& aAnswer, Matches aMatches) {
  KrGenAccessMode mode = KrGenAccessMode::NotAvailable;
  KrResult asked = aMap.FindAccess(aParameter, mode);
  const bool isMatch = aMatches(mode);
  // What could not be asked makes a parameter less than it is, and never not implemented: the other answers hold.
  const bool holds = mode == KrGenAccessMode::NotImplemented || (isMatch && mode != KrGenAccessMode::NotAvailable);
  if (!asked.IsOK() && !holds)
    return asked;
  aAnswer = isMatch;
  return {};
}

bool IsImplementedMode(KrGenAccessMode aMode) {
  return aMode != KrGenAccessMode::NotImplemented;
}

bool IsAvailableMode(KrGenAccessMode aMode) {
  return krgenicam::IsReadable(aMode) || krgenicam::IsWritable(aMode);
}

} // namespace

KrResult KrGenParameter::IsImplemented(bool& aIsImplemented) {
  return AskAccess(mMap, *this, aIsImplemented, IsImplementedMode);
}

bool KrGenParameter::IsImplemented() {
  bool isImplemented = false;
  return IsImplemented(isImplemented).IsOK() && isImplemented;
}

KrResult KrGenParameter::IsAvailable(bool& aIsAvailable) {
  return AskAccess(mMap, *this, aIsAvailable, IsAvailableMode);
}

bool KrGenParameter::IsAvailable() {
  bool isAvailable = false;
  return IsAvailable(isAvailable).IsOK() && isAvailable;
}

KrResult KrGenParameter::IsReadable(bool& aIsReadable) {
  return AskAccess(mMap, *this, aIsReadable, krgenicam::IsReadable);
}

bool KrGenParameter::IsReadable() {
  bool isReadable = false;
  return IsReadable(isReadable).IsOK() && isReadable;
}

KrResult KrGenParameter::IsWritable(bool& aIsWritable) {
  return AskAccess(mMap, *this, aIsWritable, krgenicam::IsWritable);
}

bool KrGenParameter::IsWritable() {
  bool isWritable = false;
  return IsWritable(isWritable).IsOK() && isWritable;
}

KrResult KrGenParameter::GetAccessReason(KrString& aReason) {
  return mMap.Run([&](Evaluation& aEvaluation) {
    aReason = krgenicam::DescribeAccessReason(aEvaluation, mNode);
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
