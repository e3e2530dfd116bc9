#include "nodes/node.h"

#include <string>

// Why a node cannot be read or written, and what a device says of a value that it was given.

namespace krgenicam {

namespace {

std::string Quote(std::string_view aName) {
  return "\"" + std::string(aName) + "\"";
}

} // namespace

KrResult Node::ExplainAccess(Evaluation& aEvaluation, bool aForWriting) {
  const std::string attempt = Quote(GetName()) + " cannot be " + (aForWriting ? "set" : "read") + ": ";
  const auto deny = [&attempt](const std::string& aReason) {
    return KrResult(KrResult::Code::AccessDenied, attempt + aReason);
  };
  // What stands on itself has no access at all.
  Number mode;
  if (KrResult result = Get(aEvaluation, Facet::Access, mode); !result.IsOK())
    return result;
  const auto denyBy = [&](const NodeLink& aLink, const std::string& aVerdict) {
    Number value;
    if (!aLink.node)
      return MakeFault(aLink.line, "there is no usable node " + Quote(aLink.name) + ".");
    const KrResult asked = aLink.node->GetValue(aEvaluation, value);
    if (!asked.IsOK())
      return KrResult(asked.GetCode(), attempt + Quote(aLink.name) + ", which says whether it can be, has no value. " +
                                           asked.GetDescription());
    return deny(aVerdict + " as long as " + Quote(aLink.name) + " is " + (value.ToFloat() == 0.0 ? "0" : "not 0") +
                ".");
  };
  const auto holds = [&](const NodeLink& aLink) {
    Number value;
    return aLink.node && aLink.node->GetValue(aEvaluation, value).IsOK() && value.ToFloat() != 0.0;
  };
  const auto access = static_cast<KrGenAccessMode>(mode.ToInteger());
  if (access == KrGenAccessMode::NotImplemented)
    return deny("this camera does not have it.");
  if (mIsImplemented.IsSet() && !holds(mIsImplemented))
    return denyBy(mIsImplemented, "it is not implemented");
  if (mIsAvailable.IsSet() && !holds(mIsAvailable))
    return denyBy(mIsAvailable, "it is not available");
  const KrGenAccessMode unlocked = GetAccess(aEvaluation, Facet::AccessUnlocked);
  if (aForWriting && mIsLocked.IsSet() && IsWritable(unlocked) && holds(mIsLocked))
    return denyBy(mIsLocked, "it is locked");
  const bool isAllowed = aForWriting ? IsWritable(mImposedAccess) : IsReadable(mImposedAccess);
  if (!isAllowed)
    return deny(aForWriting ? "it can only be read." : "it can only be written.");
  return ExplainOwnAccess(aEvaluation, aForWriting, attempt);
}

KrResult Node::ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) {
  const KrGenAccessMode access = GetAccess(aEvaluation);
  if (aForWriting && access == KrGenAccessMode::ReadOnly)
    return {KrResult::Code::AccessDenied,
            aAttempt + (aEvaluation.host.IsReadOnly() ? "the device is open for reading only."
                                                      : "it can only be read at the moment.")};
  if (!aForWriting && access == KrGenAccessMode::WriteOnly)
    return {KrResult::Code::AccessDenied, aAttempt + "it can only be written."};
  return {KrResult::Code::AccessDenied, aAttempt + "something it stands on is not available at the moment."};
}

KrResult Node::CheckErrors(Evaluation& aEvaluation) {
  for (const NodeLink& link : mErrors) {
    Number value;
    // An error that cannot be read is no word of one.
    if (!link.node || !link.node->GetValue(aEvaluation, value).IsOK() || value.ToInteger() == 0)
      continue;
    return {KrResult::Code::ProtocolError,
            "The device took the value of " + Quote(GetName()) + " but says: " + link.node->DescribeValue(value)};
  }
  return {};
}

std::string Node::DescribeValue(const Number& aValue) const {
  return std::string(GetName()) + " = " + std::to_string(aValue.ToInteger());
}

KrResult Node::SetText(Evaluation& aEvaluation, std::string_view aText) {
  KrResult result = CheckWriteText(aEvaluation, aText);
  if (result.IsOK())
    result = WriteText(aEvaluation, aText);
  return result.IsOK() ? CheckErrors(aEvaluation) : result;
}

} // namespace krgenicam
