#include "gigevision/gigevisionregisterport.h"

#include "gigevision/gvcppacket.h"
#include "gigevision/linkwatch.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace krtransport {
namespace {

constexpr std::size_t kMaxAccess = 16u << 20;
constexpr std::uint64_t kAddressEnd = std::uint64_t{1} << 32;
constexpr std::size_t kWord = 4;

KrResult CheckRange(std::uint64_t aAddress, const void* aData, std::size_t aLength) {
  if (aData == nullptr || aLength == 0 || aLength > kMaxAccess)
    return {KrResult::Code::InvalidInput,
            "A register access takes 1 byte to 16 MiB, not " + std::to_string(aLength) + "."};
  if (aAddress >= kAddressEnd || aLength > kAddressEnd - aAddress)
    return {KrResult::Code::InvalidInput, "GigE Vision devices have addresses of 32 bits; the access ends beyond."};
  return {};
}

// Calls aAccess for one piece after the other until one fails or nobody waits any more.
template <typename Byte, typename Access>
KrResult ForEachPiece(std::uint32_t aAddress, std::span<Byte> aData, const std::atomic<bool>& aIsAbandoned,
                      Access aAccess) {
  while (!aData.empty()) {
    if (aIsAbandoned)
      return KrResult::Code::Aborted;
    const auto piece = aData.first(std::min(aData.size(), kMaxReadMemory));
    if (KrResult result = aAccess(aAddress, piece); !result.IsOK())
      return result;
    aAddress += static_cast<std::uint32_t>(piece.size());
    aData = aData.subspan(piece.size());
  }
  return {};
}

} // namespace

GigEVisionRegisterPort::GigEVisionRegisterPort(IoThread& aIoThread, LinkWatch& aWatch,
                                               std::shared_ptr<IRegisterChannel> aChannel)
    : mIoThread(aIoThread), mWatch(aWatch), mChannel(std::move(aChannel)) {}

KrResult GigEVisionRegisterPort::Read(std::uint64_t aAddress, void* aData, std::size_t aLength,
                                      std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  if (KrResult result = CheckRange(aAddress, aData, aLength); !result.IsOK())
    return result;
  // Memory is read in whole words; what lies before and behind is dropped.
  const auto first = static_cast<std::uint32_t>(aAddress & ~std::uint64_t{kWord - 1});
  const std::size_t skipped = aAddress - first;
  const std::size_t wholeLength = (skipped + aLength + kWord - 1) / kWord * kWord;
  const auto bytes = std::make_shared<std::vector<std::uint8_t>>(wholeLength);
  const auto read = [channel = mChannel, bytes, first](const std::atomic<bool>& aIsAbandoned) {
    return ForEachPiece(first, std::span(*bytes), aIsAbandoned,
                        [&channel](std::uint32_t aFrom, auto aPiece) { return channel->Read(aFrom, aPiece); });
  };
  KrResult result = Run(read, aTimeoutMs, aCancel);
  if (result.IsOK())
    std::memcpy(aData, bytes->data() + skipped, aLength);
  return result;
}

KrResult GigEVisionRegisterPort::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength,
                                       std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  if (KrResult result = CheckRange(aAddress, aData, aLength); !result.IsOK())
    return result;
  if (aAddress % kWord != 0 || aLength % kWord != 0)
    return {KrResult::Code::InvalidInput, "A GigE Vision device is written in whole words of 4 bytes."};
  const auto* begin = static_cast<const std::uint8_t*>(aData);
  const auto bytes = std::make_shared<const std::vector<std::uint8_t>>(begin, begin + aLength);
  const auto address = static_cast<std::uint32_t>(aAddress);
  const auto write = [channel = mChannel, bytes, address](const std::atomic<bool>& aIsAbandoned) {
    return ForEachPiece(address, std::span(*bytes), aIsAbandoned,
                        [&channel](std::uint32_t aFrom, auto aPiece) { return channel->Write(aFrom, aPiece); });
  };
  return Run(write, aTimeoutMs, aCancel);
}

KrResult GigEVisionRegisterPort::Run(IoThread::Job aJob, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  if (mWatch.IsConnected() && mWatch.IsSilent())
    return {KrResult::Code::TimeLimitExceeded,
            "The device did not answer a moment ago; it is asked again as soon as it does."};
  KrResult result = mIoThread.Run(std::move(aJob), std::max<std::uint32_t>(aTimeoutMs, 1), aCancel);
  if (result == KrResult::Code::TimeLimitExceeded)
    mWatch.ReportSilence();
  return result;
}

} // namespace krtransport
