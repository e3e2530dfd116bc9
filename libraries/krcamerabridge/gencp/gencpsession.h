#pragma once
// What is said with a GenCP camera from the beginning to the end: found, controlled, kept alive, asked for its
// descriptions, given free. Threads and limits of callers are left to GenCPPort.

#include "gencp/commandcycle.h"
#include "gencp/devicememory.h"
#include "gencp/linerate.h"
#include "gencp/manifest.h"
#include "krbase/krstringlist.h"
#include "krgenicam/krgendescription.h"
#include "line/sessionport.h"

#include <cstdint>
#include <stop_token>
#include <vector>

namespace krcamerabridge {

/// Results of the operations that ask the camera: TimeLimitExceeded where it does not answer, ProtocolError where it
/// refuses or is not understood, Aborted by aStop, ConnectionLost.
///
/// Thread: one at a time. Ownership: borrows the line.
class GenCPSession final : public ILineSession {
public:
  GenCPSession(ICameraLine& aLine, const CycleTimes& aTimes);
  /// Gives the camera free, as Close.
  ~GenCPSession() override;
  GenCPSession(const GenCPSession&) = delete;
  GenCPSession& operator=(const GenCPSession&) = delete;

  /// Finds the camera and reads what it can. NotFound when none answers, NotSupported for one of a version that is not
  /// known.
  KrResult Open(const std::stop_token& aStop);
  /// Takes control where the camera knows that, and goes up to the best baud rate. AccessDenied when it does not give
  /// control.
  KrResult TakeControl(const std::stop_token& aStop);
  /// The descriptions that it has, the best first. NotFound for none.
  KrResult ReadManifest(std::vector<ManifestEntry>& aEntries, const std::stop_token& aStop);
  /// Reads one. BadData for what is none.
  KrResult ReadDescription(const ManifestEntry& aEntry, KrGenDescription& aDescription, const std::stop_token& aStop);
  /// Gives up control and goes back to the rate of before, as far as the camera answers.
  void Close(const std::stop_token& aStop) override;

  /// How often the camera wants to be asked something, in milliseconds; 0 for never.
  std::uint32_t GetKeepAliveMs() const { return mKeepAliveMs; }
  std::uint32_t GetBaudRate() const { return mRate.Get(); }

  std::uint64_t GetLineMs(std::size_t aBytes) const override;
  KrResult Read(std::uint64_t aAddress, std::span<std::uint8_t> aData, const std::stop_token& aStop) override;
  KrResult Write(std::uint64_t aAddress, std::span<const std::uint8_t> aData, const std::stop_token& aStop) override;
  /// Takes control again when the camera has forgotten who has it.
  KrResult Probe(const std::stop_token& aStop) override;

private:
  KrResult CheckVersion(const std::stop_token& aStop);
  KrResult SetPrivilege(const std::stop_token& aStop);
  bool IsRefusal(const KrResult& aResult) const;
  KrResult StartHeartbeat(const std::stop_token& aStop);
  void SayGoodbye(const std::stop_token& aStop);

  const CycleTimes mTimes;
  CommandCycle mCycle;
  DeviceMemory mMemory;
  LineRate mRate;
  std::uint64_t mCapabilities = 0;
  std::uint64_t mSerialMap = 0; // 0 where there is none.
  std::uint32_t mHeartbeatMs = 0;
  std::uint32_t mKeepAliveMs = 0;
  bool mIsOpen = false;
  bool mIsControlled = false;
};

} // namespace krcamerabridge
