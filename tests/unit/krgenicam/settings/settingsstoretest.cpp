#include "describedsettings.h"

namespace krgenicam {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

TEST(StoreSettings, StreamableParameters_AreTakenWithOrWithoutACategory) {
  SettingsCamera camera("<Category Name=\"Root\" NameSpace=\"Standard\"><pFeature>Height</pFeature>"
                        "<pFeature>Other</pFeature></Category>" +
                        MakeInteger("Height", 0) + MakeInteger("Hidden", 4) +
                        "<Integer Name=\"Other\"><Value>3</Value></Integer>");
  camera.Poke(0, {7, 0, 0, 0});

  EXPECT_TRUE(camera.Store().IsOK());

  EXPECT_THAT(camera.GetSteps(), ElementsAre(Pair("Height", "7"), Pair("Hidden", "0")));
  EXPECT_THAT(camera.GetProblems(), IsEmpty());
  EXPECT_EQ(camera.settings.GetDevice(), "Vendor Model");
}

TEST(StoreSettings, ValueThatTheDeviceChangedByItself_IsTaken) {
  SettingsCamera camera(MakeInteger("Width", 0));
  camera.SetText("Width", "5");
  camera.Poke(0, {9});

  EXPECT_TRUE(camera.Store().IsOK());

  EXPECT_THAT(camera.GetSteps(), ElementsAre(Pair("Width", "9")));
}

TEST(StoreSettings, Commands_AreNoSettings) {
  SettingsCamera camera("<Command Name=\"Go\"><Streamable>Yes</Streamable><pValue>Flag</pValue><CommandValue>1"
                        "</CommandValue></Command><Integer Name=\"Flag\"><Value>0</Value></Integer>");

  EXPECT_TRUE(camera.Store().IsOK());

  EXPECT_THAT(camera.GetSteps(), IsEmpty());
}

TEST(StoreSettings, ParametersThatCannotBeReadAndWritten_AreLeftOut) {
  SettingsCamera camera(
      MakeInteger("Free", 0) + MakeInteger("Locked", 4, "<pIsLocked>Lock</pIsLocked>") +
      MakeInteger("Fixed", 8, "<ImposedAccessMode>RO</ImposedAccessMode>") +
      MakeInteger("Absent", 12, "<pIsImplemented>No</pIsImplemented>") +
      "<Integer Name=\"Lock\"><Value>1</Value></Integer><Integer Name=\"No\"><Value>0</Value></Integer>");

  EXPECT_TRUE(camera.Store().IsOK());

  EXPECT_THAT(camera.GetSteps(), ElementsAre(Pair("Free", "0")));
}

TEST(StoreSettings, Bank_IsTakenAtEveryPositionBehindItsSelectorWhichIsPutBack) {
  SettingsCamera camera(MakeEnum("GainSelector", 0, {"Red", "Green", "Blue"}, "<pSelected>Gain</pSelected>") +
                        MakeBank("Gain", 16, "GainSelector") + MakeInteger("Width", 4));
  camera.Poke(16, {10, 0, 0, 0, 20, 0, 0, 0, 30, 0, 0, 0});
  camera.SetText("GainSelector", "Green");

  EXPECT_TRUE(camera.Store().IsOK());

  EXPECT_THAT(camera.GetSteps(),
              ElementsAre(Pair("Width", "0"), Pair("GainSelector", "Red"), Pair("Gain", "10"),
                          Pair("GainSelector", "Green"), Pair("Gain", "20"), Pair("GainSelector", "Blue"),
                          Pair("Gain", "30"), Pair("GainSelector", "Green")));
  EXPECT_EQ(camera.Peek(0, 1), std::vector<std::uint8_t>{1});
}

// The index of a table is selected by which table it is of.
constexpr const char* kTables =
    "<Boolean Name=\"TableSelector\"><pValue>TableSelectorReg</pValue><pSelected>Index</pSelected></Boolean>"
    "<IntReg Name=\"TableSelectorReg\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
    "<pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>"
    "<Integer Name=\"Index\"><pValue>IndexReg</pValue><Min>1</Min><Max>5</Max><Inc>4</Inc>"
    "<pSelected>Entry</pSelected></Integer>"
    "<IntReg Name=\"IndexReg\"><Address>8</Address><pIndex Offset=\"4\">TableSelectorReg</pIndex><Length>4</Length>"
    "<AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>"
    "<Integer Name=\"Entry\"><Streamable>Yes</Streamable><pValue>EntryReg</pValue></Integer>"
    "<IntReg Name=\"EntryReg\"><Address>32</Address><pIndex Offset=\"32\">TableSelectorReg</pIndex>"
    "<pIndex Offset=\"4\">Index</pIndex><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
    "<Endianess>LittleEndian</Endianess></IntReg>";

TEST(StoreSettings, SelectorThatIsSelected_IsPutBackUnderEachPositionOfItsOwnSelector) {
  SettingsCamera camera(kTables);
  camera.Poke(8, {5, 0, 0, 0, 1, 0, 0, 0});
  camera.Poke(36, {11});
  camera.Poke(52, {15});
  camera.Poke(68, {21});
  camera.Poke(84, {25});

  EXPECT_TRUE(camera.Store().IsOK()) << camera.problems[0].CStr();

  EXPECT_THAT(camera.GetSteps(),
              ElementsAre(Pair("TableSelector", "0"), Pair("Index", "1"), Pair("Entry", "11"), Pair("Index", "5"),
                          Pair("Entry", "15"), Pair("Index", "5"), Pair("TableSelector", "1"), Pair("Index", "1"),
                          Pair("Entry", "21"), Pair("Index", "5"), Pair("Entry", "25"), Pair("Index", "1"),
                          Pair("TableSelector", "0")));
  EXPECT_EQ(camera.Peek(8, 8), (std::vector<std::uint8_t>{5, 0, 0, 0, 1, 0, 0, 0}));
}

TEST(StoreSettings, TwoSelectorsOfOneParameter_GiveEveryCombination) {
  SettingsCamera camera(MakeEnum("A", 0, {"A0", "A1"}, "<pSelected>F</pSelected>") +
                        MakeEnum("B", 4, {"B0", "B1"}, "<pSelected>F</pSelected>") + MakeBank("F", 16, "A"));

  EXPECT_TRUE(camera.Store().IsOK());

  EXPECT_THAT(camera.GetSteps(),
              ElementsAre(Pair("A", "A0"), Pair("B", "B0"), Pair("F", "0"), Pair("B", "B1"), Pair("F", "0"),
                          Pair("B", "B0"), Pair("A", "A1"), Pair("B", "B0"), Pair("F", "0"), Pair("B", "B1"),
                          Pair("F", "0"), Pair("B", "B0"), Pair("A", "A0")));
}

TEST(StoreSettings, EntriesThatAreNotAvailable_AreNoPositions) {
  SettingsCamera camera(
      "<Enumeration Name=\"Sel\"><EnumEntry Name=\"On\"><Value>0</Value></EnumEntry><EnumEntry Name=\"Never\">"
      "<pIsAvailable>No</pIsAvailable><Value>1</Value></EnumEntry><Value>0</Value><pSelected>F</pSelected></"
      "Enumeration>"
      "<Integer Name=\"No\"><Value>0</Value></Integer>" +
      MakeInteger("F", 0));

  EXPECT_TRUE(camera.Store().IsOK());

  EXPECT_THAT(camera.GetSteps(), ElementsAre(Pair("Sel", "On"), Pair("F", "0"), Pair("Sel", "On")));
}

TEST(StoreSettings, SelectorThatCannotBeMoved_LeavesWhatItSelectsAtItsPosition) {
  SettingsCamera camera(
      MakeEnum("Sel", 0, {"A", "B"}, "<ImposedAccessMode>RO</ImposedAccessMode><pSelected>F</pSelected>") +
      MakeBank("F", 16, "Sel"));

  EXPECT_TRUE(camera.Store().IsOK());

  EXPECT_THAT(camera.GetSteps(), ElementsAre(Pair("F", "0")));
}

TEST(StoreSettings, PositionWhereNothingCanBeTaken_IsLeftOut) {
  SettingsCamera camera(MakeEnum("Sel", 0, {"A", "B"}, "<pSelected>F</pSelected>") +
                        MakeInteger("F", 16, "<pIsAvailable>Sel</pIsAvailable>"));

  EXPECT_TRUE(camera.Store().IsOK());

  EXPECT_THAT(camera.GetSteps(), ElementsAre(Pair("Sel", "B"), Pair("F", "0"), Pair("Sel", "A")));
}

TEST(StoreSettings, RegisterThatFails_IsNamedWithItsPositionAndSelectorsArePutBack) {
  SettingsCamera camera(MakeEnum("Sel", 0, {"A", "B", "C"}, "<pSelected>F</pSelected>") + MakeBank("F", 16, "Sel") +
                        MakeInteger("Width", 64));
  camera.SetText("Sel", "C");
  camera.port.SetFault(FailAt(20, false, KrResult::Code::ProtocolError));

  const KrResult result = camera.Store();

  EXPECT_EQ(result, KrResult::Code::ProtocolError);
  EXPECT_THAT(camera.GetProblems(), ElementsAre(AllOf(HasSubstr("F [Sel=B]"), HasSubstr("The register is broken."))));
  EXPECT_THAT(camera.GetSteps(), ElementsAre(Pair("Width", "0"), Pair("Sel", "A"), Pair("F", "0"), Pair("Sel", "C"),
                                             Pair("F", "0"), Pair("Sel", "C")));
  EXPECT_EQ(camera.Peek(0, 1), std::vector<std::uint8_t>{2});
}

TEST(StoreSettings, SelectorThatWillNotMove_IsAProblemForEachPosition) {
  SettingsCamera camera(MakeEnum("Sel", 0, {"A", "B"}, "<pSelected>F</pSelected>") + MakeBank("F", 16, "Sel"));
  camera.port.SetFault(FailAt(0, true, KrResult::Code::ProtocolError));

  EXPECT_EQ(camera.Store(), KrResult::Code::ProtocolError);

  EXPECT_THAT(camera.GetProblems(),
              ElementsAre(HasSubstr("Sel cannot be set to A"), HasSubstr("Sel cannot be set to B"),
                          HasSubstr("Sel cannot be put back to A")));
}

TEST(StoreSettings, ConnectionThatIsLost_EndsItAtOnce) {
  SettingsCamera camera(MakeInteger("A", 0) + MakeInteger("B", 4) + MakeInteger("C", 8));
  camera.port.SetFault([](const RegisterAccessRecord& aRecord) {
    return aRecord.address >= 4 ? KrResult(KrResult::Code::ConnectionLost, "Gone.") : KrResult();
  });

  EXPECT_EQ(camera.Store(), KrResult::Code::ConnectionLost);

  EXPECT_THAT(camera.GetProblems(), ElementsAre(HasSubstr("B cannot be read: ")));
}

TEST(StoreSettings, DeviceThatFallsAwayAfterARefusal_IsWhatIsReturned) {
  for (const KrResult::Code code :
       {KrResult::Code::ConnectionLost, KrResult::Code::TimeLimitExceeded, KrResult::Code::Aborted}) {
    SettingsCamera camera(MakeInteger("A", 0) + MakeInteger("B", 4) + MakeInteger("C", 8));
    camera.port.SetFault([code](const RegisterAccessRecord& aRecord) {
      if (aRecord.address == 0)
        return KrResult(KrResult::Code::ProtocolError, "Refused.");
      return aRecord.address == 4 ? KrResult(code, "Gone.") : KrResult();
    });

    EXPECT_EQ(camera.Store(), code);

    EXPECT_THAT(camera.GetProblems(), ElementsAre(HasSubstr("A cannot be read: "), HasSubstr("B cannot be read: ")));
  }
}

TEST(StoreSettings, Cancelled_EndsWithTheSelectorsPutBack) {
  SettingsCamera camera(MakeEnum("Sel", 0, {"A", "B", "C"}, "<pSelected>F</pSelected>") + MakeBank("F", 16, "Sel"));
  camera.SetText("Sel", "C");
  camera.port.SetFault([&camera](const RegisterAccessRecord& aRecord) {
    if (aRecord.address == 16)
      camera.array->Cancel();
    return KrResult();
  });

  EXPECT_EQ(camera.Store(), KrResult::Code::Aborted);

  EXPECT_EQ(camera.Peek(0, 1), std::vector<std::uint8_t>{2});
  EXPECT_EQ(camera.problems.GetCount(), 1U);
}

// A selector of 65,536 positions before a parameter that has others.
TEST(StoreSettings, IntegerSelectorOfManyPositions_IsMovedThroughSomeWithAProblemAndTheRestIsTaken) {
  SettingsCamera camera(MakeInteger("Sel", 0, "<Min>0</Min><Max>65535</Max><pSelected>F</pSelected>") +
                        MakeInteger("F", 4) + MakeEnum("Other", 8, {"A", "B"}, "<pSelected>G</pSelected>") +
                        MakeInteger("G", 12));
  camera.SetText("Sel", "3");
  camera.port.TakeRecords();

  EXPECT_EQ(camera.Store(), KrResult::Code::OutOfRange);

  EXPECT_LE(camera.port.CountWrites(), 270U);
  EXPECT_THAT(camera.GetProblems(), ElementsAre(AllOf(StartsWith("Sel is not moved any further"), HasSubstr("256"))));
  EXPECT_THAT(camera.GetSteps(), testing::IsSupersetOf(Steps{{"Sel", "255"}, {"Other", "B"}, {"G", "0"}}));
  EXPECT_THAT(camera.GetSteps(), testing::Not(testing::Contains(Pair("Sel", "256"))));
  EXPECT_EQ(camera.GetText("Sel"), "3");
}

TEST(StoreSettings, CombinationsBeyondTheMost_AreLeftOutWithAProblemAndTheSelectorsPutBack) {
  const std::string positions = "<Min>0</Min><Max>255</Max><pSelected>F</pSelected>";
  SettingsCamera camera(MakeInteger("A", 0, positions) + MakeInteger("B", 4, positions) +
                        MakeEnum("C", 8, {"First", "Second"}, "<pSelected>F</pSelected>") + MakeInteger("F", 12));
  camera.SetText("A", "3");

  EXPECT_EQ(camera.Store(), KrResult::Code::OutOfRange);

  EXPECT_THAT(camera.GetProblems(),
              testing::Contains(HasSubstr("There are more than 65536 combinations of selectors'")));
  EXPECT_EQ(camera.GetText("A"), "3");
}

// As many combinations as are visited, with values that are too many together.
TEST(StoreSettings, ValuesBeyondTheMost_AreLeftOutWithAProblemAndTheSelectorsPutBack) {
  std::string selected;
  std::string features;
  for (int i = 0; i < 16; ++i) {
    const std::string name = "F" + std::to_string(i);
    selected += "<pSelected>" + name + "</pSelected>";
    features += "<Integer Name=\"" + name + "\"><Streamable>Yes</Streamable><Value>1</Value></Integer>";
  }
  const std::string positions = "<Min>0</Min><Max>255</Max>" + selected;
  SettingsCamera camera(MakeInteger("A", 0, positions) + MakeInteger("B", 4, positions) + features);
  camera.SetText("A", "3");

  EXPECT_EQ(camera.Store(), KrResult::Code::OutOfRange);

  EXPECT_THAT(camera.GetProblems(), ElementsAre(HasSubstr("or more than 1000000 values")));
  // Beside them the positions to which the selectors are put back.
  EXPECT_THAT(camera.settings.GetSettings().size(), testing::AllOf(testing::Ge(1'000'000U), testing::Le(1'000'002U)));
  EXPECT_EQ(camera.GetText("A"), "3");
}

// Of 1 MiB each, of which the names take the room of the sixteenth.
TEST(StoreSettings, BytesOfValuesBeyondTheMost_AreLeftOutWithAProblem) {
  std::string features;
  for (int i = 0; i < 20; ++i)
    features += "<String Name=\"S" + std::to_string(i) + "\"><Streamable>Yes</Streamable><Value>" +
                std::string(std::size_t{1} << 20, 'x') + "</Value></String>";
  SettingsCamera camera(features);

  EXPECT_EQ(camera.Store(), KrResult::Code::OutOfRange);

  EXPECT_THAT(camera.GetProblems(), testing::AllOf(testing::SizeIs(5), testing::Each(HasSubstr("more than 16 MiB"))));
  EXPECT_EQ(camera.settings.GetCount(), 15U);
}

TEST(StoreSettings, ValueThatAloneIsBeyondTheMost_LeavesTheOthersTheirPlace) {
  const std::string length = std::to_string(8 << 20); // As text twice as much.
  SettingsCamera camera(
      "<Register Name=\"Large\"><Streamable>Yes</Streamable><Address>" + length + "</Address><Length>" + length +
      "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>" + MakeInteger("Last", 0));

  EXPECT_EQ(camera.Store(), KrResult::Code::OutOfRange);

  EXPECT_THAT(camera.GetProblems(), ElementsAre(testing::AllOf(HasSubstr("Large"), HasSubstr("is not taken"))));
  EXPECT_THAT(camera.GetSteps(), ElementsAre(testing::Pair("Last", "0")));
}

TEST(StoreSettings, BytesOfProblemsBeyondTheMost_EndItWithTheSelectorsPutBack) {
  const std::string name(1000, 'F');
  const std::string positions = "<Min>0</Min><Max>255</Max><pSelected>" + name + "</pSelected>";
  SettingsCamera camera(MakeInteger("A", 0, positions) + MakeInteger("B", 4, positions) + MakeInteger(name, 8));
  camera.SetText("A", "3");
  camera.port.SetFault(FailAt(8, false, KrResult::Code::ProtocolError));

  EXPECT_EQ(camera.Store(), KrResult::Code::ProtocolError);

  std::size_t bytes = 0;
  for (const KrString& problem : camera.problems)
    bytes += problem.GetLength();
  EXPECT_LT(bytes, std::size_t{17} << 20);
  EXPECT_THAT(camera.GetProblems(), testing::Contains(HasSubstr("or more than 16 MiB of texts")));
  EXPECT_EQ(camera.GetText("A"), "3");
}

// A feature whose limit is the last of so many others, which it would come behind, and nodes that are none.
std::string MakeLimitedByTheLast(int aCount) {
  const std::string last = std::to_string(aCount - 1);
  std::string nodes =
      "<Integer Name=\"First\"><Streamable>Yes</Streamable><Value>0</Value><pMax>I" + last + "</pMax></Integer>";
  for (int i = 0; i < aCount; ++i) {
    const std::string number = std::to_string(i);
    nodes += "<Integer Name=\"I" + number +
             "\"><Streamable>Yes</Streamable><Value>1</Value></Integer><Boolean Name=\"B" + number +
             "\"><Value>1</Value></Boolean>";
  }
  return nodes;
}

TEST(StoreSettings, DescriptionTooLargeToBeOrdered_IsTakenInItsOwnOrder) {
  SettingsCamera small(MakeLimitedByTheLast(2));
  SettingsCamera large(MakeLimitedByTheLast(5100));

  EXPECT_TRUE(small.Store().IsOK());
  EXPECT_TRUE(large.Store().IsOK());

  EXPECT_EQ(small.GetSteps().back().first, "First");
  ASSERT_EQ(large.GetSteps().size(), 5101U);
  EXPECT_EQ(large.GetSteps().front().first, "First");
}

// What is available is said by a register that does not answer.
std::string MakeSilent(const std::string& aName, int aAddress) {
  return "<IntReg Name=\"" + aName + "\"><Address>" + std::to_string(aAddress) +
         "</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>"
         "<Endianess>LittleEndian</Endianess></IntReg>";
}

class SettingsOfASilentRegister : public testing::TestWithParam<KrResult::Code> {};

TEST_P(SettingsOfASilentRegister, ParameterWhoseAvailabilityCannotBeRead_IsAProblem) {
  SettingsCamera camera(MakeInteger("X", 0, "<pIsAvailable>There</pIsAvailable>") + MakeSilent("There", 100) +
                        MakeInteger("Y", 4));
  camera.Poke(100, {1});
  camera.port.SetFault(FailAt(100, false, GetParam()));

  EXPECT_EQ(camera.Store(), GetParam());

  EXPECT_THAT(camera.GetProblems(), ElementsAre(AllOf(StartsWith("X does not say whether it can be taken"),
                                                      HasSubstr("There"), HasSubstr("The register is broken."))));
  EXPECT_THAT(camera.GetSteps(), ElementsAre(Pair("Y", "0")));
}

TEST_P(SettingsOfASilentRegister, SelectorWhoseAvailabilityCannotBeRead_IsAProblem) {
  SettingsCamera camera(MakeEnum("Sel", 0, {"A", "B"}, "<pIsAvailable>There</pIsAvailable><pSelected>F</pSelected>") +
                        MakeSilent("There", 100) + MakeBank("F", 16, "Sel"));
  camera.Poke(100, {1});
  camera.port.SetFault(FailAt(100, false, GetParam()));

  EXPECT_EQ(camera.Store(), GetParam());

  EXPECT_THAT(camera.GetProblems(), ElementsAre(StartsWith("Sel does not say whether it can be moved")));
  EXPECT_THAT(camera.GetSteps(), IsEmpty());
}

TEST_P(SettingsOfASilentRegister, EntryWhoseAvailabilityCannotBeRead_IsAProblemAndTheOthersArePositions) {
  SettingsCamera camera(
      "<Enumeration Name=\"Sel\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><EnumEntry Name=\"B\">"
      "<pIsAvailable>There</pIsAvailable><Value>1</Value></EnumEntry><EnumEntry Name=\"C\"><Value>2</Value>"
      "</EnumEntry><Value>0</Value><pSelected>F</pSelected></Enumeration>" +
      MakeSilent("There", 100) + MakeInteger("F", 0));
  camera.Poke(100, {1});
  camera.port.SetFault(FailAt(100, false, GetParam()));

  EXPECT_EQ(camera.Store(), GetParam());

  EXPECT_THAT(camera.GetProblems(), ElementsAre(StartsWith("Sel does not say of all positions")));
  EXPECT_THAT(camera.GetSteps(),
              ElementsAre(Pair("Sel", "A"), Pair("F", "0"), Pair("Sel", "C"), Pair("F", "0"), Pair("Sel", "A")));
}

// No entry can be chosen, as nobody knows of any; the parameter is there for reading.
TEST_P(SettingsOfASilentRegister, EnumerationOfWhichNoEntryIsKnown_IsAProblem) {
  SettingsCamera camera(
      "<Enumeration Name=\"E\"><Streamable>Yes</Streamable><EnumEntry Name=\"A\"><pIsAvailable>There</pIsAvailable>"
      "<Value>0</Value></EnumEntry><Value>0</Value></Enumeration>" +
      MakeSilent("There", 100));
  camera.Poke(100, {1});
  camera.port.SetFault(FailAt(100, false, GetParam()));

  EXPECT_EQ(camera.Store(), GetParam());

  EXPECT_THAT(camera.GetProblems(), ElementsAre(StartsWith("E does not say whether it can be taken")));
}

INSTANTIATE_TEST_SUITE_P(Reasons, SettingsOfASilentRegister,
                         testing::Values(KrResult::Code::TimeLimitExceeded, KrResult::Code::ProtocolError),
                         [](const auto& aInfo) {
                           return aInfo.param == KrResult::Code::ProtocolError ? "Refused" : "TooLate";
                         });

TEST(StoreSettings, SelectorsOfOneAnother_AreEachTakenOnce) {
  SettingsCamera camera(MakeEnum("A", 0, {"X"}, "<pSelected>B</pSelected>") +
                        MakeEnum("B", 4, {"Y"}, "<pSelected>A</pSelected>"));

  EXPECT_TRUE(camera.Store().IsOK());

  EXPECT_THAT(camera.GetSteps(), testing::IsSupersetOf(Steps{{"A", "X"}, {"B", "Y"}}));
}

// The width's range depends on the binning, the gain's access on its automatic; both stand the wrong way round.
TEST(StoreSettings, WhatOthersDependOn_ComesBeforeThem) {
  SettingsCamera camera(
      MakeInteger("Width", 0, "<pMax>WidthMax</pMax>") + MakeInteger("Gain", 4, "<pIsLocked>GainAuto</pIsLocked>") +
      "<IntSwissKnife Name=\"WidthMax\"><pVariable Name=\"B\">BinningReg</pVariable><Formula>100/(B+1)</Formula>"
      "</IntSwissKnife>" +
      MakeInteger("Binning", 8) + MakeEnum("GainAuto", 12, {"Off", "On"}));

  EXPECT_TRUE(camera.Store().IsOK());

  EXPECT_THAT(camera.GetSteps(),
              ElementsAre(Pair("Binning", "0"), Pair("Width", "0"), Pair("GainAuto", "Off"), Pair("Gain", "0")));
}

TEST(StoreSettings, WhatDependsOnOneAnother_KeepsTheOrderOfTheDescription) {
  SettingsCamera camera(MakeInteger("Width", 0, "<pMax>WidthMax</pMax>") +
                        MakeInteger("OffsetX", 4, "<pMax>OffsetMax</pMax>") +
                        "<IntSwissKnife Name=\"WidthMax\"><pVariable Name=\"O\">OffsetX</pVariable><Formula>100-O"
                        "</Formula></IntSwissKnife><IntSwissKnife Name=\"OffsetMax\"><pVariable Name=\"W\">Width"
                        "</pVariable><Formula>100-W</Formula></IntSwissKnife>");

  EXPECT_TRUE(camera.Store().IsOK());

  EXPECT_THAT(camera.GetSteps(), ElementsAre(Pair("Width", "0"), Pair("OffsetX", "0")));
}

TEST(StoreSettings, WhileAStreamRuns_WhatItLocksIsLeftOutAndThatIsTold) {
  SettingsCamera camera(MakeInteger("Gain", 0) + MakeInteger("Width", 4, "<pIsLocked>TLParamsLocked</pIsLocked>") +
                        "<Integer Name=\"TLParamsLocked\"><Value>1</Value></Integer>");

  const KrResult result = camera.Store();

  EXPECT_EQ(result, KrResult::Code::WrongState);
  EXPECT_THAT(camera.GetSteps(), ElementsAre(Pair("Gain", "0")));
  EXPECT_THAT(camera.GetProblems(), ElementsAre(HasSubstr("A stream runs")));
}

TEST(StoreSettings, WhileAStreamRuns_WhatItLocksByAFormulaIsToldToo) {
  SettingsCamera camera(MakeInteger("Width", 4, "<pIsLocked>Lock</pIsLocked>") +
                        "<IntSwissKnife Name=\"Lock\"><pVariable Name=\"L\">TLParamsLocked</pVariable>"
                        "<Formula>L=1</Formula></IntSwissKnife>"
                        "<Integer Name=\"TLParamsLocked\"><Value>1</Value></Integer>");

  EXPECT_EQ(camera.Store(), KrResult::Code::WrongState);

  EXPECT_THAT(camera.GetProblems(), ElementsAre(HasSubstr("A stream runs")));
}

TEST(StoreSettings, WhileAStreamRuns_IsNotBlamedForWhatItDoesNotLock) {
  constexpr const char* kLock = "<Integer Name=\"TLParamsLocked\"><Value>1</Value></Integer>";
  struct {
    const char* what;
    std::string nodes;
  } const kRows[] = {
      {"nothing is streamable",
       "<Integer Name=\"Width\"><pIsLocked>TLParamsLocked</pIsLocked><Value>1</Value></Integer>"},
      {"nothing is locked", MakeInteger("Gain", 0)},
      {"another lock", MakeInteger("Gain", 0, "<pIsLocked>GainAuto</pIsLocked>") +
                           "<Integer Name=\"GainAuto\"><Value>1</Value></Integer>"},
      {"not available",
       MakeInteger("Gain", 0, "<pIsAvailable>Off</pIsAvailable><pIsLocked>TLParamsLocked</pIsLocked>") +
           "<Integer Name=\"Off\"><Value>0</Value></Integer>"},
  };

  for (const auto& row : kRows) {
    SettingsCamera camera(row.nodes + kLock);

    EXPECT_TRUE(camera.Store().IsOK()) << row.what;

    EXPECT_THAT(camera.GetProblems(), testing::IsEmpty()) << row.what;
  }
}

} // namespace
} // namespace krgenicam
