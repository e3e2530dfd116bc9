#pragma once
// The registers of an open device: cuts accesses into what one datagram carries and lets callers leave in time.

#include "aravis/iothread.h"
#include "aravis/registerchannel.h"
#include "krgenicam/ikrregisterport.h"

#include <functional>
#include <memory>

namespace krtransport {

class LinkWatch;

/// After an access got no answer, further ones fail at once until the watch finds that the device answers again, so
/// that nobody waits for a dead device twice.
///
/// Thread: any. Ownership: borrows the I/O thread and the watch, shares the channel.
class GigEVisionRegisterPort final : public IKrRegisterPort {
public:
  GigEVisionRegisterPort(IoThread& aIoThread, LinkWatch& aWatch, std::shared_ptr<IRegisterChannel> aChannel);

  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override;
  /// Address and length of a write are multiples of 4, as the protocol has it; InvalidInput for others.
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override;

private:
  KrResult Run(IoThread::Job aJob, std::uint32_t aTimeoutMs, const std::stop_token& aCancel);

  IoThread& mIoThread;
  LinkWatch& mWatch;
  const std::shared_ptr<IRegisterChannel> mChannel;
};

} // namespace krtransport
