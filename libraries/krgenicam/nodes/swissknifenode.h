#pragma once
// SwissKnife and IntSwissKnife: a number that is computed from other nodes.

#include "nodes/formulanode.h"

namespace krgenicam {

/// Thread, ownership: as Node.
class SwissKnifeNode final : public FormulaNode {
public:
  using FormulaNode::FormulaNode;

  void Link(INodeIndex& aIndex) override;
  KrGenType GetType() const override { return IsWhole() ? KrGenType::Integer : KrGenType::Float; }

protected:
  KrResult Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) override;
  KrGenAccessMode ComputeAccess(Evaluation& aEvaluation, Facet aFacet) override;
  KrResult ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) override;

private:
  CompiledFormula mFormula;
};

} // namespace krgenicam
