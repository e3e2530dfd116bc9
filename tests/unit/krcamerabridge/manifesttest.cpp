#include "gencp/manifest.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace krcamerabridge {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Version 2.3.516, schema 1.1, a zipped description of the device, 0x12345 bytes at 0x80001000.
const Bytes kEntry = {0x02, 0x03, 0x02, 0x04, 0x01, 0x01, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00,
                      0x80, 0x00, 0x10, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x23, 0x45};

Bytes MakeEntry(const std::vector<std::pair<std::size_t, std::uint8_t>>& aChanges = {}) {
  Bytes entry = kEntry;
  entry.resize(kManifestEntryBytes);
  for (const auto& [offset, byte] : aChanges)
    entry[offset] = byte;
  return entry;
}

Bytes Join(const std::vector<Bytes>& aEntries) {
  Bytes table;
  for (const Bytes& entry : aEntries)
    table.insert(table.end(), entry.begin(), entry.end());
  return table;
}

std::vector<std::string> GetXMLIDs(const std::vector<Bytes>& aEntries) {
  std::vector<std::string> ids;
  for (const ManifestEntry& entry : ReadManifest(Join(aEntries)))
    ids.push_back(entry.xmlID.ToUtf8());
  return ids;
}

TEST(GenCPManifest, Entry_IsReadAsTheStandardHasIt) {
  const std::vector<ManifestEntry> entries = ReadManifest(MakeEntry());

  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0], (ManifestEntry{0x80001000, 0x12345, "SchemaVersion.1.1@XMLVersion.2.3.516"}));
}

TEST(GenCPManifest, Hash_IsReadAsItStands) {
  Bytes entry = MakeEntry();
  Sha1 expected;
  for (std::size_t i = 0; i < expected.size(); ++i)
    expected[i] = entry[24 + i] = static_cast<std::uint8_t>(0xA0 + i);
  entry[44] = 0xFF; // What follows is reserved.

  const std::vector<ManifestEntry> entries = ReadManifest(entry);

  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].sha1, expected);
}

TEST(GenCPManifest, Sha1_IsThatOfTheStandard) {
  EXPECT_EQ(MakeSha1("abc"), (Sha1{0xA9, 0x99, 0x3E, 0x36, 0x47, 0x06, 0x81, 0x6A, 0xBA, 0x3E,
                                   0x25, 0x71, 0x78, 0x50, 0xC2, 0x6C, 0x9C, 0xD0, 0xD8, 0x9D}));
}

TEST(GenCPManifest, Entries_HaveTheBestFirst) {
  const Bytes older = MakeEntry({{0, 1}});
  const Bytes newest = MakeEntry({{3, 5}});
  const Bytes ofOldSchema = MakeEntry({{0, 9}, {5, 0}});

  EXPECT_EQ(GetXMLIDs({ofOldSchema, older, newest}),
            (std::vector<std::string>{"SchemaVersion.1.1@XMLVersion.2.3.517", "SchemaVersion.1.1@XMLVersion.1.3.516",
                                      "SchemaVersion.1.0@XMLVersion.9.3.516"}));
}

TEST(GenCPManifest, EntriesOfTheSameVersions_HaveIdentifiersOfTheirOwn) {
  EXPECT_EQ(
      GetXMLIDs({MakeEntry(), MakeEntry({{6, 0}}), MakeEntry({{0, 1}}), MakeEntry()}),
      (std::vector<std::string>{"SchemaVersion.1.1@XMLVersion.2.3.516", "SchemaVersion.1.1@XMLVersion.2.3.516@2",
                                "SchemaVersion.1.1@XMLVersion.2.3.516@3", "SchemaVersion.1.1@XMLVersion.1.3.516"}));
}

TEST(GenCPManifest, EntryThatCannotBeRead_IsLeftOut) {
  struct Case {
    const char* name;
    Bytes entry;
  };
  const std::array cases = {
      Case{"chunk data", MakeEntry({{7, 1}})},
      Case{"a newer minor schema", MakeEntry({{5, 2}})},
      Case{"a newer major schema", MakeEntry({{4, 2}})},
      Case{"an unknown file format", MakeEntry({{6, 8}})},
      Case{"no bytes", MakeEntry({{21, 0}, {22, 0}, {23, 0}})},
      Case{"more than 64 MiB", MakeEntry({{20, 4}})},
      Case{"a size beyond all memory", MakeEntry({{16, 0xFF}})},
      Case{"an end beyond the last address",
           MakeEntry({{8, 0xFF}, {9, 0xFF}, {10, 0xFF}, {11, 0xFF}, {12, 0xFF}, {13, 0xFF}, {14, 0xFF}})},
  };
  for (const Case& left : cases)
    EXPECT_EQ(GetXMLIDs({left.entry, MakeEntry({{0, 1}})}),
              std::vector<std::string>{"SchemaVersion.1.1@XMLVersion.1.3.516"})
        << left.name;
}

TEST(GenCPManifest, HalfAnEntryAtTheEnd_IsLeftOut) {
  Bytes table = Join({MakeEntry(), MakeEntry()});
  table.pop_back();

  EXPECT_EQ(ReadManifest(table).size(), 1u);
}

TEST(GenCPManifest, EmptyTable_HasNoEntries) {
  EXPECT_TRUE(ReadManifest({}).empty());
}

} // namespace
} // namespace krcamerabridge
