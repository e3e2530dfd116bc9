#include "describedcamera.h"
#include "registernodes.h"

#include <gmock/gmock.h>

#include <limits>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

std::string MakeInteger(const std::string& aLength, const std::string& aFurther) {
  return MakeNode("IntReg", "Number", Address("0x100") + Length(aLength), AccessMode("RW") + aFurther);
}

std::string MakeMasked(const std::string& aLength, const std::string& aFurther, const std::string& aMode = "RW") {
  return MakeNode("MaskedIntReg", "Bits", Address("0x100") + Length(aLength), AccessMode(aMode) + aFurther);
}

const std::string kLittle = "<Endianess>LittleEndian</Endianess>";
const std::string kBig = "<Endianess>BigEndian</Endianess>";
const std::string kSigned = "<Sign>Signed</Sign>";

} // namespace

TEST(IntegerRegister, Value_HasLengthSignAndByteOrderOfTheDescription) {
  struct Row {
    const char* name;
    const char* length;
    std::string further;
    std::int64_t expected;
  };
  const Row rows[] = {
      {"one byte", "1", kLittle, 0x91},
      {"one byte with sign", "1", kSigned, -0x6F},
      {"two bytes, little", "2", kLittle, 0xA291},
      {"two bytes, big", "2", kBig, 0x91A2},
      {"two bytes, big, with sign", "2", kBig + kSigned, 0x91A2 - 0x10000},
      {"three bytes, little", "3", kLittle, 0xB3A291},
      {"three bytes, big, with sign", "3", kBig + kSigned, 0x91A2B3 - 0x1000000},
      {"four bytes, no byte order", "4", "", 0xC4B3A291},
      {"four bytes, big", "4", kBig, 0x91A2B3C4},
      {"eight bytes, big", "8", kBig, std::int64_t(0x91A2B3C4D5E6F708)},
      {"eight bytes, little, with sign", "8", kLittle + kSigned, 0x08F7E6D5C4B3A291},
  };
  for (const Row& row : rows) {
    DescribedCamera camera(MakeInteger(row.length, row.further));
    camera.Poke(0x100, {0x91, 0xA2, 0xB3, 0xC4, 0xD5, 0xE6, 0xF7, 0x08});

    EXPECT_EQ(Read(camera.Integer("Number"), &KrGenInteger::GetValue), row.expected) << row.name;
  }
}

TEST(IntegerRegister, Value_ThatIsSet_IsWrittenAsItIsRead) {
  for (const std::string& further : {kLittle, kBig, kLittle + kSigned, kBig + kSigned}) {
    for (const char* length : {"1", "2", "3", "5", "8"}) {
      DescribedCamera camera(MakeInteger(length, further));

      ASSERT_TRUE(camera.Integer("Number").SetValue(0x5A).IsOK());
      camera.array->InvalidateCache();

      EXPECT_EQ(Read(camera.Integer("Number"), &KrGenInteger::GetValue), 0x5A) << length << further;
    }
  }
}

TEST(IntegerRegister, Limits_AreThoseOfLengthBitsAndSign) {
  struct Row {
    const char* name;
    std::string node;
    std::int64_t minimum;
    std::int64_t maximum;
  };
  const Row rows[] = {
      {"byte", MakeInteger("1", ""), 0, 255},
      {"byte with sign", MakeInteger("1", kSigned), -128, 127},
      {"three bytes", MakeInteger("3", ""), 0, 0xFFFFFF},
      {"eight bytes", MakeInteger("8", ""), 0, kLargest},
      {"eight bytes with sign", MakeInteger("8", kSigned), kSmallest, kLargest},
      {"five bits", MakeMasked("4", "<LSB>3</LSB><MSB>7</MSB>"), 0, 31},
      {"five bits with sign", MakeMasked("4", "<LSB>3</LSB><MSB>7</MSB>" + kSigned), -16, 15},
      {"a bit", MakeMasked("4", "<Bit>3</Bit>"), 0, 1},
  };
  for (const Row& row : rows) {
    DescribedCamera camera(row.node);
    const char* const name = camera.array->Get("Bits") ? "Bits" : "Number";

    EXPECT_EQ(Read(camera.Integer(name), &KrGenInteger::GetMin), row.minimum) << row.name;
    EXPECT_EQ(Read(camera.Integer(name), &KrGenInteger::GetMax), row.maximum) << row.name;
    EXPECT_EQ(Read(camera.Integer(name), &KrGenInteger::GetIncrement), 1) << row.name;
    EXPECT_EQ(camera.port.CountReads(), 0U) << row.name;
  }
}

