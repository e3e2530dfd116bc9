#pragma once
// The traffic of a USB device's control endpoint as a capture file (pcap, link type USB with 64 bytes of header), from
// which umockdev answers a program.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Thread: one at a time.
class UsbRecording {
public:
  UsbRecording(std::uint16_t aBus, std::uint8_t aAddress);

  /// A question for a string descriptor and its answer; without bytes the device stalls, as it does for a text that it
  /// has not.
  void AddStringDescriptor(std::uint8_t aIndex, std::uint16_t aLanguage, const std::optional<std::string>& aBytes);
  const std::string& GetBytes() const { return mBytes; }

private:
  void Add(char aEvent, const std::string& aSetup, const std::string& aData, std::int32_t aStatus,
           std::uint32_t aLength);

  const std::uint16_t mBus;
  const std::uint8_t mAddress;
  std::uint64_t mTransfer = 0;
  std::uint32_t mMicroseconds = 0;
  std::string mBytes;
};

/// The bytes of a string descriptor with a text.
std::string MakeStringDescriptor(std::u16string_view aText);
