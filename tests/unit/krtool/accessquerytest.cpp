#include "accessquery.h"

#include "faketransport.h"

#include <gmock/gmock.h>

#include <barrier>
#include <mutex>
#include <set>

namespace krtool {
namespace {

using testing::Pair;
using testing::UnorderedElementsAre;

class AccessQuery : public testing::Test {
protected:
  AccessQuery() { mTransport->interfaces = {MakeAdapter("eth0")}; }

  void Find() { ASSERT_TRUE(mSystem.Find().IsOK()); }

  RegisteredTransport mTransport;
  KrSystem mSystem;
};

TEST_F(AccessQuery, OnlyReachableGigEVisionDevices_AreAsked) {
  krsystem::GEVFields unreachable = MakeCamera("b", "172.16.0.1");
  unreachable.configurationValid = false;
  krsystem::U3VFields usb;
  usb.uniqueID = "c";
  mTransport->answers = {{0, MakeCamera("a")}, {0, unreachable}, {0, usb}};
  Find();

  const AccessTypes types = AskAccessTypes(mSystem, [](const KrString&) { return KrAccessType::Exclusive; });

  EXPECT_THAT(types, UnorderedElementsAre(Pair(mSystem.GetDeviceInfo(0), KrAccessType::Exclusive)));
}

TEST_F(AccessQuery, SeveralDevices_AreAskedAtOnce) {
  constexpr int kDevices = 4;
  for (int i = 0; i < kDevices; ++i)
    mTransport->answers.emplace_back(0, MakeCamera(std::to_string(i), "10.0.0.1" + std::to_string(i)));
  Find();
  std::barrier all(kDevices);
  std::mutex mutex; // Guards the addresses.
  std::set<KrString> addresses;

  const AccessTypes types = AskAccessTypes(mSystem, [&](const KrString& aAddress) {
    all.arrive_and_wait(); // Nobody passes before all are being asked.
    const std::lock_guard lock(mutex);
    addresses.insert(aAddress);
    return KrAccessType::Open;
  });

  EXPECT_EQ(types.size(), 4U);
  EXPECT_THAT(addresses, UnorderedElementsAre("10.0.0.10", "10.0.0.11", "10.0.0.12", "10.0.0.13"));
}

TEST_F(AccessQuery, ManyDevices_AreAllAskedOnce) {
  constexpr int kDevices = 300;
  for (int i = 0; i < kDevices; ++i)
    mTransport->answers.emplace_back(0, MakeCamera(std::to_string(i)));
  Find();
  std::atomic<int> asked = 0;

  const AccessTypes types = AskAccessTypes(mSystem, [&](const KrString&) {
    ++asked;
    return KrAccessType::Control;
  });

  EXPECT_EQ(types.size(), 300U);
  EXPECT_EQ(asked, kDevices);
}

TEST_F(AccessQuery, DeviceThatDoesNotSay_IsUnknown) {
  EXPECT_EQ(AskAccessType("10.0.0.2"), KrAccessType::Unknown);
  mTransport->accessResult = {};
  mTransport->accessType = krsystem::AccessType::Control;
  EXPECT_EQ(AskAccessType("10.0.0.2"), KrAccessType::Control);
}

TEST_F(AccessQuery, NoDevice_AsksNobody) {
  Find();

  EXPECT_TRUE(AskAccessTypes(mSystem, [](const KrString&) {
                ADD_FAILURE();
                return KrAccessType::Open;
              }).empty());
}

} // namespace
} // namespace krtool
