#pragma once
// The line to a camera through a serial port of a device, and how many bytes went over it.

#include "krserial/krdeviceserialport.h"
#include "line/icameraline.h"
#include "line/ilinespeed.h"

#include <atomic>
#include <memory>

class IKrDeviceAdapter;

namespace krcamerabridge {

/// Thread: as of ICameraLine; the counters from any. Ownership: owns port and speed.
class DeviceLine final : public ICameraLine {
public:
  /// A null aSpeed is a port that has no speed to be set.
  explicit DeviceLine(std::unique_ptr<ILineSpeed> aSpeed);

  /// Opens the port; results as of KrDeviceSerialPort::Open. Destruction closes it.
  KrResult Open(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort);
  /// Closes the port, which may be opened again. Closing what is closed does nothing.
  void Close();

  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override;
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override;
  void DropReceived() override;
  std::vector<std::uint32_t> GetSupportedBaudRates() override;
  std::uint32_t GetBaudRate() override;
  KrResult SetBaudRate(std::uint32_t aBaudRate) override;

  /// Bytes that the port took, and gave, since the line was made or the last reset; those that were dropped, too.
  std::uint64_t GetBytesSent() const { return mSent; }
  std::uint64_t GetBytesReceived() const { return mReceived; }
  void ResetStatistics();

private:
  KrDeviceSerialPort mPort;
  const std::unique_ptr<ILineSpeed> mSpeed;
  std::atomic<std::uint64_t> mSent{0};
  std::atomic<std::uint64_t> mReceived{0};
};

} // namespace krcamerabridge
