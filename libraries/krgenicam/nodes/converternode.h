#pragma once
// Converter and IntConverter: another node's number in other units, both ways.

#include "nodes/formulanode.h"

namespace krgenicam {

/// Thread, ownership: as Node.
class ConverterNode final : public FormulaNode {
public:
  using FormulaNode::FormulaNode;

  void Link(INodeIndex& aIndex) override;
  KrGenType GetType() const override { return IsWhole() ? KrGenType::Integer : KrGenType::Float; }
  KrResult CheckWrite(Evaluation& aEvaluation, const Number& aValue) override;
  KrResult Write(Evaluation& aEvaluation, const Number& aValue) override;
  KrResult GetValidValues(Evaluation& aEvaluation, std::vector<Number>& aValues) override;

protected:
  KrResult Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) override;
  KrGenAccessMode ComputeAccess(Evaluation& aEvaluation, Facet aFacet) override;
  KrResult ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) override;

private:
  enum class Slope { Increasing, Decreasing, Varying, Automatic };

  KrResult ReadTarget(Evaluation& aEvaluation, Number& aValue);
  /// What to write to the target, which is set.
  KrResult ToTarget(Evaluation& aEvaluation, const Number& aValue, Number& aTargetValue);
  KrResult ComputeLimit(Evaluation& aEvaluation, Facet aFacet, Number& aValue);
  KrResult ComputeIncrement(Evaluation& aEvaluation, Number& aValue);

  NodeLink mTarget;
  CompiledFormula mFrom; ///< Of the target's value TO.
  CompiledFormula mTo;   ///< Of the node's value FROM.
  Slope mSlope = Slope::Automatic;
  bool mIsLinear = false;
};

} // namespace krgenicam
