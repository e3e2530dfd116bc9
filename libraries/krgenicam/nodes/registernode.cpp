#include "nodes/registernode.h"

#include "description/lexical.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace krgenicam {

namespace {

std::string FormatAddress(std::int64_t aAddress) {
  if (aAddress < 0)
    return std::to_string(aAddress);
  std::array<char, 24> text;
  const int length = std::snprintf(text.data(), text.size(), "0x%llX", static_cast<unsigned long long>(aAddress));
  return std::string(text.data(), static_cast<std::size_t>(length));
}

// "Reading "X" (8 bytes at 0x1234): " before what the port says.
KrResult NameAttempt(const KrResult& aResult, const char* aVerb, const Node& aNode, const RegisterRange& aRange) {
  const std::string bytes = std::to_string(aRange.length) + (aRange.length == 1 ? " byte" : " bytes");
  return {aResult.GetCode(), std::string(aVerb) + " " + QuoteName(aNode.GetName()) + " (" + bytes + " at " +
                                 FormatAddress(aRange.address) + "): " + aResult.GetDescription().ToUtf8()};
}

} // namespace

RegisterNode::RegisterNode(const Description& aDescription, const NodeDescription& aNode)
    : Node(aDescription, aNode), mUser(*this) {}

RegisterNode::~RegisterNode() = default;

void RegisterNode::Forget(std::vector<Node*>& aAffected) {
  Node::Forget(aAffected);
  if (mPort)
    mPort->DropUsed(mUser, aAffected);
}

std::string RegisterNode::FindLengthProblem(std::int64_t) const {
  return {};
}

std::string RegisterNode::FindAnyLengthProblem(std::int64_t aLength) const {
  if (aLength < 1 || aLength > kMaxLength)
    return "the length is " + std::to_string(aLength) + "; a register has 1 to " + std::to_string(kMaxLength) +
           " bytes.";
  return FindLengthProblem(aLength);
}

KrResult RegisterNode::AskNumber(Evaluation& aEvaluation, const NodeLink& aLink, std::int64_t& aNumber) {
  Number number;
  KrResult result = aLink.node->GetValue(aEvaluation, number);
  if (result.IsOK()) {
    aNumber = number.ToInteger();
    return result;
  }
  constexpr std::string_view kBeginning = "Where \"";
  // In a chain of registers one of them is enough.
  if (result.GetDescription().ToUtf8().starts_with(kBeginning))
    return result;
  return {result.GetCode(), std::string(kBeginning) + std::string(GetName()) + "\" is cannot be found out. " +
                                result.GetDescription().ToUtf8()};
}

KrResult RegisterNode::GetLength(Evaluation& aEvaluation, std::int64_t& aLength) {
  if (!mFault.IsOK())
    return mFault;
  std::int64_t length = mConstantLength;
  if (mLengthLink.node) {
    if (KrResult result = AskNumber(aEvaluation, mLengthLink, length); !result.IsOK())
      return result;
    if (const std::string problem = FindAnyLengthProblem(length); !problem.empty())
      return MakeFault(mLengthLink.line, problem);
  }
  aLength = length;
  return {};
}

KrResult RegisterNode::FindTerm(Evaluation& aEvaluation, const AddressTerm& aTerm, std::int64_t& aTermValue) {
  std::int64_t number = 0;
  std::int64_t factor = aTerm.offset;
  KrResult result = AskNumber(aEvaluation, aTerm.link, number);
  if (result.IsOK() && aTerm.scale == AddressTerm::Scale::Node)
    result = AskNumber(aEvaluation, aTerm.offsetLink, factor);
  if (result.IsOK() && aTerm.scale == AddressTerm::Scale::Length)
    result = GetLength(aEvaluation, factor);
  if (!result.IsOK())
    return result;
  if (aTerm.scale == AddressTerm::Scale::None)
    factor = 1;
  if (__builtin_mul_overflow(number, factor, &aTermValue))
    return {KrResult::Code::OutOfRange, "The address of " + QuoteName(GetName()) + " has more than 64 bits: " +
                                            QuoteName(aTerm.link.name) + " is " + std::to_string(number) + "."};
  return result;
}

