#include "watchtext.h"

#include "devicejson.h"
#include "devicetable.h"
#include "plaintext.h"

#include <cstdio>
#include <ctime>

namespace krtool {

namespace {

std::string_view GetWord(NewsKind aKind) {
  constexpr std::string_view kWords[] = {"appeared", "changed", "vanished"};
  return kWords[static_cast<std::size_t>(aKind)];
}

using Convert = std::tm* (*)(const std::time_t*, std::tm*);

// Date and time with milliseconds.
std::string FormatTime(NewsTime aTime, char aBetween, Convert aConvert) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(aTime);
  const std::time_t time = std::chrono::system_clock::to_time_t(seconds);
  std::tm fields = {};
  aConvert(&time, &fields);
  char text[32];
  const std::size_t dateLength = std::strftime(text, sizeof text, "%Y-%m-%d", &fields);
  text[dateLength] = aBetween;
  std::strftime(text + dateLength + 1, sizeof text - dateLength - 1, "%H:%M:%S", &fields);
  char milliseconds[8];
  std::snprintf(milliseconds, sizeof milliseconds, ".%03d",
                static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(aTime - seconds).count()));
  return std::string(text) + milliseconds;
}

std::string FormatChanges(const std::vector<Change>& aChanges) {
  std::string text;
  for (const Change& change : aChanges)
    text +=
        "  " + std::string(change.what) + " " + krapps::MakeCell(change.before) + " -> " + krapps::MakeCell(change.now);
  return text;
}

} // namespace

std::string FormatNews(const News& aNews, NewsTime aTime) {
  std::vector<std::string> row = aNews.device ? MakeRow(*aNews.device, {}) : MakeRow(*aNews.interface);
  // How many devices an interface has is no news of its own, and changes while rounds run.
  if (!aNews.device)
    row.back() = "-";
  std::string line = FormatTime(aTime, ' ', localtime_r) + "  " + std::string(GetWord(aNews.kind));
  for (const std::string& cell : row)
    line += "  " + cell;
  return line + FormatChanges(aNews.changes) + "\n";
}

std::string FormatNewsJson(const News& aNews, NewsTime aTime) {
  JsonWriter writer;
  writer.BeginObject();
  writer.TextMember("time", FormatTime(aTime, 'T', gmtime_r) + "Z");
  writer.TextMember("event", GetWord(aNews.kind));
  if (aNews.device) {
    writer.Key("device");
    WriteDevice(writer, *aNews.device, {});
  } else {
    writer.Key("interface");
    WriteInterface(writer, *aNews.interface);
  }
  if (aNews.kind == NewsKind::Changed) {
    writer.Key("changes");
    writer.BeginObject();
    for (const Change& change : aNews.changes) {
      writer.Key(change.what);
      writer.BeginObject();
      writer.TextMember("before", change.before);
      writer.TextMember("now", change.now);
      writer.EndObject();
    }
    writer.EndObject();
  }
  writer.EndObject();
  return writer.GetText() + "\n";
}

} // namespace krtool
