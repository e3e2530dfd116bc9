#include "camerafile/templatereader.h"

#include "camerafile/filemap.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

namespace krcamerabridge {

namespace {

struct NameRow {
  std::string_view name;
  TemplatePart::Kind kind;
};

constexpr NameRow kNames[] = {
    {"value", TemplatePart::Kind::Value}, {"check", TemplatePart::Kind::Check}, {"length", TemplatePart::Kind::Length},
    {"skip", TemplatePart::Kind::Skip},   {"text", TemplatePart::Kind::Text},   {"code", TemplatePart::Kind::Code},
};

struct EscapeRow {
  char letter;
  char byte;
};

constexpr EscapeRow kEscapes[] = {{'r', '\r'}, {'n', '\n'}, {'t', '\t'}, {'0', '\0'}, {'\\', '\\'}};

bool IsBlank(char aCharacter) {
  return aCharacter == ' ' || aCharacter == '\t' || aCharacter == '\r' || aCharacter == '\n';
}

bool IsHexDigit(char aCharacter) {
  return (aCharacter >= '0' && aCharacter <= '9') || (aCharacter >= 'a' && aCharacter <= 'f') ||
         (aCharacter >= 'A' && aCharacter <= 'F');
}

// The byte of two hexadecimal digits at the beginning of a text; nothing where there are none.
std::optional<char> ReadPair(std::string_view aText) {
  if (aText.size() < 2 || !IsHexDigit(aText[0]) || !IsHexDigit(aText[1]))
    return std::nullopt;
  unsigned number = 0;
  std::from_chars(aText.data(), aText.data() + 2, number, 16);
  return static_cast<char>(number);
}

} // namespace

CommandTemplate TemplateReader::ReadText() {
  while (!mRest.empty()) {
    if (mRest.starts_with("{{") || mRest.starts_with("}}")) {
      Append(mRest.front());
      mRest.remove_prefix(2);
    } else if (mRest.starts_with('{')) {
      TakePlaceholder();
    } else if (mRest.starts_with('}')) {
      Report("a \"}\" that ends no placeholder has to be written as \"}}\"");
      mRest.remove_prefix(1);
    } else {
      TakeCharacter();
    }
  }
  return mTemplate;
}

CommandTemplate TemplateReader::ReadBytes() {
  while (!mRest.empty()) {
    if (IsBlank(mRest.front()))
      mRest.remove_prefix(1);
    else if (mRest.starts_with('{'))
      TakePlaceholder();
    else if (mRest.starts_with('"') || mRest.starts_with('\''))
      TakeQuoted();
    else
      TakeBytePair();
  }
  return mTemplate;
}

void TemplateReader::Append(char aByte) {
  if (mTemplate.empty() || mTemplate.back().kind != TemplatePart::Kind::Literal)
    mTemplate.push_back({.kind = TemplatePart::Kind::Literal});
  mTemplate.back().text += aByte;
}

void TemplateReader::TakeCharacter() {
  const auto first = static_cast<unsigned char>(mRest.front());
  if (first == '\\') {
    TakeEscape();
    return;
  }
  if (first < 0x80) {
    Append(mRest.front());
    mRest.remove_prefix(1);
    return;
  }
  // UTF-8 of two bytes with a character up to 0xFF, which stands for that byte.
  if ((first == 0xC2 || first == 0xC3) && mRest.size() > 1) {
    Append(static_cast<char>((first == 0xC3 ? 0x40 : 0) | static_cast<unsigned char>(mRest[1])));
    mRest.remove_prefix(2);
    return;
  }
  std::size_t size = 1;
  while (size < mRest.size() && (static_cast<unsigned char>(mRest[size]) & 0xC0) == 0x80)
    ++size;
  Report("the character " + FileMap::Quote(mRest.substr(0, size)) +
         " is no byte; write the camera's bytes for it as \\xHH");
  mRest.remove_prefix(size);
}

void TemplateReader::TakeEscape() {
  if (mRest.size() > 1 && mRest[1] == 'x') {
    if (const std::optional<char> byte = ReadPair(mRest.substr(2))) {
      Append(*byte);
      mRest.remove_prefix(4);
      return;
    }
  } else if (mRest.size() > 1) {
    if (const auto row = std::ranges::find(kEscapes, mRest[1], &EscapeRow::letter); row != std::end(kEscapes)) {
      Append(row->byte);
      mRest.remove_prefix(2);
      return;
    }
  }
  Report("a backslash has to be one of \\r, \\n, \\t, \\0, \\\\ and \\xHH with two hexadecimal digits");
  mRest.remove_prefix(std::min<std::size_t>(2, mRest.size()));
}

void TemplateReader::TakePlaceholder() {
  const std::size_t end = mRest.find('}');
  if (end == std::string_view::npos) {
    Report("the placeholder " + FileMap::Quote(mRest) + " has no \"}\"; a brace itself is written twice");
    mRest = {};
    return;
  }
  mTemplate.push_back(ParsePlaceholder(mRest.substr(1, end - 1)));
  mRest.remove_prefix(end + 1);
}

void TemplateReader::TakeQuoted() {
  const char quote = mRest.front();
  const std::string_view all = mRest;
  mRest.remove_prefix(1);
  while (!mRest.empty() && mRest.front() != quote)
    TakeCharacter();
  if (mRest.empty())
    Report("the text " + FileMap::Quote(all) + " has no quote at its end");
  else
    mRest.remove_prefix(1);
}

void TemplateReader::TakeBytePair() {
  if (const std::optional<char> byte = ReadPair(mRest)) {
    Append(*byte);
    mRest.remove_prefix(2);
    return;
  }
  const std::size_t end = std::min(mRest.find_first_of(" \t\r\n{\"'", 1), mRest.size());
  Report(FileMap::Quote(mRest.substr(0, end)) + " is no pair of hexadecimal digits; texts stand between quotes");
  mRest.remove_prefix(end);
}

TemplatePart TemplateReader::ParsePlaceholder(std::string_view aInside) {
  const std::size_t colon = aInside.find(':');
  const std::string_view name = aInside.substr(0, colon);
  std::string_view word = colon == std::string_view::npos ? std::string_view() : aInside.substr(colon + 1);
  TemplatePart part;
  const auto row = std::ranges::find(kNames, name, &NameRow::name);
  part.kind = row == std::end(kNames) ? TemplatePart::Kind::Feature : row->kind;
  if (part.kind == TemplatePart::Kind::Feature)
    part.text = name;
  const auto report = [&](const std::string& aReason) {
    Report("the placeholder {" + std::string(aInside) + "}" + aReason);
  };
  if (part.kind == TemplatePart::Kind::Feature && name.empty())
    report(" has no name");
  if (const std::size_t sign = word.find_first_of("+-");
      part.kind == TemplatePart::Kind::Length && sign != std::string_view::npos) {
    const std::string_view added = word.substr(sign + (word[sign] == '+' ? 1 : 0));
    const auto [end, error] = std::from_chars(added.data(), added.data() + added.size(), part.added);
    if (error != std::errc() || end != added.data() + added.size() || part.added < -255 || part.added > 255)
      report(" adds no number from -255 to 255");
    word = word.substr(0, sign);
  }
  if (part.kind == TemplatePart::Kind::Skip && !word.empty()) {
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), part.format.size);
    if (error != std::errc() || end != word.data() + word.size() || part.format.size < 1 || part.format.size > 255)
      report(" skips no number of bytes from 1 to 255");
    part.format.kind = WireKind::Text;
  } else if (colon != std::string_view::npos && part.kind != TemplatePart::Kind::Skip) {
    const std::optional<WireFormat> format = ParseWireFormat(word);
    if (!format)
      report(" has no format that is known");
    part.format = format.value_or(WireFormat{});
  }
  return part;
}

} // namespace krcamerabridge
