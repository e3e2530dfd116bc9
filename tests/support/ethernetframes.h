#pragma once
// The Ethernet frames that a device without a kernel's network needs: UDP over IPv4 and the answers to "who has this
// address?". Which frames are taken and sent is left to the device.

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

using MacAddress = std::array<std::uint8_t, 6>;
inline constexpr MacAddress kEveryMac = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
inline constexpr std::uint32_t kEveryAddress = 0xFFFFFFFF;

/// One datagram with its way. Addresses are numbers whose most significant byte is the first.
struct UdpFrame {
  MacAddress sourceMac{};
  MacAddress targetMac{};
  std::uint32_t sourceAddress = 0;
  std::uint32_t targetAddress = 0;
  std::uint16_t sourcePort = 0;
  std::uint16_t targetPort = 0;
  std::vector<std::uint8_t> payload;
};

/// A frame that asks for an address's MAC.
struct AddressQuestion {
  MacAddress askerMac{};
  std::uint32_t askerAddress = 0;
  std::uint32_t address = 0;
};

/// Nothing where a frame is none of the kind, cut short or a fragment.
std::optional<UdpFrame> ParseUdpFrame(std::span<const std::uint8_t> aFrame);
std::vector<std::uint8_t> MakeUdpFrame(const UdpFrame& aFrame);
std::optional<AddressQuestion> ParseAddressQuestion(std::span<const std::uint8_t> aFrame);
/// aMac answers that it has the address.
std::vector<std::uint8_t> MakeAddressAnswer(const AddressQuestion& aQuestion, const MacAddress& aMac);
