// The parameters of a camera that is not ours, through its own description.

#include "gigevisionfixture.h"

#include "krdevice/krdeviceadapter.h"
#include "krdevice/krdevicegev.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

constexpr std::uint64_t kTriggerModeRegister = 0x300;
constexpr std::uint64_t kPixelFormatRegister = 0x128;

class GigEVisionParameters : public GigEVisionCameraTest {
protected:
  void SetUp() override {
    GigEVisionCameraTest::SetUp();
    if (HasFatalFailure())
      return;
    mDevice = OpenDevice(KrDeviceAccess::Control, mLink);
    ASSERT_NE(mDevice, nullptr);
    mAdapter = std::make_unique<KrDeviceAdapter>(*mDevice);
    const KrResult got = mDevice->GetParameters(mArray);
    ASSERT_TRUE(got.IsOK()) << got.GetDescription().CStr();
  }
  std::unique_ptr<KrDevice> OpenDevice(KrDeviceAccess aAccess, krsystem::IDeviceLink*& aLink) {
    const bool isMonitor = aAccess == KrDeviceAccess::Monitor;
    std::unique_ptr<krsystem::IDeviceLink> link;
    const KrResult result = Open(isMonitor ? krsystem::DeviceAccess::Monitor : krsystem::DeviceAccess::Control, link);
    EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
    if (!link)
      return nullptr;
    aLink = link.get();
    return std::make_unique<KrDeviceGEV>(std::move(link), std::get<krsystem::GEVFields>(mFound), aAccess);
  }
  static std::int64_t GetInteger(KrGenParameterArray& aArray, const char* aName) {
    std::int64_t value = -1;
    KrGenInteger* const integer = aArray.GetInteger(aName);
    const KrResult result = integer ? integer->GetValue(value) : KrResult(KrResult::Code::NotFound);
    EXPECT_TRUE(result.IsOK()) << aName << ": " << result.GetDescription().CStr();
    return value;
  }

  const krsystem::AnyDeviceFields& mFound = GigEVisionCameraTest::mDevice;
  krsystem::IDeviceLink* mLink = nullptr; // The device's.
  std::unique_ptr<KrDevice> mDevice;
  std::unique_ptr<KrDeviceAdapter> mAdapter;
  KrGenParameterArray* mArray = nullptr;
};

TEST_F(GigEVisionParameters, HasParameter_NamedInTheDescriptionOrNot_SaysSo) {
  EXPECT_TRUE(mAdapter->HasParameter("PixelFormat"));
  EXPECT_TRUE(mAdapter->IsParameterAvailable("PixelFormat"));
  EXPECT_FALSE(mAdapter->HasParameter("NoSuchFeature"));
  EXPECT_FALSE(mAdapter->IsParameterAvailable("NoSuchFeature"));
}

TEST_F(GigEVisionParameters, GetEnumEntries_PixelFormat_ListsThemInTheDescriptionsOrder) {
  KrStringList entries;

  const KrResult result = mAdapter->GetEnumEntries("PixelFormat", entries);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(std::vector<KrString>(entries.begin(), entries.end()),
              testing::ElementsAre("BayerBG8", "BayerGB8", "BayerGR8", "BayerRG8", "Mono8", "RGB8", "Mono16"));
}

TEST_F(GigEVisionParameters, SetEnumValue_AnotherEntry_ChangesTheDevice) {
  KrString entry;

  const KrResult result = mAdapter->SetEnumValue("PixelFormat", "Mono16");

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_TRUE(mAdapter->GetEnumValue("PixelFormat", entry).IsOK());
  EXPECT_EQ(entry, KrString("Mono16"));
  EXPECT_EQ(ReadRegister(*mLink, kPixelFormatRegister), 0x01100007u);
}

TEST_F(GigEVisionParameters, RegisterChangedByItsAddress_IsReadAnewOnceValuesAreForgotten) {
  KrString entry;
  ASSERT_TRUE(mAdapter->SetEnumValue("TriggerMode", "Off").IsOK());
  ASSERT_TRUE(WriteRegister(*mLink, kTriggerModeRegister, 1).IsOK());

  mArray->InvalidateCache();

  EXPECT_TRUE(mAdapter->GetEnumValue("TriggerMode", entry).IsOK());
  EXPECT_EQ(entry, KrString("On"));
}

TEST_F(GigEVisionParameters, SetBooleanValue_Toggled_ReadsBack) {
  bool value = false;

  const KrResult result = mAdapter->SetBooleanValue("TestBoolean", true);

  EXPECT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_TRUE(mAdapter->GetBooleanValue("TestBoolean", value).IsOK());
  EXPECT_TRUE(value);
  EXPECT_TRUE(mAdapter->SetBooleanValue("TestBoolean", false).IsOK());
  EXPECT_TRUE(mAdapter->GetBooleanValue("TestBoolean", value).IsOK());
  EXPECT_FALSE(value);
}

