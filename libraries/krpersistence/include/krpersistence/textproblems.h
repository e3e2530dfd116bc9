#pragma once
// What is wrong with a text that people write, and where. Whether only the first thing is told, as those after it may
// follow from it, or all of them is left to the reader.

#include <cstddef>
#include <string>
#include <vector>

namespace krpersistence {

/// A place in a text; lines and columns are counted from 1.
struct TextPlace {
  std::size_t line = 1;
  std::size_t column = 1;
};

inline constexpr std::size_t kMostTextProblems = 100;

/// Thread: one at a time.
class TextProblems {
public:
  /// Adds a problem; after kMostTextProblems there is one more, which says so.
  void Report(const TextPlace& aPlace, const std::string& aReason) {
    if (mTexts.size() > kMostTextProblems)
      return;
    const std::string reason = mTexts.size() < kMostTextProblems ? aReason : "and more";
    mTexts.push_back(std::to_string(aPlace.line) + ":" + std::to_string(aPlace.column) + ": " + reason);
  }
  bool IsThere() const { return !mTexts.empty(); }
  /// The first one, "line:column: reason"; empty where there is none.
  std::string GetText() const { return mTexts.empty() ? std::string() : mTexts.front(); }
  /// All, in the order in which they were found.
  const std::vector<std::string>& GetTexts() const { return mTexts; }

private:
  std::vector<std::string> mTexts;
};

} // namespace krpersistence
