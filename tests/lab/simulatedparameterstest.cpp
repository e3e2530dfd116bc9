// The parameters of simulated cameras: their own descriptions in the parameter array, compared with the table from
// which camera and description are made.

#include "labfixture.h"

#include "krdevice/krstream.h"
#include "krtransport/krsimulatedfaults.h"
#include "simulation/featuretable.h"
#include "testclocks.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <limits>

using namespace krtransport::cameraregister;
using krtransport::Feature;
using krtransport::FeatureKind;
using krtransport::RegisterAccess;

namespace {

constexpr const char* kMACs[] = {kMonoMAC, kColourMAC, kRangeMAC};

constexpr std::pair<FeatureKind, KrGenType> kTypes[] = {
    {FeatureKind::Text, KrGenType::String},
    {FeatureKind::Integer, KrGenType::Integer},
    {FeatureKind::Float, KrGenType::Float},
    {FeatureKind::Boolean, KrGenType::Boolean},
    {FeatureKind::Enumeration, KrGenType::Enumeration},
    {FeatureKind::Command, KrGenType::Command},
};

KrString ToKrString(std::string_view aText) {
  return std::string(aText);
}

class SimulatedParametersTest : public LabTest {
protected:
  explicit SimulatedParametersTest(std::shared_ptr<krtransport::ICameraClock> aClock = nullptr)
      : LabTest(std::move(aClock)) {}

  void OpenCamera(const char* aMAC = kMonoMAC) {
    mDevice.reset();
    ASSERT_TRUE(Open(aMAC, mDevice).IsOK());
    const KrResult got = mDevice->GetParameters(mArray);
    ASSERT_TRUE(got.IsOK()) << got.GetDescription().CStr();
  }
  // What is available on a condition alone, is.
  void MakeAllAvailable() {
    ASSERT_TRUE(mArray->GetEnum("AcquisitionMode")->SetEntry("MultiFrame").IsOK());
    ASSERT_TRUE(mArray->GetBoolean("ChunkModeActive")->SetValue(true).IsOK());
  }
  std::uint32_t ReadFeature(std::string_view aName) {
    std::uint32_t value = 0;
    EXPECT_TRUE(ReadInteger(*mDevice, krtransport::FindFeature(aName)->address, value).IsOK()) << aName;
    return value;
  }
  template <typename Value, typename Parameter>
  static Value Get(Parameter* aParameter, KrResult (Parameter::*aGetter)(Value&)) {
    Value value{};
    const KrResult result = aParameter ? (aParameter->*aGetter)(value) : KrResult(KrResult::Code::NotFound);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    return value;
  }
  std::int64_t GetInteger(const char* aName) { return Get(mArray->GetInteger(aName), &KrGenInteger::GetValue); }
  std::string GetEntry(const char* aName) { return Get(mArray->GetEnum(aName), &KrGenEnum::GetEntry).ToUtf8(); }
  double GetFloat(const char* aName) { return Get(mArray->GetFloat(aName), &KrGenFloat::GetValue); }

  void CompareRange(const Feature& aFeature);

  std::unique_ptr<KrDevice> mDevice;
  KrGenParameterArray* mArray = nullptr;
};

void SimulatedParametersTest::CompareRange(const Feature& aFeature) {
  const KrString name = ToKrString(aFeature.name);
  if (aFeature.kind == FeatureKind::Integer) {
    KrGenInteger* const integer = mArray->GetInteger(name);
    const std::int64_t maximum = aFeature.limit.empty() ? static_cast<std::int64_t>(aFeature.maximum)
                                                        : std::int64_t{ReadFeature(aFeature.limit)} -
                                                              std::int64_t{ReadFeature(aFeature.limitLess)};
    EXPECT_EQ(Get(integer, &KrGenInteger::GetMin), static_cast<std::int64_t>(aFeature.minimum));
    EXPECT_EQ(Get(integer, &KrGenInteger::GetMax), maximum);
    EXPECT_EQ(Get(integer, &KrGenInteger::GetIncrement), aFeature.increment);
  } else if (aFeature.kind == FeatureKind::Float) {
    EXPECT_EQ(Get(mArray->GetFloat(name), &KrGenFloat::GetMin), aFeature.minimum);
    EXPECT_EQ(Get(mArray->GetFloat(name), &KrGenFloat::GetMax), aFeature.maximum);
  }
}

} // namespace

