#include "featuredescription.h"

#include "hostfeatureport.h"
#include "parametertext.h"

#include <array>

using krdevice::FeatureModule;
using krsystem::HostFeatureEntry;
using krsystem::HostFeatureKind;
using krsystem::HostFeatures;
using krsystem::MakeHostCommand;
using krsystem::MakeSetFeature;
using krsystem::MakeShownFeature;

namespace {

constexpr std::array kModes = {HostFeatureEntry{"Slow", "Takes its time.", 3}, HostFeatureEntry{"Fast", "", 9}};

class FeatureDescriptionTest : public testing::Test {
protected:
  void Open(const FeatureModule& aModule) {
    KrGenDescription description;
    const std::string text = krdevice::WriteFeatureDescription(aModule, mFeatures);
    ASSERT_TRUE(KrGenDescription::ReadFromMemory(text, "test", description).IsOK());
    const KrResult opened = KrGenParameterArray::Open(description, mPort, {}, mArray);
    ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
  }

  std::int64_t mRatio = 25;
  std::int64_t mMode = 9;
  bool mIsRunning = false;
  std::int64_t mCount = 4;
  const HostFeatures mFeatures = {
      MakeSetFeature(
          {.name = "PacketRatio",
           .category = "Receiver",
           .tip = "Less is <more> & \"better\".",
           .visibility = "Guru",
           .isStandard = true,
           .isLocked = true,
           .minimum = 5,
           .maximum = 200,
           .unit = "%"},
          [this] { return mRatio; },
          [this](std::int64_t aRatio) {
            mRatio = aRatio;
            return KrResult();
          }),
      MakeSetFeature(
          {.name = "Mode",
           .category = "Receiver",
           .kind = HostFeatureKind::Enumeration,
           .tip = "A mode.",
           .entries = kModes},
          [this] { return mMode; },
          [this](std::int64_t aMode) {
            mMode = aMode;
            return KrResult();
          }),
      MakeShownFeature({.name = "IsRunning",
                        .category = "State",
                        .kind = HostFeatureKind::Boolean,
                        .tip = "Whether.",
                        .pollingMs = 100},
                       [this] { return mIsRunning; }),
      MakeShownFeature({.name = "Count", .category = "State", .tip = "A count.", .isCounter = true, .pollingMs = 100},
                       [this] { return mCount; }),
      MakeHostCommand({.name = "Reset", .category = "State", .kind = HostFeatureKind::Command, .tip = "Resets."},
                      [this] {
                        mCount = 0;
                        return KrResult();
                      }),
  };
  krdevice::HostFeaturePort mPort{mFeatures};
  std::unique_ptr<KrGenParameterArray> mArray;
};

} // namespace

TEST_F(FeatureDescriptionTest, Array_OfATable_HasItsFeaturesWithoutFaults) {
  ASSERT_NO_FATAL_FAILURE(Open({.model = "Test", .tip = "a \"test\""}));

  ExpectAllReadable(*mArray);
  EXPECT_EQ(mArray->GetCount(), mFeatures.size());
  EXPECT_EQ(ReadText(*mArray, "Mode"), KrString("Fast"));
  EXPECT_NE(mArray->GetCategory("Receiver"), nullptr);
  EXPECT_NE(mArray->GetCategory("State"), nullptr);
}