KrResult RegisterNode::GetAddress(Evaluation& aEvaluation, std::int64_t& aAddress) {
  RegisterRange range;
  KrResult result = FindRange(aEvaluation, range);
  if (result.IsOK())
    aAddress = range.address;
  return result;
}

KrResult RegisterNode::FindRange(Evaluation& aEvaluation, RegisterRange& aRange) {
  std::int64_t length = 0;
  if (KrResult result = GetLength(aEvaluation, length); !result.IsOK())
    return result;
  aRange = {.address = mConstantAddress, .length = static_cast<std::size_t>(length)};
  if (mTerms.empty() && !mLengthLink.IsSet())
    return {};
  for (const AddressTerm& term : mTerms) {
    std::int64_t number = 0;
    if (KrResult result = FindTerm(aEvaluation, term, number); !result.IsOK())
      return result;
    if (__builtin_add_overflow(aRange.address, number, &aRange.address))
      return {KrResult::Code::OutOfRange, "The address of " + QuoteName(GetName()) + " has more than 64 bits."};
  }
  KrResult checked = mPort->CheckAddress(aRange);
  if (!checked.IsOK())
    return {checked.GetCode(),
            QuoteName(GetName()) + " is nowhere at the moment: " + checked.GetDescription().ToUtf8()};
  return checked;
}

RegisterAccess RegisterNode::MakeAccess(const RegisterRange& aRange) {
  return {.user = mUser,
          .range = aRange,
          .caching = mCaching,
          .isBigEndian = mIsBigEndian,
          .isReadable = IsReadable(mAccessMode)};
}

KrResult RegisterNode::ReadRange(Evaluation& aEvaluation, const RegisterRange& aRange, std::span<std::uint8_t> aBytes) {
  KrResult result = mPort->ReadRegister(aEvaluation, MakeAccess(aRange), aBytes);
  return result.IsOK() ? result : NameAttempt(result, "Reading", *this, aRange);
}

KrResult RegisterNode::GetBytes(Evaluation& aEvaluation, std::vector<std::uint8_t>& aBytes) {
  if (!IsReadable(GetAccess(aEvaluation, Facet::AccessUnlocked)))
    return ExplainAccess(aEvaluation, false);
  return ReadBytes(aEvaluation, aBytes);
}

KrResult RegisterNode::SetBytes(Evaluation& aEvaluation, std::span<const std::uint8_t> aBytes) {
  KrResult result = CheckWriteBytes(aEvaluation, aBytes);
  if (result.IsOK())
    result = WriteBytes(aEvaluation, aBytes);
  return result.IsOK() ? CheckErrors(aEvaluation) : result;
}

KrResult RegisterNode::ReadBytes(Evaluation& aEvaluation, std::vector<std::uint8_t>& aBytes) {
  RegisterRange range;
  KrResult result = FindRange(aEvaluation, range);
  if (!result.IsOK())
    return result;
  std::vector<std::uint8_t> bytes(range.length);
  result = ReadRange(aEvaluation, range, bytes);
  if (result.IsOK())
    aBytes = std::move(bytes);
  return result;
}

KrResult RegisterNode::ReadWord(Evaluation& aEvaluation, Word& aWord) {
  RegisterRange range;
  if (KrResult result = FindRange(aEvaluation, range); !result.IsOK())
    return result;
  aWord.length = range.length;
  return ReadRange(aEvaluation, range, aWord.GetBytes());
}

