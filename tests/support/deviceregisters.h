#pragma once
// What a GigE Vision device of our own answers to commands on its control channel: a register memory behind discovery,
// ForceIP and the accesses to registers and memory, with the rules of control. Bytes in, bytes out; how they travel is
// the device's business.

#include "ethernetframes.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What a device says of itself. Texts are bytes as they are put into their fields, cut to the field's size.
struct TestDeviceIdentity {
  std::string mac = "02:00:00:00:00:01";
  std::string address = "192.168.1.20";
  std::string mask = "255.255.255.0";
  std::string gateway = "0.0.0.0";
  std::string manufacturer = "Test Cameras";
  std::string model = "T-100";
  std::string version = "1.2.3";
  std::string information = "Made for tests";
  std::string serialNumber = "T001";
  std::string userDefinedName = {};
};

/// What becomes of a ForceIP command.
enum class ForceIPManner {
  Obey,               ///< Done, and acknowledged from the new address.
  ObeyFromOldAddress, ///< Done, and acknowledged as if it were not yet.
  Refuse,             ///< Acknowledged with the status "access denied".
  Ignore,             ///< Neither done nor acknowledged, as by some devices that an application controls.
};

/// Who sent a command.
struct GvcpSender {
  std::uint32_t address = 0;
  std::uint16_t port = 0;
  friend bool operator==(const GvcpSender&, const GvcpSender&) = default;
};

inline constexpr std::uint32_t kTestDevicePrivilege = 0x0A00; ///< Bit 0 exclusive, bit 1 control.

/// The addresses that a device has at the moment.
struct DeviceAddresses {
  std::uint32_t address = 0;
  std::uint32_t mask = 0;
  std::uint32_t gateway = 0;
  friend bool operator==(const DeviceAddresses&, const DeviceAddresses&) = default;
};

/// A device's registers and the answers that come of them. No thread of its own and no lock.
class DeviceRegisters {
public:
  using Bytes = std::vector<std::uint8_t>;
  using Time = std::chrono::steady_clock::time_point;

  explicit DeviceRegisters(const TestDeviceIdentity& aIdentity);

  /// The acknowledge of a command; empty for what is none, or is for another device.
  Bytes Answer(std::span<const std::uint8_t> aCommand, const GvcpSender& aSender, Time aNow);

  MacAddress GetMac() const;
  DeviceAddresses GetAddresses() const;
  void SetForceIPManner(ForceIPManner aManner) { mForceIPManner = aManner; }
  std::uint32_t Read(std::uint32_t aRegister) const;
  void Write(std::uint32_t aRegister, std::uint32_t aValue);
  /// A foreign application takes control (2), exclusively (1), or nobody has it (0).
  void SetForeignControl(std::uint32_t aPrivilege);

private:
  Bytes AnswerDiscovery(std::span<const std::uint8_t> aCommand) const;
  Bytes AnswerForceIP(std::span<const std::uint8_t> aCommand);
  Bytes AnswerReadRegister(std::span<const std::uint8_t> aCommand, const GvcpSender& aSender) const;
  Bytes AnswerWriteRegister(std::span<const std::uint8_t> aCommand, const GvcpSender& aSender);
  Bytes AnswerReadMemory(std::span<const std::uint8_t> aCommand, const GvcpSender& aSender) const;
  Bytes AnswerWriteMemory(std::span<const std::uint8_t> aCommand, const GvcpSender& aSender);
  std::uint16_t TakePrivilege(std::uint32_t aValue, const GvcpSender& aSender);
  bool MayRead(const GvcpSender& aSender) const;
  bool MayWrite(const GvcpSender& aSender) const;
  bool HasRegister(std::uint32_t aAddress, std::size_t aSize) const;
  void WriteText(std::size_t aOffset, std::size_t aSize, std::string_view aText);

  Bytes mMemory;
  ForceIPManner mForceIPManner = ForceIPManner::Obey;
  // Who has control; nobody of this network where it is a foreign application's.
  std::optional<GvcpSender> mController;
  Time mControllerHeard;
};

/// "aa:bb:cc:dd:ee:ff" as bytes; a text that is none fails the test.
MacAddress ParseTestMac(const std::string& aText);
/// "a.b.c.d" as a number; a text that is none fails the test.
std::uint32_t ParseTestAddress(const std::string& aText);
