#include "aravis/channelregisterport.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <vector>

namespace krtransport {
namespace {

constexpr std::size_t kMaxAccess = 16u << 20;

std::string FormatAddress(std::uint64_t aAddress) {
  char text[24];
  std::snprintf(text, sizeof(text), "0x%" PRIX64, aAddress);
  return text;
}

// Calls aAccess for one piece after the other until one fails or nobody waits any more.
template <typename Byte, typename Access>
KrResult ForEachPiece(std::uint64_t aAddress, std::span<Byte> aData, std::size_t aMaxBytes,
                      const std::atomic<bool>& aIsAbandoned, Access aAccess) {
  while (!aData.empty()) {
    if (aIsAbandoned)
      return KrResult::Code::Aborted;
    const auto piece = aData.first(std::min(aData.size(), aMaxBytes));
    if (KrResult result = aAccess(aAddress, piece); !result.IsOK())
      return result;
    aAddress += piece.size();
    aData = aData.subspan(piece.size());
  }
  return {};
}

} // namespace

ChannelRegisterPort::ChannelRegisterPort(IoThread& aIoThread, ISilence& aSilence,
                                         std::shared_ptr<IRegisterChannel> aChannel)
    : mCalls(aIoThread, aSilence), mChannel(std::move(aChannel)), mLimits(mChannel->GetLimits()) {}

KrResult ChannelRegisterPort::CheckRange(std::uint64_t aAddress, const void* aData, std::size_t aLength,
                                         std::uint32_t aTimeoutMs) const {
  if (aData == nullptr || aLength == 0 || aLength > kMaxAccess)
    return {KrResult::Code::InvalidInput,
            "A register access takes 1 byte to 16 MiB, not " + std::to_string(aLength) + "."};
  if (aTimeoutMs == 0)
    return {KrResult::Code::InvalidInput, "A register access needs a time limit of at least a millisecond."};
  if (aAddress > mLimits.lastAddress || aLength - 1 > mLimits.lastAddress - aAddress)
    return {KrResult::Code::InvalidInput,
            "The device's addresses end at " + FormatAddress(mLimits.lastAddress) + "; the access ends beyond."};
  return {};
}

KrResult ChannelRegisterPort::Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                                   const std::stop_token& aCancel) {
  if (KrResult result = CheckRange(aAddress, aData, aLength, aTimeoutMs); !result.IsOK())
    return result;
  const std::size_t skipped = aAddress % mLimits.alignment;
  const std::uint64_t first = aAddress - skipped;
  const std::size_t wholeLength = (skipped + aLength + mLimits.alignment - 1) / mLimits.alignment * mLimits.alignment;
  const auto bytes = std::make_shared<std::vector<std::uint8_t>>(wholeLength);
  const auto read = [channel = mChannel, maxBytes = mLimits.maxBytes, bytes,
                     first](const std::atomic<bool>& aIsAbandoned) {
    return ForEachPiece(first, std::span(*bytes), maxBytes, aIsAbandoned,
                        [&channel](std::uint64_t aFrom, auto aPiece) { return channel->Read(aFrom, aPiece); });
  };
  KrResult result = mCalls.Run(read, aTimeoutMs, aCancel);
  if (result.IsOK())
    std::memcpy(aData, bytes->data() + skipped, aLength);
  return result;
}

KrResult ChannelRegisterPort::Write(std::uint64_t aAddress, const void* aData, std::size_t aLength,
                                    std::uint32_t aTimeoutMs, const std::stop_token& aCancel) {
  if (KrResult result = CheckRange(aAddress, aData, aLength, aTimeoutMs); !result.IsOK())
    return result;
  if (aAddress % mLimits.alignment != 0 || aLength % mLimits.alignment != 0)
    return {KrResult::Code::InvalidInput,
            "The device is written in whole words of " + std::to_string(mLimits.alignment) + " bytes."};
  const auto* begin = static_cast<const std::uint8_t*>(aData);
  const auto bytes = std::make_shared<const std::vector<std::uint8_t>>(begin, begin + aLength);
  const auto write = [channel = mChannel, maxBytes = mLimits.maxBytes, bytes,
                      aAddress](const std::atomic<bool>& aIsAbandoned) {
    return ForEachPiece(aAddress, std::span(*bytes), maxBytes, aIsAbandoned,
                        [&channel](std::uint64_t aFrom, auto aPiece) { return channel->Write(aFrom, aPiece); });
  };
  return mCalls.Run(write, aTimeoutMs, aCancel);
}

} // namespace krtransport
