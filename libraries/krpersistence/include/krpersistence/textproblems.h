#pragma once
// What is wrong with a text that people write, and where. Whether only the first thing is told, as those after it may
// follow from it, or all of them is left to the reader.

#include <algorithm>
#include <compare>
#include <cstddef>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace krpersistence {

/// A place in a text; lines and columns are counted from 1.
struct TextPlace {
  std::size_t line = 1;   ///< From 1 on.
  std::size_t column = 1; ///< From 1 on.

  /// By line, then by column.
  friend auto operator<=>(const TextPlace&, const TextPlace&) = default;
};

/// What is wrong at a place.
struct TextProblem {
  TextPlace place;    ///< Where it is wrong.
  std::string reason; ///< What is wrong, for people.

  /// "line:column: reason".
  std::string GetText() const {
    return std::to_string(place.line) + ":" + std::to_string(place.column) + ": " + reason;
  }
};

inline constexpr std::size_t kMostTextProblems = 100;

/// Thread: one at a time.
class TextProblems {
public:
  /// Adds a problem; of those after kMostTextProblems only the place of the first is kept.
  void Report(const TextPlace& aPlace, const std::string& aReason) {
    if (mProblems.size() < kMostTextProblems)
      mProblems.push_back({aPlace, aReason});
    else if (!mMore)
      mMore = aPlace;
  }
  /// Puts them into the order of their places, each once: an alias, for example, has those of what it stands for.
  void Sort() {
    std::ranges::stable_sort(mProblems, {}, &TextProblem::place);
    std::set<std::pair<TextPlace, std::string>> known;
    std::erase_if(mProblems,
                  [&](const TextProblem& aProblem) { return !known.emplace(aProblem.place, aProblem.reason).second; });
  }
  /// Whether there is any problem.
  bool IsThere() const { return !mProblems.empty(); }
  /// All but what only tells that there are more.
  const std::vector<TextProblem>& GetProblems() const { return mProblems; }
  /// The first one, "line:column: reason"; empty where there is none.
  std::string GetText() const { return mProblems.empty() ? std::string() : mProblems.front().GetText(); }
  /// All, in the order in which they were found, or sorted; a last one says where there are more.
  std::vector<std::string> GetTexts() const {
    std::vector<std::string> texts;
    std::ranges::transform(mProblems, std::back_inserter(texts), &TextProblem::GetText);
    if (mMore)
      texts.push_back(TextProblem{*mMore, "and more"}.GetText());
    return texts;
  }

private:
  std::vector<TextProblem> mProblems;
  std::optional<TextPlace> mMore;
};

} // namespace krpersistence
