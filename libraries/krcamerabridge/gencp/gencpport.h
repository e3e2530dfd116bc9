#pragma once
// A connection to a GenCP camera, and its registers. What the description makes of them is left to the parameter array.

#include "gencp/commandcycle.h"
#include "gencp/gencpsession.h"
#include "krbase/krstringlist.h"
#include "krgenicam/ikrregisterport.h"
#include "krgenicam/krgendescription.h"
#include "line/icameraline.h"
#include "line/portworker.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stop_token>

namespace krcamerabridge {

/// Thread: Connect, Disconnect and GetXMLIDs one at a time, Disconnect never while an access runs that an array has not
/// cancelled; Read, Write and End any, while it is connected. Ownership: borrows the line, of which it is the only
/// user.
///
///     GenCPPort port(line);
///     KrGenDescription description;
///     KrResult result = port.Connect(xmlID, description, stop);
///     if (result.IsOK())
///       result = KrGenParameterArray::Open(description, port, {GenCPPort::kAccessTimeoutMs}, array);
class GenCPPort final : public IKrRegisterPort {
public:
  /// How long an array should wait for an access: the longest packets, lost three times at the slowest rate.
  static constexpr std::uint32_t kAccessTimeoutMs = 15000;

  explicit GenCPPort(ICameraLine& aLine, const CycleTimes& aTimes = {});
  /// Disconnects.
  ~GenCPPort() override;
  GenCPPort(const GenCPPort&) = delete;
  GenCPPort& operator=(const GenCPPort&) = delete;

  /// The identifiers of the camera's descriptions, the best first; the camera is left as it was. WrongState while
  /// connected, NotFound when no camera answers or it has no description that can be read.
  KrResult GetXMLIDs(KrStringList& aXMLIDs, const std::stop_token& aStop);
  /// Finds the camera, takes control of it, goes up to the best baud rate and reads one of its descriptions; it takes
  /// as long as the line needs. WrongState while connected, NotFound when no camera answers or it has no such
  /// description, AccessDenied when it does not give control, BadData for a description that is none.
  KrResult Connect(const KrString& aXMLID, KrGenDescription& aDescription, const std::stop_token& aStop);
  /// Gives the camera free and puts camera and line back to their rates. What is not connected stays so.
  void Disconnect();
  bool IsConnected() const { return mWorker != nullptr; }
  /// Ends the accesses that wait, and all later ones until the next Connect, with Aborted: to be called before an array
  /// that may wait is destroyed.
  void End();

  /// WrongState while not connected; otherwise as the contract says.
  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                const std::stop_token& aCancel = {}) override;
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength, std::uint32_t aTimeoutMs,
                 const std::stop_token& aCancel = {}) override;

private:
  ICameraLine& mLine;
  const CycleTimes mTimes;
  std::unique_ptr<GenCPSession> mSession; // Outlives the worker.
  std::unique_ptr<PortWorker> mWorker;    // Null while not connected.
};

} // namespace krcamerabridge
