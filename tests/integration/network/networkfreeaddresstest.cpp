// A free address of an adapter's subnet is one that nobody on the network uses, whoever he is.

#include "networkfixture.h"

#include <gmock/gmock.h>

#include <memory>
#include <stop_token>
#include <vector>

namespace {

/// A subnet of six addresses, 10.0.0.9 to 10.0.0.14, of which this host has 10.0.0.10.
class OnASmallSubnet : public OnANetwork {
protected:
  OnASmallSubnet() {
    mLab.Connect("eth1", mHost, "port1");
    mLab.SetAddress("eth1", "10.0.0.10/29");
  }

  /// Devices that hold addresses 10.0.0.x.
  void Hold(const std::vector<int>& aLastOctets) {
    for (const int octet : aLastOctets) {
      const std::string text = std::to_string(octet);
      mHolders.push_back(std::make_unique<TestDevice>(mHost, "port1",
                                                      TestDeviceIdentity{.mac = "02:00:00:00:01:" + text,
                                                                         .address = "10.0.0." + text,
                                                                         .mask = "255.255.255.248",
                                                                         .serialNumber = text}));
    }
  }
  /// A test that does not find its adapter fails, whatever it expects.
  KrResult FindFree(KrString& aAddress, const std::stop_token& aCancel = {}) {
    Find(mSystem);
    const KrNetworkAdapter* adapter = GetAdapter(mSystem, "eth1");
    EXPECT_NE(adapter, nullptr);
    return adapter == nullptr ? KrResult(KrResult::Code::Failed)
                              : mSystem.FindFreeAddress(*adapter, 0, aCancel, aAddress);
  }

  KrSystem mSystem;
  std::vector<std::unique_ptr<TestDevice>> mHolders;
};

TEST_F(OnASmallSubnet, FindFreeAddress_OneIsLeft_ProposesThat) {
  mHost.SetAddress("port1", "10.0.0.9/29"); // A computer, which answers no discovery.
  Hold({11, 12, 14});
  KrString address;

  const KrResult result = FindFree(address);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_EQ(address, KrString("10.0.0.13"));
}

TEST_F(OnASmallSubnet, FindFreeAddress_NoneIsLeft_IsNotFound) {
  mHost.SetAddress("port1", "10.0.0.9/29");
  Hold({11, 12, 13, 14});
  KrString address;

  EXPECT_EQ(FindFree(address), KrResult::Code::NotFound);
}

TEST_F(OnASmallSubnet, FindFreeAddress_NobodyElseThere_ProposesOneOfTheSubnet) {
  KrString address;

  const KrResult result = FindFree(address);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  EXPECT_THAT(address.ToUtf8(), testing::AnyOf("10.0.0.9", "10.0.0.11", "10.0.0.12", "10.0.0.13", "10.0.0.14"));
}

TEST_F(OnASmallSubnet, FindFreeAddress_AdapterWithoutAddress_IsRefused) {
  mLab.RemoveAddress("eth1", "10.0.0.10/29");
  KrString address;

  EXPECT_EQ(FindFree(address), KrResult::Code::InvalidInput);
}

TEST_F(OnASmallSubnet, FindFreeAddress_CancelledBeforehand_IsAborted) {
  std::stop_source cancel;
  cancel.request_stop();
  KrString address;

  EXPECT_EQ(FindFree(address, cancel.get_token()), KrResult::Code::Aborted);
}

} // namespace
