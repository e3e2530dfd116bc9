#pragma once
// The tables of promises and limits in docs/security.md: each row names the tests that show it, so that none is without
// one and none names a test that has gone. What the tests do is left to them.

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace archcheck {

/// What a document's tables of promises and limits came to: those whose last heading is "test" or "shown by".
struct LimitTable {
  struct Problem {
    int line;         ///< Counted from 1.
    std::string rule; ///< What is wrong, as a sentence.
    friend bool operator==(const Problem&, const Problem&) = default;
  };
  int rows = 0;
  std::vector<Problem> problems;
};

/// Adds the GoogleTest tests of a source text, "Suite.Name".
void AddTests(std::string_view aSource, std::set<std::string>& aTests);

/// Reads a document's tables and holds them against the tests that there are.
LimitTable CheckLimitTable(std::string_view aDocument, const std::set<std::string>& aTests);

} // namespace archcheck
