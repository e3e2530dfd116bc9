#include "describedcamera.h"
#include "registernodes.h"

#include <gmock/gmock.h>

#include <limits>

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// An index that can be set, and one whose register is not available.
const std::string kIndices = "<Integer Name=\"Index\"><Value>3</Value></Integer>"
                             "<Integer Name=\"Step\"><Value>0x20</Value></Integer>"
                             "<IntReg Name=\"Closed\"><Address>0</Address><Length>4</Length>"
                             "<AccessMode>WO</AccessMode><pPort>Device</pPort></IntReg>\n";

std::string MakeBytes(const std::string& aPlace, const std::string& aFurther = AccessMode("RW")) {
  return MakeNode("Register", "Bytes", aPlace, aFurther);
}

KrResult ReadBytes(DescribedCamera& aCamera) {
  std::vector<std::uint8_t> bytes;
  return aCamera.Register("Bytes").GetValue(bytes);
}

} // namespace

TEST(RegisterNode, Bytes_AreThoseOfTheDevice) {
  DescribedCamera camera(MakeBytes(Address("0x100") + Length("12")));
  camera.Poke(0x100, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
  KrGenRegister& bytes = camera.Register("Bytes");

  EXPECT_THAT(Read(bytes, &KrGenRegister::GetValue), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12));
  EXPECT_EQ(bytes.GetType(), KrGenType::Register);
  EXPECT_EQ(Read(bytes, &KrGenRegister::GetAddress), 0x100);
  EXPECT_EQ(Read(bytes, &KrGenRegister::GetLength), 12);
}

TEST(RegisterNode, Bytes_AreWrittenWhereTheyAreAsManyAsTheLength) {
  DescribedCamera camera(MakeBytes(Address("0x100") + Length("3")));

  EXPECT_EQ(camera.Register("Bytes").SetValue({1, 2}), KrResult::Code::InvalidInput);
  EXPECT_EQ(camera.Register("Bytes").SetValue({1, 2, 3, 4}), KrResult::Code::InvalidInput);
  EXPECT_EQ(camera.port.CountWrites(), 0U);
  ASSERT_TRUE(camera.Register("Bytes").SetValue({1, 2, 3}).IsOK());

  EXPECT_THAT(camera.Peek(0x100, 4), ElementsAre(1, 2, 3, 0));
}

TEST(RegisterNode, Address_IsTheSumOfAllThatTheDescriptionNames) {
  struct Row {
    const char* name;
    std::string place;
    std::int64_t expected;
  };
  const Row rows[] = {
      {"one number", Address("0x100"), 0x100},
      {"two numbers", Address("0x100") + Address("7"), 0x107},
      {"a node", "<pAddress>Index</pAddress>", 3},
      {"a node and a number", Address("0x100") + "<pAddress>Index</pAddress>", 0x103},
      {"a node twice", "<pAddress>Step</pAddress><pAddress>Step</pAddress>", 0x40},
      {"an index with an offset", Address("0x100") + "<pIndex Offset=\"0x10\">Index</pIndex>", 0x130},
      {"an index with an offset from a node", Address("0x100") + "<pIndex pOffset=\"Step\">Index</pIndex>", 0x160},
      {"an index by the length", Address("0x100") + "<pIndex>Index</pIndex>", 0x10C},
      {"a negative offset", Address("0x100") + "<pIndex Offset=\"-4\">Index</pIndex>", 0xF4},
      {"a formula",
       Address("0x100") + "<IntSwissKnife Name=\"Knife\"><pVariable Name=\"I\">Index</pVariable>"
                          "<Formula>I * I</Formula></IntSwissKnife>",
       0x109},
      {"everything",
       Address("0x1000") + "<pAddress>Index</pAddress><pIndex Offset=\"0x100\">Index</pIndex><pIndex>Index</pIndex>" +
           "<IntSwissKnife Name=\"Knife\"><Formula>5</Formula></IntSwissKnife>" + Address("0x10"),
       0x1000 + 3 + 0x300 + 12 + 5 + 0x10},
      {"a number below 0 that a node makes up for", Address("-2") + "<pAddress>Index</pAddress>", 1},
  };
  for (const Row& row : rows) {
    DescribedCamera camera(kIndices + MakeBytes(row.place + Length("4")));

    EXPECT_EQ(Read(camera.Register("Bytes"), &KrGenRegister::GetAddress), row.expected) << row.name;
    EXPECT_TRUE(ReadBytes(camera).IsOK()) << row.name;
    EXPECT_THAT(camera.port.TakeRecords(),
                ElementsAre(RegisterAccessRecord{false, static_cast<std::uint64_t>(row.expected), 4}))
        << row.name;
  }
}

