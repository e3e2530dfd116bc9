#include "describedcamera.h"
#include "registernodes.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// A register of a kind at a port of another name than the device's.
std::string MakeAt(const std::string& aPort, const std::string& aKind, const std::string& aName,
                   const std::string& aAddress, const std::string& aLength, const std::string& aFurther = {}) {
  return "<" + aKind + " Name=\"" + aName + "\">" + Address(aAddress) + Length(aLength) + AccessMode("RW") + "<pPort>" +
         aPort + "</pPort>" + aFurther + "</" + aKind + ">\n";
}

const std::string kChunkPort = "<Port Name=\"Chunk\"><ChunkID>A5</ChunkID></Port>";
const std::string kEventPort = "<Port Name=\"Event\"><EventID>9001</EventID></Port>";
const std::string kSwapPort = "<Port Name=\"Swap\"><SwapEndianess>Yes</SwapEndianess></Port>";

void GiveChunk(DescribedCamera& aCamera, std::vector<std::uint8_t> aBytes) {
  aCamera.array->SetChunkData(0xA5, aBytes.data(), aBytes.size());
}

} // namespace

TEST(PortNode, ReadOnly_LeavesRegistersReadable) {
  KrGenArrayOptions options;
  options.isReadOnly = true;
  DescribedCamera camera(MakeNode("IntReg", "A", Address("0") + Length("4")) +
                             MakeNode("IntReg", "B", Address("0") + Length("4"), AccessMode("WO")),
                         options);

  const KrResult result = camera.Integer("A").SetValue(1);

  EXPECT_EQ(camera.Integer("A").GetAccessMode(), KrGenAccessMode::ReadOnly);
  EXPECT_EQ(camera.Integer("B").GetAccessMode(), KrGenAccessMode::NotAvailable);
  EXPECT_EQ(result, KrResult::Code::AccessDenied);
  EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("for reading only"));
  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST(PortNode, ThatIsNotAvailable_TakesItsRegistersWithIt) {
  DescribedCamera camera("<Integer Name=\"IsThere\"><Value>0</Value></Integer>"
                         "<Port Name=\"Other\"><pIsAvailable>IsThere</pIsAvailable></Port>" +
                         MakeAt("Other", "IntReg", "A", "0", "4"));
  std::int64_t value = 0;
  EXPECT_EQ(camera.Integer("A").GetAccessMode(), KrGenAccessMode::NotAvailable);
  const KrResult result = camera.Integer("A").GetValue(value);
  EXPECT_EQ(result, KrResult::Code::AccessDenied);
  EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("\"IsThere\""));

  ASSERT_TRUE(camera.Integer("IsThere").SetValue(1).IsOK());

  EXPECT_EQ(camera.Integer("A").GetAccessMode(), KrGenAccessMode::ReadWrite);
}

TEST(PortNode, ThatIsNotImplemented_TakesItsRegistersWithIt) {
  DescribedCamera camera("<Integer Name=\"HasIt\"><Value>0</Value></Integer>"
                         "<Port Name=\"Other\"><pIsImplemented>HasIt</pIsImplemented></Port>" +
                         MakeAt("Other", "IntReg", "A", "0", "4"));

  EXPECT_EQ(camera.Integer("A").GetAccessMode(), KrGenAccessMode::NotImplemented);
}

TEST(PortNode, Closed_FailsEachAccess) {
  DescribedCamera camera(MakeNode("IntReg", "A", Address("0") + Length("4")));
  std::int64_t value = 0;
  ASSERT_TRUE(camera.Integer("A").GetValue(value).IsOK());
  camera.port.TakeRecords();

  camera.array->Close();

  EXPECT_EQ(camera.Integer("A").GetValue(value), KrResult::Code::ConnectionLost);
  EXPECT_EQ(camera.Integer("A").SetValue(1), KrResult::Code::ConnectionLost);
  EXPECT_THAT(camera.port.TakeRecords(), IsEmpty());
}

