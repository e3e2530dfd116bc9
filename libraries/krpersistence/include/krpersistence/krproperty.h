#pragma once
// One named setting. What its name and value mean is left to the window that saves and loads it.

#include "krbase/krresult.h"

#include <concepts>
#include <cstdint>
#include <string>

/// The integers that a property takes; characters and truth values are none.
template <typename Type>
concept KrPropertyInteger =
    std::integral<Type> && !std::same_as<Type, bool> && !std::same_as<Type, char> && !std::same_as<Type, wchar_t> &&
    !std::same_as<Type, char8_t> && !std::same_as<Type, char16_t> && !std::same_as<Type, char32_t>;

/// A name and a value. A value is a text; an integer is kept as its decimal digits.
///
/// Thread: a value; different objects may be used from different threads.
/// Ownership: owns its texts.
///
///     KrProperty property("Serial0COMPortBaudRate", 115200);
///     std::int64_t baudRate = 0;
///     KrResult result = property.GetValue(baudRate);
class KR_EXPORT KrProperty {
public:
  KrProperty() = default;
  KrProperty(const KrString& aName, const KrString& aValue);
  template <KrPropertyInteger Integer>
  KrProperty(const KrString& aName, Integer aValue) : KrProperty(aName, KrString(std::to_string(aValue))) {}

  const KrString& GetName() const { return mName; }
  void SetName(const KrString& aName);

  /// The value as text.
  const KrString& GetValue() const { return mValue; }
  /// Reads the value as an integer: an optional "-" and decimal digits, nothing else. BadData for any other text,
  /// OutOfRange for a number beyond 64 bits with sign; the description names property and text, and aValue is
  /// unchanged.
  KrResult GetValue(std::int64_t& aValue) const;

  void SetValue(const KrString& aValue);
  template <KrPropertyInteger Integer>
  void SetValue(Integer aValue) {
    SetValue(KrString(std::to_string(aValue)));
  }

  friend bool operator==(const KrProperty&, const KrProperty&) = default;

private:
  KrString mName;
  KrString mValue;
};
