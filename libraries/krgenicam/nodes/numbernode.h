#pragma once
// What Integer and Float have in common: limits of their own or of what they stand on, increment, and how they are
// shown. Rounding and checking values is left to the derived classes.

#include "nodes/valuenode.h"

#include <optional>

namespace krgenicam {

/// Thread, ownership: as Node.
class NumberNode : public ValueNode {
public:
  using ValueNode::ValueNode;

  void Link(INodeIndex& aIndex) override;
  KrResult GetValidValues(Evaluation& aEvaluation, std::vector<Number>& aValues) override;
  bool CanHaveValidValues(std::size_t aDepth) override {
    return !mValidValues.empty() || ValueNode::CanHaveValidValues(aDepth);
  }
  NodeShown GetShown(Evaluation& aEvaluation) override;
  bool HasLimit(Evaluation& aEvaluation, Facet aFacet) override;

protected:
  /// A limit or increment that the description gives.
  struct Limit {
    NodeLink link = {};
    std::optional<Number> constant = {};

    bool IsSet() const { return link.IsSet() || constant; }
  };

  KrResult Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) override;

  /// The smallest and the largest number of the type.
  virtual Number GetNativeLimit(Facet aFacet) const = 0;
  /// Whether these are the limits of what the number stands for, and not just the ends of the type.
  virtual bool IsNarrow() const { return false; }
  /// A limit of another node as one of this one.
  virtual Number ToOwnLimit(Facet aFacet, const Number& aLimit) const = 0;
  /// A limit of a target.
  virtual KrResult GetTargetLimit(Evaluation& aEvaluation, Node& aTarget, Facet aFacet, Number& aValue);
  const Limit& GetIncrement() const { return mIncrement; }
  KrResult GetOwnLimit(Evaluation& aEvaluation, const Limit& aLimit, Facet aFacet, Number& aValue);
  KrGenRepresentation GetOwnRepresentation() const { return mShown.representation; }
  const std::vector<Number>& GetOwnValidValues() const { return mValidValues; }

private:
  Limit TakeLimit(INodeIndex& aIndex, PropertyKind aConstant, PropertyKind aLink);
  void TakeValidValues(INodeIndex& aIndex);
  void TakeValidValue(INodeIndex& aIndex, const Property& aProperty, std::string_view aText);
  KrResult ComputeLimit(Evaluation& aEvaluation, Facet aFacet, Number& aValue);

  Limit mMinimum;
  Limit mMaximum;
  Limit mIncrement;
  std::vector<Number> mValidValues; ///< Ascending.
  NodeShown mShown;                 ///< By the node's own properties.
};

} // namespace krgenicam
