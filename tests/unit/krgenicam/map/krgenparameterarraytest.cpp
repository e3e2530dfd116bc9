#include "krgenicam/krgenparameterarray.h"

#include "changingcamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;

namespace {

constexpr char kNodes[] = R"(
<Category Name="Root" NameSpace="Standard"><pFeature>Width</pFeature><pFeature>Format</pFeature></Category>
<Integer Name="Width" NameSpace="Standard"><Value>4</Value></Integer>
<Integer Name="Private" NameSpace="Custom"><Value>4</Value></Integer>
<Enumeration Name="Format"><EnumEntry Name="Mono8"><Value>1</Value></EnumEntry><Value>1</Value></Enumeration>
)";

// A map over one register, whose accesses a test can make fail.
const std::string kRegisters = MakeRegister("Value", 0x100) + MakeRegister("Other", 0x200);

} // namespace

TEST(KrGenParameterArray, Open_TextThatIsNoDescription_FailsAndLeavesTheArray) {
  KrGenMemoryPort memory;
  std::unique_ptr<KrGenParameterArray> array;
  KrGenDescription description;
  ASSERT_TRUE(KrGenDescription::ReadFromMemory("<Something/>", "test", description).IsOK());

  const KrResult result = KrGenParameterArray::Open(description, memory, {}, array);

  EXPECT_TRUE(result == KrResult::Code::BadData);
  EXPECT_EQ(array, nullptr);
}

TEST(KrGenParameterArray, Index_WithinAndBeyondTheFeatures_GivesThemAndNull) {
  DescribedCamera camera(kNodes);

  ASSERT_EQ(camera.array->GetCount(), 2u);
  EXPECT_EQ((*camera.array)[0], camera.array->Get("Width"));
  EXPECT_EQ((*camera.array)[1], camera.array->Get("Format"));
  EXPECT_EQ((*camera.array)[2], nullptr);
}

TEST(KrGenParameterArray, Get_ByName_FindsParametersAlone) {
  struct {
    const char* what;
    const char* name;
    bool isFound;
  } constexpr kRows[] = {
      {"feature", "Width", true},
      {"node that no category holds", "Private", true},
      {"standard name", "Std::Width", true},
      {"standard name of a custom node", "Std::Private", false},
      {"custom name", "Cust::Private", true},
      {"custom name of a standard node", "Cust::Width", false},
      {"another case", "width", false},
      {"category", "Root", false},
      {"port", "Device", false},
      {"entry", "Mono8", false},
      {"nothing", "", false},
      {"name space alone", "Std::", false},
  };
  DescribedCamera camera(kNodes);

  for (const auto& row : kRows)
    EXPECT_EQ(camera.array->Get(row.name) != nullptr, row.isFound) << row.what;
}

TEST(KrGenParameterArray, TypedViews_OfAnotherType_AreNull) {
  DescribedCamera camera(kNodes);

  EXPECT_NE(camera.array->GetInteger("Width"), nullptr);
  EXPECT_EQ(camera.array->GetFloat("Width"), nullptr);
  EXPECT_NE(camera.array->GetEnum("Format"), nullptr);
  EXPECT_EQ(camera.array->GetEnum("Missing"), nullptr);
  EXPECT_EQ(camera.array->GetCategory("Width"), nullptr);
}

TEST(KrGenParameterArray, GetVendorName_AndModel_AreTheDescriptions) {
  DescribedCamera camera(kNodes);

  EXPECT_EQ(camera.array->GetVendorName(), "Vendor");
  EXPECT_EQ(camera.array->GetModelName(), "Model");
}

TEST(KrGenParameterArray, GetFaults_OfDescriptionAndLinks_NameLineAndNodeInTheOrderOfTheLines) {
  DescribedCamera camera(R"(
<Category Name="Root"><pFeature>Root</pFeature></Category>
<Integer Name="Early"><Visibility>Sometimes</Visibility><Value>1</Value></Integer>
<Integer Name="Early"><Value>2</Value></Integer>
<Integer Name="Late"><EventID>none</EventID><Value>1</Value></Integer>
)");
  KrStringList faults;

  ASSERT_TRUE(camera.array->GetFaults(faults).IsOK());

  ASSERT_EQ(faults.GetCount(), 4u);
  EXPECT_THAT(faults[0].ToUtf8(), HasSubstr("line 8, node Root: "));
  EXPECT_THAT(faults[1].ToUtf8(), HasSubstr("line 9, node Early: \"Sometimes\""));
  EXPECT_THAT(faults[2].ToUtf8(), HasSubstr("line 10, node Early: There is a node of this name in line 9"));
  EXPECT_THAT(faults[3].ToUtf8(), HasSubstr("line 11, node Late: \"none\""));
}

