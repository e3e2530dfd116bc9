#pragma once
// Watches whether an open device still answers, faster than its own heartbeat would tell, and tells of loss and return.
// What loss means for accesses and streams is decided by the link.

#include "aravis/devicewatch.h"
#include "gigevision/deviceprobe.h"
#include "gigevision/gvcpclient.h"
#include "gigevision/linktarget.h"

#include <functional>
#include <stop_token>

namespace krtransport {

/// Asks the device twice a second on a socket of its own. Six silent tries in a row, about three seconds, are its loss;
/// so is a device that answers and says that nobody controls it, as one does that was restarted. Tries are counted, not
/// time: a process that was stopped itself finds its device still there.
///
/// Thread, ownership: as DeviceWatch.
class LinkWatch final : public DeviceWatch {
public:
  /// aHoldsControl says whether the link's own heartbeat still goes; aOnLost is called once, before the sink hears of
  /// the loss. Both are called on the watch's thread, until Stop.
  LinkWatch(const LinkTarget& aTarget, GvcpClient aClient, std::function<bool()> aHoldsControl, OnLost aOnLost);
  ~LinkWatch() override { Stop(); }

private:
  void Watch(const std::stop_token& aStop);
  void Judge(ProbeFinding aFinding, const std::stop_token& aStop);
  void LoseBecause(const char* aWhy);

  const LinkTarget mTarget;
  const std::function<bool()> mHoldsControl;
  // Used by the watch's thread alone.
  GvcpClient mClient;
  int mSilentTries = 0;
  bool mIsBack = false;
};

} // namespace krtransport