TEST(IntegerRegister, Value_OutsideTheLimits_IsRefusedUnwritten) {
  DescribedCamera camera(MakeInteger("1", ""));

  EXPECT_EQ(camera.Integer("Number").SetValue(256), KrResult::Code::OutOfRange);
  EXPECT_EQ(camera.Integer("Number").SetValue(-1), KrResult::Code::OutOfRange);

  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST(IntegerRegister, Bits_AreNumberedByByteOrder) {
  struct Row {
    const char* name;
    std::string further;
    std::int64_t expected;
  };
  // The word is 0x12345678 in either byte order.
  const Row rows[] = {
      {"little, lowest byte", kLittle + "<LSB>0</LSB><MSB>7</MSB>", 0x78},
      {"little, highest byte", kLittle + "<LSB>24</LSB><MSB>31</MSB>", 0x12},
      {"little, swapped", kLittle + "<LSB>31</LSB><MSB>24</MSB>", 0x12},
      {"little, bit that is set", kLittle + "<Bit>3</Bit>", 1},
      {"little, bit that is not set", kLittle + "<Bit>0</Bit>", 0},
      {"big, lowest byte", kBig + "<LSB>31</LSB><MSB>24</MSB>", 0x78},
      {"big, highest byte", kBig + "<LSB>7</LSB><MSB>0</MSB>", 0x12},
      {"big, swapped", kBig + "<LSB>0</LSB><MSB>7</MSB>", 0x12},
      {"big, bit that is set", kBig + "<Bit>28</Bit>", 1},
      {"big, bit that is not set", kBig + "<Bit>31</Bit>", 0},
      {"all bits", kLittle + "<LSB>0</LSB><MSB>31</MSB>", 0x12345678},
      {"no bits named", kLittle, 0x12345678},
      {"nibble with sign that is set", kLittle + kSigned + "<LSB>9</LSB><MSB>10</MSB>", -1},
      {"nibble with sign that is not set", kLittle + kSigned + "<LSB>4</LSB><MSB>7</MSB>", 7},
      {"hexadecimal numbers", kLittle + "<LSB>0x18</LSB><MSB>0x1F</MSB>", 0x12},
  };
  for (const Row& row : rows) {
    DescribedCamera camera(MakeMasked("4", row.further));
    if (row.further.starts_with(kBig))
      camera.Poke(0x100, {0x12, 0x34, 0x56, 0x78});
    else
      camera.Poke(0x100, {0x78, 0x56, 0x34, 0x12});

    EXPECT_EQ(Read(camera.Integer("Bits"), &KrGenInteger::GetValue), row.expected) << row.name;
  }
}

TEST(IntegerRegister, Bits_ThatAreSet_LeaveTheOthersAsTheyAre) {
  DescribedCamera camera(MakeMasked("4", kBig + "<LSB>15</LSB><MSB>8</MSB>"));
  camera.Poke(0x100, {0x12, 0x34, 0x56, 0x78});

  ASSERT_TRUE(camera.Integer("Bits").SetValue(0xAB).IsOK());

  EXPECT_THAT(camera.Peek(0x100, 4), ElementsAre(0x12, 0xAB, 0x56, 0x78));
  EXPECT_THAT(camera.port.TakeRecords(),
              ElementsAre(RegisterAccessRecord{false, 0x100, 4}, RegisterAccessRecord{true, 0x100, 4}));
}

TEST(IntegerRegister, Bits_OfARegisterThatIsCached_AreSetWithoutReading) {
  DescribedCamera camera(MakeMasked("4", "<LSB>8</LSB><MSB>15</MSB>"));
  Read(camera.Integer("Bits"), &KrGenInteger::GetValue);
  camera.port.TakeRecords();

  ASSERT_TRUE(camera.Integer("Bits").SetValue(1).IsOK());
  ASSERT_TRUE(camera.Integer("Bits").SetValue(2).IsOK());

  EXPECT_EQ(camera.port.CountReads(), 0U);
  EXPECT_EQ(camera.port.CountWrites(), 2U);
}

TEST(IntegerRegister, Bits_OfARegisterThatIsNotToBeCached_AreReadBeforeEachWrite) {
  DescribedCamera camera(MakeMasked("1", "<LSB>4</LSB><MSB>7</MSB><Cachable>NoCache</Cachable>"));
  camera.Poke(0x100, {0x05});
  ASSERT_TRUE(camera.Integer("Bits").SetValue(1).IsOK());
  camera.Poke(0x100, {0x16});

  ASSERT_TRUE(camera.Integer("Bits").SetValue(2).IsOK());

  EXPECT_THAT(camera.Peek(0x100, 1), ElementsAre(0x26));
}

TEST(IntegerRegister, Bits_AroundThoseThatFailToBeRead_AreNotWritten) {
  DescribedCamera camera(MakeMasked("4", "<Bit>0</Bit>"));
  camera.port.SetFault([](const RegisterAccessRecord& aAccess) {
    return aAccess.isWrite ? KrResult() : KrResult(KrResult::Code::ProtocolError, "The device refuses.");
  });

  const KrResult result = camera.Integer("Bits").SetValue(1);

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_EQ(camera.port.CountWrites(), 0U);
}

TEST(IntegerRegister, BitsOfARegisterThatCannotBeRead_AreWrittenBesideThoseWrittenBefore) {
  DescribedCamera camera(
      MakeNode("MaskedIntReg", "Low", Address("0x100") + Length("1"), AccessMode("WO") + "<LSB>0</LSB><MSB>3</MSB>") +
      MakeNode("MaskedIntReg", "High", Address("0x100") + Length("1"), AccessMode("WO") + "<LSB>4</LSB><MSB>7</MSB>"));
  camera.Poke(0x100, {0xFF});

  ASSERT_TRUE(camera.Integer("Low").SetValue(5).IsOK());
  EXPECT_THAT(camera.Peek(0x100, 1), ElementsAre(0x05));
  camera.array->InvalidateCache();
  ASSERT_TRUE(camera.Integer("High").SetValue(6).IsOK());

  EXPECT_THAT(camera.Peek(0x100, 1), ElementsAre(0x65));
  EXPECT_EQ(camera.port.CountReads(), 0U);
}

TEST(IntegerRegister, BitThatCannotBeRead_BesideOthersThatCan_LeavesTheseAsTheyAre) {
  DescribedCamera camera("<StructReg>" + Address("0x100") + Length("1") +
                         "<AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess>"
                         "<StructEntry Name=\"Level\"><LSB>0</LSB><MSB>3</MSB></StructEntry>"
                         "<StructEntry Name=\"Reset\"><AccessMode>WO</AccessMode><Bit>7</Bit></StructEntry>"
                         "</StructReg>");
  camera.Poke(0x100, {0x0A});

  ASSERT_TRUE(camera.Integer("Reset").SetValue(1).IsOK());

  EXPECT_THAT(camera.Peek(0x100, 1), ElementsAre(0x8A));
}

TEST(IntegerRegister, EntriesOfAStruct_ShareOneReading) {
  std::string entries;
  for (int bit = 0; bit < 20; ++bit)
    entries +=
        "<StructEntry Name=\"Bit" + std::to_string(bit) + "\"><Bit>" + std::to_string(bit) + "</Bit></StructEntry>";
  DescribedCamera camera("<StructReg>" + Address("0x100") + Length("4") +
                         "<AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess>" +
                         entries + "</StructReg>");
  camera.Poke(0x100, {0x55, 0x55, 0x55, 0x55});

  for (int bit = 0; bit < 20; ++bit)
    EXPECT_EQ(Read(camera.Integer(("Bit" + std::to_string(bit)).c_str()), &KrGenInteger::GetValue), 1 - bit % 2);
  EXPECT_EQ(camera.port.CountReads(), 1U);
  ASSERT_TRUE(camera.Integer("Bit1").SetValue(1).IsOK());

  EXPECT_EQ(Read(camera.Integer("Bit1"), &KrGenInteger::GetValue), 1);
  EXPECT_EQ(Read(camera.Integer("Bit2"), &KrGenInteger::GetValue), 1);
  EXPECT_EQ(camera.port.CountReads(), 1U);
  EXPECT_EQ(camera.port.CountWrites(), 1U);
}

TEST(IntegerRegister, BitsOutsideTheRegister_AreAFaultWithTheirLine) {
  struct Row {
    const char* name;
    std::string further;
  };
  const Row rows[] = {
      {"bit behind", "<Bit>32</Bit>"},
      {"negative bit", "<Bit>-1</Bit>"},
      {"highest bit behind", "<LSB>0</LSB><MSB>32</MSB>"},
      {"far behind", "<LSB>0</LSB><MSB>0x7FFFFFFFFFFFFFFF</MSB>"},
      {"far below", "<LSB>0x8000000000000000</LSB><MSB>0</MSB>"},
      {"no number", "<Bit>one</Bit>"},
      {"half of a range", "<LSB>1</LSB>"},
  };
  for (const Row& row : rows) {
    for (const std::string& byteOrder : {kLittle, kBig}) {
      DescribedCamera camera(MakeMasked("4", byteOrder + row.further));
      std::int64_t value = 0;

      const KrResult result = camera.Integer("Bits").GetValue(value);

      EXPECT_EQ(result, KrResult::Code::BadData) << row.name;
      EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("\"Bits\", line 7")) << row.name;
      EXPECT_EQ(camera.Integer("Bits").SetValue(0), KrResult::Code::BadData) << row.name;
      EXPECT_EQ(camera.port.CountWrites(), 0U);
    }
  }
}

