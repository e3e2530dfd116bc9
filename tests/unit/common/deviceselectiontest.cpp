#include "deviceselection.h"

#include "krsystem/ipv4address.h"
#include "krsystem/transportregistry.h"

#include <gmock/gmock.h>

#include <memory>

namespace krapps {
namespace {

using testing::HasSubstr;
using testing::Not;

krsystem::GEVFields MakeCamera(const char* aID, const char* aMAC, const char* aUserName, bool aIsReachable = true) {
  krsystem::GEVFields fields;
  fields.uniqueID = aID;
  fields.displayID = KrString("Camera ") + aID;
  fields.userDefinedName = aUserName;
  fields.macAddress = aMAC;
  fields.serialNumber = KrString("SN of ") + aID;
  fields.configurationValid = aIsReachable;
  return fields;
}

// Three cameras, of which two have the same name.
class DeviceChoice : public testing::Test {
protected:
  Selection Choose(const KrString& aName) const { return ChooseDevice({&mLeft, &mRight, &mTop}, aName); }

  KrDeviceInfoGEV mLeft{MakeCamera("id-left", "00:11:22:aa:bb:01", "side")};
  KrDeviceInfoGEV mRight{MakeCamera("id-right", "00:11:22:aa:bb:02", "side")};
  KrDeviceInfoGEV mTop{MakeCamera("id-top", "00:11:22:aa:bb:03", "top")};
};

struct NameRow {
  const char* description;
  const char* name;
};

class NameOfTop : public DeviceChoice, public testing::WithParamInterface<NameRow> {};

TEST_P(NameOfTop, GivesThatDevice) {
  const Selection selection = Choose(GetParam().name);

  EXPECT_EQ(selection.device, &mTop);
  EXPECT_TRUE(selection.error.IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Ways, NameOfTop,
                         testing::Values(NameRow{"UniqueID", "id-top"}, NameRow{"UserDefinedName", "top"},
                                         NameRow{"SerialNumber", "SN of id-top"},
                                         NameRow{"LowerCaseMAC", "00:11:22:aa:bb:03"},
                                         NameRow{"UpperCaseMAC", "00:11:22:AA:BB:03"},
                                         NameRow{"MACWithDashes", "00-11-22-Aa-bB-03"}),
                         [](const auto& aInfo) { return std::string(aInfo.param.description); });

TEST_F(DeviceChoice, NameOfSeveral_IsAnErrorThatListsThemAlone) {
  const Selection selection = Choose("side");

  EXPECT_EQ(selection.device, nullptr);
  EXPECT_TRUE(selection.isAmbiguous);
  EXPECT_THAT(selection.error.ToUtf8(), testing::AllOf(HasSubstr("id-left"), HasSubstr("id-right")));
  EXPECT_THAT(selection.error.ToUtf8(), Not(HasSubstr("id-top")));
}

TEST_F(DeviceChoice, UnknownName_IsAnErrorThatListsWhatWasFound) {
  const Selection selection = Choose("bottom");

  EXPECT_EQ(selection.device, nullptr);
  EXPECT_FALSE(selection.isAmbiguous);
  EXPECT_THAT(selection.error.ToUtf8(), HasSubstr("unique ID, MAC address, IP address, serial number or user-defined"));
  EXPECT_THAT(selection.error.ToUtf8(),
              testing::AllOf(HasSubstr("\"bottom\""), HasSubstr("id-left"), HasSubstr("id-top")));
}

TEST_F(DeviceChoice, TextsOfDevices_ReachTheUserWithoutControlCharacters) {
  const KrDeviceInfoGEV hostile{MakeCamera("id-\x1b[2J", "", "")};

  EXPECT_THAT(ChooseDevice({&hostile}, "other").error.ToUtf8(), Not(HasSubstr("\x1b")));
}

TEST_F(DeviceChoice, OneDeviceOnTwoInterfaces_IsTheReachableAnswer) {
  const KrDeviceInfoGEV far{MakeCamera("id-twice", "00:11:22:aa:bb:04", "twice", false)};
  const KrDeviceInfoGEV near{MakeCamera("id-twice", "00:11:22:aa:bb:04", "twice", true)};

  EXPECT_EQ(ChooseDevice({&far, &near}, "twice").device, &near);
}

TEST_F(DeviceChoice, EmptyName_GivesTheFirstThatCanBeReached) {
  const KrDeviceInfoGEV far{MakeCamera("id-far", "", "", false)};
  const KrDeviceInfoUSB stick{krsystem::USBFields{}};

  EXPECT_EQ(ChooseDevice({&far, &stick, &mTop, &mLeft}, "").device, &mTop);
}

TEST_F(DeviceChoice, EmptyNameWithoutReachableCamera_SaysSo) {
  const KrDeviceInfoGEV far{MakeCamera("id-far", "", "", false)};

  EXPECT_THAT(ChooseDevice({&far}, "").error.ToUtf8(), HasSubstr("id-far"));
  EXPECT_THAT(ChooseDevice({}, "").error.ToUtf8(), HasSubstr("No camera was found"));
}

// A backend with one adapter and one camera, which counts how it is asked.
class OneCameraTransport : public krsystem::ITransport {
public:
  OneCameraTransport(const char* aID, std::uint32_t aAddress) : mID(aID), mAddress(aAddress) {}

  KrString GetName() const override { return "One camera"; }
  KrResult ListInterfaces(std::vector<krsystem::InterfaceFields>& aInterfaces) override {
    aInterfaces = {MakeAdapter()};
    return {};
  }
  KrResult Discover(const std::vector<krsystem::InterfaceFields>&, const krsystem::DiscoveryRequest&,
                    const krsystem::DeviceReport& aReport) override {
    ++discoveries;
    aReport(0, MakeCamera(mID, "00:11:22:aa:bb:01", ""));
    return {};
  }
  KrResult FindAddress(std::uint32_t aAddress, std::uint32_t, krsystem::InterfaceFields& aInterface,
                       krsystem::AnyDeviceFields& aDevice) override {
    ++addressesAsked;
    if (aAddress != mAddress)
      return KrResult::Code::NotFound;
    aInterface = MakeAdapter();
    aDevice = MakeCamera(mID, "00:11:22:aa:bb:01", "");
    return {};
  }
  KrResult ConfigureIP(const KrString&, const KrString&, const KrString&, const KrString&) override {
    return KrResult::Code::NotSupported;
  }
  KrResult GetAccessType(const krsystem::AnyDeviceFields&, krsystem::AccessType&) override {
    return KrResult::Code::NotSupported;
  }
  KrResult Open(const krsystem::InterfaceFields&, const krsystem::AnyDeviceFields&, krsystem::DeviceAccess,
                std::unique_ptr<krsystem::IDeviceLink>&) override {
    return KrResult::Code::NotSupported;
  }

  int discoveries = 0;
  int addressesAsked = 0;

private:
  krsystem::NetworkAdapterFields MakeAdapter() const {
    krsystem::NetworkAdapterFields adapter;
    adapter.uniqueID = KrString("adapter-") + mID;
    return adapter;
  }

  const char* mID;
  std::uint32_t mAddress;
};

class DeviceSelection : public testing::Test {
protected:
  DeviceSelection() {
    krsystem::RegisterTransport(mFirst);
    krsystem::RegisterTransport(mSecond);
    mSystem.SetDetectionTimeout(1);
  }
  ~DeviceSelection() override {
    krsystem::UnregisterTransport(mFirst);
    krsystem::UnregisterTransport(mSecond);
  }

  // The names order the cameras the other way round than their transports do.
  std::shared_ptr<OneCameraTransport> mFirst =
      std::make_shared<OneCameraTransport>("z-first", *krsystem::ParseIPv4("192.0.2.1"));
  std::shared_ptr<OneCameraTransport> mSecond =
      std::make_shared<OneCameraTransport>("a-second", *krsystem::ParseIPv4("192.0.2.2"));
  KrSystem mSystem;
  const KrDeviceInfo* mDevice = nullptr;
};

TEST_F(DeviceSelection, EmptyName_GivesTheTransportRegisteredFirst) {
  const KrResult result = SelectDevice(mSystem, "", mDevice);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(mDevice->GetUniqueID(), "z-first");
}

TEST_F(DeviceSelection, Address_IsAskedWithoutDiscovery) {
  const KrResult result = SelectDevice(mSystem, "192.0.2.2", mDevice);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(mDevice->GetUniqueID(), "a-second");
  EXPECT_EQ(mFirst->discoveries + mSecond->discoveries, 0);
  EXPECT_GE(mSecond->addressesAsked, 1);
}

TEST_F(DeviceSelection, AddressThatNobodyHas_IsNotFoundAndNamed) {
  const KrResult result = SelectDevice(mSystem, "192.0.2.77", mDevice);

  EXPECT_EQ(result.GetCode(), KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("192.0.2.77"));
  EXPECT_EQ(mDevice, nullptr);
}

TEST_F(DeviceSelection, NameOfSeveral_IsInvalidInput) {
  EXPECT_EQ(SelectDevice(mSystem, "00-11-22-AA-BB-01", mDevice).GetCode(), KrResult::Code::InvalidInput);
  EXPECT_EQ(mDevice, nullptr);
}

TEST_F(DeviceSelection, UnknownName_IsNotFound) {
  EXPECT_EQ(SelectDevice(mSystem, "nobody", mDevice).GetCode(), KrResult::Code::NotFound);
}

} // namespace
} // namespace krapps
