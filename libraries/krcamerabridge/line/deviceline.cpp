#include "line/deviceline.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <utility>

namespace krcamerabridge {

DeviceLine::DeviceLine(std::unique_ptr<ILineSpeed> aSpeed) : mSpeed(std::move(aSpeed)) {}

KrResult DeviceLine::Open(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort) {
  return mPort.Open(&aAdapter, aPort);
}

void DeviceLine::Close() {
  (void)mPort.Close(); // It is always OK.
}

KrResult DeviceLine::Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                          const std::stop_token& aCancel) {
  const auto most = static_cast<std::uint32_t>(std::min<std::size_t>(aSize, std::numeric_limits<std::int32_t>::max()));
  std::uint32_t read = 0;
  KrResult result = mPort.Read(aBytes, most, read, aTimeoutMs, aCancel);
  aRead = read;
  mReceived += read;
  return result;
}

KrResult DeviceLine::Write(const std::uint8_t* aBytes, std::size_t aSize, std::uint32_t aTimeoutMs,
                           const std::stop_token& aCancel) {
  if (aSize > std::numeric_limits<std::uint32_t>::max())
    return {KrResult::Code::InvalidInput, "A message to the camera of 4 GiB or more cannot be sent."};
  std::uint32_t written = 0;
  KrResult result = mPort.Write(aBytes, static_cast<std::uint32_t>(aSize), written, aTimeoutMs, aCancel);
  mSent += written;
  return result;
}

void DeviceLine::DropReceived() {
  // A camera that never stops talking is not listened to for ever.
  constexpr int kMostReads = 1024;
  std::array<std::uint8_t, 4096> dropped;
  std::size_t read = 0;
  for (int i = 0; i < kMostReads; ++i) {
    const KrResult result = Read(dropped.data(), dropped.size(), read, 0, {});
    if (!result.IsOK() && result != KrResult::Code::ProtocolError)
      return;
  }
}

std::vector<std::uint32_t> DeviceLine::GetSupportedBaudRates() {
  std::vector<std::uint32_t> rates;
  if (mSpeed && !mSpeed->GetSupported(rates).IsOK())
    rates.clear();
  return rates;
}

std::uint32_t DeviceLine::GetBaudRate() {
  std::uint32_t rate = 0;
  return mSpeed && mSpeed->Get(rate).IsOK() ? rate : 0;
}

KrResult DeviceLine::SetBaudRate(std::uint32_t aBaudRate) {
  const std::string attempt = "Setting the device's serial port to " + std::to_string(aBaudRate) + " baud: ";
  if (!mSpeed)
    return {KrResult::Code::NotSupported, attempt + "it has no speed to be set."};
  const KrResult result = mSpeed->Set(aBaudRate);
  if (result.IsOK())
    return {};
  const bool isMissing = result == KrResult::Code::NotFound;
  return {isMissing ? KrResult::Code::NotSupported : result.GetCode(), attempt + result.GetDescription()};
}

void DeviceLine::ResetStatistics() {
  mSent = 0;
  mReceived = 0;
}

} // namespace krcamerabridge
