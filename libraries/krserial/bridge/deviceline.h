#pragma once
// The device's side of a bridge: a port that is opened again when it fails. What goes where is left to Pump.

#include "bridge/backoff.h"
#include "bridge/bridgecounters.h"
#include "bridge/bridgestatus.h"
#include "bridge/portspeed.h"
#include "krserial/krdeviceserialport.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <stop_token>

namespace krserial {

/// Thread: Read on one thread, Write on another, both at the same time; Cancel from any. Open before both.
/// Ownership: the port; borrows the rest.
class DeviceLine {
public:
  DeviceLine(IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort, const PortSpeed& aSpeed, BridgeCounters& aCounters,
             BridgeStatus& aStatus)
      : mAdapter(aAdapter), mPortID(aPort), mSpeed(aSpeed), mCounters(aCounters), mStatus(aStatus) {}

  /// Results as of KrDeviceSerialPort.
  KrResult Open();
  /// Takes what was received, waiting up to so many milliseconds for it. OK, or without bytes TimeLimitExceeded; that
  /// too for a port that has failed, once it was tried to open it again. Aborted when aStop is stopped; a call that
  /// waits for bytes is ended by Cancel.
  KrResult Read(std::uint8_t* aBytes, std::size_t aSize, std::size_t& aRead, std::uint32_t aTimeoutMs,
                const std::stop_token& aStop);
  /// Gives all bytes, however long that takes and often the port fails. OK, or Aborted when aStop is stopped; aWritten
  /// says how many were taken. A byte that the line cannot carry is dropped.
  KrResult Write(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aWritten, const std::stop_token& aStop);
  /// Ends the calls whose token is stopped; to be called after that, once and for all.
  void Cancel();

private:
  // What a call saw of the port before it used it.
  struct Opening {
    std::uint64_t number = 0;
    bool isOpen = true;
  };

  Opening GetOpening() const;
  std::uint32_t GetPieceSize(std::size_t aSize) const;
  void OnFailure(const Opening& aOpening, const KrResult& aFailure, const std::stop_token& aStop);
  void LogDropped(const KrResult& aReason);
  void Reopen(const KrResult& aFailure, const std::stop_token& aStop);

  IKrDeviceAdapter& mAdapter;
  const KrDeviceSerial mPortID;
  const PortSpeed& mSpeed;
  BridgeCounters& mCounters;
  BridgeStatus& mStatus;
  KrDeviceSerialPort mPort;
  Backoff mBackoff;
  std::atomic<bool> mIsCancelled = false;
  bool mIsReadDamaged = false; // Of the thread that reads.
  bool mHasDropped = false;    // Of the thread that writes.

  mutable std::mutex mMutex; // Guards the members from here on.
  std::condition_variable_any mChanged;
  Opening mOpening;
  bool mIsReopening = false;
};

} // namespace krserial
