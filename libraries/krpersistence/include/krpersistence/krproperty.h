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
  /// A property with a text.
  KrProperty(const KrString& aName, const KrString& aValue);
  /// A property with an integer, as decimal text.
  template <KrPropertyInteger Integer>
  KrProperty(const KrString& aName, Integer aValue) : KrProperty(aName, KrString(std::to_string(aValue))) {}

  /// The name by which it is found.
  const KrString& GetName() const { return mName; }
  /// Gives it another name.
  void SetName(const KrString& aName);

  /// The value as text.
  const KrString& GetValue() const { return mValue; }
  /// Reads the value as an integer: an optional "-" and decimal digits, nothing else. BadData for any other text,
  /// OutOfRange for a number beyond 64 bits with sign; the description names property and text, and aValue is
  /// unchanged.
  KrResult GetValue(std::int64_t& aValue) const;

  /// Sets the value as text.
  void SetValue(const KrString& aValue);
  /// Sets the value as an integer, in decimal text.
  template <KrPropertyInteger Integer>
  void SetValue(Integer aValue) {
    SetValue(KrString(std::to_string(aValue)));
  }

  /// Whether both have the same name and text.
  friend bool operator==(const KrProperty&, const KrProperty&) = default;

private:
  KrString mName;
  KrString mValue;
};
