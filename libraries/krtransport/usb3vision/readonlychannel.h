#pragma once
// A device's registers for whoever only looks, so that looking never changes anything.

#include "aravis/registerchannel.h"

#include <memory>
#include <utility>

namespace krtransport {

/// Thread: as IRegisterChannel. Ownership: shares the channel behind it.
class ReadOnlyChannel final : public IRegisterChannel {
public:
  explicit ReadOnlyChannel(std::shared_ptr<IRegisterChannel> aChannel) : mChannel(std::move(aChannel)) {}

  RegisterLimits GetLimits() const override { return mChannel->GetLimits(); }
  KrResult Read(std::uint64_t aAddress, std::span<std::uint8_t> aData) override;
  /// AccessDenied, always.
  KrResult Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData) override;

private:
  const std::shared_ptr<IRegisterChannel> mChannel;
};

} // namespace krtransport
