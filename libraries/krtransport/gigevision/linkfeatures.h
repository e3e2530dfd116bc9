#pragma once
// What the way from this host to a GigE Vision device is, and how the size of the stream's packets is chosen on it, as
// features. Finding the size, and telling the device, is left to the device's class.

#include "gigevision/linktarget.h"
#include "krsystem/hostfeature.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace krtransport {

/// How the size of a stream's packets is chosen.
enum class PacketSizeMode {
  Automatic, ///< The largest that comes through.
  Fixed,     ///< The one that the user says.
  Device,    ///< The one that the device is set to.
};

/// Thread: any.
struct PacketSizeSettings {
  std::atomic<PacketSizeMode> mode{PacketSizeMode::Automatic};
  std::atomic<std::uint32_t> fixedBytes{1500}; ///< With all headers.
  std::atomic<std::uint32_t> usedBytes{0};     ///< Of the last stream; 0 before there was one.
};

/// The features; without packet sizes for a link that has no settings, as it cannot stream. The adapter is asked
/// whenever they are read.
krsystem::HostFeatures ListLinkFeatures(const LinkTarget& aTarget, const std::shared_ptr<PacketSizeSettings>& aSizes);

} // namespace krtransport
