#include "nodes/registercache.h"

#include <algorithm>

namespace krgenicam {

namespace {

constexpr unsigned kBlockShift = 6; // Blocks of 64 bytes.
constexpr std::uint64_t kMostBlocks = 8;
constexpr std::size_t kMostBytes = std::size_t{64} << 20;
constexpr std::size_t kMostEntries = std::size_t{1} << 17;

std::uint64_t GetFirstBlock(const RegisterRange& aRange) {
  return static_cast<std::uint64_t>(aRange.address) >> kBlockShift;
}

std::uint64_t GetLastBlock(const RegisterRange& aRange) {
  return (static_cast<std::uint64_t>(aRange.address) + aRange.length - 1) >> kBlockShift;
}

bool IsLong(const RegisterRange& aRange) {
  return GetLastBlock(aRange) - GetFirstBlock(aRange) >= kMostBlocks;
}

bool Overlap(const RegisterRange& aLeft, const RegisterRange& aRight) {
  // Addresses are not negative here, so neither difference overflows.
  return aLeft.address <= aRight.address ? static_cast<std::uint64_t>(aRight.address - aLeft.address) < aLeft.length
                                         : static_cast<std::uint64_t>(aLeft.address - aRight.address) < aRight.length;
}

// Whether two entries' bytes differ where their ranges, which overlap, have the same addresses.
bool Contradicts(RegisterEntry& aEntry, const RegisterRange& aRange, std::span<const std::uint8_t> aBytes) {
  const std::int64_t begin = std::max(aEntry.range.address, aRange.address);
  const std::span<const std::uint8_t> kept =
      aEntry.GetBytes().subspan(static_cast<std::size_t>(begin - aEntry.range.address));
  const std::span<const std::uint8_t> given = aBytes.subspan(static_cast<std::size_t>(begin - aRange.address));
  const std::size_t length = std::min(kept.size(), given.size());
  return !std::ranges::equal(kept.first(length), given.first(length));
}

template <typename Element>
void Remove(std::vector<Element*>& aElements, const Element* aElement) {
  // The last ones go first where all go.
  const auto found = std::find(aElements.rbegin(), aElements.rend(), aElement);
  if (found == aElements.rend())
    return;
  *found = aElements.back();
  aElements.pop_back();
}

template <typename Element>
void KeepOneOfEach(std::vector<Element*>& aElements) {
  std::ranges::sort(aElements);
  const auto repeated = std::unique(aElements.begin(), aElements.end());
  aElements.erase(repeated, aElements.end());
}

} // namespace

std::size_t RegisterRangeHash::operator()(const RegisterRange& aRange) const noexcept {
  // Addresses of registers are multiples of 4 as a rule: the multiplication brings what differs into all bits.
  const std::uint64_t mixed =
      (static_cast<std::uint64_t>(aRange.address) ^ (static_cast<std::uint64_t>(aRange.length) << 48U)) *
      0x9E3779B97F4A7C15U;
  return static_cast<std::size_t>(mixed ^ mixed >> 32U);
}

RegisterCache::RegisterCache() = default;

RegisterCache::~RegisterCache() = default;

RegisterEntry* RegisterCache::Find(const RegisterUser& aUser, const RegisterRange& aRange) const {
  if (!aUser.entries.empty() && aUser.entries.back()->range == aRange)
    return aUser.entries.back();
  const auto found = mEntries.find(aRange);
  return found == mEntries.end() ? nullptr : found->second.get();
}

RegisterEntry& RegisterCache::Store(const RegisterRange& aRange, std::span<const std::uint8_t> aBytes,
                                    RegisterEntry::Source aSource, std::uint64_t aEpoch) {
  std::unique_ptr<RegisterEntry>& entry = mEntries[aRange];
  if (!entry) {
    entry = std::make_unique<RegisterEntry>();
    entry->range = aRange;
    if (aRange.length > entry->shortBytes.size())
      entry->longBytes.resize(aRange.length);
    mBytes += aRange.length;
    AddToIndex(*entry);
  }
  std::ranges::copy(aBytes, entry->GetBytes().begin());
  entry->source = aSource;
  entry->epoch = aEpoch;
  return *entry;
}

void RegisterCache::AddUser(RegisterEntry& aEntry, RegisterUser& aUser) {
  const bool isKnown = aEntry.users.size() < aUser.entries.size()
                           ? std::ranges::find(aEntry.users, &aUser) != aEntry.users.end()
                           : std::ranges::find(aUser.entries, &aEntry) != aUser.entries.end();
  if (isKnown)
    return;
  aEntry.users.push_back(&aUser);
  aUser.entries.push_back(&aEntry);
}

bool RegisterCache::IsFull(std::size_t aLength) const {
  return mEntries.size() >= kMostEntries || mBytes + aLength > kMostBytes;
}

template <typename Call>
void RegisterCache::ForEachOverlapping(const RegisterRange& aRange, Call&& aCall) const {
  const auto check = [&](RegisterEntry* aEntry) {
    if (Overlap(aEntry->range, aRange))
      aCall(*aEntry);
  };
  std::ranges::for_each(mLong, check);
  const std::uint64_t first = GetFirstBlock(aRange);
  const std::uint64_t last = GetLastBlock(aRange);
  if (last - first >= mBlocks.size()) {
    for (const auto& [block, entries] : mBlocks)
      std::ranges::for_each(entries, check);
  } else {
    for (std::uint64_t block = first; block <= last; ++block) {
      if (const auto found = mBlocks.find(block); found != mBlocks.end())
        std::ranges::for_each(found->second, check);
    }
  }
}

void RegisterCache::DropOverlapping(const RegisterRange& aRange, std::vector<RegisterUser*>& aUsers) {
  std::vector<RegisterEntry*> dropped;
  ForEachOverlapping(aRange, [&](RegisterEntry& aEntry) { dropped.push_back(&aEntry); });
  KeepOneOfEach(dropped);
  for (RegisterEntry* const entry : dropped)
    Drop(*entry, aUsers);
  KeepOneOfEach(aUsers);
}

void RegisterCache::Correct(const RegisterRange& aRange, std::span<const std::uint8_t> aBytes,
                            std::vector<RegisterUser*>& aUsers) {
  std::vector<RegisterEntry*> mistaken;
  ForEachOverlapping(aRange, [&](RegisterEntry& aEntry) {
    if (Contradicts(aEntry, aRange, aBytes))
      mistaken.push_back(&aEntry);
  });
  KeepOneOfEach(mistaken);
  for (RegisterEntry* const entry : mistaken) {
    entry->source = RegisterEntry::Source::Passing;
    entry->epoch = 0;
    std::erase_if(entry->users, [&](RegisterUser* aUser) {
      if (!aUser->remembers)
        return false;
      Remove(aUser->entries, entry);
      aUsers.push_back(aUser);
      return true;
    });
    if (entry->users.empty())
      Drop(*entry, aUsers);
  }
  KeepOneOfEach(aUsers);
}

void RegisterCache::DropUsed(RegisterUser& aUser, std::vector<Node*>& aAffected) {
  std::vector<RegisterUser*> users;
  while (!aUser.entries.empty())
    Drop(*aUser.entries.back(), users);
  KeepOneOfEach(users);
  for (const RegisterUser* const user : users) {
    if (user != &aUser)
      aAffected.push_back(&user->node);
  }
}

void RegisterCache::DropAll(std::vector<RegisterUser*>& aUsers) {
  for (const auto& [range, entry] : mEntries) {
    for (RegisterUser* const user : entry->users) {
      user->entries.clear();
      aUsers.push_back(user);
    }
  }
  mEntries.clear();
  mBlocks.clear();
  mLong.clear();
  mBytes = 0;
  KeepOneOfEach(aUsers);
}

const std::array<std::uint8_t, 8>* RegisterCache::FindWrittenBlind(const RegisterRange& aRange) const {
  const auto found = mWrittenBlind.find(aRange);
  return found == mWrittenBlind.end() ? nullptr : &found->second;
}

void RegisterCache::NoteWrittenBlind(const RegisterRange& aRange, std::span<const std::uint8_t> aBytes) {
  if (mWrittenBlind.size() >= kMostEntries)
    mWrittenBlind.clear();
  std::ranges::copy(aBytes, mWrittenBlind[aRange].begin());
}

void RegisterCache::Drop(RegisterEntry& aEntry, std::vector<RegisterUser*>& aUsers) {
  for (RegisterUser* const user : aEntry.users) {
    Remove(user->entries, &aEntry);
    aUsers.push_back(user);
  }
  RemoveFromIndex(aEntry);
  mBytes -= aEntry.range.length;
  // The key must not be a part of what goes.
  mEntries.erase(RegisterRange(aEntry.range));
}

void RegisterCache::AddToIndex(RegisterEntry& aEntry) {
  if (IsLong(aEntry.range)) {
    mLong.push_back(&aEntry);
    return;
  }
  for (std::uint64_t block = GetFirstBlock(aEntry.range); block <= GetLastBlock(aEntry.range); ++block)
    mBlocks[block].push_back(&aEntry);
}

void RegisterCache::RemoveFromIndex(RegisterEntry& aEntry) {
  if (IsLong(aEntry.range)) {
    Remove(mLong, &aEntry);
    return;
  }
  for (std::uint64_t block = GetFirstBlock(aEntry.range); block <= GetLastBlock(aEntry.range); ++block) {
    const auto found = mBlocks.find(block);
    Remove(found->second, &aEntry);
    if (found->second.empty())
      mBlocks.erase(found);
  }
}

} // namespace krgenicam
