#include "logic/browser/markup.h"

namespace krgui {

namespace {

constexpr std::string_view kBoldBegin = "<b>";
constexpr std::string_view kBoldEnd = "</b>";

constexpr double kTitleScale = 1.3;

} // namespace

std::vector<MarkupRun> SplitMarkup(std::string_view aText) {
  std::vector<MarkupRun> runs;
  bool isBold = false;
  while (!aText.empty()) {
    const std::string_view tag = isBold ? kBoldEnd : kBoldBegin;
    const std::size_t end = aText.find(tag);
    const std::string_view part = aText.substr(0, end);
    if (!part.empty()) {
      runs.push_back({part, isBold});
    }
    aText.remove_prefix(end == aText.npos ? aText.size() : end + tag.size());
    isBold = !isBold;
  }
  return runs;
}

bool LeavesBold(std::string_view aText) {
  bool isBold = false;
  for (std::size_t at = aText.find(kBoldBegin); at != aText.npos; at = aText.find(isBold ? kBoldEnd : kBoldBegin, at)) {
    at += (isBold ? kBoldEnd : kBoldBegin).size();
    isBold = !isBold;
  }
  return isBold;
}

int ScaleTitleHeight(int aDefaultHeight) {
  return static_cast<int>(aDefaultHeight * kTitleScale + 0.5);
}

} // namespace krgui
