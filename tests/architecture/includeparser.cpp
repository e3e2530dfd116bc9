#include "includeparser.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <utility>

namespace archcheck {

namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view TrimLeft(std::string_view aText) {
  const std::size_t start = aText.find_first_not_of(kBlanks);
  return start == std::string_view::npos ? std::string_view{} : aText.substr(start);
}

// What follows "#include", or an empty text when the line is no include directive.
std::string_view GetDirectiveOperand(std::string_view aLine) {
  constexpr std::string_view kWord = "include";
  std::string_view rest = TrimLeft(aLine);
  if (!rest.starts_with('#'))
    return {};
  rest = TrimLeft(rest.substr(1));
  if (!rest.starts_with(kWord))
    return {};
  return TrimLeft(rest.substr(kWord.size()));
}

bool IsWordCharacter(char aCharacter) {
  return std::isalnum(static_cast<unsigned char>(aCharacter)) != 0 || aCharacter == '_';
}

enum class Literals { Kept, Blanked };

// Copies a source text, blanking what is no code.
class Blanker {
public:
  Blanker(std::string_view aSource, Literals aLiterals) : mSource(aSource), mLiterals(aLiterals), mResult(aSource) {}

  std::string Run() {
    while (mAt < mSource.size())
      Step();
    return std::move(mResult);
  }

private:
  void Step() {
    if (LooksAt("//"))
      BlankTo(mSource.find('\n', mAt));
    else if (LooksAt("/*"))
      BlankTo(EndOf("*/", mAt + 2));
    else if (LooksAt("R\"") && IsRawPrefix())
      PassLiteral(EndOfRawLiteral());
    else if (mSource[mAt] == '"' && IsInclude())
      mAt = EndOf("\"", mAt + 1);
    else if (mSource[mAt] == '"' || (mSource[mAt] == '\'' && !IsDigitSeparator()))
      PassLiteral(EndOfLiteral(mSource[mAt]));
    else
      ++mAt;
  }

  bool LooksAt(std::string_view aText) const { return mSource.substr(mAt).starts_with(aText); }

  // An R that ends a longer word begins no raw literal, unless that word is an encoding prefix.
  bool IsRawPrefix() const {
    constexpr std::string_view kPrefixEnds = "u8UL";
    return mAt == 0 || !IsWordCharacter(mSource[mAt - 1]) || kPrefixEnds.find(mSource[mAt - 1]) != kPrefixEnds.npos;
  }
  bool IsDigitSeparator() const { return mAt > 0 && std::isxdigit(static_cast<unsigned char>(mSource[mAt - 1])) != 0; }

  bool IsInclude() const {
    const std::size_t lineStart = mSource.rfind('\n', mAt) + 1;
    return GetDirectiveOperand(mSource.substr(lineStart)).data() == mSource.data() + mAt;
  }

  std::size_t EndOf(std::string_view aEnd, std::size_t aFrom) const {
    const std::size_t found = mSource.find(aEnd, aFrom);
    return found == std::string_view::npos ? mSource.size() : found + aEnd.size();
  }

  std::size_t EndOfRawLiteral() const {
    const std::size_t open = mSource.find('(', mAt);
    if (open == std::string_view::npos)
      return mSource.size();
    return EndOf(")" + std::string(mSource.substr(mAt + 2, open - mAt - 2)) + "\"", open);
  }

  std::size_t EndOfLiteral(char aQuote) const {
    std::size_t at = mAt + 1;
    while (at < mSource.size() && mSource[at] != aQuote && mSource[at] != '\n')
      at += mSource[at] == '\\' ? 2 : 1;
    return at < mSource.size() ? at + 1 : mSource.size();
  }

  void PassLiteral(std::size_t aEnd) {
    if (mLiterals == Literals::Blanked)
      BlankTo(aEnd);
    else
      mAt = std::min(aEnd, mSource.size());
  }

  void BlankTo(std::size_t aEnd) {
    const std::size_t end = aEnd < mSource.size() ? aEnd : mSource.size();
    for (; mAt < end; ++mAt)
      if (mSource[mAt] != '\n')
        mResult[mAt] = ' ';
  }

  std::string_view mSource;
  Literals mLiterals;
  std::string mResult;
  std::size_t mAt = 0;
};

} // namespace

std::string BlankCommentsAndLiterals(std::string_view aSource) {
  return Blanker(aSource, Literals::Blanked).Run();
}

std::string BlankComments(std::string_view aSource) {
  return Blanker(aSource, Literals::Kept).Run();
}

std::vector<Include> ParseIncludes(std::string_view aSource) {
  const std::string code = BlankCommentsAndLiterals(aSource);
  std::vector<Include> includes;
  int line = 1;
  for (std::size_t start = 0; start < code.size(); ++line) {
    const std::size_t end = std::min(code.find('\n', start), code.size());
    const std::string_view operand = GetDirectiveOperand(std::string_view(code).substr(start, end - start));
    if (operand.starts_with('"') || operand.starts_with('<')) {
      const std::size_t close = operand.find(operand.front() == '<' ? '>' : '"', 1);
      if (close != std::string_view::npos)
        includes.push_back({line, std::string(operand.substr(1, close - 1))});
    }
    start = end + 1;
  }
  return includes;
}

} // namespace archcheck
