#include "usbrecording.h"

#include <cerrno>

namespace {

constexpr std::uint16_t kAskedBytes = 255;
constexpr std::size_t kSetupLength = 8;

// Appends a number, lowest byte first.
template <typename Number>
void Append(std::string& aBytes, Number aNumber) {
  for (std::size_t i = 0; i < sizeof(aNumber); ++i)
    aBytes += static_cast<char>(static_cast<std::uint64_t>(aNumber) >> (8 * i));
}

} // namespace

UsbRecording::UsbRecording(std::uint16_t aBus, std::uint8_t aAddress) : mBus(aBus), mAddress(aAddress) {
  constexpr std::uint32_t kUsbLinuxMmapped = 220;
  Append(mBytes, std::uint32_t{0xA1B2C3D4});
  Append(mBytes, std::uint16_t{2});
  Append(mBytes, std::uint16_t{4});
  Append(mBytes, std::uint64_t{0});
  Append(mBytes, std::uint32_t{65535});
  Append(mBytes, kUsbLinuxMmapped);
}

void UsbRecording::AddStringDescriptor(std::uint8_t aIndex, std::uint16_t aLanguage,
                                       const std::optional<std::string>& aBytes) {
  std::string setup = {static_cast<char>(0x80), 0x06, static_cast<char>(aIndex), 0x03};
  Append(setup, aLanguage);
  Append(setup, kAskedBytes);
  ++mTransfer;
  Add('S', setup, {}, -EINPROGRESS, kAskedBytes);
  const std::string answer = aBytes.value_or("");
  Add('C', {}, answer, aBytes ? 0 : -EPIPE, static_cast<std::uint32_t>(answer.size()));
}

void UsbRecording::Add(char aEvent, const std::string& aSetup, const std::string& aData, std::int32_t aStatus,
                       std::uint32_t aLength) {
  constexpr std::uint8_t kControl = 2;
  constexpr std::uint8_t kInput = 0x80;
  std::string record;
  Append(record, mTransfer);
  Append(record, aEvent);
  Append(record, kControl);
  Append(record, kInput);
  Append(record, mAddress);
  Append(record, mBus);
  Append(record, aSetup.empty() ? '-' : '\0');
  Append(record, aData.empty() ? '<' : '\0');
  Append(record, std::int64_t{1});
  Append(record, mMicroseconds);
  Append(record, aStatus);
  Append(record, aLength);
  Append(record, static_cast<std::uint32_t>(aData.size()));
  record += aSetup.empty() ? std::string(kSetupLength, '\0') : aSetup;
  record += std::string(16, '\0'); // Of isochronous transfers.
  record += aData;
  Append(mBytes, std::uint32_t{1});
  Append(mBytes, mMicroseconds++);
  Append(mBytes, static_cast<std::uint32_t>(record.size()));
  Append(mBytes, static_cast<std::uint32_t>(record.size()));
  mBytes += record;
}

std::string MakeStringDescriptor(std::u16string_view aText) {
  std::string bytes = {static_cast<char>(2 + 2 * aText.size()), 0x03};
  for (const char16_t unit : aText)
    Append(bytes, static_cast<std::uint16_t>(unit));
  return bytes;
}
