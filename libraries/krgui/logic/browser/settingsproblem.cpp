#include "logic/browser/settingsproblem.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace krgui {

namespace {

// How those begin that are no feature's: "The settings are not all taken", "3 further settings were not tried".
bool IsOfNoFeature(std::string_view aText) {
  const std::size_t blank = aText.find(' ');
  const std::string_view word = aText.substr(0, blank);
  const bool isNumber = !word.empty() && word.find_first_not_of("0123456789") == word.npos;
  return blank == aText.npos || aText.starts_with("The settings ") ||
         (isNumber && aText.substr(blank, 9) == " further ");
}

// Where the name and, behind a blank, the positions in brackets end.
std::size_t FindPlaceEnd(std::string_view aText) {
  std::size_t end = aText.find_first_of(" :");
  if (end == aText.npos || aText.substr(end, 2) != " [")
    return end;
  const std::size_t colon = aText.find("]:", end);
  const std::size_t blank = aText.find("] ", end);
  end = std::min(colon, blank);
  return end == aText.npos ? end : end + 1;
}

std::string Capitalize(std::string_view aText) {
  std::string text(aText);
  if (!text.empty() && text.front() >= 'a' && text.front() <= 'z')
    text.front() = static_cast<char>(text.front() - 'a' + 'A');
  return text;
}

// Those of restoring begin with the file's value, of which no letter is another than in the file.
bool BeginsWithValue(std::string_view aReason) {
  constexpr std::string_view kBehindValue[] = {" is wanted, but was not set: ", " was set, but "};
  return std::any_of(std::begin(kBehindValue), std::end(kBehindValue),
                     [aReason](std::string_view aWords) { return aReason.find(aWords) != aReason.npos; });
}

SettingsProblem PartProblem(std::string_view aText) {
  const std::size_t end = IsOfNoFeature(aText) ? aText.npos : FindPlaceEnd(aText);
  if (end == aText.npos)
    return {.feature = {}, .reason = Capitalize(aText)};
  std::string_view reason = aText.substr(end);
  reason.remove_prefix(std::min(reason.find_first_not_of(": "), reason.size()));
  const bool isKept = aText[end] == ':' && BeginsWithValue(reason);
  return {.feature = std::string(aText.substr(0, end)), .reason = isKept ? std::string(reason) : Capitalize(reason)};
}

} // namespace

std::vector<SettingsProblem> PartSettingsProblems(const KrStringList& aProblems) {
  std::vector<SettingsProblem> problems;
  problems.reserve(aProblems.GetCount());
  for (const KrString& problem : aProblems)
    problems.push_back(PartProblem(problem.ToUtf8()));
  return problems;
}

} // namespace krgui