TEST(FeatureTable, EveryFeature_NamesOtherFeaturesThatExist) {
  for (const Feature& feature : krtransport::ListFeatures()) {
    SCOPED_TRACE(feature.name);
    EXPECT_EQ(krtransport::FindFeature(feature.name), &feature) << "a name that two features have";
    EXPECT_TRUE(feature.selector.empty() || krtransport::FindFeature(feature.selector));
    EXPECT_TRUE(feature.prerequisite.empty() || krtransport::FindFeature(feature.prerequisite));
    EXPECT_TRUE(feature.limit.empty() || krtransport::FindFeature(feature.limitLess));
  }
}

TEST_F(SimulatedParametersTest, EveryCamera_ItsDescription_HasNoFaults) {
  for (const char* mac : kMACs) {
    SCOPED_TRACE(mac);
    OpenCamera(mac);
    KrStringList faults;

    EXPECT_TRUE(mArray->GetFaults(faults).IsOK());

    EXPECT_EQ(faults.GetCount(), 0u) << (faults.IsEmpty() ? "" : faults.begin()->CStr());
    EXPECT_GT(mArray->GetCount(), krtransport::ListFeatures().size()) << "the chunks are features as well";
  }
}

TEST_F(SimulatedParametersTest, EveryFeature_OfEveryCamera_HasTheTablesTypeCategoryAndUnit) {
  for (const char* mac : kMACs) {
    OpenCamera(mac);
    for (const Feature& feature : krtransport::ListFeatures()) {
      SCOPED_TRACE(feature.name);
      KrGenParameter* const parameter = mArray->Get(ToKrString(feature.name));
      ASSERT_NE(parameter, nullptr);

      EXPECT_EQ(parameter->GetType(),
                std::ranges::find(kTypes, feature.kind, &std::pair<FeatureKind, KrGenType>::first)->second);
      EXPECT_EQ(parameter->GetCategory(), ToKrString("Root\\" + std::string(feature.category)));
      if (auto* const number = dynamic_cast<KrGenFloat*>(parameter)) {
        EXPECT_EQ(Get(number, &KrGenFloat::GetUnit), ToKrString(feature.unit));
      }
    }
  }
}

TEST_F(SimulatedParametersTest, EveryFeature_OfEveryCamera_IsReadableAndWritableAsTheTableSays) {
  for (const char* mac : kMACs) {
    OpenCamera(mac);
    MakeAllAvailable();
    for (const Feature& feature : krtransport::ListFeatures()) {
      SCOPED_TRACE(feature.name);
      KrGenParameter& parameter = *mArray->Get(ToKrString(feature.name));
      const bool isReadable = feature.access != RegisterAccess::WriteOnly;

      EXPECT_EQ(parameter.IsReadable(), isReadable);
      EXPECT_EQ(parameter.IsWritable(), feature.access != RegisterAccess::ReadOnly);
      KrString text;
      if (feature.kind != FeatureKind::Command) {
        EXPECT_EQ(parameter.ToString(text).IsOK(), isReadable);
      }
    }
  }
}

TEST_F(SimulatedParametersTest, EveryRange_OfEveryCamera_IsTheTables) {
  for (const char* mac : kMACs) {
    OpenCamera(mac);
    MakeAllAvailable();
    int ranges = 0;
    for (const Feature& feature : krtransport::ListFeatures()) {
      if (feature.access == RegisterAccess::ReadOnly ||
          (feature.kind != FeatureKind::Integer && feature.kind != FeatureKind::Float))
        continue;
      SCOPED_TRACE(feature.name);
      ++ranges;
      CompareRange(feature);
    }
    EXPECT_GE(ranges, 10);
  }
}

TEST_F(SimulatedParametersTest, EveryEnumeration_OfEveryCamera_HasTheEntriesThatTheCameraTakes) {
  for (const char* mac : kMACs) {
    OpenCamera(mac);
    MakeAllAvailable();
    for (const Feature& feature : krtransport::ListFeatures()) {
      if (feature.kind != FeatureKind::Enumeration)
        continue;
      SCOPED_TRACE(feature.name);
      KrGenEnum& enumeration = *mArray->GetEnum(ToKrString(feature.name));
      const KrString before = Get(&enumeration, &KrGenEnum::GetEntry);
      KrStringList entries;
      ASSERT_TRUE(enumeration.GetAvailableEntries(entries).IsOK());
      EXPECT_EQ(entries.GetCount(), enumeration.GetEntriesCount());

      for (const KrString& entry : entries) {
        EXPECT_TRUE(enumeration.SetEntry(entry).IsOK()) << entry.CStr();
        EXPECT_EQ(Get(&enumeration, &KrGenEnum::GetEntry), entry);
      }
      EXPECT_TRUE(enumeration.SetEntry(before).IsOK());
    }
  }
}

