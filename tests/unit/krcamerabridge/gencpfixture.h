#pragma once
// A GenCP camera on a serial port of a device, for tests of what talks to it.

#include "await.h"
#include "gencp/commandcycle.h"
#include "gencpcamera.h"
#include "line/deviceline.h"
#include "serialadapter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace krcamerabridge {

/// As long as only a fault can take.
inline const std::uint32_t kGenerousMs = krtest::GetGenerousMs();
/// Shorter than for a camera behind a real device, so that what is lost on purpose is missed soon. Only for tests of
/// that: a camera that has to wait for a processor may be missed too.
inline const CycleTimes kQuickTimes{400, 100, 1, kGenerousMs, kGenerousMs};
/// For what is answered at once: a camera that has to wait for a processor is not asked again.
inline const CycleTimes kPatientTimes{kGenerousMs, 100, 1, kGenerousMs, kGenerousMs};

/// The speed of the host's end of the wire.
class WireSpeed final : public ILineSpeed {
public:
  WireSpeed(std::shared_ptr<krtest::WireEnds> aWire, std::vector<std::uint32_t> aSupported)
      : mWire(std::move(aWire)), mSupported(std::move(aSupported)) {}

  KrResult GetSupported(std::vector<std::uint32_t>& aBaudRates) override {
    aBaudRates = mSupported;
    return {};
  }
  KrResult Get(std::uint32_t& aBaudRate) override {
    aBaudRate = mWire->hostRate;
    return {};
  }
  KrResult Set(std::uint32_t aBaudRate) override {
    if (std::ranges::find(mSupported, aBaudRate) == mSupported.end())
      return KrResult(KrResult::Code::NotSupported, "There is no such rate.");
    mWire->hostRate = aBaudRate;
    return {};
  }

private:
  const std::shared_ptr<krtest::WireEnds> mWire;
  const std::vector<std::uint32_t> mSupported;
};

class CameraAdapter final : public krtest::SerialAdapter {
public:
  explicit CameraAdapter(krtest::GenCPCamera& aCamera) : mCamera(aCamera) {}
  std::shared_ptr<krsystem::IByteChannel> GetByteChannel(std::uint32_t aNumber) override {
    return aNumber == 0 ? mCamera.GetChannel() : nullptr;
  }

private:
  krtest::GenCPCamera& mCamera;
};

class GenCPOnLine : public testing::Test {
protected:
  GenCPOnLine() { camera.Poke(krtest::GenCPCamera::kFeatures, MakeBytes(4096)); }
  void SetUp() override { ASSERT_TRUE(line.Open(adapter, KrDeviceSerial::Serial0).IsOK()); }

  /// Bytes of which no two stretches are alike soon.
  static std::vector<std::uint8_t> MakeBytes(std::size_t aSize, std::uint32_t aSeed = 1) {
    std::vector<std::uint8_t> bytes(aSize);
    for (std::uint8_t& byte : bytes) {
      aSeed = aSeed * 1664525 + 1013904223;
      byte = static_cast<std::uint8_t>(aSeed >> 24);
    }
    return bytes;
  }

  static constexpr std::uint64_t kFeatures = krtest::GenCPCamera::kFeatures;

  krtest::GenCPCamera camera;
  CameraAdapter adapter{camera};
  DeviceLine line{std::make_unique<WireSpeed>(camera.GetWire(), std::vector<std::uint32_t>{9600, 57600, 115200})};
};

} // namespace krcamerabridge
