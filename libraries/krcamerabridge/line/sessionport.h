#pragma once
// What the ways have in common that speak with a camera in sessions: between connecting and disconnecting the session
// has a worker, which is the port. How a session begins is left to the ways.

#include "krbase/krresult.h"
#include "line/icameraport.h"
#include "line/portworker.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <shared_mutex>
#include <stop_token>
#include <string>

namespace krcamerabridge {

/// A camera that was found. Thread: one at a time.
class ILineSession : public ILineDevice {
public:
  /// Results as of ICameraPort::Disconnect. What is closed already stays so.
  virtual void Close(const std::stop_token& aStop) = 0;
  /// How long an access to so many bytes may take on the line beside a caller's limit, in milliseconds. Thread: any.
  virtual std::uint64_t GetLineMs(std::size_t aBytes) const = 0;
  /// Nobody waits any more, not even for what is to be put back: for sessions whose calls outlast a stop, which then
  /// end at once. Thread: any.
  virtual void Abandon() {}
};

/// Thread: connecting and Disconnect one at a time; Read, Write and End any, at any time.
class SessionPort : public ICameraPort {
public:
  /// Disconnects.
  ~SessionPort() override;
  SessionPort(const SessionPort&) = delete;
  SessionPort& operator=(const SessionPort&) = delete;

  bool IsConnected() const { return mWorker != nullptr; }
  void Disconnect(const std::stop_token& aStop = {}) override;
  /// Ends the accesses that wait, and all later ones until the next connection, with Aborted: to be called before an
  /// array that may wait is destroyed.
  void End();

  /// WrongState while not connected; otherwise as the contract says. aTimeoutMs is for the camera: it grows by the time
  /// that many bytes need on the line.
  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel = {}) override;
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel = {}) override;

protected:
  /// aName for people: "GenCP".
  explicit SessionPort(const char* aName) : mName(aName) {}

  /// WrongState while connected.
  KrResult CheckUnconnected() const;
  /// Connects it: the accesses are the session's from now on.
  void Begin(std::unique_ptr<ILineSession> aSession, const PortWorkerTimes& aTimes = {});

private:
  KrResult TellDisconnected() const;
  std::uint32_t GetLimitMs(std::size_t aLength, std::uint32_t aTimeoutMs) const;

  const std::string mName;
  // Held by accesses for as long as they are inside, so that what they use goes only when the last one has left.
  std::shared_mutex mAccesses;
  std::unique_ptr<ILineSession> mSession; // Outlives the worker.
  std::unique_ptr<PortWorker> mWorker;    // Null while not connected.
};

} // namespace krcamerabridge
