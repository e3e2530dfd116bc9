#pragma once
// Command: a value that makes the device do something when it is written, and changes when that is done.

#include "nodes/valuenode.h"

namespace krgenicam {

/// Its value is 1 while it is known to be under way, else 0, found without asking the device.
///
/// Thread, ownership: as Node.
class CommandNode final : public ValueNode {
public:
  using ValueNode::ValueNode;

  void Link(INodeIndex& aIndex) override;
  KrGenType GetType() const override { return KrGenType::Command; }

  /// Starts the command, all checked first.
  KrResult Execute(Evaluation& aEvaluation);
  /// Asks the device, around all caches, whether the command is over. Always so where the device cannot be asked: a
  /// target that is only written, a value that is no device's.
  KrResult IsDone(Evaluation& aEvaluation, bool& aIsDone);
  /// Whether it was executed and not found to be over yet.
  bool IsPending() const { return mIsPending; }

  KrResult CheckWrite(Evaluation& aEvaluation, const Number& aValue) override;
  KrResult Write(Evaluation& aEvaluation, const Number& aValue) override;

protected:
  KrResult Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) override;

private:
  KrResult GetCommandValue(Evaluation& aEvaluation, Number& aValue);
  bool CanBeAsked(Evaluation& aEvaluation);

  NodeLink mCommandLink;
  std::int64_t mCommandValue = 0;
  Number mExecuted;
  bool mIsPending = false;
};

} // namespace krgenicam
