#pragma once
// Boolean: true and false, which stand for two numbers of what it stands on.

#include "nodes/valuenode.h"

namespace krgenicam {

/// Its value is 1 or 0; whatever the device has other than OffValue counts as true.
///
/// Thread, ownership: as Node.
class BooleanNode final : public ValueNode {
public:
  using ValueNode::ValueNode;

  void Link(INodeIndex& aIndex) override;
  KrGenType GetType() const override { return KrGenType::Boolean; }
  KrResult CheckWrite(Evaluation& aEvaluation, const Number& aValue) override;
  KrResult Write(Evaluation& aEvaluation, const Number& aValue) override;

protected:
  KrResult Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) override;
  std::optional<Number> ParseValue(std::string_view aText) const override;
  std::string_view GetWantedText() const override { return "true or false"; }

private:
  std::int64_t mOnValue = 1;
  std::int64_t mOffValue = 0;
};

} // namespace krgenicam