TEST_F(SimulatedParametersTest, Limits_OfSizeAndOffset_FollowEachOther) {
  OpenCamera();

  EXPECT_TRUE(mArray->GetInteger("Width")->SetValue(640).IsOK());
  EXPECT_EQ(Get(mArray->GetInteger("OffsetX"), &KrGenInteger::GetMax), 640);
  EXPECT_TRUE(mArray->GetInteger("OffsetX")->SetValue(600).IsOK());

  EXPECT_EQ(Get(mArray->GetInteger("Width"), &KrGenInteger::GetMax), 680);
  EXPECT_EQ(mArray->GetInteger("Width")->SetValue(684), KrResult::Code::OutOfRange);
  EXPECT_EQ(mArray->GetInteger("Width")->SetValue(641), KrResult::Code::OutOfRange);
  EXPECT_EQ(ReadFeature("Width"), 640u);
  EXPECT_EQ(ReadFeature("OffsetX"), 600u);
}

TEST_F(SimulatedParametersTest, WhatTheCameraComputes_FollowsWhatWasWritten) {
  OpenCamera();
  ASSERT_EQ(GetInteger("PayloadSize"), 1280 * 960);
  ASSERT_NEAR(GetFloat("ResultingFrameRate"), 30.0, 1e-3);

  EXPECT_TRUE(mArray->GetEnum("PixelFormat")->SetEntry("Mono16").IsOK());
  EXPECT_TRUE(mArray->GetFloat("ExposureTime")->SetValue(100000).IsOK());

  EXPECT_EQ(GetInteger("PayloadSize"), 2 * 1280 * 960);
  EXPECT_EQ(GetFloat("ResultingFrameRate"), 10.0);
}

TEST_F(SimulatedParametersTest, TriggerSelector_EachEntry_HasValuesOfItsOwn) {
  OpenCamera();
  KrGenEnum& selector = *mArray->GetEnum("TriggerSelector");

  EXPECT_TRUE(selector.SetEntry("AcquisitionStart").IsOK());
  EXPECT_TRUE(mArray->GetEnum("TriggerMode")->SetEntry("On").IsOK());
  EXPECT_TRUE(mArray->GetFloat("TriggerDelay")->SetValue(25).IsOK());
  EXPECT_TRUE(selector.SetEntry("FrameStart").IsOK());
  EXPECT_EQ(GetEntry("TriggerMode"), "Off");
  EXPECT_EQ(GetFloat("TriggerDelay"), 0.0);
  EXPECT_TRUE(selector.SetEntry("AcquisitionStart").IsOK());

  EXPECT_EQ(GetEntry("TriggerMode"), "On");
  EXPECT_EQ(GetFloat("TriggerDelay"), 25.0);
  KrGenParameterList selected;
  EXPECT_TRUE(selector.GetSelectedParameters(selected).IsOK());
  EXPECT_EQ(selected.GetCount(), 5u);
}

TEST_F(SimulatedParametersTest, ChunkSelector_EachEntry_HasAValueOfItsOwn) {
  OpenCamera();
  MakeAllAvailable();
  KrGenEnum& selector = *mArray->GetEnum("ChunkSelector");
  KrGenBoolean* const enable = mArray->GetBoolean("ChunkEnable");

  EXPECT_TRUE(selector.SetEntry("ExposureTime").IsOK());
  EXPECT_TRUE(enable->SetValue(true).IsOK());

  for (const auto& [entry, isEnabled] :
       {std::pair{"FrameID", false}, std::pair{"ExposureTime", true}, std::pair{"Timestamp", false}}) {
    EXPECT_TRUE(selector.SetEntry(entry).IsOK());
    EXPECT_EQ(Get(enable, &KrGenBoolean::GetValue), isEnabled) << entry;
  }
}

