#pragma once
// A serial port of the host as a side of a bridge: a UART, a USB adapter or a pseudo-terminal of another program's, by
// its COM name. One that vanishes is taken again under the same name when it is back. Making a port where there is
// none is left to ClientEnd.

#include "bridge/ihostend.h"
#include "bridge/opentty.h"
#include "bridge/stopsignal.h"
#include "krbase/krstring.h"

#include <memory>
#include <mutex>

namespace krserial {

/// Thread and ownership as IHostEnd. Starts no thread: a speed that the program behind a pseudo-terminal sets is
/// noticed in Read, with the bytes that follow it or within a quarter of a second, and asked for there.
class TtyEnd final : public IHostEnd {
public:
  /// Opens a port of KrHostSerialPorts for itself alone and sets it so. InvalidInput for a name that is no port's and
  /// for a configuration that is not valid, NotFound for a port that the host does not have now, Busy for one that
  /// another program holds or another bridge makes, AccessDenied, NotSupported for a configuration that the port cannot
  /// take, otherwise SystemError. aEnd is set on success only. The port's former settings come back when it is closed.
  static KrResult Open(const KrString& aName, const KrSerialPortConfiguration& aConfiguration,
                       std::unique_ptr<IHostEnd>& aEnd);

  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, const std::stop_token& aStop) override;
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                 const std::stop_token& aStop) override;
  /// Looks four times a second. A port that is not lost is had at once.
  KrResult Recover(const std::stop_token& aStop, const TellHindrance& aTell) override;
  /// While the port is lost the settings are kept for when it is back. InvalidInput for ones that are not valid.
  KrResult Configure(const KrSerialPortConfiguration& aConfiguration) override;
  void SetSpeedRequest(SpeedRequest aRequest) override;
  /// Nothing: the host's port keeps its own speed.
  void TellSpeed(const DevicePortSpeed& aSpeed) override;

private:
  TtyEnd(const KrString& aName, const KrSerialPortConfiguration& aConfiguration, std::shared_ptr<OpenTty> aTty);

  std::shared_ptr<OpenTty> GetTty() const;
  KrResult TakeAgain();
  KrResult MakeLost() const;
  void FollowSpeed(OpenTty& aTty);
  void ForgetRefusal();

  const KrString mName;
  SpeedRequest mSpeedRequest;
  bool mIsRefused = false; // Of the thread that reads: the other end's speed is one that the device has not.
  StopSignal mReadStop;
  StopSignal mWriteStop;

  mutable std::mutex mMutex; // Guards the members from here on.
  KrSerialPortConfiguration mConfiguration;
  std::shared_ptr<OpenTty> mTty; // Shared with calls that run, which may outlast it; null while it is looked for.
};

} // namespace krserial
