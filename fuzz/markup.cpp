// Any text may be a feature's description: what is shown of it are its own characters, without the tags and each once.

#include "logic/browser/markup.h"
#include "require.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view kBegin = "<b>";
constexpr std::string_view kEnd = "</b>";

// Writes each run with tags of its own.
std::string Write(const std::vector<krgui::MarkupRun>& aRuns) {
  std::string text;
  for (const krgui::MarkupRun& run : aRuns)
    text += run.isBold ? std::string(kBegin) + std::string(run.text) + std::string(kEnd) : std::string(run.text);
  return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  const std::string text(reinterpret_cast<const char*>(aData), aSize);
  const std::vector<krgui::MarkupRun> runs = krgui::SplitMarkup(text);

  const char* shown = text.data();
  for (const krgui::MarkupRun& run : runs) {
    Require(!run.text.empty() && run.text.data() >= shown);
    shown = run.text.data() + run.text.size();
    Require(shown <= text.data() + text.size());
    Require(run.text.find(run.isBold ? kEnd : kBegin) == std::string_view::npos);
  }
  // What follows is bold exactly where the text says that it leaves bold behind.
  const std::string longer = text + "x";
  Require(krgui::SplitMarkup(longer).back().isBold == krgui::LeavesBold(text));
  // A run of normal text that follows one of normal text, as around an empty bold one, may make a tag where they meet.
  bool isMerged = false;
  for (std::size_t i = 1; i < runs.size(); ++i)
    isMerged = isMerged || runs[i].isBold == runs[i - 1].isBold;
  const std::string written = Write(runs);
  Require(isMerged || krgui::SplitMarkup(written) == runs);
  return 0;
}
