#include "formula/formulalexer.h"

#include <charconv>
#include <limits>
#include <system_error>

namespace krgenicam {

namespace {

struct Spelling {
  char first;
  char second; // Zero for operators of one character.
  FormulaSymbol symbol;
};

// Operators of two characters come before those that they begin with.
constexpr Spelling kSpellings[] = {
    {'*', '*', FormulaSymbol::Power},
    {'&', '&', FormulaSymbol::LogicalAnd},
    {'|', '|', FormulaSymbol::LogicalOr},
    {'<', '<', FormulaSymbol::ShiftLeft},
    {'>', '>', FormulaSymbol::ShiftRight},
    {'<', '=', FormulaSymbol::LessEqual},
    {'>', '=', FormulaSymbol::GreaterEqual},
    {'<', '>', FormulaSymbol::NotEqual},
    {'!', '=', FormulaSymbol::NotEqual},
    {'=', '=', FormulaSymbol::Equal},
    {'=', '\0', FormulaSymbol::Equal},
    {'<', '\0', FormulaSymbol::Less},
    {'>', '\0', FormulaSymbol::Greater},
    {'(', '\0', FormulaSymbol::OpenParenthesis},
    {')', '\0', FormulaSymbol::CloseParenthesis},
    {',', '\0', FormulaSymbol::Comma},
    {'?', '\0', FormulaSymbol::Question},
    {':', '\0', FormulaSymbol::Colon},
    {'+', '\0', FormulaSymbol::Plus},
    {'-', '\0', FormulaSymbol::Minus},
    {'*', '\0', FormulaSymbol::Times},
    {'/', '\0', FormulaSymbol::Divide},
    {'%', '\0', FormulaSymbol::Remainder},
    {'&', '\0', FormulaSymbol::BitAnd},
    {'|', '\0', FormulaSymbol::BitOr},
    {'^', '\0', FormulaSymbol::BitXor},
    {'~', '\0', FormulaSymbol::Complement},
};

struct Entity {
  std::string_view text;
  char meaning;
};

// None of these can be anything else, as a formula has no semicolons.
constexpr Entity kEntities[] = {{"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}};

constexpr bool IsDigit(char aCharacter) {
  return aCharacter >= '0' && aCharacter <= '9';
}

constexpr bool IsNameStart(char aCharacter) {
  return (aCharacter >= 'A' && aCharacter <= 'Z') || (aCharacter >= 'a' && aCharacter <= 'z') || aCharacter == '_';
}

constexpr bool IsNamePart(char aCharacter) {
  return IsNameStart(aCharacter) || IsDigit(aCharacter);
}

constexpr bool IsBlank(char aCharacter) {
  return aCharacter == ' ' || aCharacter == '\t' || aCharacter == '\n' || aCharacter == '\r';
}

} // namespace

FormulaToken FormulaLexer::Next() {
  while (mPosition < mText.size() && IsBlank(mText[mPosition]))
    ++mPosition;
  if (mPosition == mText.size())
    return {.symbol = FormulaSymbol::End, .column = mPosition + 1};
  const char first = mText[mPosition];
  const char second = mPosition + 1 < mText.size() ? mText[mPosition + 1] : '\0';
  if (first == '0' && (second == 'x' || second == 'X'))
    return TakeHexNumber();
  if (IsDigit(first) || (first == '.' && IsDigit(second)))
    return TakeNumber();
  return IsNameStart(first) ? TakeName() : TakeOperator();
}

FormulaLexer::Character FormulaLexer::PeekCharacter(std::size_t aPosition) const {
  if (aPosition >= mText.size())
    return {};
  for (const Entity& entity : kEntities) {
    if (mText.substr(aPosition).starts_with(entity.text))
      return {.meaning = entity.meaning, .length = entity.text.size()};
  }
  return {.meaning = mText[aPosition], .length = 1};
}

FormulaToken FormulaLexer::Finish(FormulaSymbol aSymbol, std::size_t aEnd) {
  FormulaToken token{.symbol = aSymbol, .column = mPosition + 1, .text = mText.substr(mPosition, aEnd - mPosition)};
  mPosition = aEnd;
  return token;
}

FormulaToken FormulaLexer::Refuse(const char* aFault) const {
  return {
      .symbol = FormulaSymbol::Invalid, .column = mPosition + 1, .text = mText.substr(mPosition, 1), .fault = aFault};
}

FormulaToken FormulaLexer::TakeHexNumber() {
  std::uint64_t value = 0;
  const char* const begin = mText.data() + mPosition + 2;
  const auto [end, error] = std::from_chars(begin, mText.data() + mText.size(), value, 16);
  if (error == std::errc::result_out_of_range)
    return Refuse("expected a hexadecimal number of at most 64 bits");
  if (end == begin || (end != mText.data() + mText.size() && IsNamePart(*end)))
    return Refuse("expected a hexadecimal number");
  FormulaToken token = Finish(FormulaSymbol::Value, static_cast<std::size_t>(end - mText.data()));
  token.value = Number(static_cast<std::int64_t>(value));
  return token;
}

FormulaToken FormulaLexer::TakeNumber() {
  const auto skipDigits = [this](std::size_t aFrom) {
    while (aFrom < mText.size() && IsDigit(mText[aFrom]))
      ++aFrom;
    return aFrom;
  };
  std::size_t end = skipDigits(mPosition);
  if (end < mText.size() && mText[end] == '.')
    end = skipDigits(end + 1);
  if (end < mText.size() && (mText[end] == 'e' || mText[end] == 'E')) {
    const bool hasSign = end + 1 < mText.size() && (mText[end + 1] == '+' || mText[end + 1] == '-');
    const std::size_t digits = end + (hasSign ? 2 : 1);
    end = skipDigits(digits);
    if (end == digits)
      return Refuse("expected a number whose exponent has digits");
  }
  if (end < mText.size() && (IsNamePart(mText[end]) || mText[end] == '.'))
    return Refuse("expected a number");
  FormulaToken token = Finish(FormulaSymbol::Value, end);
  ReadDecimal(token);
  return token;
}

void FormulaLexer::ReadDecimal(FormulaToken& aToken) const {
  const char* const begin = aToken.text.data();
  const char* const end = begin + aToken.text.size();
  if (aToken.text.find_first_of(".eE") == std::string_view::npos) {
    std::uint64_t whole = 0;
    const bool fits = std::from_chars(begin, end, whole).ec == std::errc();
    if (fits && (mWraps || whole <= std::uint64_t{std::numeric_limits<std::int64_t>::max()})) {
      aToken.value = Number(static_cast<std::int64_t>(whole));
      return;
    }
  }
  double value = 0.0;
  if (std::from_chars(begin, end, value).ec == std::errc()) {
    aToken.value = Number(value);
    return;
  }
  aToken.symbol = FormulaSymbol::Invalid;
  aToken.fault = "expected a number that a floating-point one can hold";
}

FormulaToken FormulaLexer::TakeName() {
  std::size_t end = mPosition;
  const auto isPart = [this](std::size_t aPosition) {
    return aPosition < mText.size() && IsNamePart(mText[aPosition]);
  };
  while (true) {
    if (isPart(end))
      ++end;
    else if (mText.substr(end).starts_with('.') && isPart(end + 1))
      end += 2;
    else if (mText.substr(end).starts_with("::") && isPart(end + 2))
      end += 3;
    else
      return Finish(FormulaSymbol::Name, end);
  }
}

FormulaToken FormulaLexer::TakeOperator() {
  const Character first = PeekCharacter(mPosition);
  const Character second = PeekCharacter(mPosition + first.length);
  for (const Spelling& spelling : kSpellings) {
    if (spelling.first != first.meaning)
      continue;
    if (spelling.second == '\0')
      return Finish(spelling.symbol, mPosition + first.length);
    if (spelling.second == second.meaning)
      return Finish(spelling.symbol, mPosition + first.length + second.length);
  }
  return Refuse("expected a number, a name or an operator");
}

} // namespace krgenicam
