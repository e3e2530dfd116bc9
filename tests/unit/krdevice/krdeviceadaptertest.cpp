#include "krdevice/krdeviceadapter.h"

#include "describedlink.h"
#include "fakebytechannel.h"
#include "krdevice/krdevicegev.h"

#include <gmock/gmock.h>

namespace {

constexpr std::uint64_t kRate = 0x20;
constexpr std::uint64_t kLoopback = 0x24;
constexpr std::uint64_t kIsThere = 0x28;

std::string MakeNodes() {
  return R"(
    <Enumeration Name="BaudRate"><pIsAvailable>IsThere</pIsAvailable>
      <EnumEntry Name="Baud9600"><Value>1</Value></EnumEntry>
      <EnumEntry Name="Baud115200"><Value>2</Value></EnumEntry>
      <EnumEntry Name="Baud921600"><pIsImplemented>Never</pIsImplemented><Value>3</Value></EnumEntry>
      <pValue>RateReg</pValue></Enumeration>
    <Boolean Name="Loopback"><pValue>LoopbackReg</pValue></Boolean>
    <Integer Name="Never"><Value>0</Value></Integer>
  )" + MakeIntReg("RateReg", "0x20") +
         MakeIntReg("LoopbackReg", "0x24") + MakeIntReg("IsThere", "0x28", "NoCache");
}

class KrDeviceAdapterTest : public testing::Test {
protected:
  KrDeviceAdapterTest() {
    mLink->Poke(kRate, 1);
    mLink->Poke(kLoopback, 1);
    mLink->Poke(kIsThere, 1);
    mLink->byteChannels = {{0, mUart}, {2, mBulk}};
  }

  std::shared_ptr<FakeByteChannel> mUart = std::make_shared<FakeByteChannel>();
  std::shared_ptr<FakeByteChannel> mBulk = std::make_shared<FakeByteChannel>();
  DescribedLink* mLink = new DescribedLink(MakeNodes()); // The device's from here on.
  KrDeviceGEV mDevice{std::unique_ptr<FakeLink>(mLink), MakeDeviceFields()};
  KrDeviceAdapter mAdapter{mDevice};
};

} // namespace

TEST_F(KrDeviceAdapterTest, HasParameter_EveryTypeThatTheDescriptionNames_IsTrue) {
  EXPECT_TRUE(mAdapter.HasParameter("BaudRate"));
  EXPECT_TRUE(mAdapter.HasParameter("Loopback"));
  EXPECT_FALSE(mAdapter.HasParameter("Gain"));
  EXPECT_FALSE(mAdapter.HasParameter(""));
}

TEST_F(KrDeviceAdapterTest, IsParameterAvailable_NamedButUnavailable_TellsTheTwoQueriesApart) {
  EXPECT_TRUE(mAdapter.IsParameterAvailable("BaudRate"));
  EXPECT_FALSE(mAdapter.IsParameterAvailable("Gain"));

  mLink->Poke(kIsThere, 0);

  EXPECT_TRUE(mAdapter.HasParameter("BaudRate"));
  EXPECT_FALSE(mAdapter.IsParameterAvailable("BaudRate"));
}

TEST_F(KrDeviceAdapterTest, GetEnumEntries_Called_ListsThoseThatCanBeChosenInTheDescriptionsOrder) {
  KrStringList entries;

  EXPECT_TRUE(mAdapter.GetEnumEntries("BaudRate", entries).IsOK());

  EXPECT_THAT(std::vector<KrString>(entries.begin(), entries.end()), testing::ElementsAre("Baud9600", "Baud115200"));
}

TEST_F(KrDeviceAdapterTest, SetEnumValue_AnotherEntry_ReadsBackAndIsInTheDevice) {
  KrString value;

  EXPECT_TRUE(mAdapter.SetEnumValue("BaudRate", "Baud115200").IsOK());

  EXPECT_TRUE(mAdapter.GetEnumValue("BaudRate", value).IsOK());
  EXPECT_EQ(value, "Baud115200");
  EXPECT_EQ(mLink->Peek(kRate), 2u);
}

TEST_F(KrDeviceAdapterTest, Boolean_Value_IsTheDevices) {
  bool value = false;

  EXPECT_TRUE(mAdapter.GetBooleanValue("Loopback", value).IsOK());
  EXPECT_TRUE(mAdapter.SetBooleanValue("Loopback", false).IsOK());

  EXPECT_TRUE(value);
  EXPECT_EQ(mLink->Peek(kLoopback), 0u);
}

TEST_F(KrDeviceAdapterTest, DeviceRefuses_ItsResultComesAndWhatWasAskedForIsUnchanged) {
  ASSERT_TRUE(mAdapter.HasParameter("BaudRate"));
  mLink->port.SetFault([](const RegisterAccessRecord&) { return KrResult(KrResult::Code::ProtocolError, "busy"); });
  KrString value = "before";
  bool isOn = false;

  EXPECT_TRUE(mAdapter.GetEnumValue("BaudRate", value) != KrResult::Code::OK);
  EXPECT_TRUE(mAdapter.GetBooleanValue("Loopback", isOn) == KrResult::Code::ProtocolError);
  EXPECT_THAT(mAdapter.SetBooleanValue("Loopback", true).GetDescription().ToUtf8(), testing::HasSubstr("busy"));

  EXPECT_EQ(value, "before");
  EXPECT_FALSE(isOn);
}

