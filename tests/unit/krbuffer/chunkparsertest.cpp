#include "chunkparser.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

using krbuffer::ChunkParser;
using Bytes = std::vector<std::uint8_t>;

namespace {

struct ChunkRow {
  std::uint32_t id;
  std::size_t offset;
  std::size_t length;

  friend bool operator==(const ChunkRow&, const ChunkRow&) = default;
};

void PrintTo(const ChunkRow& aRow, std::ostream* aStream) {
  *aStream << aRow.id << " at " << aRow.offset << ", " << aRow.length << " bytes";
}

struct Parsed {
  KrResult result;
  std::vector<ChunkRow> chunks;
};

Parsed Parse(const Bytes& aBytes, KrByteOrder aOrder, std::size_t aPlainBytes = 0) {
  std::vector<KrChunk> chunks;
  Parsed parsed;
  parsed.result = ChunkParser(aBytes, aOrder, aPlainBytes).Parse(chunks);
  for (const KrChunk& chunk : chunks)
    parsed.chunks.push_back({chunk.id, chunk.offset, chunk.length});
  return parsed;
}

struct BadRow {
  std::string name;
  Bytes bytes;
  std::string named; ///< What the description names.
};

void PrintTo(const BadRow& aRow, std::ostream* aStream) {
  *aStream << aRow.name;
}

const std::vector<BadRow> kBad = {
    {"OneByte", {0}, "ends at byte 1 of 1"},
    {"SevenBytes", {0, 0, 0, 0, 0, 0, 0}, "8 bytes"},
    {"LengthOneTooLarge", {0xAA, 0, 0, 0, 5, 0, 0, 0, 2}, "states 2 bytes of data, but only 1"},
    {"LargestLength", {0xAA, 0, 0, 0, 5, 0xFF, 0xFF, 0xFF, 0xFF}, "states 4294967295 bytes"},
    {"RestBeforeTheFirst", {1, 2, 3, 0, 0, 0, 5, 0, 0, 0, 0}, "ends at byte 3 of 11"},
};

class EveryContradiction : public testing::TestWithParam<BadRow> {};

} // namespace

TEST(ChunkParser, NoBytes_HoldNoChunks) {
  const Parsed parsed = Parse({}, KrByteOrder::BigEndian);

  EXPECT_TRUE(parsed.result.IsOK());
  EXPECT_TRUE(parsed.chunks.empty());
}

TEST(ChunkParser, BigEndianChunks_AreFoundInTheOrderOfMemory) {
  const Bytes bytes = {0xA0, 0xA1, 0xA2,                   //
                       0x00, 0x00, 0x00, 0x01, 0, 0, 0, 3, //
                       0xB0,                               //
                       0x12, 0x34, 0x56, 0x78, 0, 0, 0, 1, //
                       0x00, 0x00, 0x10, 0x02, 0, 0, 0, 0};

  const Parsed parsed = Parse(bytes, KrByteOrder::BigEndian);

  ASSERT_TRUE(parsed.result.IsOK());
  EXPECT_EQ(parsed.chunks, (std::vector<ChunkRow>{{1, 0, 3}, {0x12345678, 11, 1}, {0x1002, 20, 0}}));
}

TEST(ChunkParser, LittleEndianChunks_AreFoundInTheOrderOfMemory) {
  const Bytes bytes = {0xA0, 0xA1, 0xA2,                   //
                       0x01, 0x00, 0x00, 0x00, 3, 0, 0, 0, //
                       0xB0,                               //
                       0x78, 0x56, 0x34, 0x12, 1, 0, 0, 0};

  const Parsed parsed = Parse(bytes, KrByteOrder::LittleEndian);

  ASSERT_TRUE(parsed.result.IsOK());
  EXPECT_EQ(parsed.chunks, (std::vector<ChunkRow>{{1, 0, 3}, {0x12345678, 11, 1}}));
}

TEST(ChunkParser, PlainImageBeforeTheChunks_EndsTheWalk) {
  const Bytes bytes = {0xA0, 0xA1, 0xA2, 0xB0, 0, 0, 0, 9, 0, 0, 0, 1};

  const Parsed parsed = Parse(bytes, KrByteOrder::BigEndian, 3);

  ASSERT_TRUE(parsed.result.IsOK());
  EXPECT_EQ(parsed.chunks, (std::vector<ChunkRow>{{9, 3, 1}}));
}

TEST(ChunkParser, ImageThatIsAChunkItself_IsTheFirstChunk) {
  const Bytes bytes = {0xA0, 0xA1, 0xA2, 0, 0, 0, 7, 0, 0, 0, 3, 0xB0, 0, 0, 0, 9, 0, 0, 0, 1};

  const Parsed parsed = Parse(bytes, KrByteOrder::BigEndian, 3);

  ASSERT_TRUE(parsed.result.IsOK());
  EXPECT_EQ(parsed.chunks, (std::vector<ChunkRow>{{7, 0, 3}, {9, 11, 1}}));
}

TEST(ChunkParser, MostChunks_AreFoundAndOneMoreIsBadData) {
  const Bytes most(8 * ChunkParser::kMostChunks);
  const Bytes oneMore(8 * (ChunkParser::kMostChunks + 1));

  EXPECT_EQ(Parse(most, KrByteOrder::LittleEndian).chunks.size(), ChunkParser::kMostChunks);
  const Parsed refused = Parse(oneMore, KrByteOrder::LittleEndian);

  EXPECT_EQ(refused.result.GetCode(), KrResult::Code::BadData);
  EXPECT_NE(refused.result.GetDescription().ToUtf8().find("4096"), std::string::npos);
  EXPECT_TRUE(refused.chunks.empty());
}

TEST_P(EveryContradiction, IsBadDataThatIsNamed) {
  const Parsed parsed = Parse(GetParam().bytes, KrByteOrder::BigEndian);

  EXPECT_EQ(parsed.result.GetCode(), KrResult::Code::BadData);
  EXPECT_NE(parsed.result.GetDescription().ToUtf8().find(GetParam().named), std::string::npos)
      << parsed.result.GetDescription().CStr();
  EXPECT_TRUE(parsed.chunks.empty());
}

INSTANTIATE_TEST_SUITE_P(ChunkParser, EveryContradiction, testing::ValuesIn(kBad),
                         [](const testing::TestParamInfo<BadRow>& aInfo) { return aInfo.param.name; });
