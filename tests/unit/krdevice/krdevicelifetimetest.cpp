#include "krdevice/krdevicelifetime.h"

#include "await.h"
#include "fakelink.h"
#include "krdevice/krdevicegev.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <optional>

namespace {

class DeviceWithLifetime : public testing::Test {
protected:
  DeviceWithLifetime() {
    auto made = std::make_unique<FakeLink>();
    link = made.get();
    device = std::make_unique<KrDeviceGEV>(std::move(made), MakeDeviceFields(), KrDeviceAccess::Control);
    lifetime = device->GetLifetime();
  }

  FakeLink* link = nullptr;
  std::unique_ptr<KrDevice> device;
  std::shared_ptr<KrDeviceLifetime> lifetime;
};

TEST_F(DeviceWithLifetime, Use_WhileTheDeviceIsThere_IsGranted) {
  const KrDeviceLifetime::Use use(*lifetime);

  EXPECT_TRUE(use.IsGranted());
  EXPECT_FALSE(lifetime->IsOver());
  EXPECT_FALSE(lifetime->GetEnd().stop_requested());
}

TEST_F(DeviceWithLifetime, Use_AfterTheDevice_IsNotGranted) {
  device.reset();

  const KrDeviceLifetime::Use use(*lifetime);

  EXPECT_FALSE(use.IsGranted());
  EXPECT_TRUE(lifetime->IsOver());
  EXPECT_TRUE(lifetime->GetEnd().stop_requested());
}

TEST_F(DeviceWithLifetime, Loss_EndsButKeepsTheDevice) {
  link->sink->OnLinkLost(KrResult::Code::ConnectionLost);

  const KrDeviceLifetime::Use use(*lifetime);

  EXPECT_TRUE(lifetime->GetEnd().stop_requested());
  EXPECT_TRUE(use.IsGranted());
  EXPECT_FALSE(lifetime->IsOver());
}

TEST_F(DeviceWithLifetime, Destruction_WaitsForUses) {
  std::optional<KrDeviceLifetime::Use> use(std::in_place, *lifetime);
  std::atomic<bool> isDestroyed = false;
  std::future<void> destruction = std::async(std::launch::async, [&] {
    device.reset();
    isDestroyed = true;
  });
  EXPECT_TRUE(krtest::Await([&] { return lifetime->IsOver(); }));

  EXPECT_TRUE(link->IsConnected());
  EXPECT_FALSE(isDestroyed);
  EXPECT_FALSE(KrDeviceLifetime::Use(*lifetime).IsGranted());

  use.reset();
  destruction.get();
  EXPECT_TRUE(isDestroyed);
}

TEST_F(DeviceWithLifetime, Lifetime_IsTheSameForAll) {
  EXPECT_EQ(device->GetLifetime(), lifetime);
}

} // namespace
