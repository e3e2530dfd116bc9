#pragma once
// A pump between a socket and a device's line.

#include "bridge/pump.h"
#include "bridgeends.h"

#include <memory>
#include <optional>

namespace krtest {

class PumpTest : public testing::Test {
protected:
  explicit PumpTest(std::shared_ptr<SerialLine> aLine = std::make_shared<SerialLine>()) : line(std::move(aLine)) {
    adapter.lines[0] = line;
  }
  void SetUp() override {
    const KrResult opened = deviceLine.Open();
    ASSERT_TRUE(opened.IsOK()) << opened.GetDescription().CStr();
    pump.emplace(end, deviceLine, status, [] {});
  }
  void TearDown() override { pump.reset(); }

  bool IsSent(const std::string& aBytes) {
    return Await([&] { return line->GetSent() == aBytes; });
  }

  LockedAdapter adapter;
  std::shared_ptr<SerialLine> line;
  SocketEnd end;
  krserial::BridgeStatus status;
  krserial::BridgeCounters counters;
  krserial::PortSpeed speed{adapter, KrDeviceSerial::Serial0, status};
  krserial::DeviceLine deviceLine{adapter, KrDeviceSerial::Serial0, speed, counters, status};
  std::optional<krserial::Pump> pump;
};

} // namespace krtest
