#pragma once
// What is wrong with a lab file, and where. The first thing found is kept: those after it may follow from it.

#include <optional>
#include <string>

namespace krtransport {

/// A place in a text; lines and columns are counted from 1.
struct TextPlace {
  std::size_t line = 1;
  std::size_t column = 1;
};

/// Thread: one at a time.
class LabProblem {
public:
  void Report(const TextPlace& aPlace, const std::string& aReason) {
    if (!mText)
      mText = std::to_string(aPlace.line) + ":" + std::to_string(aPlace.column) + ": " + aReason;
  }
  bool IsThere() const { return mText.has_value(); }
  /// "line:column: reason"; empty where there is none.
  std::string GetText() const { return mText.value_or(std::string()); }

private:
  std::optional<std::string> mText;
};

} // namespace krtransport
