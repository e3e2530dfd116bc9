#include "nodes/registernode.h"

#include "description/lexical.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace krgenicam {

namespace {

constexpr std::string_view kAccessWords[] = {"RO", "WO", "RW"};
constexpr KrGenAccessMode kAccessModes[] = {KrGenAccessMode::ReadOnly, KrGenAccessMode::WriteOnly,
                                            KrGenAccessMode::ReadWrite};
constexpr std::string_view kCachingWords[] = {"WriteThrough", "WriteAround", "NoCache"};
constexpr std::string_view kEndianWords[] = {"LittleEndian", "BigEndian"};
constexpr std::string_view kDevicePort = "Device";

std::string Quote(std::string_view aName) {
  return "\"" + std::string(aName) + "\"";
}

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
  return {aResult.GetCode(), std::string(aVerb) + " " + Quote(aNode.GetName()) + " (" + bytes + " at " +
                                 FormatAddress(aRange.address) + "): " + aResult.GetDescription().CStr()};
}

} // namespace

RegisterNode::RegisterNode(const Description& aDescription, const NodeDescription& aNode)
    : Node(aDescription, aNode), mUser(*this) {}

RegisterNode::~RegisterNode() = default;

void RegisterNode::Link(INodeIndex& aIndex) {
  Node::Link(aIndex);
  mAccessMode = kAccessModes[TakeWord(aIndex, PropertyKind::AccessMode, kAccessWords, 0)];
  mCaching = static_cast<RegisterCaching>(TakeWord(aIndex, PropertyKind::Cachable, kCachingWords, 0));
  mUser.remembers = mCaching != RegisterCaching::NoCache;
  mIsBigEndian = TakeWord(aIndex, PropertyKind::Endianess, kEndianWords, 0) == 1;
  LinkPort(aIndex);
  LinkLength(aIndex);
  LinkAddress(aIndex);
}

void RegisterNode::LinkPort(INodeIndex& aIndex) {
  const Property* const property = FindProperty(PropertyKind::pPort);
  if (!property) {
    mPort = dynamic_cast<PortNode*>(aIndex.FindNode(kDevicePort));
    if (mPort && mPort->IsPlain())
      mPort->AddDependent(*this);
    else
      SetFault(aIndex, GetLine(), "the register names no port.");
    return;
  }
  const NodeLink link = LinkTo(aIndex, *property);
  mPort = dynamic_cast<PortNode*>(link.node);
  if (!mPort)
    SetFault(aIndex, link.line, "there is no usable port " + Quote(link.name) + ".");
}

void RegisterNode::LinkLength(INodeIndex& aIndex) {
  const Property* const length = FindProperty(PropertyKind::Length);
  const Property* const link = FindProperty(PropertyKind::pLength);
  if (!length && link) {
    mLengthLink = TakeLink(aIndex, *link);
    return;
  }
  const std::optional<std::int64_t> number = length ? ParseInteger(length->text) : std::nullopt;
  if (!number) {
    SetFault(aIndex, GetLineOf(PropertyKind::Length),
             length ? "the length is not a whole number." : "the register has no length.");
    return;
  }
  mConstantLength = *number;
  if (const std::string problem = FindAnyLengthProblem(*number); !problem.empty())
    SetFault(aIndex, length->line, problem);
}

void RegisterNode::LinkAddress(INodeIndex& aIndex) {
  std::uint32_t line = 0;
  for (const Property& property : GetProperties()) {
    if (property.kind == PropertyKind::Address) {
      const std::optional<std::int64_t> number = ParseInteger(property.text);
      if (!number || __builtin_add_overflow(mConstantAddress, *number, &mConstantAddress))
        SetFault(aIndex, property.line, "the address is not a whole number of 64 bits.");
    } else if (property.kind == PropertyKind::pAddress || property.kind == PropertyKind::IntSwissKnife) {
      mTerms.push_back({.link = TakeLink(aIndex, property)});
    } else if (property.kind == PropertyKind::pIndex) {
      LinkIndex(aIndex, property);
    } else {
      continue;
    }
    line = property.line;
  }
  if (line == 0)
    SetFault(aIndex, GetLine(), "the register has no address.");
  if (!mFault.IsOK() || !mTerms.empty() || mLengthLink.IsSet())
    return;
  const KrResult checked =
      mPort->CheckAddress({.address = mConstantAddress, .length = static_cast<std::size_t>(mConstantLength)});
  if (!checked.IsOK())
    SetFault(aIndex, line, checked.GetDescription().CStr());
}

