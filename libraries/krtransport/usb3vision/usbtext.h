#pragma once
// Texts of USB devices and of the kernel's files about them, made fit to be shown. Which file or string descriptor
// holds one is left to the readers.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace krtransport {

/// The most bytes that a text keeps. A string descriptor has at most 126 UTF-16 units, which are 378 bytes.
inline constexpr std::size_t kMaxUsbText = 384;

/// A text that can be shown as it is: at most kMaxUsbText bytes of valid UTF-8; control characters, marks that
/// change how others are shown, and bytes that are no UTF-8 become U+FFFD each.
std::string CleanUsbText(std::string_view aText);

/// Reads a string descriptor (USB 2.0, 9.6.7), cleaned; empty for bytes that are none.
std::string ParseStringDescriptor(std::span<const std::uint8_t> aBytes);

/// Reads the first language of string descriptor zero; 0 for bytes that name none.
std::uint16_t ParseFirstLanguage(std::span<const std::uint8_t> aBytes);

} // namespace krtransport