TEST_F(SimulatedParametersTest, ConditionalFeatures_AreAvailableWhileTheirConditionHolds) {
  struct Row {
    const char* feature;
    const char* condition;
    const char* met;
    const char* unmet;
  };
  constexpr Row kRows[] = {
      {"AcquisitionFrameCount", "AcquisitionMode", "MultiFrame", "SingleFrame"},
      {"AcquisitionFrameRate", "AcquisitionFrameRateEnable", "1", "0"},
      {"ChunkEnable", "ChunkModeActive", "1", "0"},
      {"ChunkSelector", "ChunkModeActive", "1", "0"},
  };
  OpenCamera();

  for (const Row& row : kRows) {
    SCOPED_TRACE(row.feature);
    for (const auto& [setting, isMet] : {std::pair{row.unmet, false}, std::pair{row.met, true}, {row.unmet, false}}) {
      EXPECT_TRUE(mArray->Get(row.condition)->FromString(setting).IsOK());
      EXPECT_EQ(mArray->Get(row.feature)->IsAvailable(), isMet);
      EXPECT_EQ(mArray->Get(row.feature)->IsReadable(), isMet);
      EXPECT_EQ(mArray->Get(row.feature)->IsWritable(), isMet);
    }
  }
}

TEST_F(SimulatedParametersTest, LockedFeatures_FromStartToStop_CannotBeWritten) {
  OpenCamera();
  MakeAllAvailable();
  KrStream stream(*mDevice);
  const auto expectWritable = [this](bool aIsWritable) {
    for (const Feature& feature : krtransport::ListFeatures()) {
      if (feature.isLocked) {
        EXPECT_EQ(mArray->Get(ToKrString(feature.name))->IsWritable(), aIsWritable) << feature.name;
      }
    }
  };
  expectWritable(true);

  ASSERT_TRUE(stream.Start().IsOK());
  expectWritable(false);
  EXPECT_EQ(GetInteger("TLParamsLocked"), 1);
  EXPECT_EQ(mArray->GetInteger("Width")->SetValue(640), KrResult::Code::AccessDenied);
  EXPECT_TRUE(mArray->GetFloat("Gain")->SetValue(1.5).IsOK()) << "is not locked";
  stream.Stop();

  expectWritable(true);
  EXPECT_EQ(GetInteger("TLParamsLocked"), 0);
  EXPECT_TRUE(mArray->GetInteger("Width")->SetValue(640).IsOK());
}

TEST_F(SimulatedParametersTest, SecondDevice_OpenAsMonitor_ReadsWhatTheFirstHasWritten) {
  OpenCamera();
  std::unique_ptr<KrDevice> monitor;
  ASSERT_TRUE(Open(kMonoMAC, monitor, KrDeviceAccess::Monitor).IsOK());

  EXPECT_TRUE(mArray->GetInteger("Width")->SetValue(640).IsOK());

  KrGenParameterArray* const seen = monitor->GetParameters();
  ASSERT_NE(seen, nullptr);
  EXPECT_EQ(Get(seen->GetInteger("Width"), &KrGenInteger::GetValue), 640);
  EXPECT_FALSE(seen->Get("Width")->IsWritable());
  EXPECT_EQ(seen->GetInteger("Width")->SetValue(320), KrResult::Code::AccessDenied);
}

TEST_F(SimulatedParametersTest, OpenedAnewAfterALoss_HasParametersAnew) {
  OpenCamera();
  ASSERT_TRUE(mArray->GetInteger("Width")->SetValue(640).IsOK());
  ASSERT_TRUE(mLab->Lose(kMonoMAC).IsOK());
  EXPECT_EQ(mArray->GetInteger("Width")->SetValue(320), KrResult::Code::ConnectionLost);
  ASSERT_TRUE(mLab->Restore(kMonoMAC).IsOK());

  OpenCamera();

  EXPECT_EQ(GetInteger("Width"), 640);
  EXPECT_TRUE(mArray->GetInteger("Width")->SetValue(320).IsOK());
}