TEST_F(GigEVisionParameters, WrongAccesses_AreRefusedWithTheirCodesAndTheName) {
  KrString entry;
  KrStringList entries;
  bool value = false;
  const struct {
    const char* what;
    KrResult result;
    KrResult::Code code;
    const char* name;
  } rows[] = {
      {"an enumeration that is not there", mAdapter->GetEnumValue("NoSuchFeature", entry), KrResult::Code::NotFound,
       "NoSuchFeature"},
      {"entries of what is not there", mAdapter->GetEnumEntries("NoSuchFeature", entries), KrResult::Code::NotFound,
       "NoSuchFeature"},
      {"a boolean that is not there", mAdapter->SetBooleanValue("NoSuchFeature", true), KrResult::Code::NotFound,
       "NoSuchFeature"},
      {"an integer as enumeration", mAdapter->GetEnumValue("Width", entry), KrResult::Code::InvalidInput, "Width"},
      {"an enumeration as boolean", mAdapter->GetBooleanValue("PixelFormat", value), KrResult::Code::InvalidInput,
       "PixelFormat"},
      {"an entry that is not there", mAdapter->SetEnumValue("PixelFormat", "Mono99"), KrResult::Code::InvalidInput,
       "Mono99"},
      {"a width beyond the sensor's", mArray->GetInteger("Width")->SetValue(1 << 20), KrResult::Code::OutOfRange,
       "Width"},
      {"a register that is read-only", mArray->GetInteger("SensorWidth")->SetValue(1), KrResult::Code::AccessDenied,
       "SensorWidth"},
  };

  for (const auto& row : rows) {
    EXPECT_EQ(row.result, row.code) << row.what;
    EXPECT_THAT(row.result.GetDescription().ToUtf8(), testing::HasSubstr(row.name)) << row.what;
  }
}

TEST_F(GigEVisionParameters, WholeDescription_HasNoFaultsAndEveryReadableParameterReads) {
  KrStringList faults;
  int read = 0;

  EXPECT_TRUE(mArray->GetFaults(faults).IsOK());
  for (std::size_t i = 0; i < mArray->GetCount(); ++i) {
    KrGenParameter& parameter = *(*mArray)[i];
    if (!parameter.IsReadable() || parameter.GetType() == KrGenType::Command)
      continue;
    KrString text;
    const KrResult result = parameter.ToString(text);
    EXPECT_TRUE(result.IsOK()) << parameter.GetName().CStr() << ": " << result.GetDescription().CStr();
    ++read;
  }

  EXPECT_EQ(faults.GetCount(), 0u) << (faults.IsEmpty() ? "" : faults.begin()->CStr());
  EXPECT_GE(read, 20);
  KrString vendor;
  EXPECT_TRUE(mArray->GetString("DeviceVendorName")->GetValue(vendor).IsOK());
  EXPECT_EQ(vendor, "Aravis");
}

TEST_F(GigEVisionParameters, ComputedParameters_FollowWhatTheyAreComputedFrom) {
  ASSERT_TRUE(mArray->GetInteger("Width")->SetValue(640).IsOK());
  ASSERT_TRUE(mArray->GetInteger("Height")->SetValue(480).IsOK());
  ASSERT_TRUE(mArray->GetEnum("PixelFormat")->SetEntry("Mono8").IsOK());
  EXPECT_EQ(GetInteger(*mArray, "PayloadSize"), 640 * 480);

  EXPECT_TRUE(mArray->GetEnum("PixelFormat")->SetEntry("Mono16").IsOK());
  EXPECT_TRUE(mArray->GetFloat("AcquisitionFrameRate")->SetValue(50).IsOK());

  EXPECT_EQ(GetInteger(*mArray, "PayloadSize"), 2 * 640 * 480);
  EXPECT_EQ(ReadRegister(*mLink, kFramePeriodRegister), 20000u);
}

TEST_F(GigEVisionParameters, SecondDevice_OpenAsMonitor_ReadsWhatTheFirstHasWritten) {
  krsystem::IDeviceLink* link = nullptr;
  const std::unique_ptr<KrDevice> monitor = OpenDevice(KrDeviceAccess::Monitor, link);
  ASSERT_NE(monitor, nullptr);

  EXPECT_TRUE(mArray->GetInteger("Width")->SetValue(642).IsOK());

  KrGenParameterArray* seen = nullptr;
  const KrResult got = monitor->GetParameters(seen);
  ASSERT_TRUE(got.IsOK()) << got.GetDescription().CStr();
  EXPECT_EQ(GetInteger(*seen, "Width"), 642);
  EXPECT_EQ(seen->GetInteger("Width")->SetValue(320), KrResult::Code::AccessDenied);
  EXPECT_TRUE(mArray->GetInteger("Width")->SetValue(320).IsOK());
  seen->InvalidateCache();
  EXPECT_EQ(GetInteger(*seen, "Width"), 320);
}

TEST_F(GigEVisionParameters, GivenBackDevice_KeepsItsNamesAndFailsAtOnce) {
  KrString entry;

  mLink->GiveBackControl();

  EXPECT_TRUE(mAdapter->HasParameter("Width"));
  EXPECT_EQ(mAdapter->GetEnumValue("PixelFormat", entry), KrResult::Code::ConnectionLost);
  EXPECT_EQ(mArray->GetInteger("Width")->SetValue(320), KrResult::Code::ConnectionLost);
}

TEST_F(GigEVisionParameters, Accesses_CameraSilent_FailAtOnceAfterTheFirst) {
  KrString entry;
  std::array<std::uint8_t, 4> bytes{};
  mCamera->Pause();
  ASSERT_EQ(mLink->GetRegisterPort().Read(kWidthRegister, bytes.data(), bytes.size(), 50),
            KrResult::Code::TimeLimitExceeded);

  const KrResult result = mAdapter->GetEnumValue("PixelFormat", entry);

  // The link may find out meanwhile that the camera is gone, which is no wait either.
  EXPECT_THAT(result.GetCode(), testing::AnyOf(KrResult::Code::TimeLimitExceeded, KrResult::Code::ConnectionLost));
  if (result == KrResult::Code::TimeLimitExceeded) {
    EXPECT_THAT(result.GetDescription().ToUtf8(), testing::HasSubstr("a moment ago")) << "it did not wait itself";
    EXPECT_THAT(result.GetDescription().ToUtf8(), testing::HasSubstr("The device at "));
  }
  mCamera->Resume();
}

} // namespace
