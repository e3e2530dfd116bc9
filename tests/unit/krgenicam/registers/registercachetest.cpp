#include "nodes/registercache.h"

#include "nodes/node.h"

#include <gmock/gmock.h>

#include <limits>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using namespace krgenicam;

namespace {

constexpr auto kRead = RegisterEntry::Source::Read;

// A cache and three nodes that use it.
struct RegisterCacheTest : testing::Test {
  RegisterEntry& Keep(std::int64_t aAddress, std::size_t aLength, RegisterUser& aUser) {
    const std::vector<std::uint8_t> bytes(aLength, 0x5A);
    RegisterEntry& entry = cache.Store({aAddress, aLength}, bytes, kRead, 1);
    RegisterCache::AddUser(entry, aUser);
    return entry;
  }
  std::vector<RegisterUser*> DropOverlapping(std::int64_t aAddress, std::size_t aLength) {
    std::vector<RegisterUser*> users;
    cache.DropOverlapping({aAddress, aLength}, users);
    return users;
  }
  bool Has(std::int64_t aAddress, std::size_t aLength) { return cache.Find(stranger, {aAddress, aLength}) != nullptr; }

  Description description;
  NodeDescription data;
  Node nodes[4] = {{description, data}, {description, data}, {description, data}, {description, data}};
  RegisterUser first{nodes[0]};
  RegisterUser second{nodes[1]};
  RegisterUser third{nodes[2]};
  RegisterUser stranger{nodes[3]};
  RegisterCache cache;
};

} // namespace

TEST_F(RegisterCacheTest, Entry_IsFoundByItsExactRange) {
  Keep(0x100, 4, first);

  EXPECT_TRUE(Has(0x100, 4));
  EXPECT_FALSE(Has(0x100, 8));
  EXPECT_FALSE(Has(0x101, 4));
}

TEST_F(RegisterCacheTest, Entry_OfAnyLength_HasItsBytes) {
  for (const std::size_t length : {1, 8, 9, 100000}) {
    RegisterEntry& entry = Keep(0, length, first);

    EXPECT_THAT(std::vector(entry.GetBytes().begin(), entry.GetBytes().end()),
                testing::AllOf(testing::SizeIs(length), testing::Each(0x5A)));
  }
}

TEST_F(RegisterCacheTest, Overlap_InAnyByte_Drops) {
  struct Row {
    const char* name;
    std::int64_t address;
    std::size_t length;
    bool isDropped;
  };
  const Row rows[] = {
      {"just before", 0x0FC, 4, false},
      {"first byte", 0x0FD, 4, true},
      {"inside", 0x101, 1, true},
      {"last byte", 0x103, 8, true},
      {"just behind", 0x104, 4, false},
      {"around", 0, 0x1000, true},
      {"far around, by the entries instead of the blocks", 0, std::size_t{1} << 24, true},
  };
  for (const Row& row : rows) {
    Keep(0x100, 4, first);

    DropOverlapping(row.address, row.length);

    EXPECT_EQ(Has(0x100, 4), !row.isDropped) << row.name;
  }
}

TEST_F(RegisterCacheTest, Overlap_WithALongEntry_IsFoundInItsMiddleAndAtItsEnd) {
  for (const std::int64_t address : {0x1000, 0x2800, 0x1000 + 0xFFFF}) {
    Keep(0x1000, 0x10000, first);

    EXPECT_THAT(DropOverlapping(address, 1), ElementsAre(&first)) << address;
    EXPECT_FALSE(Has(0x1000, 0x10000));
  }
}

TEST_F(RegisterCacheTest, Overlap_AtTheLargestAddress_IsFound) {
  constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
  Keep(kLast - 3, 4, first);

  EXPECT_THAT(DropOverlapping(kLast, 1), ElementsAre(&first));
}

TEST_F(RegisterCacheTest, Overlap_AcrossBlocks_TellsEachUserOnce) {
  Keep(0x13E, 4, first);
  Keep(0x140, 4, first);
  Keep(0x13C, 4, second);
  Keep(0x200, 4, third);

  EXPECT_THAT(DropOverlapping(0x138, 16), UnorderedElementsAre(&first, &second));
  EXPECT_THAT(first.entries, IsEmpty());
  EXPECT_THAT(second.entries, IsEmpty());
  EXPECT_TRUE(Has(0x200, 4));
}

TEST_F(RegisterCacheTest, User_WhoseEntriesAreDropped_TakesThoseWhoShareThem) {
  RegisterCache::AddUser(Keep(0x100, 4, first), second);
  Keep(0x200, 4, first);
  Keep(0x300, 4, second);
  std::vector<Node*> affected;

  cache.DropUsed(first, affected);

  EXPECT_THAT(affected, ElementsAre(&second.node));
  EXPECT_FALSE(Has(0x100, 4));
  EXPECT_FALSE(Has(0x200, 4));
  EXPECT_TRUE(Has(0x300, 4));
}

TEST_F(RegisterCacheTest, User_ThatIsAddedTwice_IsToldOnce) {
  RegisterEntry& entry = Keep(0x100, 4, first);

  RegisterCache::AddUser(entry, first);

  EXPECT_THAT(entry.users, ElementsAre(&first));
  EXPECT_THAT(first.entries, ElementsAre(&entry));
}

TEST_F(RegisterCacheTest, All_ThatIsDropped_IsGoneForEachUser) {
  Keep(0x100, 4, first);
  Keep(0x10000, 100000, second);
  std::vector<RegisterUser*> users;

  cache.DropAll(users);

  EXPECT_THAT(users, UnorderedElementsAre(&first, &second));
  EXPECT_THAT(first.entries, IsEmpty());
  EXPECT_FALSE(Has(0x100, 4));
  EXPECT_THAT(DropOverlapping(0x10000, 100000), IsEmpty());
}

TEST_F(RegisterCacheTest, Room_EndsWithBytesAndWithEntries) {
  constexpr std::size_t kLong = std::size_t{16} << 20;
  EXPECT_FALSE(cache.IsFull(kLong));
  for (int i = 0; i < 4; ++i)
    Keep(std::int64_t{i} << 32, kLong, first);
  EXPECT_TRUE(cache.IsFull(1));

  std::vector<RegisterUser*> users;
  cache.DropAll(users);
  EXPECT_FALSE(cache.IsFull(kLong));
  for (std::int64_t i = 0; i < 1 << 17; ++i)
    cache.Store({i * 4, 4}, std::vector<std::uint8_t>(4), kRead, 1);
  EXPECT_TRUE(cache.IsFull(0));
}

TEST_F(RegisterCacheTest, BytesWrittenBlind_AreKnownUntilTheNextOnes) {
  EXPECT_EQ(cache.FindWrittenBlind({0x100, 2}), nullptr);

  cache.NoteWrittenBlind({0x100, 2}, std::vector<std::uint8_t>{1, 2});
  cache.NoteWrittenBlind({0x100, 2}, std::vector<std::uint8_t>{3, 4});

  ASSERT_NE(cache.FindWrittenBlind({0x100, 2}), nullptr);
  EXPECT_THAT(*cache.FindWrittenBlind({0x100, 2}), ElementsAre(3, 4, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(cache.FindWrittenBlind({0x100, 4}), nullptr);
}
