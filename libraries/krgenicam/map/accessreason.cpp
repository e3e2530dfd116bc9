#include "map/accessreason.h"

#include "nodes/numbertext.h"

namespace krgenicam {

namespace {

using Verdict = AccessCause::Verdict;

std::string DescribeMode(KrGenAccessMode aMode) {
  if (aMode == KrGenAccessMode::NotImplemented)
    return "Not implemented";
  return aMode == KrGenAccessMode::NotAvailable ? "Not available" : "Not writable";
}

// Of an enumeration the entry's name.
std::string DescribeValue(Evaluation& aEvaluation, const AccessCause& aCause) {
  std::string text;
  const bool isEntry = aCause.predicate->GetType() == KrGenType::Enumeration;
  if (isEntry && aCause.predicate->ReadText(aEvaluation, text).IsOK())
    return text;
  return FormatNumber(aCause.value);
}

std::string DescribeCause(Evaluation& aEvaluation, const Node& aNode, KrGenAccessMode aMode,
                          const AccessCause& aCause) {
  const std::string predicate(aCause.predicate->GetName());
  const std::string value = DescribeValue(aEvaluation, aCause);
  const std::string other =
      aCause.node == &aNode ? std::string() : ", as " + std::string(aCause.node->GetName()) + " is";
  if (aCause.verdict == Verdict::Locked)
    return "Locked by " + predicate + " (" + value + ")" + other + ".";
  const bool isOwnWord = (aCause.verdict == Verdict::NotImplemented) == (aMode == KrGenAccessMode::NotImplemented) &&
                         aMode <= KrGenAccessMode::NotAvailable;
  std::string text = DescribeMode(aMode);
  if (!other.empty())
    text += other + " not";
  if (!other.empty() && !isOwnWord)
    text += aCause.verdict == Verdict::NotImplemented ? " implemented" : " available";
  return text + ": " + predicate + " is " + value + ".";
}

} // namespace

AccessReason FindAccessReason(Evaluation& aEvaluation, Node& aNode) {
  const KrGenAccessMode mode = aNode.GetAccess(aEvaluation);
  if (mode == KrGenAccessMode::ReadWrite || mode == KrGenAccessMode::WriteOnly)
    return {};
  // What could be written but for a lock may have no other access that the lock leaves.
  const bool asksForWriting = IsReadable(mode) || IsWritable(aNode.GetAccess(aEvaluation, Facet::AccessUnlocked));
  AccessCause cause;
  aEvaluation.cause = &cause;
  const KrResult reason = aNode.ExplainAccess(aEvaluation, asksForWriting, DescribeMode(mode) + ": ");
  aEvaluation.cause = nullptr;
  if (cause.predicate)
    return {DescribeCause(aEvaluation, aNode, mode, cause), cause.verdict == Verdict::Locked};
  if (cause.verdict == Verdict::ByDescription && IsReadable(mode))
    return {};
  // Faults of the description and failures of the device are sentences of their own.
  const std::string text = reason.GetDescription().ToUtf8();
  return {text.starts_with(DescribeMode(mode)) ? text : DescribeMode(mode) + ". " + text};
}

} // namespace krgenicam