TEST(RegisterNode, PlaceThatIsNone_IsAFaultWithNodeAndLine) {
  struct Row {
    const char* name;
    std::string node;
  };
  const Row rows[] = {
      {"no address", MakeBytes(Length("4"))},
      {"address that is no number", MakeBytes(Address("here") + Length("4"))},
      {"negative address", MakeBytes(Address("-4") + Length("4"))},
      {"sum beyond 64 bits", MakeBytes(Address("0x7FFFFFFFFFFFFFFF") + Address("1") + Length("4"))},
      {"end beyond the largest address", MakeBytes(Address("0x7FFFFFFFFFFFFFFE") + Length("4"))},
      {"address of no node", MakeBytes("<pAddress>Nobody</pAddress>" + Length("4"))},
      {"index of no node", MakeBytes("<pIndex Offset=\"4\">Nobody</pIndex>" + Length("4"))},
      {"offset of no node", kIndices + MakeBytes("<pIndex pOffset=\"Nobody\">Index</pIndex>" + Length("4"))},
      {"offset that is no number", kIndices + MakeBytes("<pIndex Offset=\"four\">Index</pIndex>" + Length("4"))},
      {"no length", MakeBytes(Address("0"))},
      {"length that is no number", MakeBytes(Address("0") + Length("long"))},
      {"length of 0", MakeBytes(Address("0") + Length("0"))},
      {"negative length", MakeBytes(Address("0") + Length("-1"))},
      {"length beyond 16 MiB", MakeBytes(Address("0") + Length("0x1000001"))},
      {"length of 2^40", MakeBytes(Address("0") + Length("0x10000000000"))},
      {"length of no node", MakeBytes(Address("0") + "<pLength>Nobody</pLength>")},
      {"port of no node",
       "<Register Name=\"Bytes\"><Address>0</Address><Length>4</Length><pPort>Nobody</pPort></Register>"},
      {"port that is none", kIndices + "<Register Name=\"Bytes\"><Address>0</Address><Length>4</Length>"
                                       "<pPort>Index</pPort></Register>"},
  };
  for (const Row& row : rows) {
    DescribedCamera camera(row.node);
    KrStringList faults;

    const KrResult result = ReadBytes(camera);

    EXPECT_EQ(result, KrResult::Code::BadData) << row.name;
    EXPECT_THAT(result.GetDescription().CStr(), AllOf(HasSubstr("\"Bytes\""), HasSubstr("line "))) << row.name;
    EXPECT_EQ(camera.Register("Bytes").SetValue({1, 2, 3, 4}), KrResult::Code::BadData) << row.name;
    EXPECT_EQ(camera.Register("Bytes").GetAccessMode(), KrGenAccessMode::NotAvailable) << row.name;
    ASSERT_TRUE(camera.array->GetFaults(faults).IsOK());
    EXPECT_GE(faults.GetCount(), 1U) << row.name;
    EXPECT_THAT(camera.port.TakeRecords(), IsEmpty()) << row.name;
  }
}

TEST(RegisterNode, Port_ThatIsNotNamed_IsTheDevice) {
  DescribedCamera camera("<Register Name=\"Bytes\"><Address>0x100</Address><Length>1</Length></Register>");
  camera.Poke(0x100, {7});

  EXPECT_THAT(Read(camera.Register("Bytes"), &KrGenRegister::GetValue), ElementsAre(7));
}

TEST(RegisterNode, AddressThatNodesTakeOutOfThePort_FailsUntilTheyBringItBack) {
  DescribedCamera camera(kIndices +
                         MakeBytes(Address("0x100") + "<pIndex Offset=\"0x100\">Index</pIndex>" + Length("4")));
  for (const std::int64_t index : {std::int64_t{-2}, std::int64_t{1} << 60, std::numeric_limits<std::int64_t>::min(),
                                   std::numeric_limits<std::int64_t>::max(), std::int64_t{0x7FFFFFFFFFFFFF}}) {
    ASSERT_TRUE(camera.Integer("Index").SetValue(index).IsOK());

    const KrResult result = ReadBytes(camera);

    EXPECT_EQ(result, KrResult::Code::OutOfRange) << index;
    EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("\"Bytes\"")) << index;
    EXPECT_EQ(camera.Register("Bytes").SetValue({1, 2, 3, 4}), KrResult::Code::OutOfRange) << index;
  }
  EXPECT_THAT(camera.port.TakeRecords(), IsEmpty());

  ASSERT_TRUE(camera.Integer("Index").SetValue(1).IsOK());

  EXPECT_TRUE(ReadBytes(camera).IsOK());
}