KrResult RegisterNode::ReadSurroundings(Evaluation& aEvaluation, Word& aWord) {
  RegisterRange range;
  if (KrResult result = FindRange(aEvaluation, range); !result.IsOK())
    return result;
  aWord.length = range.length;
  if (IsReadable(mAccessMode) || mPort->HasReadableBits(range))
    return ReadRange(aEvaluation, range, aWord.GetBytes());
  mPort->GuessRegister(range, aWord.GetBytes());
  return {};
}

KrResult RegisterNode::CheckWritableRegister(Evaluation& aEvaluation) {
  RegisterRange range;
  KrResult result = CheckWritable(aEvaluation);
  return result.IsOK() ? FindRange(aEvaluation, range) : result;
}

KrResult RegisterNode::CheckWriteBytes(Evaluation& aEvaluation, std::span<const std::uint8_t> aBytes) {
  RegisterRange range;
  KrResult result = CheckWritable(aEvaluation);
  return result.IsOK() ? FindRangeOf(aEvaluation, aBytes, range) : result;
}

KrResult RegisterNode::WriteBytes(Evaluation& aEvaluation, std::span<const std::uint8_t> aBytes) {
  RegisterRange range;
  KrResult result = FindRangeOf(aEvaluation, aBytes, range);
  if (!result.IsOK())
    return result;
  result = mPort->WriteRegister(aEvaluation, MakeAccess(range), aBytes);
  return result.IsOK() ? result : NameAttempt(result, "Writing", *this, range);
}

KrResult RegisterNode::FindRangeOf(Evaluation& aEvaluation, std::span<const std::uint8_t> aBytes,
                                   RegisterRange& aRange) {
  KrResult result = FindRange(aEvaluation, aRange);
  if (result.IsOK() && aRange.length != aBytes.size())
    return {KrResult::Code::InvalidInput, QuoteName(GetName()) + " takes " + std::to_string(aRange.length) +
                                              " bytes, not " + std::to_string(aBytes.size()) + "."};
  return result;
}

Node* RegisterNode::FindUnreadablePlaceNode(Evaluation& aEvaluation) const {
  const auto found = std::ranges::find_if(mPlaceNodes, [&aEvaluation](Node* aNode) {
    return !IsReadable(aNode->GetAccess(aEvaluation, Facet::AccessUnlocked));
  });
  return found == mPlaceNodes.end() ? nullptr : *found;
}

KrGenAccessMode RegisterNode::ComputeAccess(Evaluation& aEvaluation, Facet aFacet) {
  if (!mFault.IsOK())
    return KrGenAccessMode::NotAvailable;
  const KrGenAccessMode access = CombineAccessModes(mAccessMode, mPort->GetAccess(aEvaluation, aFacet));
  if (access <= KrGenAccessMode::NotAvailable || !FindUnreadablePlaceNode(aEvaluation))
    return access;
  return KrGenAccessMode::NotAvailable;
}

KrResult RegisterNode::ComputeImplementation(Evaluation& aEvaluation, Number& aImplemented) {
  if (mFault.IsOK())
    return mPort->Get(aEvaluation, Facet::Implementation, aImplemented);
  return Node::ComputeImplementation(aEvaluation, aImplemented);
}

KrResult RegisterNode::ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) {
  if (!mFault.IsOK())
    return mFault;
  if (!(aForWriting ? IsWritable(mAccessMode) : IsReadable(mAccessMode)))
    return DenyForGood(aEvaluation, aAttempt + "the register can only be " + (aForWriting ? "read." : "written."));
  const KrGenAccessMode port = mPort->GetAccess(aEvaluation, aForWriting ? Facet::Access : Facet::AccessUnlocked);
  if (!(aForWriting ? IsWritable(port) : IsReadable(port)))
    return ExplainBy(aEvaluation, aForWriting, aAttempt, *mPort);
  if (Node* const node = FindUnreadablePlaceNode(aEvaluation))
    return ExplainBy(aEvaluation, false, aAttempt, *node);
  return Node::ExplainOwnAccess(aEvaluation, aForWriting, aAttempt);
}

} // namespace krgenicam
