#pragma once
// What a key does in an IP address control: four fields of up to three digits, one of which has the caret. How they are
// drawn and where keys come from is left to the control.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace krgui {

enum class IPKey {
  Backspace,
  Delete,
  Left,
  Right,
  Home,
  End,
  PreviousField,
  NextField,
};

/// The fields, the one that is edited, and the caret in it. All positions are those that a user can reach.
struct IPFields {
  static constexpr std::size_t kCount = 4;
  static constexpr std::size_t kDigits = 3;

  std::array<std::string, kCount> texts; ///< Up to three digits each, 255 at most.
  std::size_t field = 0;
  std::size_t caret = 0;
  std::size_t anchor = 0; ///< The other end of the selection; the caret where nothing is selected.

  bool HasSelection() const { return caret != anchor; }
  friend bool operator==(const IPFields&, const IPFields&) = default;
};

/// A typed character. Digits fill a field; one that has three lets the next one begin, and what is above 255 becomes
/// 255. '.', ',' and a blank move on to the next field, unless this one is empty or selected: after three digits it
/// moved on by itself. Everything else changes nothing.
IPFields TypeCharacter(const IPFields& aFields, char16_t aCharacter);
/// A key that is no character.
IPFields PressKey(const IPFields& aFields, IPKey aKey);
/// A pasted text: an address with four fields fills all; digits alone are typed one by one; everything else changes
/// nothing.
IPFields Paste(const IPFields& aFields, std::u16string_view aText);

/// A field's text as it may be: the first three digits of a text, 255 at most.
std::string CleanField(std::u16string_view aText);
/// The address of four fields, the first in the most significant byte; empty fields count as 0.
std::uint32_t GetAddress(const IPFields& aFields);
/// The fields of an address.
void SetAddress(IPFields& aFields, std::uint32_t aAddress);
/// The texts with dots between them, as "192.168.1." where the last field is empty.
std::string GetDottedText(const IPFields& aFields);

} // namespace krgui
