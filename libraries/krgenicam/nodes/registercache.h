#pragma once
// The bytes of a port's registers as they were last read or written, shared by all nodes that read the same ones. When
// bytes may be had from here, and reading them from the device, is left to the port node.

#include "krbase/krexport.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace krgenicam {

class Node;
struct RegisterEntry;

/// Where a register is: a port's address, which is negative only where it counts from a chunk's end, and its bytes.
struct RegisterRange {
  std::int64_t address = 0;
  std::size_t length = 0;

  friend bool operator==(const RegisterRange&, const RegisterRange&) = default;
};

struct RegisterRangeHash {
  std::size_t operator()(const RegisterRange& aRange) const noexcept;
};

/// A node as the cache knows it.
struct RegisterUser {
  explicit RegisterUser(Node& aNode) : node(aNode) {}

  Node& node;
  bool remembers = true;                 ///< Its values are remembered, and wrong when the bytes turn out to be others.
  std::vector<RegisterEntry*> entries{}; ///< What it was read from; the cache keeps the list.
};

/// Bytes of one range.
struct RegisterEntry {
  enum class Source : std::uint8_t {
    Passing, ///< Read for a register that is not to be cached: good in the evaluation that read it alone.
    Read,    ///< Read from the device.
    Written, ///< Written to the device, which may have made something else of it.
  };

  std::span<std::uint8_t> GetBytes() {
    return {range.length <= shortBytes.size() ? shortBytes.data() : longBytes.data(), range.length};
  }

  RegisterRange range;
  Source source = Source::Read;
  std::uint64_t epoch = 0; ///< The evaluation that read it; 0 for what was written.
  std::array<std::uint8_t, 8> shortBytes{};
  std::vector<std::uint8_t> longBytes{};
  std::vector<RegisterUser*> users{};
};

/// Thread: under the map's lock. Ownership: the port node's; borrows its users, which it does not touch when it ends.
class RegisterCache {
public:
  RegisterCache();
  ~RegisterCache();
  RegisterCache(const RegisterCache&) = delete;
  RegisterCache& operator=(const RegisterCache&) = delete;

  /// The entry of exactly this range, or null; at once where it is the one that the user stands on.
  RegisterEntry* Find(const RegisterUser& aUser, const RegisterRange& aRange) const;
  /// Keeps bytes, of which there must be as many as the range says, in place of what was kept of this range.
  RegisterEntry& Store(const RegisterRange& aRange, std::span<const std::uint8_t> aBytes, RegisterEntry::Source aSource,
                       std::uint64_t aEpoch);
  /// From now on the user stands on the entry.
  static void AddUser(RegisterEntry& aEntry, RegisterUser& aUser);
  /// Whether there is no room for so many bytes more.
  bool IsFull(std::size_t aLength) const;

  /// Forgets all entries that share bytes with a range; each of their users is added to aUsers once.
  void DropOverlapping(const RegisterRange& aRange, std::vector<RegisterUser*>& aUsers);
  /// Bytes of a range came from the device: entries that share some with it and have others hold no more. Those who
  /// remember them are added to aUsers once and stand on them no longer; the others stay, to be told of writes.
  void Correct(const RegisterRange& aRange, std::span<const std::uint8_t> aBytes, std::vector<RegisterUser*>& aUsers);
  /// Forgets all entries that a user stands on; their other users' nodes are added to aAffected.
  void DropUsed(RegisterUser& aUser, std::vector<Node*>& aAffected);
  void DropAll(std::vector<RegisterUser*>& aUsers);

  /// The bytes that were last written to a register that cannot be read; null where there are none. They are no part of
  /// what is dropped.
  const std::array<std::uint8_t, 8>* FindWrittenBlind(const RegisterRange& aRange) const;
  void NoteWrittenBlind(const RegisterRange& aRange, std::span<const std::uint8_t> aBytes);

private:
  /// Calls with each entry that shares bytes with a range, with some more than once.
  template <typename Call>
  void ForEachOverlapping(const RegisterRange& aRange, Call&& aCall) const;
  void Drop(RegisterEntry& aEntry, std::vector<RegisterUser*>& aUsers);
  void AddToIndex(RegisterEntry& aEntry);
  void RemoveFromIndex(RegisterEntry& aEntry);

  std::unordered_map<RegisterRange, std::unique_ptr<RegisterEntry>, RegisterRangeHash> mEntries;
  // Which entries touch a block of bytes; those that touch many blocks are in a list of their own.
  std::unordered_map<std::uint64_t, std::vector<RegisterEntry*>> mBlocks;
  std::vector<RegisterEntry*> mLong;
  std::size_t mBytes = 0;
  std::unordered_map<RegisterRange, std::array<std::uint8_t, 8>, RegisterRangeHash> mWrittenBlind;
};

} // namespace krgenicam
