#include "map/accessquestion.h"

#include <array>
#include <string>

namespace krgenicam {

namespace {

// What an evaluation finds, with what could not be read counting as it does everywhere.
struct Finding {
  bool answer = false;
  bool isCertain = false; ///< It is so whatever could not be read.
  bool asksForWriting = false;
};

Finding FindImplemented(Evaluation& aEvaluation, Node& aNode) {
  Number implemented(1);
  const bool isCertain = aNode.Get(aEvaluation, Facet::Implementation, implemented).IsOK();
  return {.answer = !isCertain || implemented.ToInteger() != 0, .isCertain = isCertain};
}

// What could not be read makes a parameter less than it is, and never not implemented: the other findings hold, unless
// it may not be implemented at all.
Finding FindByMode(Evaluation& aEvaluation, Node& aNode, KrGenAccessMode aMode, bool aAnswer) {
  const bool isCertain =
      aMode == KrGenAccessMode::NotImplemented || (aAnswer && FindImplemented(aEvaluation, aNode).isCertain);
  return {.answer = aAnswer, .isCertain = isCertain};
}

// What can be read can be read under a lock, too: the lock is asked for where there is nothing but writing.
Finding FindAvailable(Evaluation& aEvaluation, Node& aNode) {
  KrGenAccessMode mode = aNode.GetAccess(aEvaluation, Facet::AccessUnlocked);
  if (mode == KrGenAccessMode::WriteOnly)
    mode = aNode.GetAccess(aEvaluation);
  return FindByMode(aEvaluation, aNode, mode, IsReadable(mode) || IsWritable(mode));
}

Finding FindReadable(Evaluation& aEvaluation, Node& aNode) {
  const KrGenAccessMode mode = aNode.GetAccess(aEvaluation, Facet::AccessUnlocked);
  return FindByMode(aEvaluation, aNode, mode, IsReadable(mode));
}

Finding FindWritable(Evaluation& aEvaluation, Node& aNode) {
  const KrGenAccessMode mode = aNode.GetAccess(aEvaluation);
  Finding finding = FindByMode(aEvaluation, aNode, mode, IsWritable(mode));
  finding.isCertain = finding.isCertain && !aEvaluation.hasUnknownLock;
  finding.asksForWriting = IsReadable(mode);
  return finding;
}

// By AccessQuestion.
constexpr std::array kFinders = {FindImplemented, FindAvailable, FindReadable, FindWritable};

} // namespace

KrResult AnswerAccessQuestion(Evaluation& aEvaluation, Node& aNode, AccessQuestion aQuestion,
                              FailureCountingPort& aPort, bool& aAnswer) {
  (void)aPort.TakeLastFailure(); // What failed before is of no interest.
  const Finding finding = kFinders[static_cast<std::size_t>(aQuestion)](aEvaluation, aNode);
  const KrResult failure = aPort.TakeLastFailure();
  if (!failure.IsOK() && !finding.isCertain)
    return DescribeOpenAccess(aEvaluation, aNode, finding.asksForWriting, failure);
  aAnswer = finding.answer;
  return {};
}

KrResult DescribeOpenAccess(Evaluation& aEvaluation, Node& aNode, bool aForWriting, const KrResult& aFailure) {
  const KrResult reason = aNode.ExplainAccess(aEvaluation, aForWriting);
  if (reason == aFailure.GetCode())
    return reason;
  return KrResult(aFailure.GetCode(), "It cannot be found out what can be done with \"" + std::string(aNode.GetName()) +
                                          "\" at the moment. " + aFailure.GetDescription());
}

} // namespace krgenicam
