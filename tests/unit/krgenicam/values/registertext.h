#pragma once
// Registers of a description as text, for tests of what stands on them.

#include <cstdint>
#include <string>
#include <string_view>

/// A register of four bytes, a whole number without sign.
inline std::string MakeRegister(std::string_view aName, std::uint64_t aAddress, std::string_view aAccess = "RW",
                                std::string_view aCommon = {}) {
  const std::string name(aName);
  return "<IntReg Name=\"" + name + "\">" + std::string(aCommon) + "<Address>" + std::to_string(aAddress) +
         "</Address><Length>4</Length><AccessMode>" + std::string(aAccess) +
         "</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>\n";
}

/// A register of eight bytes, a floating-point number.
inline std::string MakeFloatRegister(std::string_view aName, std::uint64_t aAddress) {
  return "<FloatReg Name=\"" + std::string(aName) + "\"><Address>" + std::to_string(aAddress) +
         "</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
         "<Endianess>LittleEndian</Endianess></FloatReg>\n";
}
