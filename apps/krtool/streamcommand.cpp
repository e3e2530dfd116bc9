#include "streamcommand.h"

#include "deviceselection.h"
#include "krdevice/krdevice.h"
#include "krdevice/krstream.h"
#include "plaintext.h"
#include "stopsignal.h"
#include "streamfigures.h"

#include <algorithm>
#include <chrono>
#include <memory>

namespace krtool {

namespace {

// Longer than it takes to find out that a camera is gone, which is then the reason given.
constexpr std::uint32_t kDefaultTimeoutMs = 10000;
// How long one look for a frame may keep Ctrl-C waiting.
constexpr std::uint32_t kSliceMs = 100;

std::uint64_t GetSteadyNs() {
  const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(std::chrono::nanoseconds(sinceStart).count());
}

int Fail(std::ostream& aErrors, const std::string& aAttempt, const KrResult& aResult) {
  const KrString& description = aResult.GetDescription();
  aErrors << "krtool: " << aAttempt << ": " << (description.IsEmpty() ? aResult.GetCodeString() : description).CStr()
          << '\n';
  return 1;
}

// Waits for a frame in slices, so that a stop is seen soon: Aborted then, TimeLimitExceeded when none came.
KrResult AwaitFrame(KrStream& aStream, const krapps::StopSignal& aStop, std::uint32_t aTimeoutMs, KrBuffer*& aBuffer) {
  const std::uint64_t start = GetSteadyNs();
  while (!aStop.IsRaised()) {
    const std::uint64_t waitedMs = (GetSteadyNs() - start) / 1'000'000;
    const std::uint64_t leftMs = waitedMs < aTimeoutMs ? aTimeoutMs - waitedMs : 0;
    const auto sliceMs = static_cast<std::uint32_t>(std::min<std::uint64_t>(leftMs, kSliceMs));
    KrResult result = aStream.Retrieve(aBuffer, sliceMs);
    if (result == KrResult::Code::TimeLimitExceeded && leftMs == 0)
      return {KrResult::Code::TimeLimitExceeded,
              "No frame came within " + std::to_string(aTimeoutMs) + " ms. Check the camera's trigger and exposure."};
    if (!(result == KrResult::Code::TimeLimitExceeded))
      return result;
  }
  return KrResult::Code::Aborted;
}

KrResult TakeFrames(KrStream& aStream, const krapps::StopSignal& aStop, const CommandLine& aCommandLine,
                    krapps::StreamFigures& aFigures) {
  const std::uint32_t timeoutMs = aCommandLine.timeoutMs.value_or(kDefaultTimeoutMs);
  while (aFigures.GetFrames() < aCommandLine.frames) {
    KrBuffer* buffer = nullptr;
    if (KrResult result = AwaitFrame(aStream, aStop, timeoutMs, buffer); !result.IsOK())
      return aStop.IsRaised() ? KrResult() : result;
    aFigures.Add(GetSteadyNs(), buffer->GetAcquiredSize());
    if (KrResult released = aStream.Release(buffer); !released.IsOK())
      return released;
  }
  return {};
}

int StreamFrom(KrDevice& aDevice, const krapps::StopSignal& aStop, const CommandLine& aCommandLine, std::ostream& aOut,
               std::ostream& aErrors) {
  KrStream stream(aDevice);
  const std::string name = krapps::MakeCell(aDevice.GetDisplayID());
  if (KrResult started = stream.Start(); !started.IsOK())
    return Fail(aErrors, "starting the stream of " + name + " failed", started);
  aErrors << "Streaming from " << name << "; Ctrl-C ends it." << std::endl;

  krapps::StreamFigures figures;
  const KrResult taken = TakeFrames(stream, aStop, aCommandLine, figures);
  const KrStreamStatistics statistics = stream.GetStatistics();
  // Before the stop, which takes a while with a camera that is gone.
  const int exitCode = taken.IsOK() ? 0 : Fail(aErrors, "the stream of " + name + " ended", taken);
  stream.Stop();
  aOut << krapps::FormatClosingLine(figures, statistics) << std::endl;
  return exitCode;
}

} // namespace

int RunStream(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  const KrDeviceInfo* info = nullptr;
  if (KrResult selected = krapps::SelectDevice(aSystem, aCommandLine.device, info); !selected.IsOK())
    return Fail(aErrors, "looking for the device failed", selected);
  const std::string name = krapps::MakeCell(info->GetDisplayID());
  if (!info->IsConfigurationValid())
    return Fail(aErrors, "opening " + name + " failed",
                {KrResult::Code::NotFound, "this host cannot reach it as it is configured. Give it an address of a "
                                           "network that this host is in."});

  const krapps::StopSignal stop;
  std::unique_ptr<KrDevice> device;
  if (KrResult opened = KrDevice::Open(*info, KrDeviceAccess::Control, device); !opened.IsOK())
    return Fail(aErrors, "opening " + name + " failed", opened);
  return StreamFrom(*device, stop, aCommandLine, aOut, aErrors);
}

} // namespace krtool
