#include "krbase/krlogger.h"

#include "krbase/utf8cut.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>

struct KrLogCapture::Store {
  std::vector<KrLogRecord> records;
};

namespace {

// Both are constant-initialised or never destroyed, so that static objects may log before main and after it.
constinit std::atomic<KrLogLevel> leastWrittenLevel{KrLogLevel::Warning};

struct CaptureStack {
  std::mutex mutex; // Guards the stack and the records of every store on it.
  std::vector<std::shared_ptr<KrLogCapture::Store>> stores;
};

CaptureStack& GetCaptureStack() {
  static CaptureStack& stack = *new CaptureStack();
  return stack;
}

spdlog::logger& GetStandardErrorLogger() {
  static spdlog::logger& logger = *[] {
    auto created = std::make_unique<spdlog::logger>("", std::make_shared<spdlog::sinks::stderr_sink_mt>());
    // Which levels are written is decided before a record gets here.
    created->set_level(spdlog::level::trace);
    created->set_pattern("%Y-%m-%d %H:%M:%S.%e %l %v");
    return created.release();
  }();
  return logger;
}

spdlog::level::level_enum ToSpdlogLevel(KrLogLevel aLevel) {
  constexpr std::array kLevels = {spdlog::level::debug, spdlog::level::info, spdlog::level::warn, spdlog::level::err};
  const int index = std::clamp(static_cast<int>(aLevel), 0, static_cast<int>(kLevels.size()) - 1);
  return kLevels[static_cast<std::size_t>(index)];
}

bool IsControl(char16_t aUnit) {
  return aUnit < 0x20 || (aUnit >= 0x7F && aUnit < 0xA0);
}

// A description of many megabytes may stand in a text that tells what is wrong with it.
constexpr std::size_t kMostLineBytes = 16384;

/// The beginning of a text that is longer than a line may be, with a note of how long it was.
KrString CutToLine(const KrString& aText) {
  const std::string& text = aText.ToUtf8();
  if (text.size() <= kMostLineBytes)
    return aText;
  const std::string beginning(krbase::CutUtf8(text, kMostLineBytes));
  return beginning + "… (the first " + std::to_string(beginning.size()) + " of " + std::to_string(text.size()) +
         " bytes)";
}

/// The text with control characters written out and malformed bytes replaced, so that no text can begin a line that
/// looks like another record or send commands to a terminal.
std::string ToOneLine(const KrString& aText) {
  constexpr std::u16string_view kDigits = u"0123456789abcdef";
  std::u16string line;
  for (const char16_t unit : aText.ToWide()) {
    if (!IsControl(unit))
      line += unit;
    else if (unit == u'\n')
      line += u"\\n";
    else
      line += std::u16string(u"\\x") + kDigits[unit >> 4] + kDigits[unit & 0xF];
  }
  return KrString(line).ToUtf8();
}

void WriteToStandardError(const KrLogRecord& aRecord) {
  KrString line = "[" + aRecord.channel + "] " + aRecord.function;
  if (aRecord.line != 0)
    line += " (" + aRecord.file + ":" + std::to_string(aRecord.line) + ")";
  line += ": " + CutToLine(aRecord.text);
  // Given as a string view, the line is the payload itself and no format.
  GetStandardErrorLogger().log(ToSpdlogLevel(aRecord.level), spdlog::string_view_t(ToOneLine(line)));
}

/// Gives the record to the innermost capture; false where there is none.
bool GiveToCapture(const KrLogRecord& aRecord) {
  CaptureStack& stack = GetCaptureStack();
  const std::lock_guard lock(stack.mutex);
  if (stack.stores.empty())
    return false;
  stack.stores.back()->records.push_back(aRecord);
  return true;
}

} // namespace

KrLogger::KrLogger(const KrString& aChannel) : mChannel(aChannel) {}

void KrLogger::Log(KrLogLevel aLevel, const KrLogSite& aSite, const KrString& aText) const {
  try {
    const KrLogRecord record{aLevel, mChannel, aSite.function, aSite.file, aSite.line, aText};
    if (!GiveToCapture(record) && aLevel >= GetLevel())
      WriteToStandardError(record);
  } catch (const std::exception&) {
    // A record that there is no memory for is lost; the work that it tells of goes on.
  }
}

void KrLogger::SetLevel(KrLogLevel aLevel) {
  leastWrittenLevel = aLevel;
}

KrLogLevel KrLogger::GetLevel() {
  return leastWrittenLevel;
}

KrLogCapture::KrLogCapture() : mStore(std::make_shared<Store>()) {
  CaptureStack& stack = GetCaptureStack();
  const std::lock_guard lock(stack.mutex);
  stack.stores.push_back(mStore);
}

KrLogCapture::~KrLogCapture() {
  CaptureStack& stack = GetCaptureStack();
  const std::lock_guard lock(stack.mutex);
  std::erase(stack.stores, mStore);
}

std::vector<KrLogRecord> KrLogCapture::GetRecords() const {
  const std::lock_guard lock(GetCaptureStack().mutex);
  return mStore->records;
}

bool KrLogCapture::Contains(KrLogLevel aLevel, const KrString& aText) const {
  const std::lock_guard lock(GetCaptureStack().mutex);
  return std::any_of(mStore->records.begin(), mStore->records.end(),
                     [&](const KrLogRecord& aRecord) { return aRecord.level == aLevel && aRecord.text == aText; });
}

void KrLogCapture::Clear() {
  const std::lock_guard lock(GetCaptureStack().mutex);
  mStore->records.clear();
}
