#pragma once
// Writes JSON (RFC 8259) value by value. Well-formed nesting is left to the caller, escaping is done here.

#include "krbase/krstring.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace krtool {

/// A text as a JSON string with its quotes, in ASCII alone: every other character, and bytes that are no UTF-8, are
/// escaped.
std::string QuoteJson(const KrString& aText);

/// Collects one JSON text.
class JsonWriter {
public:
  void BeginObject() { Open('{'); }
  void EndObject() { Close('}'); }
  void BeginArray() { Open('['); }
  void EndArray() { Close(']'); }
  /// The name of the next value of an object.
  void Key(std::string_view aName);
  void Text(const KrString& aValue);
  void Number(std::uint64_t aValue);
  void Boolean(bool aValue);
  void Null();

  void TextMember(std::string_view aName, const KrString& aValue);

  const std::string& GetText() const { return mText; }

private:
  void Open(char aBracket);
  void Close(char aBracket);
  void BeginValue();

  std::string mText;
  bool mNeedsComma = false;
};

} // namespace krtool
