#pragma once
// Text as it crosses the libraries' borders: kept as UTF-8, read and written as narrow or wide (UTF-16) text.
// Formatting, parsing and searching are left to the standard library.

#include "krbase/krexport.h"

#include <compare>
#include <cstddef>
#include <string>
#include <string_view>

/// A text value.
///
/// Thread: a value like std::string; different objects may be used from different threads.
/// Ownership: owns its characters; the references that the getters return live as long as the object is unchanged.
class KR_EXPORT KrString {
public:
  KrString() = default;
  /// Takes UTF-8 text; null is taken as the empty text. Bytes that are no UTF-8 are kept and read as U+FFFD by
  /// ToWide().
  KrString(const char* aUtf8);
  /// Takes a copy of UTF-8 text.
  KrString(std::string_view aUtf8);
  /// Takes UTF-8 text over.
  KrString(std::string aUtf8);
  /// Takes UTF-16 text; null is taken as the empty text. A lone surrogate becomes U+FFFD.
  KrString(const char16_t* aWide);
  /// Converts UTF-16 text.
  KrString(std::u16string_view aWide);

  /// The text as UTF-8.
  const std::string& ToUtf8() const { return mUtf8; }
  /// The text as UTF-8, zero-terminated.
  const char* CStr() const { return mUtf8.c_str(); }
  /// The text as UTF-16; every malformed sequence (a maximal subpart, Unicode 15.0, D93b) becomes one U+FFFD.
  std::u16string ToWide() const;

  /// Whether there is no text.
  bool IsEmpty() const { return mUtf8.empty(); }
  /// The number of UTF-8 bytes.
  std::size_t GetLength() const { return mUtf8.size(); }
  /// Leaves no text.
  void Clear() { mUtf8.clear(); }

  /// Appends a text.
  KrString& operator+=(const KrString& aOther);

  /// Compares bytes, which for UTF-8 is the order of code points; no locale takes part.
  friend bool operator==(const KrString&, const KrString&) = default;
  /// By the bytes of their UTF-8.
  friend std::strong_ordering operator<=>(const KrString&, const KrString&) = default;

private:
  std::string mUtf8;
};

/// The two texts joined.
KR_EXPORT KrString operator+(const KrString& aLeft, const KrString& aRight);
