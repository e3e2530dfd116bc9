#include "documentparts.h"

#include <algorithm>
#include <cctype>

namespace krtest {

namespace {

constexpr std::string_view kFence = "```";
constexpr std::string_view kQuoteMark = "> ";
constexpr std::string_view kGap = "…";
constexpr std::size_t kLeastPart = 12;

// Takes the first line, without its end, off a text.
std::string_view TakeLine(std::string_view& aText) {
  const std::string_view line = aText.substr(0, aText.find('\n'));
  aText.remove_prefix(std::min(line.size() + 1, aText.size()));
  return line;
}

// Reads a literal, whose first quote has been passed, and passes its last one.
std::string TakeLiteral(std::string_view& aText, char aQuote) {
  std::string literal;
  while (!aText.empty() && aText[0] != aQuote && aText[0] != '\n') {
    const std::size_t length = aText[0] == '\\' && aText.size() > 1 ? 2 : 1;
    if (length == 2 && aText[1] != '"')
      literal += aText[0];
    literal += aText[length - 1];
    aText.remove_prefix(length);
  }
  aText.remove_prefix(aText.empty() ? 0 : 1);
  return literal;
}

void SkipTo(std::string_view& aText, std::string_view aEnd) {
  const std::size_t end = aText.find(aEnd);
  aText.remove_prefix(end == aText.npos ? aText.size() : end + aEnd.size());
}

std::string_view TrimBlanks(std::string_view aText) {
  const std::size_t first = std::min(aText.find_first_not_of(' '), aText.size());
  return aText.substr(first, aText.find_last_not_of(' ') + 1 - first);
}

// A piece is said at once, or put together of two literals, neither of which is a mere word.
bool HasPiece(std::string_view aLiterals, std::string_view aPiece) {
  const auto has = [&](std::string_view aText) { return aLiterals.find(aText) != aLiterals.npos; };
  if (has(aPiece))
    return true;
  for (std::size_t length = kLeastPart; length + kLeastPart <= aPiece.size(); ++length)
    if (has(aPiece.substr(0, length)) && has(aPiece.substr(length)))
      return true;
  return false;
}

} // namespace

std::vector<CodeBlock> ParseCodeBlocks(std::string_view aMarkdown) {
  std::vector<CodeBlock> blocks;
  bool isInside = false;
  for (int number = 1; !aMarkdown.empty(); ++number) {
    const std::string_view line = TakeLine(aMarkdown);
    if (line.starts_with(kFence)) {
      isInside = !isInside;
      if (isInside)
        blocks.push_back({std::string(line.substr(kFence.size())), number, {}});
    } else if (isInside) {
      blocks.back().text += std::string(line) + '\n';
    }
  }
  return blocks;
}

std::vector<Quotation> ParseQuotations(std::string_view aMarkdown) {
  std::vector<Quotation> quotations;
  bool isInCode = false;
  bool isOpen = false;
  for (int number = 1; !aMarkdown.empty(); ++number) {
    const std::string_view line = TakeLine(aMarkdown);
    if (line.starts_with(kFence))
      isInCode = !isInCode;
    const bool isQuoted = !isInCode && line.starts_with(kQuoteMark);
    if (isQuoted && !isOpen)
      quotations.push_back({number, std::string(line.substr(kQuoteMark.size()))});
    else if (isQuoted)
      quotations.back().text += ' ' + std::string(line.substr(kQuoteMark.size()));
    isOpen = isQuoted;
  }
  return quotations;
}

std::string ReadLiterals(std::string_view aSource) {
  std::string literals;
  bool isJoined = false; // Nothing but blanks came since the last literal.
  char before = ' ';     // A quote behind a digit parts digits.
  while (!aSource.empty()) {
    const char first = aSource[0];
    if (aSource.starts_with("//")) {
      SkipTo(aSource, "\n");
    } else if (aSource.starts_with("/*")) {
      SkipTo(aSource, "*/");
    } else if (aSource.starts_with("R\"(")) {
      SkipTo(aSource, ")\"");
      isJoined = false;
    } else if (first == '"' || (first == '\'' && !std::isxdigit(static_cast<unsigned char>(before)))) {
      aSource.remove_prefix(1);
      const std::string literal = TakeLiteral(aSource, first);
      if (first == '"')
        literals += (isJoined ? "" : "\n") + literal;
      isJoined = first == '"';
    } else {
      isJoined = isJoined && std::isspace(static_cast<unsigned char>(first));
      aSource.remove_prefix(1);
    }
    before = first;
  }
  return literals;
}

bool HasMessage(std::string_view aLiterals, std::string_view aMessage) {
  while (!aMessage.empty()) {
    const std::string_view piece = aMessage.substr(0, aMessage.find(kGap));
    if (!HasPiece(aLiterals, TrimBlanks(piece)))
      return false;
    aMessage.remove_prefix(std::min(piece.size() + kGap.size(), aMessage.size()));
  }
  return true;
}

} // namespace krtest
