#include "krdevice/krdeviceadapter.h"

#include "fakefeatures.h"
#include "fakelink.h"
#include "krdevice/krdevicegev.h"

#include <gmock/gmock.h>

namespace {

class KrDeviceAdapterTest : public testing::Test {
protected:
  KrDeviceAdapterTest() {
    KrStringList rates;
    rates.Add("Baud9600");
    rates.Add("Baud115200");
    mFeatures.enumerations["BaudRate"] = {rates, "Baud9600"};
    mFeatures.booleans["Loopback"] = true;
    mLink->features = &mFeatures;
    mLink->byteChannels = {{0, &mUart}, {2, &mBulk}};
  }

  FakeFeatures mFeatures;
  FakeByteChannel mUart;
  FakeByteChannel mBulk;
  FakeLink* mLink = new FakeLink; // The device's from here on.
  KrDeviceGEV mDevice{std::unique_ptr<FakeLink>(mLink), MakeDeviceFields()};
  KrDeviceAdapter mAdapter{mDevice};
};

} // namespace

TEST_F(KrDeviceAdapterTest, HasParameter_EveryTypeThatTheDescriptionNames_IsTrue) {
  EXPECT_TRUE(mAdapter.HasParameter("BaudRate"));
  EXPECT_TRUE(mAdapter.HasParameter("Loopback"));
  EXPECT_FALSE(mAdapter.HasParameter("Gain"));
}

TEST_F(KrDeviceAdapterTest, IsParameterAvailable_NamedButUnavailable_TellsTheTwoQueriesApart) {
  EXPECT_TRUE(mAdapter.IsParameterAvailable("BaudRate"));

  mFeatures.available = false;

  EXPECT_TRUE(mAdapter.HasParameter("BaudRate"));
  EXPECT_FALSE(mAdapter.IsParameterAvailable("BaudRate"));
}

TEST_F(KrDeviceAdapterTest, Enumeration_EntriesAndValue_AreTheDevices) {
  KrStringList entries;
  KrString value;

  EXPECT_TRUE(mAdapter.GetEnumEntries("BaudRate", entries).IsOK());
  EXPECT_TRUE(mAdapter.SetEnumValue("BaudRate", "Baud115200").IsOK());
  EXPECT_TRUE(mAdapter.GetEnumValue("BaudRate", value).IsOK());

  EXPECT_EQ(entries, mFeatures.enumerations["BaudRate"].entries);
  EXPECT_EQ(value, "Baud115200");
}

TEST_F(KrDeviceAdapterTest, Boolean_Value_IsTheDevices) {
  bool value = false;

  EXPECT_TRUE(mAdapter.GetBooleanValue("Loopback", value).IsOK());
  EXPECT_TRUE(mAdapter.SetBooleanValue("Loopback", false).IsOK());

  EXPECT_TRUE(value);
  EXPECT_FALSE(mFeatures.booleans["Loopback"]);
}

TEST_F(KrDeviceAdapterTest, DeviceRefuses_ItsResultComesAndWhatWasAskedForIsUnchanged) {
  mFeatures.refusal = {KrResult::Code::AccessDenied, "locked"};
  KrStringList entries;
  KrString value = "before";
  bool isOn = false;

  EXPECT_TRUE(mAdapter.GetEnumEntries("BaudRate", entries) == KrResult::Code::AccessDenied);
  EXPECT_TRUE(mAdapter.GetEnumValue("BaudRate", value) == KrResult::Code::AccessDenied);
  EXPECT_TRUE(mAdapter.SetEnumValue("BaudRate", "Baud9600") == KrResult::Code::AccessDenied);
  EXPECT_TRUE(mAdapter.GetBooleanValue("Loopback", isOn) == KrResult::Code::AccessDenied);
  EXPECT_EQ(mAdapter.SetBooleanValue("Loopback", true).GetDescription(), "locked");

  EXPECT_TRUE(entries.IsEmpty());
  EXPECT_EQ(value, "before");
  EXPECT_FALSE(isOn);
}

TEST_F(KrDeviceAdapterTest, LinkWithoutFeatures_EveryOperationIsNotSupportedAndNamesDeviceAndParameter) {
  mLink->features = nullptr;
  KrStringList entries;
  KrString value;
  bool isOn = false;
  const KrResult results[] = {
      mAdapter.GetEnumEntries("BaudRate", entries),  mAdapter.GetEnumValue("BaudRate", value),
      mAdapter.SetEnumValue("BaudRate", "Baud9600"), mAdapter.GetBooleanValue("BaudRate", isOn),
      mAdapter.SetBooleanValue("BaudRate", true),
  };

  for (const KrResult& result : results) {
    EXPECT_TRUE(result == KrResult::Code::NotSupported);
    EXPECT_THAT(result.GetDescription().ToUtf8(),
                testing::AllOf(testing::HasSubstr("\"BaudRate\""), testing::HasSubstr("Camera")));
  }
  EXPECT_FALSE(mAdapter.HasParameter("BaudRate"));
  EXPECT_FALSE(mAdapter.IsParameterAvailable("BaudRate"));
}

TEST_F(KrDeviceAdapterTest, GetDeviceText_ModelKnown_NamesModelAndDevice) {
  EXPECT_EQ(mAdapter.GetDeviceText(), "Model X 00:11:22:33:44:55");
}

TEST(KrDeviceAdapter, GetDeviceText_ModelUnknown_IsTheUniqueIDAlone) {
  KrDeviceGEV device(std::make_unique<FakeLink>(), MakeDeviceFields(""));

  EXPECT_EQ(KrDeviceAdapter(device).GetDeviceText(), "00:11:22:33:44:55");
}

TEST_F(KrDeviceAdapterTest, GetByteChannel_NumberOfADevicesLine_GivesThatLineAndNullForOthers) {
  EXPECT_EQ(mAdapter.GetByteChannel(0), &mUart);
  EXPECT_EQ(mAdapter.GetByteChannel(2), &mBulk);
  EXPECT_EQ(mAdapter.GetByteChannel(1), nullptr);
}
