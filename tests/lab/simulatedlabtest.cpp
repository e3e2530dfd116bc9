#include "labfixture.h"

#include "krdevice/krdevicegev.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

class SimulatedLabTest : public LabTest {};

} // namespace

TEST_F(SimulatedLabTest, Find_BuiltInLab_HasTheFirstCamerasOnItsFirstAdapter) {
  FindAll();

  ASSERT_EQ(mSystem.GetInterfaceCount(), 4u);
  const auto* const adapter = dynamic_cast<const KrNetworkAdapter*>(mSystem.GetInterface(0));
  ASSERT_NE(adapter, nullptr);
  EXPECT_EQ(adapter->GetName(), "sim0");
  EXPECT_EQ(adapter->GetDisplayID(), "sim0 192.168.77.1");
  EXPECT_EQ(adapter->GetDescription(), "Simulated network adapter");
  EXPECT_EQ(adapter->GetIPAddress(0), "192.168.77.1");
  EXPECT_EQ(adapter->GetSubnetMask(0), "255.255.255.0");
  EXPECT_EQ(adapter->GetDeviceCount(), 4u);
  EXPECT_EQ(mSystem.GetDeviceCount(), 12u);
  EXPECT_EQ(mSystem.GetDeviceInfo(0)->GetUniqueID(), kMonoMAC);
}

TEST_F(SimulatedLabTest, Find_MonoCamera_IsDescribedWhole) {
  FindAll();

  const KrDeviceInfoGEV* const mono = FindInfo(kMonoMAC);
  ASSERT_NE(mono, nullptr);
  EXPECT_EQ(mono->GetDisplayID(), "Simulated Mono Camera (192.168.77.10)");
  EXPECT_EQ(mono->GetVendorName(), "KrGUI");
  EXPECT_EQ(mono->GetModelName(), "Simulated Mono Camera");
  EXPECT_EQ(mono->GetSerialNumber(), "SIM-0001");
  EXPECT_EQ(mono->GetUserDefinedName(), "sim-mono");
  EXPECT_EQ(mono->GetMACAddress(), kMonoMAC);
  EXPECT_EQ(mono->GetIPAddress(), kMonoAddress);
  EXPECT_EQ(mono->GetGEVVersion(), 0x00020000u);
  EXPECT_EQ(mono->GetClass(), 1u);
  EXPECT_EQ(mono->GetIPConfigOptionsString(), "Persistent, DHCP, LLA");
  EXPECT_TRUE(mono->IsConfigurationValid());
}

TEST_F(SimulatedLabTest, Find_SubnetBroadcast_DoesNotReachTheForeignCamera) {
  mSystem.SetSubnetBroadcastEnabled(true);

  EXPECT_TRUE(mSystem.Find().IsOK());

  EXPECT_EQ(mSystem.GetDeviceCount(), 10u);
  EXPECT_EQ(FindInfo(kForeignMAC), nullptr);
  EXPECT_EQ(FindInfo("02:4b:52:00:78:11"), nullptr) << "the camera without an address";
}

TEST_F(SimulatedLabTest, Open_ForeignCamera_IsRefusedWithTheReason) {
  FindAll();
  std::unique_ptr<KrDevice> device;
  ASSERT_NE(FindInfo(kForeignMAC), nullptr);
  EXPECT_FALSE(FindInfo(kForeignMAC)->IsConfigurationValid());

  const KrResult result = Open(kForeignMAC, device);

  EXPECT_TRUE(result == KrResult::Code::NotFound);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("cannot be reached at 10.20.30.40"));
  EXPECT_EQ(device, nullptr);
}

TEST_F(SimulatedLabTest, SetIPConfiguration_ForeignCamera_CanBeOpenedAfterwards) {
  std::unique_ptr<KrDevice> device;

  EXPECT_TRUE(KrDeviceGEV::SetIPConfiguration("02:4B:52:00:77:12", "192.168.77.20", "255.255.255.0", "0.0.0.0").IsOK());

  EXPECT_TRUE(Open(kForeignMAC, device).IsOK());
  EXPECT_TRUE(FindInfo(kForeignMAC)->IsConfigurationValid());
  EXPECT_EQ(FindInfo(kForeignMAC)->GetIPAddress(), "192.168.77.20");
  EXPECT_EQ(FindInfo(kForeignMAC)->GetDisplayID(), "Simulated Mono Camera (192.168.77.20)");
}

TEST_F(SimulatedLabTest, SetIPConfiguration_AddressThatNoDeviceMayHave_IsNotValid) {
  for (const char* address : {"192.168.77.0", "192.168.77.255", "192.168.77.1", "192.168.78.2", "0.0.0.0"}) {
    SCOPED_TRACE(address);
    EXPECT_TRUE(KrDeviceGEV::SetIPConfiguration(kMonoMAC, address, "255.255.255.0", "0.0.0.0").IsOK());

    FindAll();

    EXPECT_FALSE(FindInfo(kMonoMAC)->IsConfigurationValid());
  }
}

TEST_F(SimulatedLabTest, SetIPConfiguration_ControlledCamera_IsBusy) {
  std::unique_ptr<KrDevice> device;
  ASSERT_TRUE(Open(kMonoMAC, device).IsOK());

  EXPECT_TRUE(KrDeviceGEV::SetIPConfiguration(kMonoMAC, "192.168.77.99", "255.255.255.0", "0.0.0.0") ==
              KrResult::Code::Busy);
  EXPECT_TRUE(KrDeviceGEV::SetIPConfiguration("00:00:00:00:00:00", "192.168.77.99", "255.255.255.0", "0.0.0.0") ==
              KrResult::Code::NotFound);
}

TEST_F(SimulatedLabTest, FindDevice_AddressOfACamera_GivesTheSameObjectAsFind) {
  FindAll();
  const KrDeviceInfo* device = nullptr;

  EXPECT_TRUE(mSystem.FindDevice(kMonoAddress, &device).IsOK());

  EXPECT_EQ(device, FindInfo(kMonoMAC));
}

TEST_F(SimulatedLabTest, FindDevice_AddressOfNobodyOrOfAnUnreachableCamera_IsNotFound) {
  const KrDeviceInfo* device = nullptr;

  EXPECT_TRUE(mSystem.FindDevice("192.168.77.200", &device) == KrResult::Code::NotFound);
  EXPECT_TRUE(mSystem.FindDevice("10.20.30.40", &device) == KrResult::Code::NotFound);

  EXPECT_EQ(device, nullptr);
}
