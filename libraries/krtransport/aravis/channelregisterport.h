#pragma once
// The registers of an open device, whatever channel they are reached by: cuts accesses into what the channel carries
// and lets callers leave in time.

#include "aravis/devicecalls.h"
#include "aravis/registerchannel.h"
#include "krgenicam/ikrregisterport.h"

#include <memory>

namespace krtransport {

/// Thread: any. Ownership: borrows the I/O thread and the word of silence, shares the channel.
class ChannelRegisterPort final : public IKrRegisterPort {
public:
  ChannelRegisterPort(IoThread& aIoThread, ISilence& aSilence, std::shared_ptr<IRegisterChannel> aChannel);

  /// Reads whole units of the channel's alignment and drops what lies before and behind.
  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override;
  /// Address and length of a write are multiples of the channel's alignment; InvalidInput for others.
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override;

private:
  KrResult CheckRange(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs) const;

  DeviceCalls mCalls;
  const std::shared_ptr<IRegisterChannel> mChannel;
  const RegisterLimits mLimits;
};

} // namespace krtransport
