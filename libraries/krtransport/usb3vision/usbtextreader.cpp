#include "usb3vision/usbtextreader.h"

#include "usb3vision/usbtext.h"

#include <algorithm>

namespace krtransport {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// Asks one question where there is time for it.
KrResult Ask(const UsbTextRequest& aRequest, const ReadUsbDescriptor& aRead, std::uint8_t aIndex,
             std::uint16_t aLanguage, std::vector<std::uint8_t>& aBytes) {
  if (aRequest.cancel.stop_requested())
    return {KrResult::Code::Aborted, "Reading the texts of a USB device was cancelled."};
  const auto left = std::chrono::duration_cast<milliseconds>(aRequest.end - steady_clock::now());
  if (left < milliseconds(1))
    return {KrResult::Code::TimeLimitExceeded, "There was no time left to read the texts of a USB device."};
  return aRead(aIndex, aLanguage, std::min(left, kUsbTransferLimit), aBytes);
}

} // namespace

KrResult ReadUsbTexts(const UsbTextRequest& aRequest, const ReadUsbDescriptor& aRead,
                      std::vector<std::string>& aTexts) {
  aTexts.clear();
  std::vector<std::uint8_t> bytes;
  if (KrResult result = Ask(aRequest, aRead, 0, 0, bytes); !result.IsOK())
    return result;
  const std::uint16_t language = ParseFirstLanguage(bytes);
  std::vector<std::string> texts(aRequest.indexes.size());
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (aRequest.indexes[i] == 0)
      continue;
    KrResult result = Ask(aRequest, aRead, aRequest.indexes[i], language, bytes);
    if (result == KrResult::Code::Aborted)
      return result;
    if (result.IsOK())
      texts[i] = ParseStringDescriptor(bytes);
    else if (result != KrResult::Code::ProtocolError)
      break;
  }
  aTexts = std::move(texts);
  return {};
}

} // namespace krtransport
