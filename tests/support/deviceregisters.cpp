#include "deviceregisters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <arpa/inet.h>
#include <cstdio>

namespace {

using Bytes = DeviceRegisters::Bytes;

constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kDiscoverySize = 248; // An acknowledge is the start of the registers.
constexpr std::size_t kMemorySize = 0x18000;
constexpr std::size_t kDescriptionAddress = 0x10000;
constexpr std::size_t kForceIPSize = 56;

constexpr std::uint16_t kAccessDenied = 0x8006;
constexpr std::uint16_t kInvalidAddress = 0x8003;
constexpr std::uint16_t kNotImplemented = 0x8001;
constexpr std::uint16_t kInvalidHeader = 0x800E;

// Registers (GigE Vision 2.x, bootstrap registers).
constexpr std::uint32_t kVersion = 0x0000, kDeviceMode = 0x0004, kMacHigh = 0x0008;
constexpr std::uint32_t kSupportedIPConfiguration = 0x0010, kCurrentIPConfiguration = 0x0014;
constexpr std::uint32_t kAddress = 0x0024, kMask = 0x0034, kGateway = 0x0044;
constexpr std::uint32_t kFirstURL = 0x0200, kInterfaceCount = 0x0600, kStreamChannelCount = 0x0904;
constexpr std::uint32_t kCapability = 0x0934, kHeartbeatTimeout = 0x0938;
constexpr std::uint32_t kPrimaryPort = 0x0A04, kPrimaryAddress = 0x0A14;
constexpr std::uint32_t kExclusive = 1, kControl = 2;

constexpr std::string_view kDescription =
    R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="T100" VendorName="TestCameras" ToolTip="A camera for tests" StandardNameSpace="GEV"
  SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0"
  SubMinorVersion="0" ProductGuid="6C9E4F0A-57B5-4C58-9A7B-0F2D5B7C1E10"
  VersionGuid="9E2B6B52-4A2F-4C0B-8D0D-5C1F7E3A2B44" xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Category Name="Root" NameSpace="Standard"><pFeature>Width</pFeature></Category>
  <IntReg Name="Width" NameSpace="Standard"><Address>0xA000</Address><Length>4</Length><AccessMode>RO</AccessMode>
    <pPort>Device</pPort><Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess></IntReg>
  <Port Name="Device" NameSpace="Standard"/>
</RegisterDescription>
)";

std::uint16_t Get16(std::span<const std::uint8_t> aBytes, std::size_t aOffset) {
  return static_cast<std::uint16_t>((aBytes[aOffset] << 8) | aBytes[aOffset + 1]);
}

std::uint32_t Get32(std::span<const std::uint8_t> aBytes, std::size_t aOffset) {
  return (static_cast<std::uint32_t>(Get16(aBytes, aOffset)) << 16) | Get16(aBytes, aOffset + 2);
}

void Put32(Bytes& aBytes, std::size_t aOffset, std::uint32_t aValue) {
  for (std::size_t i = 0; i < 4; ++i)
    aBytes[aOffset + i] = static_cast<std::uint8_t>(aValue >> (24 - 8 * i));
}

// The acknowledge of a command is numbered one higher than that.
Bytes MakeAcknowledge(std::span<const std::uint8_t> aCommand, std::uint16_t aStatus,
                      std::span<const std::uint8_t> aPayload = {}) {
  const std::uint16_t message = static_cast<std::uint16_t>(Get16(aCommand, 2) + 1);
  Bytes acknowledge = {static_cast<std::uint8_t>(aStatus >> 8),
                       static_cast<std::uint8_t>(aStatus),
                       static_cast<std::uint8_t>(message >> 8),
                       static_cast<std::uint8_t>(message),
                       static_cast<std::uint8_t>(aPayload.size() >> 8),
                       static_cast<std::uint8_t>(aPayload.size()),
                       aCommand[6],
                       aCommand[7]};
  acknowledge.insert(acknowledge.end(), aPayload.begin(), aPayload.end());
  return acknowledge;
}

} // namespace