void RegisterNode::LinkIndex(INodeIndex& aIndex, const Property& aProperty) {
  AddressTerm term{.link = TakeLink(aIndex, aProperty), .scale = AddressTerm::Scale::Length};
  if (!aProperty.attribute.empty()) {
    const std::optional<std::int64_t> offset = ParseInteger(aProperty.attribute);
    if (!offset)
      SetFault(aIndex, aProperty.line, "the offset of the index is not a whole number of 64 bits.");
    term.scale = AddressTerm::Scale::Constant;
    term.offset = offset.value_or(0);
  } else if (!aProperty.offsetName.empty()) {
    Property offset = aProperty;
    offset.text = aProperty.offsetName;
    offset.target = aProperty.offsetTarget;
    term.scale = AddressTerm::Scale::Node;
    term.offsetLink = TakeLink(aIndex, offset);
  }
  mTerms.push_back(term);
}

NodeLink RegisterNode::TakeLink(INodeIndex& aIndex, const Property& aProperty) {
  NodeLink link = LinkTo(aIndex, aProperty);
  if (!link.node) {
    SetFault(aIndex, link.line, "there is no usable node " + Quote(link.name) + ".");
    return link;
  }
  link.name = link.node->GetName();
  mPlaceNodes.push_back(link.node);
  return link;
}

std::uint32_t RegisterNode::GetLineOf(PropertyKind aKind) const {
  const Property* const property = FindProperty(aKind);
  return property ? property->line : GetLine();
}

void RegisterNode::SetFault(INodeIndex& aIndex, std::uint32_t aLine, const std::string& aReason) {
  std::string sentence = aReason;
  if (!sentence.empty() && sentence.front() >= 'a' && sentence.front() <= 'z')
    sentence.front() = static_cast<char>(sentence.front() - 'a' + 'A');
  aIndex.AddFault(*this, aLine, sentence);
  if (mFault.IsOK())
    mFault = MakeFault(aLine, aReason);
}

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
  if (!result.IsOK())
    return {result.GetCode(),
            "Where " + Quote(GetName()) + " is cannot be found out. " + result.GetDescription().CStr()};
  aNumber = number.ToInteger();
  return result;
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
    return {KrResult::Code::OutOfRange, "The address of " + Quote(GetName()) + " has more than 64 bits: " +
                                            Quote(aTerm.link.name) + " is " + std::to_string(number) + "."};
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
      return {KrResult::Code::OutOfRange, "The address of " + Quote(GetName()) + " has more than 64 bits."};
  }
  KrResult checked = mPort->CheckAddress(aRange);
  if (!checked.IsOK())
    return {checked.GetCode(), Quote(GetName()) + " is nowhere at the moment: " + checked.GetDescription().CStr()};
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

void RegisterNode::ShareBits() {
  if (mFault.IsOK() && mTerms.empty() && !mLengthLink.IsSet() && IsReadable(mAccessMode))
    mPort->NoteReadableBits({.address = mConstantAddress, .length = static_cast<std::size_t>(mConstantLength)});
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
    return {KrResult::Code::InvalidInput, Quote(GetName()) + " takes " + std::to_string(aRange.length) +
                                              " bytes, not " + std::to_string(aBytes.size()) + "."};
  return result;
}

const Node* RegisterNode::FindUnreadablePlaceNode(Evaluation& aEvaluation) const {
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

KrResult RegisterNode::ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) {
  if (!mFault.IsOK())
    return mFault;
  if (!(aForWriting ? IsWritable(mAccessMode) : IsReadable(mAccessMode)))
    return {KrResult::Code::AccessDenied,
            aAttempt + "the register can only be " + (aForWriting ? "read." : "written.")};
  const KrGenAccessMode port = mPort->GetAccess(aEvaluation, aForWriting ? Facet::Access : Facet::AccessUnlocked);
  if (!(aForWriting ? IsWritable(port) : IsReadable(port))) {
    const KrResult reason = mPort->ExplainAccess(aEvaluation, aForWriting);
    return {reason.GetCode(), aAttempt + "its port is not available. " + reason.GetDescription().CStr()};
  }
  if (const Node* const node = FindUnreadablePlaceNode(aEvaluation))
    return {KrResult::Code::AccessDenied,
            aAttempt + Quote(node->GetName()) + ", which says where it is, cannot be read at the moment."};
  return Node::ExplainOwnAccess(aEvaluation, aForWriting, aAttempt);
}

} // namespace krgenicam