TEST(IntegerRegister, LengthBeyondEightBytes_IsAFault) {
  for (const char* length : {"0", "9", "-4", "0x10000000000"}) {
    DescribedCamera camera(MakeInteger(length, ""));
    std::int64_t value = 0;
    KrStringList faults;

    EXPECT_EQ(camera.Integer("Number").GetValue(value), KrResult::Code::BadData) << length;
    EXPECT_EQ(camera.Integer("Number").GetMax(value), KrResult::Code::BadData) << length;
    EXPECT_EQ(camera.Integer("Number").SetValue(1), KrResult::Code::BadData) << length;
    EXPECT_EQ(camera.Integer("Number").GetAccessMode(), KrGenAccessMode::NotAvailable) << length;
    ASSERT_TRUE(camera.array->GetFaults(faults).IsOK());
    EXPECT_EQ(faults.GetCount(), 1U) << length;
    EXPECT_TRUE(camera.port.TakeRecords().empty());
  }
}

TEST(IntegerRegister, LengthFromANode_ChangesLimitsAndBytes) {
  DescribedCamera camera("<Integer Name=\"Bytes\"><Value>1</Value></Integer>" +
                         MakeNode("IntReg", "Number", Address("0x100") + "<pLength>Bytes</pLength>"));
  camera.Poke(0x100, {1, 2, 3, 4});
  EXPECT_EQ(Read(camera.Integer("Number"), &KrGenInteger::GetValue), 1);
  EXPECT_EQ(Read(camera.Integer("Number"), &KrGenInteger::GetMax), 255);

  ASSERT_TRUE(camera.Integer("Bytes").SetValue(2).IsOK());

  EXPECT_EQ(Read(camera.Integer("Number"), &KrGenInteger::GetValue), 0x201);
  EXPECT_EQ(Read(camera.Integer("Number"), &KrGenInteger::GetMax), 0xFFFF);
  std::int64_t value = 0;
  for (const std::int64_t length : {std::int64_t{0}, std::int64_t{9}, std::int64_t{-1}, std::int64_t{1} << 40}) {
    ASSERT_TRUE(camera.Integer("Bytes").SetValue(length).IsOK());
    EXPECT_EQ(camera.Integer("Number").GetValue(value), KrResult::Code::BadData) << length;
  }
}

