#pragma once
// What there is to see and to set of a stream, whatever receives it, as a table of features. What its receiver adds is
// the receiver's business.

#include "featuredescription.h"
#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"

#include <cstddef>
#include <cstdint>

namespace krdevice {

/// What the table asks of a stream.
///
/// Thread: any.
class IStreamState {
public:
  virtual ~IStreamState() = default;
  virtual bool IsGrabbing() const = 0;
  /// How many buffers the next start has.
  virtual std::size_t GetBufferCount() const = 0;
  virtual void SetBufferCount(std::size_t aCount) = 0;
  /// Of the running stream; 0 while none runs.
  virtual std::size_t CountAnnounced() const = 0;
  virtual std::size_t CountLent() const = 0;
  virtual std::uint64_t GetPayloadBytes() const = 0;
  virtual krsystem::SourceBuffers CountSourceBuffers() const = 0;
  /// As KrStream's.
  virtual KrStreamStatistics CountFrames() const = 0;
};

inline constexpr std::size_t kFewestBuffers = 2;
inline constexpr std::size_t kMostBuffers = 1024;

/// The array of streams: its name, its lock, its command to reset counters.
FeatureModule GetStreamModule();
/// The state must live as long as the features are used; the device is asked for its names at once.
krsystem::HostFeatures ListStreamFeatures(IStreamState& aState, const KrDevice& aDevice, std::uint32_t aChannel);

} // namespace krdevice
