#include "description/lexical.h"
#include "nodes/registernode.h"

#include <optional>

// What a description says of a register's place, and which nodes it names for it.

namespace krgenicam {

namespace {

constexpr std::string_view kAccessWords[] = {"RO", "WO", "RW"};
constexpr KrGenAccessMode kAccessModes[] = {KrGenAccessMode::ReadOnly, KrGenAccessMode::WriteOnly,
                                            KrGenAccessMode::ReadWrite};
constexpr std::string_view kCachingWords[] = {"WriteThrough", "WriteAround", "NoCache"};
constexpr std::string_view kEndianWords[] = {"LittleEndian", "BigEndian"};
constexpr std::string_view kDevicePort = "Device";

} // namespace

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
    SetFault(aIndex, link.line, "there is no usable port " + QuoteName(link.name) + ".");
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
    SetFault(aIndex, link.line, "there is no usable node " + QuoteName(link.name) + ".");
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

void RegisterNode::ShareBits() {
  if (mFault.IsOK() && mTerms.empty() && !mLengthLink.IsSet() && IsReadable(mAccessMode))
    mPort->NoteReadableBits({.address = mConstantAddress, .length = static_cast<std::size_t>(mConstantLength)});
}

} // namespace krgenicam
