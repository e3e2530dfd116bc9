#pragma once
// A camera of an independent program on loopback, opened with control as programs open it.

#include "gigevisionfixture.h"

#include "krdevice/krdevicegev.h"

#include <memory>
#include <utility>
#include <variant>

class GigEVisionDeviceTest : public GigEVisionCameraTest {
protected:
  using GigEVisionCameraTest::GigEVisionCameraTest;

  void SetUp() override {
    GigEVisionCameraTest::SetUp();
    if (HasFatalFailure())
      return;
    std::unique_ptr<krsystem::IDeviceLink> link = OpenControlled();
    ASSERT_NE(link, nullptr);
    mLink = link.get();
    mOpened = std::make_unique<KrDeviceGEV>(std::move(link), std::get<krsystem::GEVFields>(mDevice));
  }

  krsystem::IDeviceLink* mLink = nullptr; ///< The device's.
  std::unique_ptr<KrDevice> mOpened;
};
