#include "nodes/integerregisternode.h"

#include "description/lexical.h"

#include <algorithm>
#include <optional>

namespace krgenicam {

namespace {

constexpr std::int64_t kLongest = 8;
constexpr std::string_view kSignWords[] = {"Unsigned", "Signed"};

} // namespace

IntegerRegisterNode::IntegerRegisterNode(const Description& aDescription, const NodeDescription& aNode)
    : RegisterNode(aDescription, aNode) {}

void IntegerRegisterNode::Link(INodeIndex& aIndex) {
  RegisterNode::Link(aIndex);
  mIsSigned = TakeWord(aIndex, PropertyKind::Sign, kSignWords, 0) == 1;
  mShown = TakeShown(aIndex);
  if (GetKind() == NodeKind::MaskedIntReg)
    LinkBits(aIndex);
}

void IntegerRegisterNode::LinkBits(INodeIndex& aIndex) {
  ShareBits();
  const Property* const bit = FindProperty(PropertyKind::Bit);
  const Property* const first = bit ? bit : FindProperty(PropertyKind::LSB);
  const Property* const last = bit ? bit : FindProperty(PropertyKind::MSB);
  if (!first && !last)
    return;
  mBitsLine = (first ? first : last)->line;
  const std::optional<std::int64_t> firstBit = first ? ParseInteger(first->text) : std::nullopt;
  const std::optional<std::int64_t> lastBit = last ? ParseInteger(last->text) : std::nullopt;
  if (!firstBit || !lastBit) {
    SetFault(aIndex, mBitsLine, "the register has no Bit, nor both LSB and MSB, that are whole numbers.");
    return;
  }
  mIsMasked = true;
  mFirstBit = *firstBit;
  mLastBit = *lastBit;
}

std::string IntegerRegisterNode::FindLengthProblem(std::int64_t aLength) const {
  return aLength <= kLongest ? std::string()
                             : "the length is " + std::to_string(aLength) + "; a whole number has 1 to 8 bytes.";
}

KrResult IntegerRegisterNode::FindBits(std::int64_t aLength, BitRange& aBits) const {
  const std::int64_t count = aLength * 8;
  if (!mIsMasked) {
    aBits = {.lowest = 0, .count = static_cast<unsigned>(count)};
    return {};
  }
  if (mFirstBit < 0 || mFirstBit >= count || mLastBit < 0 || mLastBit >= count)
    return MakeFault(mBitsLine, "the bits " + std::to_string(mFirstBit) + " to " + std::to_string(mLastBit) +
                                    " are not all in a register of " + std::to_string(count) + ".");
  // Big-endian registers count from the most significant bit on; cameras are known to swap the two.
  const std::int64_t first = IsBigEndian() ? count - 1 - mFirstBit : mFirstBit;
  const std::int64_t last = IsBigEndian() ? count - 1 - mLastBit : mLastBit;
  const auto [lowest, highest] = std::minmax({first, last});
  aBits = {.lowest = static_cast<unsigned>(lowest), .count = static_cast<unsigned>(highest - lowest + 1)};
  return {};
}

KrResult IntegerRegisterNode::Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) {
  if (aFacet == Facet::Increment) {
    aValue = Number(std::int64_t{1});
    return GetFault();
  }
  Word word;
  std::int64_t length = 0;
  BitRange bits;
  KrResult result = aFacet == Facet::Value ? ReadWord(aEvaluation, word) : GetLength(aEvaluation, length);
  if (result.IsOK())
    result = FindBits(aFacet == Facet::Value ? static_cast<std::int64_t>(word.length) : length, bits);
  if (!result.IsOK())
    return result;
  if (aFacet == Facet::Value)
    aValue = Number(ExtractBits(LoadUnsigned(word.GetBytes(), IsBigEndian()), bits, mIsSigned));
  else
    aValue = Number(aFacet == Facet::Minimum ? GetSmallest(bits.count, mIsSigned) : GetLargest(bits.count, mIsSigned));
  return result;
}

KrResult IntegerRegisterNode::CheckWrite(Evaluation& aEvaluation, const Number& aValue) {
  KrResult result = CheckWritableRegister(aEvaluation);
  return result.IsOK() ? CheckRange(aEvaluation, aValue, false) : result;
}

KrResult IntegerRegisterNode::Write(Evaluation& aEvaluation, const Number& aValue) {
  Word word;
  std::int64_t length = 0;
  BitRange bits;
  KrResult result = GetLength(aEvaluation, length);
  if (result.IsOK())
    result = FindBits(length, bits);
  if (!result.IsOK())
    return result;
  word.length = static_cast<std::size_t>(length);
  if (bits.count < length * 8)
    result = ReadSurroundings(aEvaluation, word);
  if (!result.IsOK())
    return result;
  const std::uint64_t former = LoadUnsigned(word.GetBytes(), IsBigEndian());
  StoreUnsigned(ReplaceBits(former, bits, aValue.ToInteger()), word.GetBytes(), IsBigEndian());
  return WriteBytes(aEvaluation, word.GetBytes());
}

NodeShown IntegerRegisterNode::GetShown(Evaluation&) {
  return mShown;
}

} // namespace krgenicam
