#include "jsonwriter.h"

#include <cstdio>

namespace krtool {

std::string QuoteJson(const KrString& aText) {
  std::string quoted = "\"";
  for (const char16_t unit : aText.ToWide()) {
    if (unit == u'"' || unit == u'\\') {
      quoted += '\\';
      quoted += static_cast<char>(unit);
    } else if (unit >= 0x20 && unit < 0x7F) {
      quoted += static_cast<char>(unit);
    } else {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(unit));
      quoted += escape;
    }
  }
  return quoted + '"';
}

void JsonWriter::BeginValue() {
  if (mNeedsComma)
    mText += ',';
  mNeedsComma = true;
}

void JsonWriter::Open(char aBracket) {
  BeginValue();
  mText += aBracket;
  mNeedsComma = false;
}

void JsonWriter::Close(char aBracket) {
  mText += aBracket;
  mNeedsComma = true;
}

void JsonWriter::Key(std::string_view aName) {
  BeginValue();
  mText += QuoteJson(aName) + ":";
  mNeedsComma = false;
}

void JsonWriter::Text(const KrString& aValue) {
  BeginValue();
  mText += QuoteJson(aValue);
}

void JsonWriter::Number(std::uint64_t aValue) {
  BeginValue();
  mText += std::to_string(aValue);
}

void JsonWriter::Boolean(bool aValue) {
  BeginValue();
  mText += aValue ? "true" : "false";
}

void JsonWriter::Null() {
  BeginValue();
  mText += "null";
}

void JsonWriter::TextMember(std::string_view aName, const KrString& aValue) {
  Key(aName);
  Text(aValue);
}

} // namespace krtool
