#pragma once
// A user at the viewer of a camera with serial ports.

#include "terminaluser.h"
#include "viewerlooks.h"
#include "window/viewer.h"

class ViewerUser : public TerminalUser {
protected:
  /// Runs the viewer on the camera and lets the user do this once he is offered to use its ports; he ends the viewer.
  void RunViewer(const std::function<void(UserHands&, const TerminalHands&)>& aScript) {
    krviewer::Viewer viewer({});
    viewer.Begin();
    viewer.Open(krviewer::BorrowCamera(*mSystem.GetDeviceInfo(0)));
    RunWithUser(
        [&] { EXPECT_EQ(viewer.Run(), 0); },
        [&](UserHands& aUser) {
          if (aUser.Await("the viewer", [] { return IsToolOffered(kTerminalKey) && FindViewer()->isActiveWindow(); }))
            aScript(aUser, TerminalHands(aUser));
          EndViewer(aUser);
        });
  }
};
