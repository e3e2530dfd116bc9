#include "aravis/aravislog.h"

#include "krbase/krlogger.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>
#include <vector>

#include <glib.h>

using testing::ElementsAre;
using testing::ExitedWithCode;

namespace {

std::vector<std::string> gHostRecords;

// The writer of an application. A process may set one, once, so that every case is a process of its own.
GLogWriterOutput WriteHostRecord(GLogLevelFlags, const GLogField* aFields, gsize aCount, gpointer) {
  for (gsize i = 0; i < aCount; ++i)
    if (std::string(aFields[i].key) == "MESSAGE")
      gHostRecords.emplace_back(static_cast<const char*>(aFields[i].value));
  return G_LOG_WRITER_HANDLED;
}

std::vector<std::string> GetTexts(const KrLogCapture& aCapture) {
  std::vector<std::string> texts;
  for (const KrLogRecord& record : aCapture.GetRecords())
    texts.push_back(record.text.ToUtf8());
  return texts;
}

[[noreturn]] void Exit() {
  std::_Exit(testing::Test::HasFailure() ? 1 : 0);
}

[[noreturn]] void ExpectThatBothHaveTheirs() {
  const KrLogCapture capture;

  g_log("Host", G_LOG_LEVEL_WARNING, "of the application");
  g_log(nullptr, G_LOG_LEVEL_WARNING, "of Aravis");
  g_log("GLib", G_LOG_LEVEL_CRITICAL, "of GLib");

  EXPECT_THAT(gHostRecords, ElementsAre("of the application"));
  EXPECT_THAT(GetTexts(capture), ElementsAre("of Aravis", "GLib: of GLib"));
  Exit();
}

} // namespace

TEST(AravisLogDeathTest, ApplicationThatHasAWriter_KeepsItAndItsRecords) {
  EXPECT_EXIT(
      {
        g_log_set_writer_func(WriteHostRecord, nullptr, nullptr);
        krtransport::InstallAravisLog();
        ExpectThatBothHaveTheirs();
      },
      ExitedWithCode(0), "");
}

TEST(AravisLogDeathTest, ApplicationThatSetsAWriterLater_GetsItsRecords) {
  EXPECT_EXIT(
      {
        krtransport::InstallAravisLog();
        g_log_set_writer_func(WriteHostRecord, nullptr, nullptr);
        ExpectThatBothHaveTheirs();
      },
      ExitedWithCode(0), "");
}

TEST(AravisLogDeathTest, HandlerThatTheApplicationSetsLater_HasPrecedence) {
  EXPECT_EXIT(
      {
        krtransport::InstallAravisLog();
        g_log_set_handler(
            "GLib", G_LOG_LEVEL_MASK,
            [](const gchar*, GLogLevelFlags, const gchar* aMessage, gpointer) { gHostRecords.emplace_back(aMessage); },
            nullptr);
        const KrLogCapture capture;
        g_log("GLib", G_LOG_LEVEL_WARNING, "of GLib");
        EXPECT_THAT(gHostRecords, ElementsAre("of GLib"));
        EXPECT_TRUE(capture.GetRecords().empty());
        Exit();
      },
      ExitedWithCode(0), "");
}

TEST(AravisLogDeathTest, ComplaintsThatMeanNothing_AreThereForWhoLooksClosely) {
  EXPECT_EXIT(
      {
        krtransport::InstallAravisLog();
        KrLogger::SetLevel(KrLogLevel::Debug);
        const KrLogCapture capture;
        g_log("GLib", G_LOG_LEVEL_CRITICAL, "g_thread_join: assertion 'thread' failed");
        g_log(nullptr, G_LOG_LEVEL_CRITICAL, "another");
        EXPECT_TRUE(capture.Contains(KrLogLevel::Debug, "GLib: g_thread_join: assertion 'thread' failed"));
        EXPECT_TRUE(capture.Contains(KrLogLevel::Error, "another"));
        Exit();
      },
      ExitedWithCode(0), "");
}
