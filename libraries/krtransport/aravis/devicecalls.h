#pragma once
// Calls of a device with a caller's limit, which fail at once while the device keeps silent: so nobody waits for a dead
// device twice. What the calls do is left to the jobs.

#include "aravis/iothread.h"
#include "aravis/isilence.h"

namespace krtransport {

/// Thread: any. Ownership: borrows the I/O thread and the word of silence.
class DeviceCalls {
public:
  DeviceCalls(IoThread& aIoThread, ISilence& aSilence) : mIoThread(aIoThread), mSilence(aSilence) {}

  /// As IoThread::Run; TimeLimitExceeded at once from a call that was asked and got no answer until the device answers
  /// again. One whose turn did not come within its limit says nothing of the device.
  KrResult Run(IoThread::Job aJob, std::uint32_t aTimeoutMs, const std::stop_token& aCancel = {});

private:
  IoThread& mIoThread;
  ISilence& mSilence;
};

} // namespace krtransport