TEST(RegisterNode, Length_OfTheLargestRegister_IsTaken) {
  DescribedCamera camera(MakeBytes(Address("0") + Length("0x1000000")));

  EXPECT_EQ(Read(camera.Register("Bytes"), &KrGenRegister::GetValue).size(), std::size_t{16} << 20);
}

TEST(RegisterNode, LengthThatStandsOnItself_IsAFaultAndNoEnd) {
  DescribedCamera camera(MakeNode("IntReg", "A", Address("0") + "<pLength>B</pLength>") +
                         MakeNode("IntReg", "B", Address("8") + "<pLength>A</pLength>") +
                         MakeBytes(Address("0") + "<pLength>A</pLength>"));
  std::int64_t value = 0;

  EXPECT_FALSE(camera.Integer("A").GetValue(value).IsOK());
  EXPECT_FALSE(ReadBytes(camera).IsOK());
  EXPECT_EQ(camera.Integer("A").GetAccessMode(), KrGenAccessMode::NotAvailable);
  EXPECT_THAT(camera.port.TakeRecords(), IsEmpty());
}

TEST(RegisterNode, ChainOfAddresses_BeyondAnyLimit_IsAFaultAndNoCrash) {
  std::string nodes = MakeNode("IntReg", "Reg0", Address("0") + Length("4"));
  constexpr int kCount = 3000;
  for (int i = 1; i < kCount; ++i)
    nodes += MakeNode("IntReg", "Reg" + std::to_string(i),
                      "<pAddress>Reg" + std::to_string(i - 1) + "</pAddress>" + Length("4"));
  DescribedCamera camera(nodes);
  std::int64_t value = 0;

  const KrResult result = camera.Integer(("Reg" + std::to_string(kCount - 1)).c_str()).GetValue(value);

  EXPECT_FALSE(result.IsOK());
  EXPECT_LT(result.GetDescription().GetLength(), 1000U);
  EXPECT_EQ(Read(camera.Integer("Reg100"), &KrGenInteger::GetValue), 0);
}

TEST(RegisterNode, AccessMode_IsThatOfTheDescription) {
  struct Row {
    const char* name;
    std::string further;
    KrGenAccessMode expected;
  };
  const Row rows[] = {
      {"read only", AccessMode("RO"), KrGenAccessMode::ReadOnly},
      {"write only", AccessMode("WO"), KrGenAccessMode::WriteOnly},
      {"both", AccessMode("RW"), KrGenAccessMode::ReadWrite},
      {"none said", "", KrGenAccessMode::ReadOnly},
      {"empty", AccessMode(""), KrGenAccessMode::ReadOnly},
      {"narrowed", AccessMode("RW") + "<ImposedAccessMode>WO</ImposedAccessMode>", KrGenAccessMode::WriteOnly},
      {"narrowed to nothing", AccessMode("RO") + "<ImposedAccessMode>WO</ImposedAccessMode>",
       KrGenAccessMode::NotAvailable},
  };
  for (const Row& row : rows) {
    DescribedCamera camera(MakeBytes(Address("0") + Length("4"), row.further));

    EXPECT_EQ(camera.Register("Bytes").GetAccessMode(), row.expected) << row.name;
    EXPECT_EQ(ReadBytes(camera).IsOK(), camera.Register("Bytes").IsReadable()) << row.name;
    EXPECT_EQ(camera.Register("Bytes").SetValue({1, 2, 3, 4}).IsOK(), camera.Register("Bytes").IsWritable())
        << row.name;
  }
}

TEST(RegisterNode, Access_ThatIsDenied_SaysWhatStandsInTheWay) {
  DescribedCamera readOnly(MakeBytes(Address("0") + Length("4"), AccessMode("RO")));
  DescribedCamera writeOnly(MakeBytes(Address("0") + Length("4"), AccessMode("WO")));
  DescribedCamera nowhere(kIndices + MakeBytes("<pAddress>Closed</pAddress>" + Length("4")));

  const KrResult written = readOnly.Register("Bytes").SetValue({1, 2, 3, 4});
  const KrResult read = ReadBytes(writeOnly);
  const KrResult lost = ReadBytes(nowhere);

  EXPECT_EQ(written, KrResult::Code::AccessDenied);
  EXPECT_THAT(written.GetDescription().CStr(), HasSubstr("can only be read"));
  EXPECT_EQ(read, KrResult::Code::AccessDenied);
  EXPECT_THAT(read.GetDescription().CStr(), HasSubstr("can only be written"));
  EXPECT_EQ(lost, KrResult::Code::AccessDenied);
  EXPECT_THAT(lost.GetDescription().CStr(), HasSubstr("\"Closed\""));
}

