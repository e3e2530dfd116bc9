// What is forgotten when something changes: all that stands on it, and where a description says so of a feature, the
// register that the feature's value is in.

#include "changingcamera.h"
#include "describedcamera.h"

#include <gmock/gmock.h>

namespace {

std::string MakeFeature(const std::string& aName, const std::string& aMore = {}) {
  return "<Integer Name=\"" + aName + "\">" + aMore + "<pValue>" + aName + "Reg</pValue></Integer>\n";
}

// A selector whose banks are in the device, so that the description knows of one register alone.
const std::string kBanks = "<Integer Name=\"Bank\"><pValue>BankReg</pValue><pSelected>Gain</pSelected></Integer>\n" +
                           MakeRegister("BankReg", 0x100) + MakeFeature("Gain") + MakeRegister("GainReg", 0x104);

TEST(Invalidation, SelectorWhoseBanksTheDeviceHas_IsWritten_SelectedFeatureIsReadAnew) {
  DescribedCamera camera(kBanks);
  EXPECT_EQ(Read(camera.Integer("Gain"), &KrGenInteger::GetValue), 0);
  camera.Poke(0x104, {7});
  EXPECT_EQ(Read(camera.Integer("Gain"), &KrGenInteger::GetValue), 0) << "It is known.";

  ASSERT_TRUE(camera.Integer("Bank").SetValue(1).IsOK());

  EXPECT_EQ(Read(camera.Integer("Gain"), &KrGenInteger::GetValue), 7);
}

TEST(Invalidation, FeatureWithAnInvalidator_InvalidatorIsWritten_FeatureIsReadAnew) {
  DescribedCamera camera(MakeFeature("Mode") + MakeRegister("ModeReg", 0x100) +
                         MakeFeature("Result", "<pInvalidator>Mode</pInvalidator>") + MakeRegister("ResultReg", 0x104));
  EXPECT_EQ(Read(camera.Integer("Result"), &KrGenInteger::GetValue), 0);
  camera.Poke(0x104, {9});
  EXPECT_EQ(Read(camera.Integer("Result"), &KrGenInteger::GetValue), 0) << "It is known.";

  ASSERT_TRUE(camera.Integer("Mode").SetValue(1).IsOK());

  EXPECT_EQ(Read(camera.Integer("Result"), &KrGenInteger::GetValue), 9);
}

TEST(Invalidation, FeatureWithAnInvalidator_OtherFeatureOfTheSameRegister_IsReadAnew) {
  DescribedCamera camera(MakeFeature("Mode") + MakeRegister("ModeReg", 0x100) +
                         MakeFeature("Result", "<pInvalidator>Mode</pInvalidator>") + MakeRegister("ResultReg", 0x104) +
                         "<Integer Name=\"Copy\"><pValue>ResultReg</pValue></Integer>");
  EXPECT_EQ(Read(camera.Integer("Copy"), &KrGenInteger::GetValue), 0);
  camera.Poke(0x104, {9});
  EXPECT_EQ(Read(camera.Integer("Copy"), &KrGenInteger::GetValue), 0) << "It is known.";

  ASSERT_TRUE(camera.Integer("Mode").SetValue(1).IsOK());

  EXPECT_EQ(Read(camera.Integer("Copy"), &KrGenInteger::GetValue), 9);
}

TEST(Invalidation, FeatureByName_ItsRegisterIsReadAnewThroughAllThatIsBetween) {
  DescribedCamera camera("<Integer Name=\"Top\"><pValue>Middle</pValue></Integer>\n"
                         "<Integer Name=\"Middle\"><pValue>BottomReg</pValue></Integer>\n" +
                         MakeRegister("BottomReg", 0x100));
  EXPECT_EQ(Read(camera.Integer("Top"), &KrGenInteger::GetValue), 0);
  camera.Poke(0x100, {5});
  EXPECT_EQ(Read(camera.Integer("Top"), &KrGenInteger::GetValue), 0) << "It is known.";

  ASSERT_TRUE(camera.array->Invalidate("Top").IsOK());

  EXPECT_EQ(Read(camera.Integer("Top"), &KrGenInteger::GetValue), 5);
}

TEST(Invalidation, FeatureOfAnEvent_EventComes_FeatureIsReadAnew) {
  DescribedCamera camera(MakeFeature("Counter", "<EventID>9001</EventID>") + MakeRegister("CounterReg", 0x100));
  EXPECT_EQ(Read(camera.Integer("Counter"), &KrGenInteger::GetValue), 0);
  camera.Poke(0x100, {3});
  EXPECT_EQ(Read(camera.Integer("Counter"), &KrGenInteger::GetValue), 0) << "It is known.";

  camera.array->DeliverEvent(0x9001, nullptr, 0);

  EXPECT_EQ(Read(camera.Integer("Counter"), &KrGenInteger::GetValue), 3);
}

TEST(Invalidation, FeatureThatWasWritten_IsKnownWithoutReading) {
  DescribedCamera camera(kBanks);
  ASSERT_TRUE(camera.Integer("Gain").SetValue(4).IsOK());
  (void)camera.port.TakeRecords(); // Of the write.

  EXPECT_EQ(Read(camera.Integer("Gain"), &KrGenInteger::GetValue), 4);

  EXPECT_EQ(camera.port.CountReads(), 0u);
}

TEST(Invalidation, FeaturesThatInvalidateEachOther_AreToldOfOnceEach) {
  ChangingCamera camera(MakeFeature("A", "<pInvalidator>B</pInvalidator>") + MakeRegister("AReg", 0x100) +
                        MakeFeature("B", "<pInvalidator>A</pInvalidator>") + MakeRegister("BReg", 0x104));
  RecordingSink sink;
  camera.Watch("A", sink);
  camera.Watch("B", sink);
  camera.Poke(0x100, {1});
  camera.Poke(0x104, {2});

  EXPECT_TRUE(camera.array->Invalidate("A").IsOK());

  camera.AwaitNotifications();
  EXPECT_THAT(sink.TakeNames(), testing::UnorderedElementsAre("A", "B"));
}

TEST(Invalidation, FeaturesThatAreEachOthersValue_HaveNoneAndLeaveOthersTheirs) {
  DescribedCamera camera("<Integer Name=\"A\"><pInvalidator>B</pInvalidator><pValue>B</pValue></Integer>\n"
                         "<Integer Name=\"B\"><pInvalidator>A</pInvalidator><pValue>A</pValue></Integer>\n" +
                         MakeFeature("Free") + MakeRegister("FreeReg", 0x100));

  EXPECT_TRUE(camera.array->Invalidate("A").IsOK());

  std::int64_t value = 0;
  EXPECT_FALSE(camera.Integer("A").GetValue(value).IsOK());
  EXPECT_FALSE(camera.Integer("B").GetValue(value).IsOK());
  EXPECT_TRUE(camera.Integer("Free").SetValue(1).IsOK());
  EXPECT_EQ(camera.Peek(0x100, 1), std::vector<std::uint8_t>{1});
}

} // namespace
