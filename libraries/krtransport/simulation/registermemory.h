#pragma once
// The registers of a simulated device as bytes at addresses, big-endian as GigE Vision has them, with the checks that
// a device makes of every access. What values mean is left to the device.

#include "krbase/krresult.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace krtransport {

/// What an application may do with a register.
enum class RegisterAccess { ReadOnly, WriteOnly, ReadWrite };

/// A device's refusal of an access, with its status code (GigE Vision 2.x, GVCP status codes).
enum class RegisterRefusal : std::uint32_t {
  InvalidParameter = 0x8002,
  InvalidAddress = 0x8003,
  WriteProtect = 0x8004,
  BadAlignment = 0x8005,
  AccessDenied = 0x8006,
  LocalProblem = 0x8008,
};

/// A ProtocolError that names the refusal, its code, the address and why.
KrResult MakeRefusal(RegisterRefusal aRefusal, std::uint64_t aAddress, const KrString& aReason);

/// Thread: one at a time. Ownership: owns the bytes.
class RegisterMemory {
public:
  /// Adds a register of zeros; address and length are multiples of 4, and no register overlaps another.
  void Define(std::uint64_t aAddress, std::size_t aLength, RegisterAccess aAccess, std::string_view aName);

  /// An application's access. Addresses and lengths are multiples of 4; reading may span adjoining registers, writing
  /// starts at a register and stays within it.
  KrResult Read(std::uint64_t aAddress, void* aData, std::size_t aLength) const;
  KrResult CheckWrite(std::uint64_t aAddress, std::size_t aLength) const;
  KrResult Write(std::uint64_t aAddress, const void* aData, std::size_t aLength);

  /// The device's own access, to registers that it defined.
  std::uint32_t GetInteger(std::uint64_t aAddress) const;
  void SetInteger(std::uint64_t aAddress, std::uint32_t aValue);
  /// For registers of 8 bytes.
  void SetLong(std::uint64_t aAddress, std::uint64_t aValue);
  double GetFloat(std::uint64_t aAddress) const;
  void SetFloat(std::uint64_t aAddress, double aValue);
  std::string GetText(std::uint64_t aAddress) const;
  /// Cuts the text to the register's length; what remains is filled with zeros.
  void SetText(std::uint64_t aAddress, std::string_view aText);

private:
  struct Register {
    RegisterAccess access;
    std::string name;
    std::vector<std::uint8_t> bytes;
  };
  using Registers = std::map<std::uint64_t, Register>;

  Registers::const_iterator FindAt(std::uint64_t aAddress) const;

  Registers mRegisters; // By address.
};

/// Numbers as a device sends them, most significant byte first.
std::uint32_t DecodeInteger(const std::uint8_t* aBytes);
void EncodeInteger(std::uint32_t aValue, std::uint8_t* aBytes);
void EncodeLong(std::uint64_t aValue, std::uint8_t* aBytes);
double DecodeFloat(const std::uint8_t* aBytes);
void EncodeFloat(double aValue, std::uint8_t* aBytes);

} // namespace krtransport
