#pragma once
// Converter and IntConverter: another node's number in other units, both ways.

#include "nodes/formulanode.h"

#include <optional>

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
  bool CanHaveValidValues(std::size_t aDepth) override;
  bool HasIncrement(Evaluation& aEvaluation) override;

protected:
  KrResult Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) override;
  KrGenAccessMode ComputeAccess(Evaluation& aEvaluation, Facet aFacet) override;
  KrResult ComputeImplementation(Evaluation& aEvaluation, Number& aImplemented) override;
  KrResult ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) override;

private:
  enum class Slope { Increasing, Decreasing, Varying, Automatic };

  using WriteStep = KrResult (Node::*)(Evaluation&, const Number&);

  enum class Direction { Rising, Falling, None };

  /// A limit of the target, and what it is converted; nothing where there is none, or the formula has no value there.
  struct End {
    Number target;
    std::optional<Number> converted;
  };
  struct Range {
    End low;
    End high;
  };

  KrResult ReadTarget(Evaluation& aEvaluation, Node& aTarget, Number& aValue);
  KrResult Convert(Evaluation& aEvaluation, const Number& aTargetValue, Number& aValue);
  Number ToOwnKind(const Number& aValue) const;
  KrResult ComputeLimit(Evaluation& aEvaluation, Facet aFacet, Number& aValue);
  KrResult ComputeIncrement(Evaluation& aEvaluation, Number& aValue);
  KrResult FindEnd(Evaluation& aEvaluation, Node& aTarget, Facet aFacet, End& aEnd);
  /// A value of the target converted; nothing where the formula has no finite value.
  KrResult ConvertPlace(Evaluation& aEvaluation, const Number& aTargetValue, std::optional<Number>& aValue);
  /// Whether the value rises or falls while the target's rises; None when it does both, or it cannot be found out.
  KrResult FindDirection(Evaluation& aEvaluation, const Range& aRange, Direction& aDirection);
  /// The same between two ends.
  KrResult ProbeInside(Evaluation& aEvaluation, const Range& aRange, Direction& aDirection);
  /// What to write to the target.
  KrResult ToTarget(Evaluation& aEvaluation, Node& aTarget, const Number& aValue, Number& aTargetValue);
  /// The limit of the target that a value misses by an error of rounding alone.
  double PullIntoRange(Evaluation& aEvaluation, Node& aTarget, double aValue);
  KrResult VisitTarget(Evaluation& aEvaluation, const Number& aValue, WriteStep aStep);

  NodeLink mTarget;
  CompiledFormula mFrom; ///< Of the target's value TO.
  CompiledFormula mTo;   ///< Of the node's value FROM.
  Slope mSlope = Slope::Automatic;
  bool mIsLinear = false;
  std::optional<bool> mCanHaveValidValues;
};

} // namespace krgenicam
