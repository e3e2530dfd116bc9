#include "nodes/portnode.h"

#include "description/lexical.h"
#include "nodes/registercodec.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>

namespace krgenicam {

namespace {

constexpr std::int64_t kLargestAddress = std::numeric_limits<std::int64_t>::max();
// Where a chunk port has what it knows of its data, as numbers (GenApi 2.1, chunk data).
constexpr std::int64_t kChunkBaseAddress = kLargestAddress;
constexpr std::int64_t kChunkLengthAddress = kLargestAddress - 15;
constexpr std::size_t kLongestNumber = 8;
constexpr std::size_t kWordBytes = 4;

// Of the whole words that so many bytes from a word's beginning on are in.
std::size_t GetWordsLength(std::size_t aLength) {
  return (aLength + kWordBytes - 1) / kWordBytes * kWordBytes;
}

// Whether what is kept may be taken for what the device has.
bool Holds(const Evaluation& aEvaluation, RegisterCaching aCaching, const RegisterEntry& aEntry) {
  if (aEntry.epoch == aEvaluation.epoch)
    return true;
  if (aEvaluation.isFresh || aCaching == RegisterCaching::NoCache)
    return false;
  return aEntry.source == RegisterEntry::Source::Read ||
         (aEntry.source == RegisterEntry::Source::Written && aCaching == RegisterCaching::WriteThrough);
}

} // namespace

PortNode::PortNode(const Description& aDescription, const NodeDescription& aNode)
    : Node(aDescription, aNode), mKind(FindKind(*this)) {}

PortNode::~PortNode() = default;

PortNode::Kind PortNode::FindKind(const PortNode& aNode) {
  if (aNode.FindProperty(PropertyKind::ChunkID) || aNode.FindProperty(PropertyKind::pChunkID))
    return Kind::Chunk;
  return aNode.FindProperty(PropertyKind::EventID) ? Kind::Event : Kind::Device;
}

void PortNode::Link(INodeIndex& aIndex) {
  Node::Link(aIndex);
  mSwapsWords = TakeYesNo(aIndex, PropertyKind::SwapEndianess, false);
  mChunkIDLink = LinkTo(aIndex, PropertyKind::pChunkID);
  if (const Property* const property = FindProperty(PropertyKind::ChunkID)) {
    mChunkID = ParseHex(property->text);
    if (!mChunkID)
      aIndex.AddFault(*this, property->line, "The ChunkID is not a hexadecimal number.");
  }
}

void PortNode::Forget(std::vector<Node*>& aAffected) {
  Node::Forget(aAffected);
  std::vector<RegisterUser*> users;
  mCache.DropAll(users);
  for (const RegisterUser* const user : users)
    aAffected.push_back(&user->node);
}

std::optional<std::uint64_t> PortNode::GetChunkID(Evaluation& aEvaluation) {
  if (mChunkID || !mChunkIDLink.node)
    return mChunkID;
  Node& source = *mChunkIDLink.node;
  if (source.GetType() == KrGenType::String) {
    std::string text;
    if (!IsReadable(source.GetAccess(aEvaluation, Facet::AccessUnlocked)) || !source.ReadText(aEvaluation, text).IsOK())
      return std::nullopt;
    return ParseHex(Trim(text));
  }
  Number number;
  if (!source.GetValue(aEvaluation, number).IsOK())
    return std::nullopt;
  return static_cast<std::uint64_t>(number.ToInteger());
}

void PortNode::SetEventData(std::span<const std::uint8_t> aData) {
  SetChunkData(aData);
}

void PortNode::SetChunkData(std::optional<std::span<const std::uint8_t>> aData) {
  if (!aData)
    mData.reset();
  else if (mData)
    mData->assign(aData->begin(), aData->end());
  else
    mData.emplace(aData->begin(), aData->end());
}

bool PortNode::IsPseudoAddress(std::int64_t aAddress) const {
  return IsChunkPort() && (aAddress == kChunkBaseAddress || aAddress == kChunkLengthAddress);
}

KrResult PortNode::CheckAddress(const RegisterRange& aRange) const {
  if (aRange.address < 0 && !IsChunkPort())
    return {KrResult::Code::OutOfRange, "the address is " + std::to_string(aRange.address) + ", below 0."};
  const bool isPseudo = IsPseudoAddress(aRange.address) && aRange.length <= kLongestNumber;
  if (!isPseudo && aRange.address > kLargestAddress - (static_cast<std::int64_t>(aRange.length) - 1))
    return {KrResult::Code::OutOfRange, "the address is " + std::to_string(aRange.address) + ", with " +
                                            std::to_string(aRange.length) + " bytes behind the largest one."};
  return {};
}

KrResult PortNode::ReadRegister(Evaluation& aEvaluation, const RegisterAccess& aAccess,
                                std::span<std::uint8_t> aBytes) {
  if (KrResult closing = aEvaluation.host.GetClosing(); !closing.IsOK())
    return closing;
  if (aAccess.caching == RegisterCaching::NoCache)
    aEvaluation.isStable = false;
  return IsPlain() ? ReadCached(aEvaluation, aAccess, aBytes) : ReadData(aAccess, aBytes);
}

KrResult PortNode::ReadCached(Evaluation& aEvaluation, const RegisterAccess& aAccess, std::span<std::uint8_t> aBytes) {
  RegisterEntry* const former = mCache.Find(aAccess.user, aAccess.range);
  if (former && Holds(aEvaluation, aAccess.caching, *former)) {
    RegisterCache::AddUser(*former, aAccess.user);
    std::ranges::copy(former->GetBytes(), aBytes.begin());
    return {};
  }
  if (!aEvaluation.mayAskDevice) {
    aEvaluation.hasMissed = true;
    return {KrResult::Code::Busy, "it is not known at the moment, and the device is not to be asked."};
  }
  const auto address = static_cast<std::uint64_t>(aAccess.range.address);
  KrResult result = mSwapsWords ? ReadSwapped(aEvaluation, address, aBytes) : ReadDevice(aEvaluation, address, aBytes);
  if (result.IsOK())
    Keep(aEvaluation, aAccess, aBytes);
  return result;
}

void PortNode::Keep(Evaluation& aEvaluation, const RegisterAccess& aAccess, std::span<const std::uint8_t> aBytes) {
  std::vector<RegisterUser*> users;
  mCache.Correct(aAccess.range, aBytes, users);
  if (mCache.IsFull(aAccess.range.length))
    mCache.DropAll(users);
  std::vector<Node*> mistaken;
  for (const RegisterUser* const user : users) {
    if (user->remembers)
      mistaken.push_back(&user->node);
  }
  if (!mistaken.empty()) {
    aEvaluation.host.Invalidate(mistaken);
    // What is under computation may have been read from bytes that nobody would tell it of any more.
    aEvaluation.isStable = false;
  }
  const auto source =
      aAccess.caching == RegisterCaching::NoCache ? RegisterEntry::Source::Passing : RegisterEntry::Source::Read;
  RegisterEntry& entry = mCache.Store(aAccess.range, aBytes, source, aEvaluation.epoch);
  for (RegisterUser* const user : users) {
    if (!user->remembers)
      RegisterCache::AddUser(entry, *user);
  }
  RegisterCache::AddUser(entry, aAccess.user);
}

KrResult PortNode::ReadData(const RegisterAccess& aAccess, std::span<std::uint8_t> aBytes) const {
  if (!mData)
    return {KrResult::Code::AccessDenied, "there are no data at the moment."};
  const std::size_t available = mData->size();
  const std::int64_t address = aAccess.range.address;
  if (IsPseudoAddress(address) && aBytes.size() <= kLongestNumber) {
    StoreUnsigned(address == kChunkLengthAddress ? available : 0, aBytes, aAccess.isBigEndian);
    return {};
  }
  const auto size = static_cast<std::int64_t>(available);
  const std::int64_t begin = address < 0 ? address + size : address;
  if (begin < 0 || begin > size || aBytes.size() > static_cast<std::size_t>(size - begin))
    return {KrResult::Code::OutOfRange, "there are only " + std::to_string(size) + " bytes."};
  const std::span data(*mData);
  const auto first = static_cast<std::size_t>(begin);
  if (!mSwapsWords) {
    std::ranges::copy(data.subspan(first, aBytes.size()), aBytes.begin());
    return {};
  }
  // Words count from the beginning of the data; what is left behind the last whole one stays as it is.
  const std::size_t before = first % kWordBytes;
  const std::size_t length = std::min(GetWordsLength(before + aBytes.size()), available - (first - before));
  const std::span<const std::uint8_t> touched = data.subspan(first - before, length);
  std::vector<std::uint8_t> words(touched.begin(), touched.end());
  SwapWords(words);
  std::ranges::copy(std::span(words).subspan(before, aBytes.size()), aBytes.begin());
  return {};
}

KrResult PortNode::ReadDevice(Evaluation& aEvaluation, std::uint64_t aAddress, std::span<std::uint8_t> aBytes) const {
  INodeHost& host = aEvaluation.host;
  return host.GetPort().Read(aAddress, aBytes.data(), aBytes.size(), host.GetTimeoutMs(), host.GetStopToken());
}

KrResult PortNode::ReadSwapped(Evaluation& aEvaluation, std::uint64_t aAddress, std::span<std::uint8_t> aBytes) const {
  // Bytes trade places within their words only, so whole words are read.
  const std::size_t before = aAddress % kWordBytes;
  const std::size_t length = GetWordsLength(before + aBytes.size());
  std::array<std::uint8_t, 16> shortWords{};
  std::vector<std::uint8_t> longWords(length > shortWords.size() ? length : 0);
  const std::span<std::uint8_t> words = longWords.empty() ? std::span(shortWords).first(length) : std::span(longWords);
  KrResult result = ReadDevice(aEvaluation, aAddress - before, words);
  if (!result.IsOK())
    return result;
  SwapWords(words);
  std::ranges::copy(words.subspan(before, aBytes.size()), aBytes.begin());
  return result;
}

KrResult PortNode::WriteRegister(Evaluation& aEvaluation, const RegisterAccess& aAccess,
                                 std::span<const std::uint8_t> aBytes) {
  if (KrResult closing = aEvaluation.host.GetClosing(); !closing.IsOK())
    return closing;
  if (!IsPlain())
    return {KrResult::Code::AccessDenied, "what came with an event or a frame cannot be changed."};
  if (aEvaluation.host.IsReadOnly())
    return {KrResult::Code::AccessDenied, "the device is open for reading only."};
  const auto address = static_cast<std::uint64_t>(aAccess.range.address);
  KrResult result =
      mSwapsWords ? WriteSwapped(aEvaluation, address, aBytes) : WriteDevice(aEvaluation, address, aBytes);
  // After a failure nobody knows what the device has.
  std::vector<RegisterUser*> users;
  mCache.DropOverlapping(aAccess.range, users);
  std::vector<Node*> nodes{&aAccess.user.node};
  for (const RegisterUser* const user : users)
    nodes.push_back(&user->node);
  aEvaluation.OnWritten(nodes);
  if (!result.IsOK())
    return result;
  if (!aAccess.isReadable && aBytes.size() <= kLongestNumber)
    mCache.NoteWrittenBlind(aAccess.range, aBytes);
  if (aAccess.isReadable && aAccess.caching == RegisterCaching::WriteThrough && !mCache.IsFull(aBytes.size()))
    RegisterCache::AddUser(mCache.Store(aAccess.range, aBytes, RegisterEntry::Source::Written, 0), aAccess.user);
  return result;
}

KrResult PortNode::WriteDevice(Evaluation& aEvaluation, std::uint64_t aAddress,
                               std::span<const std::uint8_t> aBytes) const {
  INodeHost& host = aEvaluation.host;
  return host.GetPort().Write(aAddress, aBytes.data(), aBytes.size(), host.GetTimeoutMs(), host.GetStopToken());
}

KrResult PortNode::WriteSwapped(Evaluation& aEvaluation, std::uint64_t aAddress,
                                std::span<const std::uint8_t> aBytes) const {
  KrResult result;
  std::vector<std::uint8_t> part;
  // The bytes of a word that is written in part are together in the device's word, too, but at its other end.
  while (!aBytes.empty() && result.IsOK()) {
    const std::size_t before = aAddress % kWordBytes;
    const std::size_t whole = aBytes.size() / kWordBytes * kWordBytes;
    const bool isWhole = before == 0 && whole > 0;
    const std::size_t length = isWhole ? whole : std::min(kWordBytes - before, aBytes.size());
    part.assign(aBytes.begin(), aBytes.begin() + static_cast<std::ptrdiff_t>(length));
    if (isWhole)
      SwapWords(part);
    else
      std::ranges::reverse(part);
    result = WriteDevice(aEvaluation, isWhole ? aAddress : aAddress - before + kWordBytes - before - length, part);
    aAddress += length;
    aBytes = aBytes.subspan(length);
  }
  return result;
}

void PortNode::GuessRegister(const RegisterRange& aRange, std::span<std::uint8_t> aBytes) const {
  const std::array<std::uint8_t, kLongestNumber>* const written = mCache.FindWrittenBlind(aRange);
  if (written)
    std::copy_n(written->begin(), aBytes.size(), aBytes.begin());
  else
    std::ranges::fill(aBytes, std::uint8_t{0});
}

KrGenAccessMode PortNode::ComputeAccess(Evaluation& aEvaluation, Facet) {
  if (IsPlain())
    return aEvaluation.host.IsReadOnly() ? KrGenAccessMode::ReadOnly : KrGenAccessMode::ReadWrite;
  return mData ? KrGenAccessMode::ReadOnly : KrGenAccessMode::NotAvailable;
}

KrResult PortNode::ExplainOwnAccess(Evaluation& aEvaluation, bool aForWriting, const std::string& aAttempt) {
  if (IsPlain())
    return Node::ExplainOwnAccess(aEvaluation, aForWriting, aAttempt);
  const char* const source = IsChunkPort() ? "frame" : "event";
  if (!mData)
    return {KrResult::Code::AccessDenied, aAttempt + "no " + source + " with its data has come."};
  return DenyForGood(aEvaluation,
                     aAttempt + "what came with a" + (IsChunkPort() ? " " : "n ") + source + " cannot be changed.");
}

} // namespace krgenicam
