#include "gigevision/linkfeatures.h"

#include "gigevision/linkquery.h"

#include <array>
#include <utility>

namespace krtransport {

namespace {

using krsystem::HostFeatureEntry;
using krsystem::HostFeatureKind;
using krsystem::MakeSetFeature;
using krsystem::MakeShownFeature;

constexpr std::string_view kAdapter = "HostAdapter";
constexpr std::string_view kPackets = "StreamPackets";
constexpr std::uint32_t kPollingMs = 2000;
constexpr std::uint64_t kBitsPerMegabit = 1'000'000;

constexpr std::array kModes = {
    HostFeatureEntry{"Automatic", "The largest packets that come through, found by trial before a stream starts.",
                     static_cast<std::int64_t>(PacketSizeMode::Automatic)},
    HostFeatureEntry{"Fixed", "What LinkPacketSizeFixed says, whether or not it comes through.",
                     static_cast<std::int64_t>(PacketSizeMode::Fixed)},
    HostFeatureEntry{"Device", "What the device is set to (GevSCPSPacketSize).",
                     static_cast<std::int64_t>(PacketSizeMode::Device)},
};

void AddAdapter(krsystem::HostFeatures& aFeatures, const LinkTarget& aTarget) {
  aFeatures.push_back(MakeShownFeature({.name = "LinkAdapterName",
                                        .category = kAdapter,
                                        .kind = HostFeatureKind::Text,
                                        .tip = "The network adapter by which this host reaches the device.",
                                        .visibility = "Beginner"},
                                       [name = aTarget.adapterName] { return name; }));
  aFeatures.push_back(MakeShownFeature({.name = "LocalIPAddress",
                                        .category = kAdapter,
                                        .tip = "This host's address on the way to the device.",
                                        .visibility = "Beginner",
                                        .representation = "IPV4Address"},
                                       [address = aTarget.localAddress] { return address; }));
  aFeatures.push_back(MakeShownFeature({.name = "LinkAdapterMTU",
                                        .category = kAdapter,
                                        .tip = "The largest IP packet that the adapter takes. With jumbo frames (9000) "
                                               "streams cost less.",
                                        .pollingMs = kPollingMs,
                                        .unit = "B"},
                                       [name = aTarget.adapterName] { return GetMtu(name); }));
  aFeatures.push_back(MakeShownFeature(
      {.name = "LinkAdapterSpeed",
       .category = kAdapter,
       .tip = "The speed of the adapter's link at the moment; 0 where it does not say, "
              "as without a cable.",
       .pollingMs = kPollingMs,
       .unit = "Mbit/s"},
      [name = aTarget.adapterName, read = aTarget.readLinkSpeed] { return read ? read(name) / kBitsPerMegabit : 0; }));
}

void AddPackets(krsystem::HostFeatures& aFeatures, const std::shared_ptr<PacketSizeSettings>& aSizes) {
  aFeatures.push_back(MakeSetFeature(
      {.name = "LinkPacketSizeMode",
       .category = kPackets,
       .kind = HostFeatureKind::Enumeration,
       .tip = "How the size of stream packets is chosen when a stream starts.",
       .isLocked = true,
       .entries = kModes},
      [aSizes] { return aSizes->mode.load(); },
      [aSizes](PacketSizeMode aMode) {
        aSizes->mode = aMode;
        return KrResult();
      }));
  aFeatures.push_back(MakeSetFeature(
      {.name = "LinkPacketSizeFixed",
       .category = kPackets,
       .tip = "The bytes of a stream packet in the mode Fixed, headers of IP and above "
              "included. What the adapter's MTU does not take is lost.",
       .isLocked = true,
       .minimum = 576,
       .maximum = 16384,
       .unit = "B"},
      [aSizes] { return aSizes->fixedBytes.load(); },
      [aSizes](std::uint32_t aBytes) {
        aSizes->fixedBytes = aBytes;
        return KrResult();
      }));
  aFeatures.push_back(MakeShownFeature({.name = "LinkPacketSize",
                                        .category = kPackets,
                                        .tip = "The bytes of a packet of the last stream, as the device made of it; 0 "
                                               "before there was one.",
                                        .pollingMs = kPollingMs,
                                        .unit = "B"},
                                       [aSizes] { return aSizes->usedBytes.load(); }));
}

} // namespace

krsystem::HostFeatures ListLinkFeatures(const LinkTarget& aTarget, const std::shared_ptr<PacketSizeSettings>& aSizes) {
  krsystem::HostFeatures features;
  AddAdapter(features, aTarget);
  if (aSizes != nullptr)
    AddPackets(features, aSizes);
  return features;
}

} // namespace krtransport
