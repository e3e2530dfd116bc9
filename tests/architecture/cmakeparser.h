#pragma once
// Reads the calls of a CMakeLists.txt as words with their lines. Variables, conditions and generator expressions are
// not evaluated: an item inside a generator expression is reported as what stands in it.

#include <string>
#include <string_view>
#include <vector>

namespace archcheck {

struct CMakeWord {
  int line; ///< Counted from 1.
  std::string text;
};

struct CMakeCall {
  std::string name; ///< In lower case.
  std::vector<CMakeWord> arguments;
};

std::vector<CMakeCall> ParseCMake(std::string_view aText);

/// The words that stand after a keyword, up to the next word that is all upper case.
std::vector<CMakeWord> GetWordsAfter(const CMakeCall& aCall, std::string_view aKeyword);

/// A linked item without the generator expressions around it: "$<BUILD_INTERFACE:krbase>" is "krbase".
std::string GetLinkedName(std::string_view aItem);

} // namespace archcheck