TEST(IntegerRegister, UnitAndRepresentation_AreThoseOfTheDescription) {
  DescribedCamera camera(MakeInteger("4", "<Unit>us</Unit><Representation>HexNumber</Representation>") +
                         MakeNode("IntReg", "Plain", Address("0") + Length("1")));

  EXPECT_STREQ(Read(camera.Integer("Number"), &KrGenInteger::GetUnit).CStr(), "us");
  EXPECT_EQ(Read(camera.Integer("Number"), &KrGenInteger::GetRepresentation), KrGenRepresentation::HexNumber);
  EXPECT_EQ(Read(camera.Integer("Plain"), &KrGenInteger::GetRepresentation), KrGenRepresentation::PureNumber);
  EXPECT_EQ(camera.Integer("Number").GetType(), KrGenType::Integer);
}

TEST(IntegerRegister, WordThatIsNone_IsAFaultAndTheDefaultHolds) {
  DescribedCamera camera(MakeInteger("2", "<Endianess>Middle</Endianess><Sign>Sometimes</Sign>"));
  camera.Poke(0x100, {0xFF, 0xFE});
  KrStringList faults;

  EXPECT_EQ(Read(camera.Integer("Number"), &KrGenInteger::GetValue), 0xFEFF);
  ASSERT_TRUE(camera.array->GetFaults(faults).IsOK());
  EXPECT_EQ(faults.GetCount(), 2U);
}
