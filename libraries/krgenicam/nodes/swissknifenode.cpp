#include "nodes/swissknifenode.h"

namespace krgenicam {

void SwissKnifeNode::Link(INodeIndex& aIndex) {
  FormulaNode::Link(aIndex);
  mFormula = Compile(aIndex, PropertyKind::Formula, {});
}

KrResult SwissKnifeNode::Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) {
  if (aFacet == Facet::Minimum || aFacet == Facet::Maximum) {
    aValue = GetNativeLimit(aFacet);
    return {};
  }
  if (aFacet == Facet::Value) {
    Number result;
    if (KrResult evaluated = Evaluate(aEvaluation, mFormula, {}, result); !evaluated.IsOK())
      return evaluated;
    aValue = IsWhole() ? Number(result.ToInteger()) : Number(result.ToFloat());
    return {};
  }
  if (!IsWhole())
    return {KrResult::Code::InvalidInput, "\"" + std::string(GetName()) + "\" has no increment."};
  aValue = Number(1);
  return {};
}

KrGenAccessMode SwissKnifeNode::ComputeAccess(Evaluation& aEvaluation, Facet) {
  return AreVariablesReadable(aEvaluation, mFormula) ? KrGenAccessMode::ReadOnly : KrGenAccessMode::NotAvailable;
}

KrResult SwissKnifeNode::ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) {
  if (KrResult result = ExplainVariables(aEvaluation, mFormula, aAttempt); !result.IsOK())
    return result;
  if (aForWriting)
    return DenyForGood(aEvaluation, aAttempt + "it is computed from other values.");
  return FormulaNode::ExplainOwnAccess(aEvaluation, aForWriting, aAttempt);
}

} // namespace krgenicam
