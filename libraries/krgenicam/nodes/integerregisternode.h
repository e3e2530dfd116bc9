#pragma once
// A register, or some bits of one, that is a whole number: IntReg, MaskedIntReg and what were entries of a StructReg.

#include "nodes/registercodec.h"
#include "nodes/registernode.h"

namespace krgenicam {

/// A number of 1 to 8 bytes. One without sign that has all 64 bits is taken for the number with sign of the same bits,
/// and can be set up to the largest of these. The bits around a masked one are written as they were last read; of a
/// register that cannot be read as they were last written, at first as zeros.
///
/// Thread, ownership: as Node.
class IntegerRegisterNode final : public RegisterNode {
public:
  IntegerRegisterNode(const Description& aDescription, const NodeDescription& aNode);

  void Link(INodeIndex& aIndex) override;
  KrGenType GetType() const override { return KrGenType::Integer; }
  KrResult CheckWrite(Evaluation& aEvaluation, const Number& aValue) override;
  KrResult Write(Evaluation& aEvaluation, const Number& aValue) override;
  NodeShown GetShown(Evaluation& aEvaluation) override;

protected:
  KrResult Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) override;
  std::string FindLengthProblem(std::int64_t aLength) const override;

private:
  void LinkBits(INodeIndex& aIndex);
  /// The bits in a register of a length, 0 the least significant one; BadData where it does not have them.
  KrResult FindBits(std::int64_t aLength, BitRange& aBits) const;

  bool mIsSigned = false;
  bool mIsMasked = false;
  std::int64_t mFirstBit = 0; ///< As the description numbers them, in any order.
  std::int64_t mLastBit = 0;
  std::uint32_t mBitsLine = 0;
  NodeShown mShown;
};

} // namespace krgenicam
