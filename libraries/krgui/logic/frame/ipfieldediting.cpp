#include "logic/frame/ipfieldediting.h"

#include <algorithm>

namespace krgui {

namespace {

constexpr unsigned kBitsPerField = 8;
constexpr unsigned kMaximum = 255;

bool IsDigit(char16_t aCharacter) {
  return aCharacter >= u'0' && aCharacter <= u'9';
}

bool IsSeparator(char16_t aCharacter) {
  return aCharacter == u'.' || aCharacter == u',' || aCharacter == u' ';
}

bool IsSpace(char16_t aCharacter) {
  return aCharacter == u' ' || (aCharacter >= u'\t' && aCharacter <= u'\r') || aCharacter == u'\u00A0';
}

std::string& GetText(IPFields& aFields) {
  return aFields.texts[aFields.field];
}

unsigned ToNumber(const std::string& aDigits) {
  unsigned number = 0;
  for (const char digit : aDigits) {
    number = number * 10 + static_cast<unsigned>(digit - '0');
  }
  return number;
}

void MoveTo(IPFields& aFields, std::size_t aField, std::size_t aCaret) {
  aFields.field = aField;
  aFields.caret = aFields.anchor = aCaret;
}

void MoveToEnd(IPFields& aFields, std::size_t aField) {
  MoveTo(aFields, aField, aFields.texts[aField].size());
}

/// With all of it selected, so that typing replaces it. False behind the last field.
bool MoveToNextField(IPFields& aFields) {
  if (aFields.field + 1 == IPFields::kCount) {
    return false;
  }
  MoveToEnd(aFields, aFields.field + 1);
  aFields.anchor = 0;
  return true;
}

void EraseSelection(IPFields& aFields) {
  const auto [begin, end] = std::minmax(aFields.caret, aFields.anchor);
  GetText(aFields).erase(begin, end - begin);
  MoveTo(aFields, aFields.field, begin);
}

void TypeDigit(IPFields& aFields, char aDigit) {
  EraseSelection(aFields);
  if (GetText(aFields).size() == IPFields::kDigits) {
    const bool isAtEnd = aFields.caret == IPFields::kDigits;
    if (!isAtEnd || !MoveToNextField(aFields)) {
      return;
    }
    EraseSelection(aFields);
  }
  std::string& text = GetText(aFields);
  text.insert(aFields.caret, 1, aDigit);
  MoveTo(aFields, aFields.field, aFields.caret + 1);
  if (ToNumber(text) > kMaximum) {
    text = std::to_string(kMaximum);
  }
  if (text.size() == IPFields::kDigits && aFields.caret == IPFields::kDigits) {
    (void)MoveToNextField(aFields);
  }
}

// One function per key.

void Backspace(IPFields& aFields) {
  if (aFields.HasSelection()) {
    EraseSelection(aFields);
  } else if (aFields.caret > 0) {
    GetText(aFields).erase(aFields.caret - 1, 1);
    MoveTo(aFields, aFields.field, aFields.caret - 1);
  } else if (aFields.field > 0) {
    MoveToEnd(aFields, aFields.field - 1);
  }
}

void Delete(IPFields& aFields) {
  if (aFields.HasSelection()) {
    EraseSelection(aFields);
  } else {
    GetText(aFields).erase(aFields.caret, 1);
  }
}

void Left(IPFields& aFields) {
  if (aFields.HasSelection()) {
    MoveTo(aFields, aFields.field, std::min(aFields.caret, aFields.anchor));
  } else if (aFields.caret > 0) {
    MoveTo(aFields, aFields.field, aFields.caret - 1);
  } else if (aFields.field > 0) {
    MoveToEnd(aFields, aFields.field - 1);
  }
}

void Right(IPFields& aFields) {
  if (aFields.HasSelection()) {
    MoveTo(aFields, aFields.field, std::max(aFields.caret, aFields.anchor));
  } else if (aFields.caret < GetText(aFields).size()) {
    MoveTo(aFields, aFields.field, aFields.caret + 1);
  } else if (aFields.field + 1 < IPFields::kCount) {
    MoveTo(aFields, aFields.field + 1, 0);
  }
}

void Home(IPFields& aFields) {
  MoveTo(aFields, 0, 0);
}

void End(IPFields& aFields) {
  MoveToEnd(aFields, IPFields::kCount - 1);
}

void PreviousField(IPFields& aFields) {
  if (aFields.field == 0) {
    Home(aFields);
  } else {
    MoveToEnd(aFields, aFields.field - 1);
    aFields.anchor = 0;
  }
}

void NextField(IPFields& aFields) {
  if (!MoveToNextField(aFields)) {
    End(aFields);
  }
}

constexpr struct {
  IPKey key;
  void (*press)(IPFields& aFields);
} kKeys[] = {
    {IPKey::Backspace, Backspace},
    {IPKey::Delete, Delete},
    {IPKey::Left, Left},
    {IPKey::Right, Right},
    {IPKey::Home, Home},
    {IPKey::End, End},
    {IPKey::PreviousField, PreviousField},
    {IPKey::NextField, NextField},
};

std::u16string_view Trim(std::u16string_view aText) {
  while (!aText.empty() && IsSpace(aText.front())) {
    aText.remove_prefix(1);
  }
  while (!aText.empty() && IsSpace(aText.back())) {
    aText.remove_suffix(1);
  }
  return aText;
}

/// Four fields of one to three digits with dots between them.
std::optional<std::array<std::string, IPFields::kCount>> SplitAddress(std::u16string_view aText) {
  std::array<std::string, IPFields::kCount> texts;
  for (std::size_t field = 0; field < IPFields::kCount; ++field) {
    const bool isLast = field + 1 == IPFields::kCount;
    const std::size_t end = isLast ? aText.size() : aText.find(u'.');
    if (end == aText.npos || end == 0 || end > IPFields::kDigits ||
        !std::all_of(aText.begin(), aText.begin() + static_cast<std::ptrdiff_t>(end), IsDigit)) {
      return std::nullopt;
    }
    texts[field] = CleanField(aText.substr(0, end));
    aText.remove_prefix(isLast ? end : end + 1);
  }
  return texts;
}

} // namespace

IPFields TypeCharacter(const IPFields& aFields, char16_t aCharacter) {
  IPFields fields = aFields;
  if (IsDigit(aCharacter)) {
    TypeDigit(fields, static_cast<char>(aCharacter));
  } else if (IsSeparator(aCharacter) && !fields.HasSelection() && !GetText(fields).empty()) {
    (void)MoveToNextField(fields);
  }
  return fields;
}

IPFields PressKey(const IPFields& aFields, IPKey aKey) {
  IPFields fields = aFields;
  for (const auto& row : kKeys) {
    if (row.key == aKey) {
      row.press(fields);
    }
  }
  return fields;
}

IPFields Paste(const IPFields& aFields, std::u16string_view aText) {
  IPFields fields = aFields;
  const std::u16string_view text = Trim(aText);
  if (const auto texts = SplitAddress(text)) {
    fields.texts = *texts;
    End(fields);
  } else if (std::all_of(text.begin(), text.end(), IsDigit)) {
    for (const char16_t digit : text) {
      TypeDigit(fields, static_cast<char>(digit));
    }
  }
  return fields;
}

std::string CleanField(std::u16string_view aText) {
  std::string digits;
  for (const char16_t character : aText) {
    if (IsDigit(character) && digits.size() < IPFields::kDigits) {
      digits += static_cast<char>(character);
    }
  }
  return ToNumber(digits) > kMaximum ? std::to_string(kMaximum) : digits;
}

std::uint32_t GetAddress(const IPFields& aFields) {
  std::uint32_t address = 0;
  for (const std::string& text : aFields.texts) {
    address = (address << kBitsPerField) | ToNumber(text);
  }
  return address;
}

void SetAddress(IPFields& aFields, std::uint32_t aAddress) {
  for (std::size_t field = IPFields::kCount; field-- > 0; aAddress >>= kBitsPerField) {
    aFields.texts[field] = std::to_string(aAddress & kMaximum);
  }
  aFields.caret = aFields.anchor = std::min(aFields.caret, GetText(aFields).size());
}

std::string GetDottedText(const IPFields& aFields) {
  std::string text;
  for (std::size_t field = 0; field < IPFields::kCount; ++field) {
    text += field > 0 ? "." : "";
    text += aFields.texts[field];
  }
  return text;
}

} // namespace krgui
