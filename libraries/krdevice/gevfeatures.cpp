#include "gevfeatures.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace krdevice {

namespace {

using krsystem::HostFeature;
using krsystem::HostFeatureAccess;
using krsystem::HostFeatureInfo;
using krsystem::HostFeatureValue;

constexpr std::string_view kCategory = "GigEVision";
constexpr std::uint32_t kPacketSizeMask = 0xFFFF;

struct GevRegister {
  HostFeatureInfo info;
  std::uint64_t address;
  std::size_t bytes;  // 4, or 8 where two registers hold one number.
  std::uint64_t mask; // Of the number.
  bool isWritten;
};

// clang-format off
constexpr std::array kRegisters = {
    GevRegister{{.name = "GevMACAddress", .category = kCategory,
                 .tip = "The MAC address of the device's network interface.", .visibility = "Beginner",
                 .isStandard = true, .representation = "MACAddress"}, 0x0008, 8, 0xFFFFFFFFFFFF, false},
    GevRegister{{.name = "GevCurrentIPAddress", .category = kCategory, .tip = "The IP address that the device has now.",
                 .visibility = "Beginner", .isStandard = true, .representation = "IPV4Address"},
                0x0024, 4, 0xFFFFFFFF, false},
    GevRegister{{.name = "GevCurrentSubnetMask", .category = kCategory,
                 .tip = "The subnet mask that the device has now.", .isStandard = true,
                 .representation = "IPV4Address"}, 0x0034, 4, 0xFFFFFFFF, false},
    GevRegister{{.name = "GevCurrentDefaultGateway", .category = kCategory,
                 .tip = "The gateway by which the device reaches other subnets; 0.0.0.0 for none.",
                 .isStandard = true, .representation = "IPV4Address"}, 0x0044, 4, 0xFFFFFFFF, false},
    GevRegister{{.name = "GevHeartbeatTimeout", .category = kCategory,
                 .tip = "The silence after which the device takes control away from this application, for example when "
                        "its cable was pulled. This host sends a heartbeat every second: shorter times lose control "
                        "while all is well; longer ones make others wait who want the device after a crash.",
                 .isStandard = true, .pollingMs = 2000, .minimum = 1500, .maximum = 600000, .unit = "ms"},
                0x0938, 4, 0xFFFFFFFF, true},
    GevRegister{{.name = "GevSCPSPacketSize", .category = kCategory,
                 .tip = "The bytes of one stream packet, headers of IP and above included, as the device has them set.",
                 .isStandard = true, .pollingMs = 2000, .unit = "B"}, 0x0D04, 4, kPacketSizeMask, false},
};
// clang-format on

KrResult Read(IKrRegisterPort& aPort, const GevRegister& aRegister, HostFeatureValue& aValue,
              const HostFeatureAccess& aAccess) {
  std::array<std::uint8_t, 8> bytes{};
  KrResult result = aPort.Read(aRegister.address, bytes.data(), aRegister.bytes, aAccess.timeoutMs, aAccess.cancel);
  if (!result.IsOK())
    return result;
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < aRegister.bytes; ++i)
    number = number << 8 | bytes[i];
  aValue = static_cast<std::int64_t>(number & aRegister.mask);
  return {};
}

KrResult Write(IKrRegisterPort& aPort, const GevRegister& aRegister, const HostFeatureValue& aValue,
               const HostFeatureAccess& aAccess) {
  const auto number = static_cast<std::uint32_t>(std::get<std::int64_t>(aValue));
  std::array<std::uint8_t, 4> bytes{};
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<std::uint8_t>(number >> (24 - 8 * i));
  return aPort.Write(aRegister.address, bytes.data(), bytes.size(), aAccess.timeoutMs, aAccess.cancel);
}

} // namespace

krsystem::HostFeatures ListGevFeatures(IKrRegisterPort& aPort, bool aIsReadOnly, std::function<void()> aOnWritten) {
  krsystem::HostFeatures features;
  for (const GevRegister& row : kRegisters) {
    HostFeature feature;
    feature.info = row.info;
    feature.read = [&aPort, &row](HostFeatureValue& aValue, const HostFeatureAccess& aAccess) {
      return Read(aPort, row, aValue, aAccess);
    };
    if (row.isWritten && !aIsReadOnly)
      feature.write = [&aPort, &row, aOnWritten](const HostFeatureValue& aValue, const HostFeatureAccess& aAccess) {
        KrResult result = Write(aPort, row, aValue, aAccess);
        aOnWritten();
        return result;
      };
    features.push_back(std::move(feature));
  }
  return features;
}

} // namespace krdevice