TEST_F(FeatureDescriptionTest, Number_OfATable_HasRangeUnitTextsAndVisibility) {
  ASSERT_NO_FATAL_FAILURE(Open({.model = "Test", .tip = "a test"}));
  KrGenInteger* const ratio = mArray->GetInteger("PacketRatio");
  ASSERT_NE(ratio, nullptr);
  std::int64_t minimum = 0;
  std::int64_t maximum = 0;
  KrString unit;
  KrString tip;
  KrString name;
  KrGenVisibility visibility = KrGenVisibility::Beginner;
  KrGenNameSpace space = KrGenNameSpace::Custom;

  ASSERT_TRUE(ratio->GetMin(minimum).IsOK() && ratio->GetMax(maximum).IsOK() && ratio->GetUnit(unit).IsOK());
  ASSERT_TRUE(ratio->GetToolTip(tip).IsOK() && ratio->GetDisplayName(name).IsOK());
  ASSERT_TRUE(ratio->GetVisibility(visibility).IsOK() && ratio->GetNameSpace(space).IsOK());

  EXPECT_EQ(minimum, 5);
  EXPECT_EQ(maximum, 200);
  EXPECT_EQ(unit, KrString("%"));
  EXPECT_EQ(tip, KrString("Less is <more> & \"better\"."));
  EXPECT_EQ(name, KrString("Packet Ratio"));
  EXPECT_EQ(visibility, KrGenVisibility::Guru);
  EXPECT_EQ(space, KrGenNameSpace::Standard);
  EXPECT_EQ(ratio->SetValue(201), KrResult::Code::OutOfRange);
  EXPECT_EQ(mRatio, 25);
}

TEST_F(FeatureDescriptionTest, TextThatXmlCannotHold_HasBlanksInItsPlace) {
  const HostFeatures features = {MakeShownFeature(
      {.name = "Speed", .category = "State", .tip = "A tip\x01of a\x1b[1m strange \xff kind.", .unit = "m\x02s"},
      [] { return 1; })};
  krdevice::HostFeaturePort port{features};
  KrGenDescription description;
  const std::string text = krdevice::WriteFeatureDescription({.model = "Test", .tip = "a\x07test"}, features);
  KrString tip;
  KrString unit;

  ASSERT_TRUE(KrGenDescription::ReadFromMemory(text, "test", description).IsOK());
  ASSERT_TRUE(KrGenParameterArray::Open(description, port, {}, mArray).IsOK());
  ASSERT_TRUE(mArray->Get("Speed")->GetToolTip(tip).IsOK());
  ASSERT_TRUE(mArray->GetInteger("Speed")->GetUnit(unit).IsOK());

  EXPECT_EQ(tip, KrString("A tip of a [1m strange   kind."));
  EXPECT_EQ(unit, KrString("m s"));
  mArray.reset(); // The port is this test's.
}

TEST_F(FeatureDescriptionTest, LockedFeature_WhileTheLockIsOn_CannotBeWritten) {
  ASSERT_NO_FATAL_FAILURE(Open({.model = "Test", .tip = "a test", .lock = "IsRunning"}));
  EXPECT_TRUE(IsWritable(*mArray, "PacketRatio"));

  mIsRunning = true;

  EXPECT_FALSE(IsWritable(*mArray, "PacketRatio"));
  EXPECT_TRUE(IsWritable(*mArray, "Mode"));
  EXPECT_FALSE(mArray->GetInteger("PacketRatio")->SetValue(30).IsOK());
  EXPECT_EQ(mRatio, 25);
}

TEST_F(FeatureDescriptionTest, Settings_Stored_AreTheOnesThatAreSet) {
  ASSERT_NO_FATAL_FAILURE(Open({.model = "Test", .tip = "a test"}));
  bool isStreamable = false;

  ASSERT_TRUE(mArray->Get("PacketRatio")->IsStreamable(isStreamable).IsOK());
  EXPECT_TRUE(isStreamable);
  ASSERT_TRUE(mArray->Get("Count")->IsStreamable(isStreamable).IsOK());
  EXPECT_FALSE(isStreamable);
}

TEST_F(FeatureDescriptionTest, ResetCommand_Executed_ChangesCountersForTheirSinks) {
  ASSERT_NO_FATAL_FAILURE(Open({.model = "Test", .tip = "a test", .lock = {}, .reset = "Reset"}));
  ASSERT_EQ(ReadNumber(*mArray, "Count"), 4);

  ASSERT_TRUE(mArray->GetCommand("Reset")->Execute().IsOK());

  EXPECT_EQ(ReadNumber(*mArray, "Count"), 0);
}