MacAddress ParseTestMac(const std::string& aText) {
  std::array<unsigned, 6> parts{};
  EXPECT_EQ(
      std::sscanf(aText.c_str(), "%x:%x:%x:%x:%x:%x", &parts[0], &parts[1], &parts[2], &parts[3], &parts[4], &parts[5]),
      6)
      << aText;
  MacAddress mac{};
  std::copy(parts.begin(), parts.end(), mac.begin());
  return mac;
}

std::uint32_t ParseTestAddress(const std::string& aText) {
  in_addr address{};
  EXPECT_EQ(::inet_pton(AF_INET, aText.c_str(), &address), 1) << aText;
  return ntohl(address.s_addr);
}

DeviceRegisters::DeviceRegisters(const TestDeviceIdentity& aIdentity) : mMemory(kMemorySize) {
  const MacAddress mac = ParseTestMac(aIdentity.mac);
  Write(kVersion, 0x00020000);
  Write(kDeviceMode, 0x80000001); // Big-endian, a transmitter, UTF-8.
  std::copy(mac.begin(), mac.end(), mMemory.begin() + kMacHigh + 2);
  Write(kSupportedIPConfiguration, 7);
  Write(kCurrentIPConfiguration, 6);
  Write(kAddress, ParseTestAddress(aIdentity.address));
  Write(kMask, ParseTestAddress(aIdentity.mask));
  Write(kGateway, ParseTestAddress(aIdentity.gateway));
  WriteText(0x0048, 32, aIdentity.manufacturer);
  WriteText(0x0068, 32, aIdentity.model);
  WriteText(0x0088, 32, aIdentity.version);
  WriteText(0x00A8, 48, aIdentity.information);
  WriteText(0x00D8, 16, aIdentity.serialNumber);
  WriteText(0x00E8, 16, aIdentity.userDefinedName);
  std::array<char, 64> url{};
  std::snprintf(url.data(), url.size(), "Local:test.xml;%zX;%zX", kDescriptionAddress, kDescription.size());
  WriteText(kFirstURL, 512, url.data());
  WriteText(kDescriptionAddress, kMemorySize - kDescriptionAddress, kDescription);
  Write(kInterfaceCount, 1);
  Write(kStreamChannelCount, 1);
  Write(kCapability, 0xC8000003); // Name, serial number, the controller's address; WRITEMEM and concatenation.
  Write(kHeartbeatTimeout, 3000);
}

Bytes DeviceRegisters::Answer(std::span<const std::uint8_t> aCommand, const GvcpSender& aSender, Time aNow) {
  constexpr std::uint8_t kKey = 0x42;
  if (aCommand.size() < kHeaderSize || aCommand[0] != kKey)
    return {};
  if (aCommand.size() - kHeaderSize != Get16(aCommand, 4))
    return MakeAcknowledge(aCommand, kInvalidHeader);
  if (mController == aSender)
    mControllerHeard = aNow;
  else if (mController && aNow - mControllerHeard > std::chrono::milliseconds(Read(kHeartbeatTimeout)))
    SetForeignControl(0);
  using Handler = Bytes (*)(DeviceRegisters&, std::span<const std::uint8_t>, const GvcpSender&);
  struct Row {
    std::uint16_t command;
    Handler handle;
  };
  static constexpr Row kHandlers[] = {
      {0x0002, [](DeviceRegisters& aSelf, auto aBytes, const auto&) { return aSelf.AnswerDiscovery(aBytes); }},
      {0x0004, [](DeviceRegisters& aSelf, auto aBytes, const auto&) { return aSelf.AnswerForceIP(aBytes); }},
      {0x0080,
       [](DeviceRegisters& aSelf, auto aBytes, const auto& aFrom) { return aSelf.AnswerReadRegister(aBytes, aFrom); }},
      {0x0082,
       [](DeviceRegisters& aSelf, auto aBytes, const auto& aFrom) { return aSelf.AnswerWriteRegister(aBytes, aFrom); }},
      {0x0084,
       [](DeviceRegisters& aSelf, auto aBytes, const auto& aFrom) { return aSelf.AnswerReadMemory(aBytes, aFrom); }},
      {0x0086,
       [](DeviceRegisters& aSelf, auto aBytes, const auto& aFrom) { return aSelf.AnswerWriteMemory(aBytes, aFrom); }},
  };
  for (const Row& row : kHandlers) {
    if (row.command == Get16(aCommand, 2))
      return row.handle(*this, aCommand, aSender);
  }
  return MakeAcknowledge(aCommand, kNotImplemented);
}

