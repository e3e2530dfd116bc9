#pragma once
// EnumEntry: one of the values that an enumeration can have. Whether it can be chosen is its access: read only while it
// can be, by its own predicates.

#include "nodes/node.h"

namespace krgenicam {

/// Thread, ownership: as Node.
class EnumEntryNode final : public Node {
public:
  /// Takes the entry's own properties at once, as its enumeration may be linked first.
  EnumEntryNode(const Description& aDescription, const NodeDescription& aNode);

  void Link(INodeIndex& aIndex) override;

  /// An entry without one is none.
  bool HasEntryValue() const { return mHasValue; }
  std::int64_t GetEntryValue() const { return mValue; }
  /// What the entry stands for where the enumeration is read as a floating-point number.
  double GetNumericValue() const { return mNumericValue; }
  /// The name within the enumeration: Symbolic, else the node's name.
  std::string_view GetSymbolic() const { return mSymbolic; }
  bool IsSelfClearing() const { return mIsSelfClearing; }
  /// Whether the entry can be chosen now.
  bool IsAvailable(Evaluation& aEvaluation);

protected:
  KrResult Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) override;

private:
  bool mHasValue = false;
  std::int64_t mValue = 0;
  double mNumericValue = 0.0;
  std::string_view mSymbolic;
  bool mIsSelfClearing = false;
};

} // namespace krgenicam