TEST(PortNode, SwapEndianess_TurnsWordsRoundInBothDirections) {
  struct Row {
    const char* name;
    const char* address;
    const char* length;
    std::vector<std::uint8_t> expected;
  };
  // The device has the bytes 0x00, 0x01 … at these addresses.
  const Row rows[] = {
      {"a word", "0", "4", {3, 2, 1, 0}},
      {"two words", "4", "8", {7, 6, 5, 4, 11, 10, 9, 8}},
      {"the first half of a word", "0", "2", {3, 2}},
      {"the second half of a word", "2", "2", {1, 0}},
      {"the middle of a word", "5", "2", {6, 5}},
      {"the end of one word and the beginning of the next", "3", "2", {0, 7}},
      {"parts around a word", "2", "7", {1, 0, 7, 6, 5, 4, 11}},
      {"more than short ones", "1", "18", {2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12, 19, 18, 17}},
  };
  for (const Row& row : rows) {
    DescribedCamera camera(kSwapPort + MakeAt("Swap", "Register", "Bytes", row.address, row.length));
    std::vector<std::uint8_t> memory(24);
    for (std::uint8_t i = 0; i < memory.size(); ++i)
      memory[i] = i;
    ASSERT_TRUE(camera.memory.Write(0, memory.data(), memory.size(), 1000).IsOK());

    EXPECT_EQ(Read(camera.Register("Bytes"), &KrGenRegister::GetValue), row.expected) << row.name;
    ASSERT_TRUE(camera.Register("Bytes").SetValue(row.expected).IsOK());

    EXPECT_EQ(camera.Peek(0, memory.size()), memory) << row.name;
  }
}

TEST(PortNode, SwapEndianess_OfOneNumber_WritesOnlyItsBytes) {
  DescribedCamera camera(kSwapPort + MakeAt("Swap", "IntReg", "Half", "2", "2", "<Endianess>BigEndian</Endianess>"));
  camera.Poke(0, {0xA, 0xB, 0xC, 0xD});

  ASSERT_TRUE(camera.Integer("Half").SetValue(0x0102).IsOK());

  EXPECT_THAT(camera.Peek(0, 4), ElementsAre(0x02, 0x01, 0xC, 0xD));
  EXPECT_THAT(camera.port.TakeRecords(), ElementsAre(RegisterAccessRecord{true, 0, 2}));
}

TEST(ChunkPort, WithoutData_IsNotAvailable) {
  DescribedCamera camera(kChunkPort + MakeAt("Chunk", "IntReg", "A", "0", "1"));
  std::int64_t value = 0;
  EXPECT_EQ(camera.Integer("A").GetAccessMode(), KrGenAccessMode::NotAvailable);
  EXPECT_EQ(camera.Integer("A").GetValue(value), KrResult::Code::AccessDenied);

  GiveChunk(camera, {5});
  EXPECT_EQ(camera.Integer("A").GetAccessMode(), KrGenAccessMode::ReadOnly);
  EXPECT_EQ(Read(camera.Integer("A"), &KrGenInteger::GetValue), 5);
  camera.array->SetChunkData(0xA5, nullptr, 0);

  EXPECT_EQ(camera.Integer("A").GetAccessMode(), KrGenAccessMode::NotAvailable);
  EXPECT_THAT(camera.port.TakeRecords(), IsEmpty());
}

TEST(ChunkPort, Data_AreThoseOfTheLastFrame) {
  DescribedCamera camera(kChunkPort + MakeAt("Chunk", "IntReg", "A", "1", "2"));
  for (std::uint8_t i = 0; i < 3; ++i) {
    GiveChunk(camera, {0, i, 1});

    EXPECT_EQ(Read(camera.Integer("A"), &KrGenInteger::GetValue), 0x100 + i);
  }
}

TEST(ChunkPort, Addresses_BelowZero_CountFromTheEnd) {
  DescribedCamera camera(kChunkPort + MakeAt("Chunk", "IntReg", "Last", "-1", "1") +
                         MakeAt("Chunk", "IntReg", "Before", "-3", "2") + MakeAt("Chunk", "IntReg", "Far", "-5", "1"));
  std::int64_t value = 0;

  GiveChunk(camera, {1, 2, 3, 4});
  EXPECT_EQ(Read(camera.Integer("Last"), &KrGenInteger::GetValue), 4);
  EXPECT_EQ(Read(camera.Integer("Before"), &KrGenInteger::GetValue), 0x302);
  EXPECT_EQ(camera.Integer("Far").GetValue(value), KrResult::Code::OutOfRange);
  GiveChunk(camera, {1, 2, 3, 4, 5, 6});

  EXPECT_EQ(Read(camera.Integer("Last"), &KrGenInteger::GetValue), 6);
  EXPECT_EQ(Read(camera.Integer("Far"), &KrGenInteger::GetValue), 2);
}

