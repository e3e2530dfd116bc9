#include "nodes/floatregisternode.h"

#include "nodes/registercodec.h"

#include <cmath>
#include <limits>

namespace krgenicam {

namespace {

double GetLargestOf(std::size_t aLength) {
  return aLength == sizeof(float) ? static_cast<double>(std::numeric_limits<float>::max())
                                  : std::numeric_limits<double>::max();
}

} // namespace

FloatRegisterNode::FloatRegisterNode(const Description& aDescription, const NodeDescription& aNode)
    : RegisterNode(aDescription, aNode) {}

void FloatRegisterNode::Link(INodeIndex& aIndex) {
  RegisterNode::Link(aIndex);
  mShown = TakeShown(aIndex);
}

std::string FloatRegisterNode::FindLengthProblem(std::int64_t aLength) const {
  if (aLength == sizeof(float) || aLength == sizeof(double))
    return {};
  return "the length is " + std::to_string(aLength) + "; a floating-point number has 4 or 8 bytes.";
}

KrResult FloatRegisterNode::Compute(Evaluation& aEvaluation, Facet aFacet, Number& aValue) {
  if (aFacet == Facet::Increment)
    return {KrResult::Code::InvalidInput, "\"" + std::string(GetName()) + "\" has no increment."};
  if (aFacet == Facet::Value) {
    Word word;
    KrResult result = ReadWord(aEvaluation, word);
    if (result.IsOK())
      aValue = Number(LoadFloat(word.GetBytes(), IsBigEndian()));
    return result;
  }
  std::int64_t length = 0;
  KrResult result = GetLength(aEvaluation, length);
  if (!result.IsOK())
    return result;
  const double largest = GetLargestOf(static_cast<std::size_t>(length));
  aValue = Number(aFacet == Facet::Minimum ? -largest : largest);
  return result;
}

KrResult FloatRegisterNode::CheckWrite(Evaluation& aEvaluation, const Number& aValue) {
  KrResult result = CheckWritableRegister(aEvaluation);
  if (result.IsOK() && std::isnan(aValue.ToFloat()))
    return {KrResult::Code::InvalidInput, "\"" + std::string(GetName()) + "\" cannot be set to what is not a number."};
  return result.IsOK() ? CheckRange(aEvaluation, aValue, false) : result;
}

KrResult FloatRegisterNode::Write(Evaluation& aEvaluation, const Number& aValue) {
  Word word;
  std::int64_t length = 0;
  if (KrResult result = GetLength(aEvaluation, length); !result.IsOK())
    return result;
  word.length = static_cast<std::size_t>(length);
  StoreFloat(aValue.ToFloat(), word.GetBytes(), IsBigEndian());
  return WriteBytes(aEvaluation, word.GetBytes());
}

NodeShown FloatRegisterNode::GetShown(Evaluation&) {
  return mShown;
}

} // namespace krgenicam
