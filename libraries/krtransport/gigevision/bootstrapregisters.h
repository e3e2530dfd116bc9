#pragma once
// The bootstrap registers of a GigE Vision device that streaming needs (GigE Vision 2.x, bootstrap registers), and how
// they are reached. What they are set to is decided elsewhere.

#include "krbase/krresult.h"

#include <cstdint>

namespace krtransport {

inline constexpr std::uint32_t kTickFrequencyHighRegister = 0x093C;
inline constexpr std::uint32_t kTickFrequencyLowRegister = 0x0940;
/// Channel 0: the host's port, its packets' size, the pause after each, and the host's address.
inline constexpr std::uint32_t kStreamPortRegister = 0x0D00;
inline constexpr std::uint32_t kStreamPacketSizeRegister = 0x0D04;
inline constexpr std::uint32_t kStreamPacketDelayRegister = 0x0D08;
inline constexpr std::uint32_t kStreamDestinationRegister = 0x0D18;
/// Bits of the packet size register: sends one packet for trial, and forbids routers to cut packets.
inline constexpr std::uint32_t kFireTestPacketBit = 1u << 31;
inline constexpr std::uint32_t kDoNotFragmentBit = 1u << 30;
inline constexpr std::uint32_t kPacketSizeMask = 0xFFFF;

/// Thread: the link's I/O thread alone.
class IBootstrapRegisters {
public:
  virtual ~IBootstrapRegisters() = default;
  virtual KrResult ReadRegister(std::uint32_t aAddress, std::uint32_t& aValue) = 0;
  virtual KrResult WriteRegister(std::uint32_t aAddress, std::uint32_t aValue) = 0;
};

} // namespace krtransport