MacAddress DeviceRegisters::GetMac() const {
  MacAddress mac{};
  std::copy_n(mMemory.begin() + kMacHigh + 2, mac.size(), mac.begin());
  return mac;
}

DeviceAddresses DeviceRegisters::GetAddresses() const {
  return {Read(kAddress), Read(kMask), Read(kGateway)};
}

std::uint32_t DeviceRegisters::Read(std::uint32_t aRegister) const {
  return Get32(mMemory, aRegister);
}

void DeviceRegisters::Write(std::uint32_t aRegister, std::uint32_t aValue) {
  Put32(mMemory, aRegister, aValue);
}

void DeviceRegisters::SetForeignControl(std::uint32_t aPrivilege) {
  mController.reset();
  Write(kTestDevicePrivilege, aPrivilege);
  Write(kPrimaryPort, 0);
  Write(kPrimaryAddress, 0);
}

Bytes DeviceRegisters::AnswerDiscovery(std::span<const std::uint8_t> aCommand) const {
  return MakeAcknowledge(aCommand, 0, std::span(mMemory).first(kDiscoverySize));
}

Bytes DeviceRegisters::AnswerForceIP(std::span<const std::uint8_t> aCommand) {
  const auto payload = aCommand.subspan(kHeaderSize);
  if (payload.size() != kForceIPSize)
    return MakeAcknowledge(aCommand, kInvalidHeader);
  const MacAddress mac = GetMac();
  if (!std::equal(mac.begin(), mac.end(), payload.begin() + 2))
    return {};
  if (mForceIPManner == ForceIPManner::Ignore)
    return {};
  // The standard lets a device refuse while an application controls it.
  if (mForceIPManner == ForceIPManner::Refuse || Read(kTestDevicePrivilege) != 0)
    return MakeAcknowledge(aCommand, kAccessDenied);
  Write(kAddress, Get32(payload, 20));
  Write(kMask, Get32(payload, 36));
  Write(kGateway, Get32(payload, 52));
  return MakeAcknowledge(aCommand, 0);
}

Bytes DeviceRegisters::AnswerReadRegister(std::span<const std::uint8_t> aCommand, const GvcpSender& aSender) const {
  const auto addresses = aCommand.subspan(kHeaderSize);
  if (!MayRead(aSender))
    return MakeAcknowledge(aCommand, kAccessDenied);
  Bytes values(addresses.size() / 4 * 4);
  for (std::size_t i = 0; i < values.size(); i += 4) {
    if (!HasRegister(Get32(addresses, i), 4))
      return MakeAcknowledge(aCommand, kInvalidAddress);
    Put32(values, i, Read(Get32(addresses, i)));
  }
  return MakeAcknowledge(aCommand, 0, values);
}

