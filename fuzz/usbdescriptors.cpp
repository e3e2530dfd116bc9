// Whatever a USB device says of itself: its descriptors, its string descriptors, and the lines that the kernel makes of
// them. What is no device descriptor is refused with a reason and nothing set; texts can be shown as they are.

#include "usb3vision/usbdescriptors.h"
#include "require.h"
#include "usb3vision/usbspeed.h"
#include "usb3vision/usbtext.h"
#include "usb3vision/usbtextreader.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>

namespace {

using Bytes = std::span<const std::uint8_t>;

void CheckText(const std::string& aText) {
  Require(aText.size() <= krtransport::kMaxUsbText && krtransport::CleanUsbText(aText) == aText);
}

void CheckDescriptors(Bytes aBytes) {
  krtransport::UsbDescriptors descriptors;
  const KrResult parsed = krtransport::ParseUsbDescriptors(aBytes, descriptors);
  Require(parsed.IsOK() || (parsed == KrResult::Code::BadData && descriptors.configurations.empty() &&
                            descriptors.vendorID == 0 && descriptors.productID == 0));
  if (!RequireReason(parsed))
    return;
  std::size_t interfaceCount = 0;
  std::size_t functionCount = 0;
  bool hasControl = false;
  for (const krtransport::UsbConfiguration& configuration : descriptors.configurations) {
    interfaceCount += configuration.interfaces.size();
    functionCount += configuration.functions.size();
    hasControl = hasControl || krtransport::FindControlInterface(configuration) != nullptr;
  }
  // Of bytes: the device's descriptor, and those behind it.
  Require(18 + 9 * (descriptors.configurations.size() + interfaceCount) + 8 * functionCount <= aBytes.size());
  Require(hasControl == krtransport::IsUSB3Vision(descriptors));
}

void CheckLanguage(Bytes aBytes) {
  const std::uint16_t language = krtransport::ParseFirstLanguage(aBytes);
  const bool isList = aBytes.size() >= 4 && aBytes[0] >= 4 && aBytes[1] == 3;
  Require(language == (isList ? aBytes[2] | (aBytes[3] << 8) : 0));
}

void CheckSpeed(std::string_view aLine) {
  constexpr std::array<std::uint32_t, 7> kKnown = {0, 1500, 12000, 480000, 5000000, 10000000, 20000000};
  const std::uint32_t speed = krtransport::ParseUsbSpeed(std::string(aLine));
  Require(std::ranges::find(kKnown, speed) != kKnown.end());
  Require((speed == 0) == (krtransport::GetUsbSpeedClass(speed) == 0));
}

// A device that answers each question with the next bytes, of a length that the first of them says; longer ones stand
// for failures.
void CheckConversation(Bytes aBytes) {
  constexpr std::array<std::uint8_t, 5> kIndexes = {3, 0, 1, 255, 3};
  std::size_t questions = 0;
  const auto answer = [&](std::uint8_t aIndex, std::uint16_t, std::chrono::milliseconds aLimit,
                          std::vector<std::uint8_t>& aAnswer) -> KrResult {
    Require(aLimit.count() >= 1 && aLimit <= krtransport::kUsbTransferLimit);
    Require((questions++ == 0) == (aIndex == 0)); // What languages there are comes first, and once.
    if (aBytes.empty())
      return {KrResult::Code::TimeLimitExceeded, "The device does not answer."};
    const std::size_t size = aBytes.front();
    aBytes = aBytes.subspan(1);
    if (size > aBytes.size())
      return {KrResult::Code::ProtocolError, "The device has no such text."};
    aAnswer.assign(aBytes.begin(), aBytes.begin() + static_cast<std::ptrdiff_t>(size));
    aBytes = aBytes.subspan(size);
    return {};
  };
  std::vector<std::string> texts = {"before"};
  const auto end = std::chrono::steady_clock::now() + std::chrono::hours(1);
  const KrResult read = krtransport::ReadUsbTexts({kIndexes, end, {}}, answer, texts);
  Require(texts.size() == (RequireReason(read) ? kIndexes.size() : 0));
  Require(texts.empty() || texts[1].empty());
  std::ranges::for_each(texts, CheckText);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const Bytes bytes(aData, aSize);
  const std::string_view line(reinterpret_cast<const char*>(aData), aSize);
  CheckDescriptors(bytes);
  CheckText(krtransport::ParseStringDescriptor(bytes));
  CheckText(krtransport::CleanUsbText(line));
  CheckLanguage(bytes);
  CheckSpeed(line);
  CheckConversation(bytes);
  return 0;
}
