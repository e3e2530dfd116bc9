#include "aravis/aravislog.h"

#include "krbase/krlogger.h"

#include <arv.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <string_view>

namespace krtransport {
namespace {

// Complaints about what is as it should be: a stream whose thread we stopped before its release is stopped once more by
// its own release, and a USB device that could not be opened waits for a thread that it never had.
constexpr std::string_view kHarmless[] = {
    "arv_gv_stream_stop_thread: assertion 'priv->thread != NULL' failed",
    "arv_uv_stream_stop_thread: assertion 'priv->thread != NULL' failed",
    "g_thread_join: assertion 'thread' failed",
};

bool IsHarmless(std::string_view aText) {
  return std::ranges::any_of(kHarmless, [aText](std::string_view aKnown) { return aText.find(aKnown) != aText.npos; });
}

std::string_view GetField(const GLogField* aFields, gsize aCount, std::string_view aKey) {
  for (gsize i = 0; i < aCount; ++i)
    if (aFields[i].key == aKey && aFields[i].value != nullptr)
      return aFields[i].length < 0
                 ? std::string_view(static_cast<const char*>(aFields[i].value))
                 : std::string_view(static_cast<const char*>(aFields[i].value), static_cast<gsize>(aFields[i].length));
  return {};
}

KrLogLevel ToLevel(GLogLevelFlags aLevel) {
  if ((aLevel & (G_LOG_LEVEL_ERROR | G_LOG_LEVEL_CRITICAL)) != 0)
    return KrLogLevel::Error;
  if ((aLevel & G_LOG_LEVEL_WARNING) != 0)
    return KrLogLevel::Warning;
  return (aLevel & (G_LOG_LEVEL_MESSAGE | G_LOG_LEVEL_INFO)) != 0 ? KrLogLevel::Info : KrLogLevel::Debug;
}

GLogWriterOutput WriteRecord(GLogLevelFlags aLevel, const GLogField* aFields, gsize aCount, gpointer aUserData) {
  const std::string_view domain = GetField(aFields, aCount, "GLIB_DOMAIN");
  // Aravis' own records name no domain.
  const bool isOurs = domain.empty() || domain.starts_with("GLib");
  if (!isOurs)
    return g_log_writer_default(aLevel, aFields, aCount, aUserData);
  std::string text(GetField(aFields, aCount, "MESSAGE"));
  if (IsHarmless(text))
    return G_LOG_WRITER_HANDLED;
  if (!domain.empty())
    text = std::string(domain) + ": " + text;
  KrLogger("Aravis").Log(ToLevel(aLevel), {"WriteRecord", "aravislog"}, text);
  return G_LOG_WRITER_HANDLED;
}

} // namespace

void InstallAravisLog() {
  static std::once_flag once;
  std::call_once(once, [] { g_log_set_writer_func(WriteRecord, nullptr, nullptr); });
}

} // namespace krtransport
