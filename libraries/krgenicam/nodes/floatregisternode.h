#pragma once
// A register that is a floating-point number.

#include "nodes/registernode.h"

namespace krgenicam {

/// An IEEE 754 number of 4 or 8 bytes.
///
/// Thread, ownership: as Node.
class FloatRegisterNode final : public RegisterNode {
public:
  FloatRegisterNode(const Description& aDescription, const NodeDescription& aNode);

  void Link(INodeIndex& aIndex) override;
  KrGenType GetType() const override { return KrGenType::Float; }
  KrResult CheckWrite(Evaluation& aEvaluation, const Number& aValue) override;
  KrResult Write(Evaluation& aEvaluation, const Number& aValue) override;
  NodeShown GetShown(Evaluation& aEvaluation) override;
  bool HasLimit(Evaluation&, Facet) override { return false; }

protected:
  KrResult Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) override;
  std::string FindLengthProblem(std::int64_t aLength) const override;

private:
  NodeShown mShown;
};

} // namespace krgenicam
