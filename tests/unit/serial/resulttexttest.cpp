#include "logic/serial/resulttext.h"

#include <gtest/gtest.h>

namespace krgui {

namespace {

using Code = KrResult::Code;

struct ResultRow {
  const char* name;
  KrResult result;
  const char* expected;
};

const ResultRow kResultRows[] = {
    {"success", {}, "Unable to open port."},
    {"a failure",
     {Code::Busy, "The port is in use by another program."},
     "Unable to open port.\r\nBusy: The port is in use by another program."},
    {"a failure without a description", {Code::NotSupported}, "Unable to open port.\r\nNotSupported: "},
    {"a source location",
     {Code::Failed, "port.cpp:123: The line is dead."},
     "Unable to open port.\r\nFailed: The line is dead."},
    {"a source location with a function",
     {Code::Failed, "src/port.cpp:123:Open The line is dead."},
     "Unable to open port.\r\nFailed: The line is dead."},
    {"a source location behind the first blank cuts the first word all the same",
     {Code::Failed, "The line died in port.cpp:123."},
     "Unable to open port.\r\nFailed: line died in port.cpp:123."},
    {"a source location without a blank",
     {Code::Failed, "port.cpp:123"},
     "Unable to open port.\r\nFailed: port.cpp:123"},
    {"a blank at the front of a source location",
     {Code::Failed, " port.cpp:123: dead"},
     "Unable to open port.\r\nFailed: port.cpp:123: dead"},
    {"the name of a source file alone",
     {Code::Failed, "No port.cpp here"},
     "Unable to open port.\r\nFailed: No port.cpp here"},
    {"a per cent sign", {Code::Failed, "100 %s full"}, "Unable to open port.\r\nFailed: 100 %s full"},
};

} // namespace

TEST(FormatResultError, EveryResult_IsToldByItsCodeAndDescription) {
  for (const ResultRow& row : kResultRows) {
    SCOPED_TRACE(row.name);

    EXPECT_EQ(FormatResultError("Unable to open port.", row.result).ToUtf8(), row.expected);
  }
}

TEST(FormatResultError, APerCentSignInTheText_IsKept) {
  EXPECT_EQ(FormatResultError("50 %d done", {Code::Aborted, "Stopped."}).ToUtf8(), "50 %d done\r\nAborted: Stopped.");
}

} // namespace krgui