TEST(ChunkPort, PseudoRegisters_AreBaseAddressAndLengthInEitherByteOrder) {
  for (const char* byteOrder : {"LittleEndian", "BigEndian"}) {
    const std::string further = std::string("<Endianess>") + byteOrder + "</Endianess>";
    DescribedCamera camera(kChunkPort + MakeAt("Chunk", "IntReg", "Base", "0x7FFFFFFFFFFFFFFF", "8", further) +
                           MakeAt("Chunk", "IntReg", "Size", "0x7FFFFFFFFFFFFFF0", "8", further));

    GiveChunk(camera, std::vector<std::uint8_t>(300));

    EXPECT_EQ(Read(camera.Integer("Base"), &KrGenInteger::GetValue), 0) << byteOrder;
    EXPECT_EQ(Read(camera.Integer("Size"), &KrGenInteger::GetValue), 300) << byteOrder;
    EXPECT_EQ(camera.Integer("Size").SetValue(1), KrResult::Code::AccessDenied) << byteOrder;
  }
}

TEST(ChunkPort, Registers_BeyondTheData_FailWithTheirNumber) {
  for (const char* address : {"3", "4", "0x7FFFFFFFFFFFFFFD", "-0x10"}) {
    DescribedCamera camera(kChunkPort + MakeAt("Chunk", "IntReg", "A", address, "2"));
    std::int64_t value = 0;

    GiveChunk(camera, {1, 2, 3, 4});
    const KrResult result = camera.Integer("A").GetValue(value);

    EXPECT_FALSE(result.IsOK()) << address;
    EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("\"A\"")) << address;
  }
}

TEST(ChunkPort, WritingToIt_IsRefused) {
  DescribedCamera camera(kChunkPort + MakeAt("Chunk", "IntReg", "A", "0", "1"));
  GiveChunk(camera, {5});

  const KrResult result = camera.Integer("A").SetValue(1);

  EXPECT_EQ(result, KrResult::Code::AccessDenied);
  EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("frame"));
  EXPECT_EQ(Read(camera.Integer("A"), &KrGenInteger::GetValue), 5);
}

TEST(ChunkPort, IdFromANode_IsThatNodesValueAtTheMoment) {
  DescribedCamera camera("<Integer Name=\"Id\"><Value>0xA4</Value></Integer>"
                         "<Port Name=\"Chunk\"><pChunkID>Id</pChunkID></Port>" +
                         MakeAt("Chunk", "IntReg", "A", "0", "1"));
  GiveChunk(camera, {5});
  EXPECT_EQ(camera.Integer("A").GetAccessMode(), KrGenAccessMode::NotAvailable);

  ASSERT_TRUE(camera.Integer("Id").SetValue(0xA5).IsOK());
  GiveChunk(camera, {5});

  EXPECT_EQ(Read(camera.Integer("A"), &KrGenInteger::GetValue), 5);
}

TEST(ChunkPort, IdFromAText_IsHexadecimal) {
  DescribedCamera camera(MakeNode("StringReg", "Id", Address("0x100") + Length("4")) +
                         "<Port Name=\"Chunk\"><pChunkID>Id</pChunkID></Port>" +
                         MakeAt("Chunk", "IntReg", "A", "0", "1"));
  camera.Poke(0x100, {'a', '5'});

  GiveChunk(camera, {5});

  EXPECT_EQ(Read(camera.Integer("A"), &KrGenInteger::GetValue), 5);
}

TEST(ChunkPort, IdThatIsNone_IsAFault) {
  DescribedCamera camera("<Port Name=\"Chunk\"><ChunkID>first</ChunkID></Port>");
  KrStringList faults;

  ASSERT_TRUE(camera.array->GetFaults(faults).IsOK());

  EXPECT_EQ(faults.GetCount(), 1U);
}

TEST(ChunkPort, SwapEndianess_TurnsItsWordsRound) {
  DescribedCamera camera("<Port Name=\"Chunk\"><ChunkID>A5</ChunkID><SwapEndianess>Yes</SwapEndianess></Port>" +
                         MakeAt("Chunk", "IntReg", "A", "0", "4"));

  GiveChunk(camera, {1, 2, 3, 4});

  EXPECT_EQ(Read(camera.Integer("A"), &KrGenInteger::GetValue), 0x01020304);
}

