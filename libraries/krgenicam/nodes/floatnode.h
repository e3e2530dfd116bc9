#pragma once
// Float: a floating-point number with limits. Its increment is for user interfaces and not enforced.

#include "nodes/numbernode.h"

namespace krgenicam {

/// Thread, ownership: as Node.
class FloatNode final : public NumberNode {
public:
  using NumberNode::NumberNode;

  KrGenType GetType() const override { return KrGenType::Float; }
  KrResult CheckWrite(Evaluation& aEvaluation, const Number& aValue) override;
  KrResult Write(Evaluation& aEvaluation, const Number& aValue) override;
  bool HasIncrement(Evaluation&) override { return GetIncrement().IsSet(); }

protected:
  KrResult Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) override;
  Number GetNativeLimit(Facet aFacet) const override;
  Number ToOwnLimit(Facet aFacet, const Number& aLimit) const override;
  KrResult GetTargetLimit(Evaluation& aEvaluation, Node& aTarget, Facet aFacet, Number& aValue) override;
  std::optional<Number> ParseValue(std::string_view aText) const override;
  std::string_view GetWantedText() const override { return "a number"; }
  KrResult ReadTarget(Evaluation& aEvaluation, Node& aTarget, Number& aValue) override;
  KrResult ToTarget(Evaluation& aEvaluation, Node& aTarget, const Number& aValue, Number& aTargetValue) override;
};

} // namespace krgenicam
