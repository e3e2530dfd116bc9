#pragma once
// A device whose only serial port is a tty of the host, so that a bridge is measured and not a simulated port.

#include "krbase/filedescriptor.h"
#include "krdevice/ikrdeviceadapter.h"

#include <memory>
#include <string>
#include <utility>

namespace benchmarks {

/// The line of the device: non-blocking reads and writes, and waits of the system where there is nothing to do.
class TerminalChannel : public krsystem::IByteChannel {
public:
  explicit TerminalChannel(std::string aPath) : mPath(std::move(aPath)) {}

  KrResult Open() override;
  void Close() override {}
  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel) override;
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel) override;

private:
  KrResult Wait(short aEvents, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) const;

  const std::string mPath;
  krbase::FileDescriptor mTerminal;
};

/// Has Serial0 and no parameters.
class TerminalDevice : public IKrDeviceAdapter {
public:
  explicit TerminalDevice(const std::string& aPath) : mChannel(std::make_shared<TerminalChannel>(aPath)) {}

  bool HasParameter(const KrString&) override { return false; }
  bool IsParameterAvailable(const KrString&) override { return false; }
  KrResult GetEnumEntries(const KrString&, KrStringList&) override { return KrResult::Code::NotFound; }
  KrResult GetEnumValue(const KrString&, KrString&) override { return KrResult::Code::NotFound; }
  KrResult SetEnumValue(const KrString&, const KrString&) override { return KrResult::Code::NotFound; }
  KrResult GetBooleanValue(const KrString&, bool&) override { return KrResult::Code::NotFound; }
  KrResult SetBooleanValue(const KrString&, bool) override { return KrResult::Code::NotFound; }
  KrString GetDeviceText() const override { return "Terminal"; }
  std::shared_ptr<krsystem::IByteChannel> GetByteChannel(std::uint32_t aNumber) override {
    return aNumber == 0 ? mChannel : nullptr;
  }

private:
  const std::shared_ptr<TerminalChannel> mChannel;
};

} // namespace benchmarks
