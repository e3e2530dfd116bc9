#include "executecommand.h"

#include "camerasession.h"
#include "featurelookup.h"
#include "featuresource.h"
#include "featurewords.h"
#include "krbase/krsteadytime.h"

#include <chrono>
#include <thread>

namespace krtool {

namespace {

// Between two questions whether the command is done, which a device answers by a register.
constexpr std::chrono::milliseconds kPause{20};

KrResult AwaitDone(KrGenCommand& aCommand, const krapps::StopSignal& aStop, std::uint32_t aTimeoutMs) {
  const std::uint64_t start = KrGetSteadyNs();
  for (;;) {
    bool isDone = false;
    if (KrResult asked = aCommand.IsDone(isDone); !asked.IsOK() || isDone)
      return asked;
    if (aStop.IsRaised())
      return {KrResult::Code::Aborted, "It was stopped before the device was done; the device goes on."};
    if ((KrGetSteadyNs() - start) / 1'000'000 >= aTimeoutMs)
      return {KrResult::Code::TimeLimitExceeded, "The device is not done with it after " + std::to_string(aTimeoutMs) +
                                                     " ms, and goes on. --timeout waits longer."};
    std::this_thread::sleep_for(kPause);
  }
}

} // namespace

KrResult ExecuteCommand(const KrGenParameterArray& aArray, const std::string& aName, const krapps::StopSignal& aStop,
                        std::uint32_t aTimeoutMs) {
  KrGenParameter* feature = nullptr;
  if (KrResult found = FindFeature(aArray, aName, feature); !found.IsOK())
    return found;
  auto* const command = dynamic_cast<KrGenCommand*>(feature);
  if (command == nullptr)
    return {KrResult::Code::InvalidInput,
            "it is no command, but of the type " + std::string(GetTypeWord(feature->GetType())) + "."};
  if (KrResult executed = command->Execute(); !executed.IsOK())
    return executed;
  return AwaitDone(*command, aStop, aTimeoutMs);
}

int RunExecute(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream&, std::ostream& aErrors) {
  FeatureSource source;
  if (KrResult opened = source.OpenToWrite(aSystem, aCommandLine); !opened.IsOK())
    return Fail(aErrors, opened);
  const std::string& name = aCommandLine.names.front();
  const krapps::StopSignal stop;
  const KrResult executed =
      ExecuteCommand(source.GetArray(), name, stop, aCommandLine.timeoutMs.value_or(kDefaultExecuteTimeoutMs));
  if (executed.IsOK())
    return 0;
  const int exitCode = Fail(aErrors, Explain("executing " + name + " of " + source.GetName() + " failed", executed));
  return stop.IsRaised() ? stop.GetExitCode() : exitCode;
}

} // namespace krtool
