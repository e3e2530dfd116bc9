// The words beside the terminal's port.

#include "logic/serial/terminalstatus.h"

#include <gtest/gtest.h>

namespace krgui {

namespace {

TEST(TerminalStatuses, OpenPort_IsSaidToBeBusyAsLongAsItIs) {
  TerminalStatus status;
  status.SetPort(u"Open", true);
  EXPECT_EQ(status.GetWords(), u"Open");

  status.SetBusy(true);
  EXPECT_EQ(status.GetWords(), u"Line busy, not sent");

  status.SetBusy(false);
  EXPECT_EQ(status.GetWords(), u"Open");
}

TEST(TerminalStatuses, MessageNotTakenByALostDevice_LeavesTheWordsOfTheLoss) {
  TerminalStatus status;
  status.SetPort(u"Open", true);
  status.SetBusy(true);

  status.SetPort(u"Connection lost", false);
  EXPECT_EQ(status.GetWords(), u"Connection lost");
  status.SetBusy(true);

  EXPECT_EQ(status.GetWords(), u"Connection lost");
}

TEST(TerminalStatuses, PortOpenedAnew_HasTakenAllOfItsMessages) {
  TerminalStatus status;
  status.SetPort(u"Open", true);
  status.SetBusy(true);

  status.SetPort(u"Open", true);

  EXPECT_EQ(status.GetWords(), u"Open");
}

} // namespace

} // namespace krgui
