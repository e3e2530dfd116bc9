#pragma once
// The datagrams of the GigE Vision Control Protocol that finding and watching a device needs: built here, and read here
// from bytes that nobody vouches for. Sockets, retries and time limits are left to the clients.

#include "aravis/registerchannel.h"
#include "krbase/krresult.h"
#include "krsystem/macaddress.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace krtransport {

/// The UDP port on which a device listens (GigE Vision 2.x, control protocol).
inline constexpr std::uint16_t kGvcpPort = 3956;
/// The largest datagram that a device may send on the control channel is far below this; more is cut and refused.
inline constexpr std::size_t kMaxGvcpDatagram = 2048;
/// BadData, with the reason, for a datagram that is longer.
KrResult CheckGvcpSize(std::size_t aBytes);
/// The most bytes that one READMEM is asked for.
inline constexpr std::size_t kMaxReadMemory = 512;
/// What one access to a device's memory may be.
inline constexpr RegisterLimits kGvcpRegisterLimits{
    .lastAddress = 0xFFFFFFFF, .alignment = 4, .maxBytes = kMaxReadMemory};

/// The control channel privilege register and its bits.
inline constexpr std::uint32_t kControlPrivilegeRegister = 0x0A00;
inline constexpr std::uint32_t kExclusiveBit = 1u << 0;
inline constexpr std::uint32_t kControlBit = 1u << 1;
inline constexpr std::uint32_t kSwitchoverBit = 1u << 2;
/// Any of these: some application has the device.
inline constexpr std::uint32_t kInUseBits = kExclusiveBit | kControlBit | kSwitchoverBit;
/// The address of the application that controls the device; 0 where there is none. Devices of version 2.0 have it.
inline constexpr std::uint32_t kPrimaryApplicationAddressRegister = 0x0A14;

/// The messages, numbered as the standard numbers them.
enum class GvcpMessage : std::uint16_t {
  DiscoveryCommand = 0x0002,
  DiscoveryAcknowledge = 0x0003,
  ForceIPCommand = 0x0004,
  ForceIPAcknowledge = 0x0005,
  ReadRegisterCommand = 0x0080,
  ReadRegisterAcknowledge = 0x0081,
  ReadMemoryCommand = 0x0084,
  ReadMemoryAcknowledge = 0x0085,
  PendingAcknowledge = 0x0089,
};

/// What a discovery acknowledge says; texts are valid UTF-8 without control characters.
struct DiscoveryPayload {
  std::uint32_t version = 0;    ///< Major in the upper, minor in the lower 16 bits.
  std::uint32_t deviceMode = 0; ///< Bit 31 big-endian, bits 28 to 30 class, low byte character set.
  krsystem::MACAddress mac{};
  std::uint32_t ipConfigOptions = 0; ///< Bit 0 persistent, bit 1 DHCP, bit 2 link-local; other bits are cut off.
  std::uint32_t ipConfigCurrent = 0; ///< The same bits.
  std::uint32_t address = 0;
  std::uint32_t mask = 0;
  std::uint32_t gateway = 0;
  std::string manufacturer;
  std::string model;
  std::string deviceVersion;
  std::string manufacturerInfo;
  std::string serialNumber;
  std::string userDefinedName;
};

/// Commands, ready to be sent. A request id of 0 is not allowed by the standard; the caller counts from 1.
std::vector<std::uint8_t> MakeDiscoveryCommand(std::uint16_t aRequestID);
/// Tells the device of a MAC address, wherever it is, which addresses to use.
std::vector<std::uint8_t> MakeForceIPCommand(std::uint16_t aRequestID, const krsystem::MACAddress& aMac,
                                             std::uint32_t aAddress, std::uint32_t aMask, std::uint32_t aGateway);
std::vector<std::uint8_t> MakeReadRegisterCommand(std::uint16_t aRequestID, std::uint32_t aAddress);
/// Address and count are multiples of 4, the count at most kMaxReadMemory.
std::vector<std::uint8_t> MakeReadMemoryCommand(std::uint16_t aRequestID, std::uint32_t aAddress, std::uint16_t aCount);

/// Each parser takes one datagram as it came. BadData, with the reason, for a datagram that is none of this protocol,
/// of another length, another message or another request; when the device refused, AccessDenied for the status "access
/// denied" and ProtocolError, with the status, for any other. The result is only set when all is well.
KrResult ParseDiscoveryAcknowledge(std::span<const std::uint8_t> aDatagram, std::uint16_t aRequestID,
                                   DiscoveryPayload& aPayload);
KrResult ParseForceIPAcknowledge(std::span<const std::uint8_t> aDatagram, std::uint16_t aRequestID);
KrResult ParseReadRegisterAcknowledge(std::span<const std::uint8_t> aDatagram, std::uint16_t aRequestID,
                                      std::uint32_t& aValue);
/// Fills aData whole; an acknowledge of another address or length is BadData.
KrResult ParseReadMemoryAcknowledge(std::span<const std::uint8_t> aDatagram, std::uint16_t aRequestID,
                                    std::uint32_t aAddress, std::span<std::uint8_t> aData);
/// The answer "not yet": how many milliseconds the device asks for.
KrResult ParsePendingAcknowledge(std::span<const std::uint8_t> aDatagram, std::uint16_t aRequestID,
                                 std::uint16_t& aMilliseconds);

/// The class of device that bits 28 to 30 of the device mode name.
constexpr std::uint32_t GetDeviceClass(std::uint32_t aDeviceMode) {
  return (aDeviceMode >> 28) & 0x7u;
}

} // namespace krtransport
