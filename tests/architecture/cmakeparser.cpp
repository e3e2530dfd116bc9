#include "cmakeparser.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace archcheck {

namespace {

// Splits the text into words and parentheses; comments are passed over.
std::vector<CMakeWord> SplitWords(std::string_view aText) {
  std::vector<CMakeWord> words;
  int line = 1;
  std::size_t at = 0;
  while (at < aText.size()) {
    const char character = aText[at];
    if (character == '#') {
      at = std::min(aText.find('\n', at), aText.size());
    } else if (character == '(' || character == ')') {
      words.push_back({line, std::string(1, character)});
      ++at;
    } else if (character == '"') {
      const std::size_t end = std::min(aText.find('"', at + 1), aText.size());
      words.push_back({line, std::string(aText.substr(at + 1, end - at - 1))});
      line += static_cast<int>(std::count(aText.begin() + static_cast<std::ptrdiff_t>(at),
                                          aText.begin() + static_cast<std::ptrdiff_t>(end), '\n'));
      at = end + 1;
    } else if (std::isspace(static_cast<unsigned char>(character)) != 0) {
      line += character == '\n' ? 1 : 0;
      ++at;
    } else {
      const std::size_t end = std::min(aText.find_first_of(" \t\r\n()#\"", at), aText.size());
      words.push_back({line, std::string(aText.substr(at, end - at))});
      at = end;
    }
  }
  return words;
}

bool IsKeyword(std::string_view aWord) {
  return !aWord.empty() && std::all_of(aWord.begin(), aWord.end(), [](char aCharacter) {
    return std::isupper(static_cast<unsigned char>(aCharacter)) != 0 || aCharacter == '_';
  });
}

std::string ToLower(std::string aText) {
  std::transform(aText.begin(), aText.end(), aText.begin(), [](char aCharacter) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(aCharacter)));
  });
  return aText;
}

} // namespace

std::vector<CMakeCall> ParseCMake(std::string_view aText) {
  const std::vector<CMakeWord> words = SplitWords(aText);
  std::vector<CMakeCall> calls;
  int depth = 0;
  for (std::size_t index = 0; index < words.size(); ++index) {
    const std::string& text = words[index].text;
    if (text == "(") {
      if (depth++ == 0)
        calls.push_back({index > 0 ? ToLower(words[index - 1].text) : std::string(), {}});
    } else if (text == ")") {
      depth = std::max(0, depth - 1);
    } else if (depth > 0) {
      calls.back().arguments.push_back(words[index]);
    }
  }
  return calls;
}

std::vector<CMakeWord> GetWordsAfter(const CMakeCall& aCall, std::string_view aKeyword) {
  std::vector<CMakeWord> found;
  bool inside = false;
  for (const CMakeWord& word : aCall.arguments) {
    if (IsKeyword(word.text))
      inside = word.text == aKeyword;
    else if (inside)
      found.push_back(word);
  }
  return found;
}

std::string GetLinkedName(std::string_view aItem) {
  if (!aItem.starts_with("$<"))
    return std::string(aItem);
  // What is linked stands behind the last colon that is not one of a "::".
  std::size_t colon = aItem.rfind(':');
  while (colon != std::string_view::npos && colon > 0 && aItem[colon - 1] == ':')
    colon = colon > 1 ? aItem.rfind(':', colon - 2) : std::string_view::npos;
  std::string_view name = colon == std::string_view::npos ? aItem : aItem.substr(colon + 1);
  name = name.substr(0, std::min(name.find('>'), name.size()));
  return std::string(name);
}

} // namespace archcheck
