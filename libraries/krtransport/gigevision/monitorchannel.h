#pragma once
// Reads a device's memory without ever asking for control, so that looking never disturbs who works with the device.

#include "aravis/registerchannel.h"
#include "gigevision/gvcpclient.h"

namespace krtransport {

class MonitorChannel final : public IRegisterChannel {
public:
  explicit MonitorChannel(GvcpClient aClient) : mClient(std::move(aClient)) {}

  RegisterLimits GetLimits() const override { return kGvcpRegisterLimits; }
  KrResult Read(std::uint64_t aAddress, std::span<std::uint8_t> aData) override;
  /// AccessDenied, always.
  KrResult Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData) override;

private:
  GvcpClient mClient;
};

} // namespace krtransport
