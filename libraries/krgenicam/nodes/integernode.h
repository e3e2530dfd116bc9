#pragma once
// Integer: a whole number with limits, increment and, at times, a set of valid values.

#include "nodes/numbernode.h"

namespace krgenicam {

/// Thread, ownership: as Node.
class IntegerNode final : public NumberNode {
public:
  using NumberNode::NumberNode;

  KrGenType GetType() const override { return KrGenType::Integer; }
  KrResult CheckWrite(Evaluation& aEvaluation, const Number& aValue) override;
  KrResult Write(Evaluation& aEvaluation, const Number& aValue) override;

protected:
  KrResult Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) override;
  Number GetNativeLimit(Facet aFacet) const override;
  bool IsNarrow() const override;
  Number ToOwnLimit(Facet aFacet, const Number& aLimit) const override;
  KrResult ReadTarget(Evaluation& aEvaluation, Node& aTarget, Number& aValue) override;
  bool AreTargetsAlike(Evaluation& aEvaluation) override;

private:
  KrResult CheckValid(Evaluation& aEvaluation, std::int64_t aValue, bool& aIsListed);
  KrResult ComputeIncrement(Evaluation& aEvaluation, Number& aValue);
};

} // namespace krgenicam
