#pragma once
// The host's side of a bridge for programs that use the Camera Link serial functions: a published name, and a socket at
// which one program of the same user is served at a time. Names and sockets are left to krbase, the messages too.

#include "bridge/ihostend.h"
#include "krbase/krstring.h"

#include <memory>

namespace krserial {

/// A port as the Camera Link serial functions show it.
///
/// A program that opens it starts with nothing to read: what the device sends while no program is there is dropped at
/// once. At the opening the device's port is asked for 9600 baud, the standard's default, if it has that rate. What a
/// program has sent before it closed or died still goes to the device. A program that does not read stops Write after
/// 64 KiB and what the system's socket holds. A speed is asked for when the device has what was sent before; a program
/// that opens or sets it waits for that, for five seconds at most, and is then refused.
///
/// Thread: as of IHostEnd. One thread of its own serves the socket; it is where the request for a speed is made.
/// Ownership: the bridge's. The name is free again when it is destroyed.
class CameraLinkEnd : public IHostEnd {
public:
  /// Publishes a name; GetName says under which it is known. Without aHasPort every opening is refused as in use.
  /// InvalidInput for a name of blanks alone, AccessDenied when others could enter the directory of sockets, Busy when
  /// another process keeps that directory to itself, SystemError as the system says; aEnd is set on success only.
  static KrResult Open(const KrString& aName, bool aHasPort, std::unique_ptr<CameraLinkEnd>& aEnd);
  ~CameraLinkEnd() override;
  CameraLinkEnd(const CameraLinkEnd&) = delete;
  CameraLinkEnd& operator=(const CameraLinkEnd&) = delete;

  /// The name as it is published: characters that an identifier must not hold are replaced, and a name that is taken
  /// has " (2)" and so on behind it.
  KrString GetName() const;

  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, const std::stop_token& aStop) override;
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten,
                 const std::stop_token& aStop) override;
  /// What is older than a program or its flush is dropped up to there.
  bool AsksForEmptiness() const override;
  void TellEmpty() override;
  /// The end is never lost: programs come and go.
  KrResult Recover(const std::stop_token& aStop, const TellHindrance& aTell) override;
  KrResult Configure(const KrSerialPortConfiguration& aConfiguration) override;
  void SetSpeedRequest(SpeedRequest aRequest) override;
  void TellSpeed(const DevicePortSpeed& aSpeed) override;

private:
  struct Body;
  explicit CameraLinkEnd(std::unique_ptr<Body> aBody);

  std::unique_ptr<Body> mBody;
};

} // namespace krserial
