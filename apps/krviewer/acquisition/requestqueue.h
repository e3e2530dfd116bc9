#pragma once
// The requests that wait for the acquisition's thread, and the ends of those that were carried out, which wait for the
// thread that asked. How they are carried out is left to the acquisition.

#include "acquisition/devicework.h"

#include <deque>
#include <mutex>
#include <optional>

namespace krviewer {

/// Thread: Post and DeliverEnds on the user interface's, the rest on the acquisition's; IsEmpty on any.
/// Ownership: owns what it was given until that is taken or delivered.
class RequestQueue {
public:
  /// Waits for its turn, or ends as Close said.
  void Post(AcquisitionRequest aRequest);
  /// The request whose turn it is, or none.
  std::optional<AcquisitionRequest> TakeNext();
  /// Whether no request waits.
  bool IsEmpty() const;
  /// A request that was taken has ended.
  void End(const AcquisitionRequest& aRequest, const KrResult& aResult);
  /// Nobody takes requests any more: those that wait, and those that come, end with this.
  void Close(const KrResult& aResult);
  /// Calls whoever is to hear of an end, in the order of the ends, with no lock held; they may ask for more, and run
  /// loops in which this is called again.
  void DeliverEnds();

private:
  struct Ended {
    RequestEnd then;
    KrResult result;
  };
  std::optional<Ended> TakeEnded();

  mutable std::mutex mMutex; ///< Guards the members from here on.
  std::deque<AcquisitionRequest> mWaiting;
  std::deque<Ended> mEnded;
  std::optional<KrResult> mClosed;
};

} // namespace krviewer
