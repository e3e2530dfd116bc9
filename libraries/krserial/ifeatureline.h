#pragma once
// A serial line behind features, one step at a time. Waiting, polling and several threads are left to FeatureChannel.

#include "krbase/krresult.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace krserial {

/// No more bytes than these are moved at once, whatever a device says of its buffers.
inline constexpr std::int64_t kMostTransferBytes = 65536;

/// Thread: one at a time, and only while the device is there. Ownership: borrows the device's features. What a device
/// says that cannot be is a ProtocolError. A step takes a few register accesses and is never given up half done, so
/// that what it says to have moved has been moved.
class IFeatureLine {
public:
  virtual ~IFeatureLine() = default;

  virtual KrResult Open() = 0;
  /// Closes it and puts selectors back. A device that does not answer is asked no more than once.
  virtual KrResult Close() = 0;
  /// Appends what came, which may be nothing. Selectors may stay as the line needs them until Rest.
  virtual KrResult Receive(std::vector<std::uint8_t>& aBytes) = 0;
  /// What the last Receive knows to have come and could not give: a ProtocolError; OK where it gave all.
  virtual KrResult GetLoss() const { return {}; }
  /// Sends as many bytes as the device takes at once, which may be none for the moment.
  virtual KrResult Transmit(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aTaken) = 0;
  /// Puts selectors back: nothing is to be moved for the moment.
  virtual void Rest() = 0;
};

} // namespace krserial