TEST(ChunkPort, SwapEndianess_OfPartsOfWords_FindsThemAtTheOtherEndOfTheirWords) {
  struct {
    const char* what;
    const char* address;
    const char* length;
    std::vector<std::uint8_t> bytes;
  } const kRows[] = {
      {"the first byte of a word", "0", "1", {4}},    {"the second half of a word", "6", "2", {6, 5}},
      {"parts of two words", "2", "4", {2, 1, 8, 7}}, {"parts around a word", "3", "6", {1, 8, 7, 6, 5, 9}},
      {"counted from the end", "-6", "2", {8, 7}},    {"behind the last whole word", "8", "2", {9, 10}},
  };

  for (const auto& row : kRows) {
    DescribedCamera camera("<Port Name=\"Chunk\"><ChunkID>A5</ChunkID><SwapEndianess>Yes</SwapEndianess></Port>" +
                           MakeAt("Chunk", "Register", "Bytes", row.address, row.length));

    GiveChunk(camera, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10});

    EXPECT_EQ(Read(camera.Register("Bytes"), &KrGenRegister::GetValue), row.bytes) << row.what;
  }
}

TEST(EventPort, SwapEndianess_OfPartsOfWords_FindsThemAtTheOtherEndOfTheirWords) {
  DescribedCamera camera("<Port Name=\"Event\"><EventID>9001</EventID><SwapEndianess>Yes</SwapEndianess></Port>" +
                         MakeAt("Event", "IntReg", "Half", "2", "2", "<Endianess>BigEndian</Endianess>"));
  const std::uint8_t data[] = {1, 2, 3, 4};

  camera.array->DeliverEvent(0x9001, data, sizeof data);

  EXPECT_EQ(Read(camera.Integer("Half"), &KrGenInteger::GetValue), 0x0201);
}

TEST(EventPort, Registers_ReadTheDataOfTheLastEvent) {
  DescribedCamera camera(kEventPort + MakeAt("Event", "IntReg", "A", "2", "2"));
  const std::uint8_t first[] = {0, 0, 1, 2};
  const std::uint8_t second[] = {0, 0, 3, 4};
  EXPECT_EQ(camera.Integer("A").GetAccessMode(), KrGenAccessMode::NotAvailable);

  camera.array->DeliverEvent(0x9001, first, sizeof first);
  EXPECT_EQ(Read(camera.Integer("A"), &KrGenInteger::GetValue), 0x201);
  camera.array->DeliverEvent(0x9002, second, sizeof second);
  EXPECT_EQ(Read(camera.Integer("A"), &KrGenInteger::GetValue), 0x201);
  camera.array->DeliverEvent(0x9001, second, sizeof second);

  EXPECT_EQ(Read(camera.Integer("A"), &KrGenInteger::GetValue), 0x403);
  EXPECT_EQ(camera.Integer("A").GetAccessMode(), KrGenAccessMode::ReadOnly);
}

TEST(EventPort, EventWithoutData_LeavesNothingToRead) {
  DescribedCamera camera(kEventPort + MakeAt("Event", "IntReg", "A", "0", "2"));
  std::int64_t value = 0;

  camera.array->DeliverEvent(0x9001, nullptr, 0);

  EXPECT_EQ(camera.Integer("A").GetValue(value), KrResult::Code::OutOfRange);
}

TEST(EventPort, AddressesBelowZero_AreAFault) {
  DescribedCamera camera(kEventPort + MakeAt("Event", "IntReg", "A", "-2", "2"));
  std::int64_t value = 0;

  EXPECT_EQ(camera.Integer("A").GetValue(value), KrResult::Code::BadData);
}

TEST(EventPort, NodeWithTheEventsId_IsReadAgainFromTheDevice) {
  DescribedCamera camera(
      MakeNode("IntReg", "A", Address("0x100") + Length("1"), AccessMode("RO") + "<EventID>9001</EventID>"));
  EXPECT_EQ(Read(camera.Integer("A"), &KrGenInteger::GetValue), 0);
  camera.Poke(0x100, {1});

  camera.array->DeliverEvent(0x9001, nullptr, 0);

  EXPECT_EQ(Read(camera.Integer("A"), &KrGenInteger::GetValue), 1);
}
