#include "logic/finder/hostdiagnosis.h"

#include "krsystem/krsystem.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace krgui {

namespace {

constexpr std::uint32_t kRoundMs = 500;

enum class Phase { Before, Looking, Over };

/// Over at its end, also by an exception: the callback, which its own end waits for, waits for that.
class End {
public:
  explicit End(std::atomic<Phase>& aPhase) : mPhase(aPhase) {}
  ~End() { mPhase = Phase::Over; }
  End(const End&) = delete;
  End& operator=(const End&) = delete;

private:
  std::atomic<Phase>& mPhase;
};

// A round that was asked to stop before it began must not begin; one that begins just then has to be asked again.
void FindUntilStopped(KrSystem& aSystem, const std::stop_token& aStop) {
  std::atomic<Phase> phase = Phase::Before;
  const std::stop_callback onStop(aStop, [&aSystem, &phase] {
    Phase before = Phase::Before;
    if (phase.compare_exchange_strong(before, Phase::Over))
      return;
    while (phase == Phase::Looking) {
      aSystem.Cancel();
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  });
  Phase before = Phase::Before;
  if (!phase.compare_exchange_strong(before, Phase::Looking))
    return;
  const End end(phase);
  // Where nothing could be asked, the diagnosis says what it knows all the same; the failure is logged.
  (void)aSystem.Find();
}

} // namespace

HostDiagnosis DiagnoseHost(const std::stop_token& aStop) {
  KrSystem system;
  system.SetDetectionTimeout(kRoundMs);
  system.SetSubnetBroadcastEnabled(false);
  FindUntilStopped(system, aStop);
  HostDiagnosis diagnosis;
  if (!aStop.stop_requested())
    diagnosis.result = system.Diagnose(diagnosis.findings);
  return diagnosis;
}

} // namespace krgui