TEST_F(KrDeviceAdapterTest, WrongAccesses_AreRefusedWithTheirCodesAndTheName) {
  KrStringList entries;
  KrString value;
  bool isOn = false;
  const struct {
    const char* what;
    KrResult result;
    KrResult::Code code;
    const char* name;
  } rows[] = {
      {"an enumeration that is not there", mAdapter.GetEnumValue("Gain", value), KrResult::Code::NotFound, "Gain"},
      {"entries of what is not there", mAdapter.GetEnumEntries("Gain", entries), KrResult::Code::NotFound, "Gain"},
      {"a boolean that is not there", mAdapter.SetBooleanValue("Gain", true), KrResult::Code::NotFound, "Gain"},
      {"an integer as enumeration", mAdapter.GetEnumValue("RateReg", value), KrResult::Code::InvalidInput, "RateReg"},
      {"an enumeration as boolean", mAdapter.GetBooleanValue("BaudRate", isOn), KrResult::Code::InvalidInput,
       "BaudRate"},
      {"an entry that is not there", mAdapter.SetEnumValue("BaudRate", "Baud1"), KrResult::Code::InvalidInput, "Baud1"},
  };

  for (const auto& row : rows) {
    EXPECT_EQ(row.result, row.code) << row.what;
    EXPECT_THAT(row.result.GetDescription().ToUtf8(), testing::HasSubstr(row.name)) << row.what;
  }
}

TEST_F(KrDeviceAdapterTest, UnavailableParameter_EveryOperation_IsAccessDenied) {
  mLink->Poke(kIsThere, 0);
  KrStringList entries;
  KrString value;

  EXPECT_EQ(mAdapter.GetEnumEntries("BaudRate", entries), KrResult::Code::AccessDenied);
  EXPECT_EQ(mAdapter.GetEnumValue("BaudRate", value), KrResult::Code::AccessDenied);
  EXPECT_EQ(mAdapter.SetEnumValue("BaudRate", "Baud9600"), KrResult::Code::AccessDenied);
}

TEST(KrDeviceAdapter, DeviceOpenAsMonitor_Reads_ButSetsNothing) {
  auto link = std::make_unique<DescribedLink>(MakeNodes());
  DescribedLink& camera = *link;
  camera.Poke(kLoopback, 1);
  KrDeviceGEV device(std::move(link), MakeDeviceFields(), KrDeviceAccess::Monitor);
  KrDeviceAdapter adapter(device);
  bool value = false;

  EXPECT_TRUE(adapter.GetBooleanValue("Loopback", value).IsOK());
  EXPECT_EQ(adapter.SetBooleanValue("Loopback", false), KrResult::Code::AccessDenied);

  EXPECT_TRUE(value);
  EXPECT_EQ(camera.port.CountWrites(), 0u);
}

TEST(KrDeviceAdapter, DeviceWithoutDescription_EveryOperation_IsNotSupportedAndNamesDeviceAndParameter) {
  KrDeviceGEV device(std::make_unique<FakeLink>(), MakeDeviceFields());
  KrDeviceAdapter adapter(device);
  KrStringList entries;
  KrString value;
  bool isOn = false;
  const KrResult results[] = {
      adapter.GetEnumEntries("BaudRate", entries),  adapter.GetEnumValue("BaudRate", value),
      adapter.SetEnumValue("BaudRate", "Baud9600"), adapter.GetBooleanValue("BaudRate", isOn),
      adapter.SetBooleanValue("BaudRate", true),
  };

  for (const KrResult& result : results) {
    EXPECT_TRUE(result == KrResult::Code::NotSupported);
    EXPECT_THAT(result.GetDescription().ToUtf8(),
                testing::AllOf(testing::HasSubstr("\"BaudRate\""), testing::HasSubstr("Camera")));
  }
  EXPECT_FALSE(adapter.HasParameter("BaudRate"));
  EXPECT_FALSE(adapter.IsParameterAvailable("BaudRate"));
}

TEST(KrDeviceAdapter, DeviceThatDoesNotAnswer_EveryOperation_SaysSoByItsCode) {
  for (const KrResult::Code code : {KrResult::Code::TimeLimitExceeded, KrResult::Code::ConnectionLost}) {
    auto link = std::make_unique<DescribedLink>(MakeNodes());
    link->port.SetFault([code](const RegisterAccessRecord&) { return KrResult(code); });
    KrDeviceGEV device(std::move(link), MakeDeviceFields());
    KrString value;

    EXPECT_EQ(KrDeviceAdapter(device).GetEnumValue("BaudRate", value), code);
  }
}

TEST_F(KrDeviceAdapterTest, GetDeviceText_ModelKnown_NamesModelAndDevice) {
  EXPECT_EQ(mAdapter.GetDeviceText(), "Model X 00:11:22:33:44:55");
}

TEST(KrDeviceAdapter, GetDeviceText_ModelUnknown_IsTheUniqueIDAlone) {
  KrDeviceGEV device(std::make_unique<FakeLink>(), MakeDeviceFields(""));

  EXPECT_EQ(KrDeviceAdapter(device).GetDeviceText(), "00:11:22:33:44:55");
}

TEST_F(KrDeviceAdapterTest, GetByteChannel_NumberOfADevicesLine_GivesThatLineAndNullForOthers) {
  EXPECT_EQ(mAdapter.GetByteChannel(0), mUart);
  EXPECT_EQ(mAdapter.GetByteChannel(2), mBulk);
  EXPECT_EQ(mAdapter.GetByteChannel(1), nullptr);
}