TEST(KrGenParameterArray, GetFaults_MoreThanAreListed_SaysHowMany) {
  std::string nodes;
  for (int i = 0; i < 1500; ++i)
    nodes += "<Integer Name=\"N" + std::to_string(i) + "\"><Visibility>Odd</Visibility><Value>1</Value></Integer>\n";
  DescribedCamera camera(nodes);
  KrStringList faults;

  ASSERT_TRUE(camera.array->GetFaults(faults).IsOK());

  ASSERT_EQ(faults.GetCount(), 1001u);
  EXPECT_EQ(faults[1000], "500 more faults are not listed.");
}

TEST(KrGenParameterArray, InvalidateCache_AfterTheDeviceChanged_HasTheNewValue) {
  DescribedCamera camera(kRegisters);
  EXPECT_EQ(Read(camera.Integer("Value"), &KrGenInteger::GetValue), 0);
  camera.Poke(0x100, {7, 0, 0, 0});
  EXPECT_EQ(Read(camera.Integer("Value"), &KrGenInteger::GetValue), 0);

  camera.array->InvalidateCache();

  EXPECT_EQ(Read(camera.Integer("Value"), &KrGenInteger::GetValue), 7);
}

TEST(KrGenParameterArray, Invalidate_OneNode_LeavesOthersAsTheyWere) {
  DescribedCamera camera(kRegisters);
  EXPECT_EQ(Read(camera.Integer("Value"), &KrGenInteger::GetValue), 0);
  EXPECT_EQ(Read(camera.Integer("Other"), &KrGenInteger::GetValue), 0);
  camera.Poke(0x100, {7, 0, 0, 0});
  camera.Poke(0x200, {8, 0, 0, 0});

  ASSERT_TRUE(camera.array->Invalidate("Value").IsOK());

  EXPECT_EQ(Read(camera.Integer("Value"), &KrGenInteger::GetValue), 7);
  EXPECT_EQ(Read(camera.Integer("Other"), &KrGenInteger::GetValue), 0);
}

TEST(KrGenParameterArray, Invalidate_NameThatIsNotThere_IsNotFound) {
  DescribedCamera camera(kRegisters);

  EXPECT_TRUE(camera.array->Invalidate("Missing") == KrResult::Code::NotFound);
}

TEST(KrGenParameterArray, GetValue_AfterATimeout_IsReadAgain) {
  DescribedCamera camera(kRegisters + R"(
<Integer Name="Gated"><pIsAvailable>Other</pIsAvailable><Value>3</Value></Integer>)");
  camera.Poke(0x100, {7, 0, 0, 0});
  camera.Poke(0x200, {1, 0, 0, 0});
  camera.port.SetFault([](const RegisterAccessRecord&) { return KrResult(KrResult::Code::TimeLimitExceeded); });
  std::int64_t value = -1;
  EXPECT_TRUE(camera.Integer("Value").GetValue(value) == KrResult::Code::TimeLimitExceeded);
  EXPECT_EQ(value, -1);
  EXPECT_EQ(camera.Integer("Gated").GetAccessMode(), KrGenAccessMode::NotAvailable);

  camera.port.SetFault({});

  EXPECT_EQ(Read(camera.Integer("Value"), &KrGenInteger::GetValue), 7);
  EXPECT_EQ(camera.Integer("Gated").GetAccessMode(), KrGenAccessMode::ReadWrite);
}