Bytes DeviceRegisters::AnswerWriteRegister(std::span<const std::uint8_t> aCommand, const GvcpSender& aSender) {
  const auto pairs = aCommand.subspan(kHeaderSize);
  std::uint16_t status = 0;
  std::uint8_t written = 0;
  for (std::size_t i = 0; i + 8 <= pairs.size() && status == 0; i += 8) {
    const std::uint32_t address = Get32(pairs, i);
    if (address == kTestDevicePrivilege)
      status = TakePrivilege(Get32(pairs, i + 4), aSender);
    else if (!MayWrite(aSender))
      status = kAccessDenied;
    else if (!HasRegister(address, 4))
      status = kInvalidAddress;
    else
      Write(address, Get32(pairs, i + 4));
    written = static_cast<std::uint8_t>(written + (status == 0 ? 1 : 0));
  }
  return MakeAcknowledge(aCommand, status, Bytes{0, 0, 0, written});
}

Bytes DeviceRegisters::AnswerReadMemory(std::span<const std::uint8_t> aCommand, const GvcpSender& aSender) const {
  if (aCommand.size() != kHeaderSize + 8)
    return MakeAcknowledge(aCommand, kInvalidHeader);
  if (!MayRead(aSender))
    return MakeAcknowledge(aCommand, kAccessDenied);
  const std::uint32_t address = Get32(aCommand, kHeaderSize);
  const std::uint32_t count = Get16(aCommand, kHeaderSize + 6);
  if (!HasRegister(address, count))
    return MakeAcknowledge(aCommand, kInvalidAddress);
  Bytes payload(aCommand.begin() + kHeaderSize, aCommand.begin() + kHeaderSize + 4);
  payload.insert(payload.end(), mMemory.begin() + address, mMemory.begin() + address + count);
  return MakeAcknowledge(aCommand, 0, payload);
}

Bytes DeviceRegisters::AnswerWriteMemory(std::span<const std::uint8_t> aCommand, const GvcpSender& aSender) {
  const auto data = aCommand.subspan(std::min(aCommand.size(), kHeaderSize + 4));
  if (!MayWrite(aSender))
    return MakeAcknowledge(aCommand, kAccessDenied);
  if (aCommand.size() < kHeaderSize + 4 || !HasRegister(Get32(aCommand, kHeaderSize), data.size()))
    return MakeAcknowledge(aCommand, kInvalidAddress);
  std::copy(data.begin(), data.end(), mMemory.begin() + Get32(aCommand, kHeaderSize));
  const std::size_t count = data.size();
  return MakeAcknowledge(aCommand, 0,
                         Bytes{0, 0, static_cast<std::uint8_t>(count >> 8), static_cast<std::uint8_t>(count)});
}

std::uint16_t DeviceRegisters::TakePrivilege(std::uint32_t aValue, const GvcpSender& aSender) {
  if (Read(kTestDevicePrivilege) != 0 && mController != aSender)
    return kAccessDenied;
  Write(kTestDevicePrivilege, aValue);
  const bool isTaken = (aValue & (kExclusive | kControl)) != 0;
  mController = isTaken ? std::optional(aSender) : std::nullopt;
  mControllerHeard = std::chrono::steady_clock::now();
  Write(kPrimaryPort, isTaken ? aSender.port : 0);
  Write(kPrimaryAddress, isTaken ? aSender.address : 0);
  return 0;
}

bool DeviceRegisters::MayRead(const GvcpSender& aSender) const {
  return (Read(kTestDevicePrivilege) & kExclusive) == 0 || mController == aSender;
}

bool DeviceRegisters::MayWrite(const GvcpSender& aSender) const {
  return mController == aSender;
}

bool DeviceRegisters::HasRegister(std::uint32_t aAddress, std::size_t aSize) const {
  return aAddress % 4 == 0 && aSize % 4 == 0 && aAddress <= mMemory.size() && aSize <= mMemory.size() - aAddress;
}

void DeviceRegisters::WriteText(std::size_t aOffset, std::size_t aSize, std::string_view aText) {
  std::copy_n(aText.begin(), std::min(aSize, aText.size()), mMemory.begin() + static_cast<std::ptrdiff_t>(aOffset));
}
