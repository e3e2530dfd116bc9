#include "aravis/aravislog.h"

#include "krbase/krlogger.h"

#include <arv.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <string_view>

namespace krtransport {
namespace {

// Aravis' own records name no domain.
constexpr const char* kDomains[] = {nullptr, "GLib", "GLib-GObject", "GLib-GIO"};

// Complaints about what is as it should be: a stream whose thread we stopped before its release is stopped once more by
// its own release, and a USB device that could not be opened waits for a thread that it never had. They are kept for
// who looks closely: the last one may also be the application's.
constexpr std::string_view kHarmless[] = {
    "arv_gv_stream_stop_thread: assertion 'priv->thread != NULL' failed",
    "arv_uv_stream_stop_thread: assertion 'priv->thread != NULL' failed",
    "g_thread_join: assertion 'thread' failed",
};

bool IsHarmless(std::string_view aText) {
  return std::ranges::any_of(kHarmless, [aText](std::string_view aKnown) { return aText.find(aKnown) != aText.npos; });
}

KrLogLevel ToLevel(GLogLevelFlags aLevel) {
  if ((aLevel & (G_LOG_LEVEL_ERROR | G_LOG_LEVEL_CRITICAL)) != 0)
    return KrLogLevel::Error;
  if ((aLevel & G_LOG_LEVEL_WARNING) != 0)
    return KrLogLevel::Warning;
  return (aLevel & (G_LOG_LEVEL_MESSAGE | G_LOG_LEVEL_INFO)) != 0 ? KrLogLevel::Info : KrLogLevel::Debug;
}

void WriteRecord(const gchar* aDomain, GLogLevelFlags aLevel, const gchar* aMessage, gpointer) {
  std::string text(aMessage ? aMessage : "");
  const KrLogLevel level = IsHarmless(text) ? KrLogLevel::Debug : ToLevel(aLevel);
  if (aDomain && *aDomain != '\0')
    text = std::string(aDomain) + ": " + text;
  KrLogger("Aravis").Log(level, {"WriteRecord", "aravislog"}, text);
}

} // namespace

void InstallAravisLog() {
  static std::once_flag once;
  constexpr auto kAllRecords = static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK | G_LOG_FLAG_FATAL | G_LOG_FLAG_RECURSION);
  std::call_once(once, [] {
    for (const char* const domain : kDomains)
      g_log_set_handler(domain, kAllRecords, WriteRecord, nullptr);
  });
}

} // namespace krtransport