TEST(KrGenParameterArray, Close_Afterwards_NothingIsHadButTextsAndSinksCanLeave) {
  DescribedCamera camera(kRegisters);
  RecordingSink sink;
  EXPECT_EQ(Read(camera.Integer("Value"), &KrGenInteger::GetValue), 0);
  ASSERT_TRUE(camera.Integer("Value").RegisterEventSink(&sink).IsOK());
  EXPECT_EQ(camera.array->GetAccessMode(), KrGenArrayAccess::Open);

  camera.array->Close();

  std::int64_t value = -1;
  bool isReadable = true;
  EXPECT_EQ(camera.array->GetAccessMode(), KrGenArrayAccess::Closed);
  EXPECT_TRUE(camera.Integer("Value").GetValue(value) == KrResult::Code::ConnectionLost);
  EXPECT_TRUE(camera.Integer("Value").SetValue(1) == KrResult::Code::ConnectionLost);
  EXPECT_TRUE(camera.Integer("Value").IsReadable(isReadable) == KrResult::Code::ConnectionLost);
  EXPECT_EQ(camera.Integer("Value").GetAccessMode(), KrGenAccessMode::NotAvailable);
  EXPECT_TRUE(camera.array->Poll() == KrResult::Code::ConnectionLost);
  EXPECT_EQ(camera.Integer("Value").GetName(), "Value");
  EXPECT_TRUE(camera.Integer("Value").UnregisterEventSink(&sink).IsOK());
}

TEST(KrGenParameterArray, DeliverEvent_WithData_IsWhatTheNodesOfItsPortRead) {
  DescribedCamera camera(R"(
<Port Name="EventPort"><EventID>9C40</EventID></Port>
<IntReg Name="EventLine"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>EventPort</pPort>
  <Endianess>LittleEndian</Endianess></IntReg>)");
  constexpr std::uint8_t kFirst[] = {5, 0, 0, 0};
  constexpr std::uint8_t kSecond[] = {6, 0, 0, 0};

  camera.array->DeliverEvent(0x9C40, kFirst, sizeof(kFirst));
  const std::int64_t first = Read(camera.Integer("EventLine"), &KrGenInteger::GetValue);
  camera.array->DeliverEvent(0x9C41, kSecond, sizeof(kSecond));
  const std::int64_t afterAnother = Read(camera.Integer("EventLine"), &KrGenInteger::GetValue);
  camera.array->DeliverEvent(0x9C40, kSecond, sizeof(kSecond));

  EXPECT_EQ(first, 5);
  EXPECT_EQ(afterAnother, 5);
  EXPECT_EQ(Read(camera.Integer("EventLine"), &KrGenInteger::GetValue), 6);
}

TEST(KrGenParameterArray, SetChunkData_ByNumberAndByNode_IsWhatTheNodesOfThePortReadUntilTakenAway) {
  DescribedCamera camera(R"(
<Port Name="ChunkPort"><ChunkID>A5</ChunkID></Port>
<Port Name="NamedPort"><pChunkID>Id</pChunkID></Port>
<Integer Name="Id"><Value>7</Value></Integer>
<IntReg Name="ChunkGain"><Address>0</Address><Length>2</Length><AccessMode>RO</AccessMode><pPort>ChunkPort</pPort>
  <Endianess>LittleEndian</Endianess></IntReg>
<IntReg Name="NamedGain"><Address>0</Address><Length>2</Length><AccessMode>RO</AccessMode><pPort>NamedPort</pPort>
  <Endianess>LittleEndian</Endianess></IntReg>)");
  constexpr std::uint8_t kData[] = {9, 0};
  std::int64_t value = 0;

  EXPECT_FALSE(camera.Integer("ChunkGain").GetValue(value).IsOK());
  camera.array->SetChunkData(0xA5, kData, sizeof(kData));
  camera.array->SetChunkData(7, kData, sizeof(kData));

  EXPECT_EQ(Read(camera.Integer("ChunkGain"), &KrGenInteger::GetValue), 9);
  EXPECT_EQ(Read(camera.Integer("NamedGain"), &KrGenInteger::GetValue), 9);
  camera.array->SetChunkData(0xA5, nullptr, 0);
  EXPECT_FALSE(camera.Integer("ChunkGain").GetValue(value).IsOK());
  EXPECT_EQ(Read(camera.Integer("NamedGain"), &KrGenInteger::GetValue), 9);
}
