#include "simulation/labfile/labnumbering.h"

#include "krsystem/ipv4address.h"

#include <charconv>
#include <cstdio>
#include <limits>

namespace krtransport {

namespace {

constexpr std::size_t kMostDigits = 18; // Of which any number can be counted up.
constexpr std::uint64_t kLastMAC = 0xFFFFFFFFFFFF;
constexpr std::size_t kGigESerialBytes = 16;
constexpr std::size_t kOtherTextBytes = 64;

// Whether all addresses were there to be had.
struct Counting {
  std::uint32_t steps;
  bool isWhole = true;
};

KrString CountUpMAC(const KrString& aMAC, Counting& aCounting) {
  std::uint64_t number = 0;
  for (const char character : aMAC.ToUtf8()) {
    if (character != ':')
      number = number << 4 | static_cast<std::uint64_t>(character <= '9' ? character - '0' : character - 'a' + 10);
  }
  number += aCounting.steps;
  aCounting.isWhole = aCounting.isWhole && number <= kLastMAC;
  std::string text;
  for (int shift = 40; shift >= 0; shift -= 8) {
    char byte[8];
    std::snprintf(byte, sizeof(byte), "%s%02x", shift == 40 ? "" : ":", static_cast<unsigned>(number >> shift & 0xFF));
    text += byte;
  }
  return text;
}

// An address that is not set stays so.
KrString CountUpAddress(const KrString& aAddress, Counting& aCounting) {
  const std::uint32_t address = krsystem::ParseIPv4(aAddress).value_or(0);
  if (address == 0)
    return aAddress;
  aCounting.isWhole = aCounting.isWhole && address <= std::numeric_limits<std::uint32_t>::max() - aCounting.steps;
  return krsystem::FormatIPv4(address + aCounting.steps);
}

void CountUpNetwork(LabNetworkSettings& aSettings, Counting& aCounting) {
  aSettings.macAddress = CountUpMAC(aSettings.macAddress, aCounting);
  aSettings.ipAddress = CountUpAddress(aSettings.ipAddress, aCounting);
}

// Each device has ttys and Camera Link cameras of its own.
void CountUpPorts(LabCamera& aCamera, Counting& aCounting) {
  for (LabSerialPort& port : aCamera.serialPorts) {
    port.path = CountUp(port.path, aCounting.steps);
    for (KrString LabCLCamera::*text : {&LabCLCamera::serialNumber, &LabCLCamera::userDefinedName}) {
      port.camera.*text = CountUp(port.camera.*text, aCounting.steps);
      aCounting.isWhole = aCounting.isWhole && (port.camera.*text).GetLength() <= kOtherTextBytes;
    }
  }
}

void CountUpKind(LabGEVCamera& aCamera, Counting& aCounting) {
  CountUpNetwork(aCamera, aCounting);
  CountUpPorts(aCamera, aCounting);
  aCamera.persistentAddress = CountUpAddress(aCamera.persistentAddress, aCounting);
  aCamera.returnAddress = CountUpAddress(aCamera.returnAddress, aCounting);
  aCounting.isWhole = aCounting.isWhole && aCamera.serialNumber.GetLength() <= kGigESerialBytes &&
                      aCamera.userDefinedName.GetLength() <= kGigESerialBytes;
}

void CountUpKind(LabTolvanDevice& aDevice, Counting& aCounting) {
  CountUpNetwork(aDevice, aCounting);
}

void CountUpKind(LabU3VCamera& aCamera, Counting& aCounting) {
  CountUpPorts(aCamera, aCounting);
  aCamera.deviceGUID = CountUp(aCamera.deviceGUID, aCounting.steps);
  aCounting.isWhole = aCounting.isWhole && aCamera.deviceGUID.GetLength() <= kOtherTextBytes;
}

void CountUpKind(LabPlainUSBDevice& aDevice, Counting& aCounting) {
  aDevice.id = CountUp(aDevice.id, aCounting.steps);
  aCounting.isWhole = aCounting.isWhole && aDevice.id.GetLength() <= kOtherTextBytes;
}

} // namespace

KrString CountUp(const KrString& aText, std::uint32_t aSteps) {
  const std::string& text = aText.ToUtf8();
  if (text.empty())
    return aText;
  const std::size_t last = text.find_last_of("0123456789");
  if (last == std::string::npos)
    return text + std::to_string(aSteps + 1);
  const std::size_t before = text.find_last_not_of("0123456789", last);
  const std::size_t first = before == std::string::npos ? 0 : before + 1;
  const std::size_t begin = last - first < kMostDigits ? first : last + 1 - kMostDigits;
  std::uint64_t number = 0;
  std::from_chars(text.data() + begin, text.data() + last + 1, number);
  std::string digits = std::to_string(number + aSteps);
  const std::size_t width = last + 1 - begin;
  digits.insert(0, digits.size() < width ? width - digits.size() : 0, '0');
  return text.substr(0, begin) + digits + text.substr(last + 1);
}

void AddCounted(const ReadLabDevice& aDevice, std::uint32_t aCount, LabProblem& aProblem,
                std::vector<ReadLabDevice>& aDevices) {
  if (aCount > kMostLabDevices - std::min(aDevices.size(), kMostLabDevices)) {
    aProblem.Report(aDevice.place, "more than " + std::to_string(kMostLabDevices) + " devices");
    return;
  }
  // One device alone is as it is written.
  for (std::uint32_t i = 0; i < aCount; ++i) {
    ReadLabDevice device = aDevice;
    Counting counting{.steps = i};
    if (aCount > 1)
      std::visit(
          [&](auto& aKind) {
            aKind.serialNumber = CountUp(aKind.serialNumber, i);
            aKind.userDefinedName = CountUp(aKind.userDefinedName, i);
            CountUpKind(aKind, counting);
          },
          device.device);
    if (!counting.isWhole) {
      aProblem.Report(aDevice.place,
                      "counted up to " + std::to_string(aCount) + " devices an address ends or a text grows too long");
      return;
    }
    aDevices.push_back(std::move(device));
  }
}

} // namespace krtransport