TEST(RegisterNode, PlaceThatCannotBeRead_MakesTheRegisterUnavailable) {
  for (const char* place : {"<pAddress>Closed</pAddress><Length>4</Length>",
                            "<Address>0</Address><pIndex Offset=\"4\">Closed</pIndex><Length>4</Length>",
                            "<Address>0</Address><pIndex pOffset=\"Closed\">Index</pIndex><Length>4</Length>",
                            "<Address>0</Address><pLength>Closed</pLength>"}) {
    DescribedCamera camera(kIndices + MakeBytes(place));

    EXPECT_EQ(camera.Register("Bytes").GetAccessMode(), KrGenAccessMode::NotAvailable) << place;
    const KrResult result = ReadBytes(camera);
    EXPECT_EQ(result, KrResult::Code::AccessDenied) << place;
    EXPECT_THAT(result.GetDescription().CStr(), HasSubstr("\"Closed\"")) << place;
  }
}

TEST(RegisterNode, FailureOfThePort_ComesWithItsCodeTheNameAndThePlace) {
  for (const KrResult::Code code : {KrResult::Code::TimeLimitExceeded, KrResult::Code::ConnectionLost,
                                    KrResult::Code::ProtocolError, KrResult::Code::Aborted}) {
    DescribedCamera camera(MakeBytes(Address("0x1234") + Length("4")));
    camera.port.SetFault([code](const RegisterAccessRecord&) { return KrResult(code, "So the port says."); });

    const KrResult read = ReadBytes(camera);
    const KrResult written = camera.Register("Bytes").SetValue({1, 2, 3, 4});

    EXPECT_EQ(read, code);
    EXPECT_STREQ(read.GetDescription().CStr(), "Reading \"Bytes\" (4 bytes at 0x1234): So the port says.");
    EXPECT_EQ(written, code);
    EXPECT_STREQ(written.GetDescription().CStr(), "Writing \"Bytes\" (4 bytes at 0x1234): So the port says.");
  }
}

TEST(RegisterNode, FailureToReadThePlace_ComesWithItsCodeAndBothNames) {
  DescribedCamera camera(MakeNode("IntReg", "Where", Address("0x10") + Length("4")) +
                         MakeBytes("<pAddress>Where</pAddress>" + Length("4")));
  camera.port.SetFault(
      [](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded, "No answer came."); });

  const KrResult result = ReadBytes(camera);

  EXPECT_EQ(result, KrResult::Code::TimeLimitExceeded);
  EXPECT_STREQ(result.GetDescription().CStr(), "Where \"Bytes\" is cannot be found out. "
                                               "Reading \"Where\" (4 bytes at 0x10): No answer came.");
}

TEST(RegisterNode, DeviceThatWasSilent_IsUsedAgainAsSoonAsItAnswers) {
  DescribedCamera camera(MakeNode("IntReg", "Number", Address("0x100") + Length("4")));
  camera.port.SetFault([](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded); });
  std::int64_t value = 0;
  EXPECT_EQ(camera.Integer("Number").GetValue(value), KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(camera.Integer("Number").SetValue(4), KrResult::Code::TimeLimitExceeded);

  camera.port.SetFault({});
  camera.Poke(0x100, {9});

  EXPECT_EQ(Read(camera.Integer("Number"), &KrGenInteger::GetValue), 9);
  EXPECT_TRUE(camera.Integer("Number").SetValue(4).IsOK());
}

TEST(RegisterNode, Errors_ThatTheDeviceSaysAfterAWrite_AreToldForBytes) {
  DescribedCamera camera(
      MakeBytes(Address("0x100") + Length("1"), AccessMode("RW") + "<pError>Problem</pError>") +
      MakeNode("IntReg", "Problem", Address("0x200") + Length("1"), AccessMode("RO") + "<Cachable>NoCache</Cachable>"));
  EXPECT_TRUE(camera.Register("Bytes").SetValue({1}).IsOK());

  camera.Poke(0x200, {3});

  EXPECT_EQ(camera.Register("Bytes").SetValue({2}), KrResult::Code::ProtocolError);
}