TEST_F(SimulatedParametersTest, SilentCamera_AfterTheFirstAccess_FailsAtOnce) {
  OpenCamera();
  mLab->GetFaults(kMonoMAC)->SilenceRegisters();
  std::int64_t value = 0;

  const KrResult first = mArray->GetInteger("SimulatedMissedTriggers")->GetValue(value);
  const KrResult second = mArray->GetInteger("SimulatedMissedTriggers")->GetValue(value);

  EXPECT_EQ(first, KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(first.GetDescription().ToUtf8(), testing::HasSubstr("in time"));
  EXPECT_EQ(second, KrResult::Code::TimeLimitExceeded);
  EXPECT_THAT(second.GetDescription().ToUtf8(), testing::HasSubstr("a moment ago")) << "it did not wait itself";

  mLab->GetFaults(kMonoMAC)->EndRegisterFaults();
  EXPECT_TRUE(WaitUntil([&] { return mArray->GetInteger("SimulatedMissedTriggers")->GetValue(value).IsOK(); }));
}

namespace {

class TimedParametersTest : public SimulatedParametersTest {
protected:
  explicit TimedParametersTest(std::shared_ptr<ManualClock> aClock = std::make_shared<ManualClock>())
      : SimulatedParametersTest(aClock), mClock(std::move(aClock)) {}

  const std::shared_ptr<ManualClock> mClock;
};

class UpdateCounter : public KrGenEventSink {
public:
  void OnParameterUpdate(KrGenParameter*) override { ++updates; }

  std::atomic<int> updates = 0;
};

constexpr std::uint64_t kMillisecondNs = 1000000;

} // namespace

TEST_F(TimedParametersTest, DeviceTemperature_GoesUpAndDownWithTheCamerasClock) {
  OpenCamera();

  EXPECT_EQ(GetFloat("DeviceTemperature"), 41.0) << "the clock begins at one second";
  mClock->Advance(3500 * kMillisecondNs);
  EXPECT_EQ(GetFloat("DeviceTemperature"), 44.5);
  mClock->Advance(2500 * kMillisecondNs);

  EXPECT_EQ(GetFloat("DeviceTemperature"), 43.0);
  EXPECT_FALSE(mArray->Get("DeviceTemperature")->IsWritable());
}

TEST_F(TimedParametersTest, DeviceTemperature_WhenItsPollingTimeHasPassed_IsToldAsChanged) {
  OpenCamera();
  UpdateCounter counter;
  KrGenFloat& temperature = *mArray->GetFloat("DeviceTemperature");
  ASSERT_TRUE(temperature.RegisterEventSink(&counter).IsOK());

  EXPECT_TRUE(WaitUntil([&] {
    mClock->Advance(kMillisecondNs);
    EXPECT_TRUE(mArray->Poll().IsOK());
    return counter.updates > 0;
  }));
  EXPECT_TRUE(temperature.UnregisterEventSink(&counter).IsOK());
}

TEST_F(TimedParametersTest, SimulatedCalibration_Executed_IsDoneAfterHalfASecond) {
  OpenCamera();
  KrGenCommand& calibration = *mArray->GetCommand("SimulatedCalibration");
  EXPECT_TRUE(Get(&calibration, &KrGenCommand::IsDone));

  EXPECT_TRUE(calibration.Execute().IsOK());

  EXPECT_FALSE(Get(&calibration, &KrGenCommand::IsDone));
  mClock->Advance(499 * kMillisecondNs);
  EXPECT_FALSE(Get(&calibration, &KrGenCommand::IsDone));
  mClock->Advance(kMillisecondNs);
  EXPECT_TRUE(Get(&calibration, &KrGenCommand::IsDone));
}

TEST_F(SimulatedParametersTest, SimulatedFaultyValue_EachFault_FailsAsOrdered) {
  struct Row {
    const char* fault;
    bool isReadingOK;
    bool isWritingOK;
  };
  constexpr Row kRows[] = {
      {"Reading", false, true}, {"Writing", true, false}, {"Both", false, false}, {"Off", true, true}};
  OpenCamera();
  KrGenInteger& faulty = *mArray->GetInteger("SimulatedFaultyValue");

  for (const Row& row : kRows) {
    SCOPED_TRACE(row.fault);
    std::int64_t value = 0;
    ASSERT_TRUE(mArray->GetEnum("SimulatedFault")->SetEntry(row.fault).IsOK());

    const KrResult read = faulty.GetValue(value);
    const KrResult written = faulty.SetValue(5);

    EXPECT_EQ(read, row.isReadingOK ? KrResult::Code::OK : KrResult::Code::ProtocolError);
    EXPECT_EQ(written, row.isWritingOK ? KrResult::Code::OK : KrResult::Code::ProtocolError);
    if (!row.isWritingOK) {
      EXPECT_THAT(written.GetDescription().ToUtf8(), testing::HasSubstr("local problem"));
    }
  }
}
