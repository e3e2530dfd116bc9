#pragma once
// A serial port of the host that a bridge makes: a pseudo-terminal, linked under a COM name in the folder of links for
// as long as the end lives. A program opens it like any serial port. Ports that exist are left to TtyEnd.

#include "bridge/clientterminal.h"
#include "bridge/dropqueue.h"
#include "bridge/ihostend.h"
#include "bridge/portlink.h"
#include "bridge/stopsignal.h"
#include "krbase/krstring.h"

#include <memory>
#include <mutex>

namespace krserial {

/// Thread and ownership as IHostEnd. Starts no thread: in Read a client that comes is noticed, which gets what waited
/// for it, and the speed that it sets, which is asked for before the bytes that follow it are given. Without a client,
/// and with one that has hung, the end is never lost.
class ClientEnd final : public IHostEnd {
public:
  /// Makes the port. InvalidInput for a name that is no port's, WrongState for one that the folder of links has
  /// already, Busy for one that another bridge makes, AccessDenied and SystemError as the system says. A link that a
  /// bridge left behind when its process was killed is replaced. aEnd is set on success only.
  static KrResult Open(const KrString& aName, std::unique_ptr<IHostEnd>& aEnd);

  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, const std::stop_token& aStop) override;
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                 const std::stop_token& aStop) override;
  /// OK at once: it cannot be lost.
  KrResult Recover(const std::stop_token& aStop, const TellHindrance& aTell) override;
  /// The speed becomes the port's while no client is there, which sets its own, and the device's speed is not known;
  /// the rest a pseudo-terminal lacks. InvalidInput for a configuration that is not valid.
  KrResult Configure(const KrSerialPortConfiguration& aConfiguration) override;
  void SetSpeedRequest(SpeedRequest aRequest) override;
  /// The speed becomes the port's while no client is there.
  void TellSpeed(const DevicePortSpeed& aSpeed) override;

private:
  ClientEnd(std::unique_ptr<ClientTerminal> aTerminal, std::unique_ptr<PortLink> aLink);

  std::size_t Give(const std::uint8_t* aBytes, std::size_t aSize);
  void GiveWaiting();
  bool IsWaiting();
  void WaitForNews(bool aHasClient, const std::stop_token& aStop);
  void FollowSpeed(bool aIsSet);
  void ForgetRefusal();
  void Offer(std::uint32_t& aSpeed, std::uint32_t aBaudRate);
  void PrepareForNext();

  std::unique_ptr<ClientTerminal> mTerminal;
  std::unique_ptr<PortLink> mLink; // Ends before what it leads to.
  SpeedRequest mSpeedRequest;
  bool mIsRefused = false; // Of the thread that reads: the client's speed is one that the device has not.
  StopSignal mReadStop;
  StopSignal mWriteStop;

  std::mutex mMutex;                  // Guards the members from here on, and the order of what goes to the client.
  DropQueue mWaiting;                 // For a client that is not there yet.
  std::uint32_t mDeviceSpeed = 0;     // As it was told; 0 where it is not known.
  std::uint32_t mConfiguredSpeed = 0; // 0 before one is.
  std::uint32_t mSeenSpeed = 0;       // The port's, as it was noticed or made.
};

} // namespace krserial
