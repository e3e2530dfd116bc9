#pragma once
// How the texts of a device are asked for: which come first, when it is enough, and how long one answer is waited for.
// The transfer itself is the caller's.

#include "krbase/krresult.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace krtransport {

/// The longest that one answer of a device is waited for, and with it how late a cancellation may be noticed.
inline constexpr std::chrono::milliseconds kUsbTransferLimit{200};

/// What is wanted of a device, and until when.
struct UsbTextRequest {
  std::span<const std::uint8_t> indexes;     ///< Numbers of string descriptors; 0 is no text.
  std::chrono::steady_clock::time_point end; ///< Of all questions together.
  std::stop_token cancel;                    ///< Looked at between two questions.
};

/// Reads one string descriptor within a limit of at least 1 ms. ProtocolError says that the device has none, anything
/// else that is not OK that nobody answers.
using ReadUsbDescriptor = std::function<KrResult(std::uint8_t aIndex, std::uint16_t aLanguage,
                                                 std::chrono::milliseconds aLimit, std::vector<std::uint8_t>& aBytes)>;

/// Reads texts, one for each index, empty for those that the device does not give. A device that once does not answer
/// is asked nothing more. Aborted when cancelled, TimeLimitExceeded when the time was up before the first answer, or
/// what the first question gave; there are then no texts.
KrResult ReadUsbTexts(const UsbTextRequest& aRequest, const ReadUsbDescriptor& aRead, std::vector<std::string>& aTexts);

} // namespace krtransport
