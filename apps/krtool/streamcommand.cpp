#include "streamcommand.h"

#include "camerasession.h"
#include "krbase/krsteadytime.h"
#include "plaintext.h"
#include "streamfigures.h"

#include <memory>

namespace krtool {

namespace {

KrResult TakeFrames(KrStream& aStream, const krapps::StopSignal& aStop, const CommandLine& aCommandLine,
                    krapps::StreamFigures& aFigures) {
  const std::uint32_t timeoutMs = aCommandLine.timeoutMs.value_or(kDefaultFrameTimeoutMs);
  while (aFigures.GetFrames() < aCommandLine.frames) {
    KrBuffer* buffer = nullptr;
    if (KrResult result = AwaitFrame(aStream, aStop, timeoutMs, buffer); !result.IsOK())
      return result;
    aFigures.Add(KrGetSteadyNs(), buffer->GetAcquiredSize());
    if (KrResult released = aStream.Release(buffer); !released.IsOK())
      return released;
  }
  return {};
}

// The closing line counts packets; frames of which no packet came show nowhere else.
void TellOfFramesThatNeverCame(const KrStreamStatistics& aStatistics, std::ostream& aErrors) {
  if (aStatistics.missingFrames > 0)
    aErrors << "krtool: " << aStatistics.missingFrames << " frames never came. Check cable, switch and adapter.\n";
  if (aStatistics.discarded > 0)
    aErrors << "krtool: " << aStatistics.discarded << " frames were dropped because this host was too slow.\n";
}

int StreamFrom(KrDevice& aDevice, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  const krapps::StopSignal stop;
  KrStream stream(aDevice);
  const std::string name = krapps::MakeCell(aDevice.GetDisplayID());
  if (KrResult started = stream.Start(); !started.IsOK())
    return Fail(aErrors, Explain("starting the stream of " + name + " failed", started));
  aErrors << "Streaming from " << name << "; Ctrl-C ends it." << std::endl;

  krapps::StreamFigures figures;
  const KrResult taken = TakeFrames(stream, stop, aCommandLine, figures);
  const KrStreamStatistics statistics = stream.GetStatistics();
  // All is said before the stop, which takes a while with a camera that is gone.
  aOut << krapps::FormatClosingLine(figures, statistics) << std::endl;
  TellOfFramesThatNeverCame(statistics, aErrors);
  if (stop.IsRaised() && figures.GetFrames() < aCommandLine.frames)
    return stop.GetExitCode();
  return taken.IsOK() ? 0 : Fail(aErrors, Explain("the stream of " + name + " ended", taken));
}

} // namespace

int RunStream(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  std::unique_ptr<KrDevice> device;
  if (KrResult opened = OpenNamedDevice(aSystem, aCommandLine.device, KrDeviceAccess::Control, device); !opened.IsOK())
    return Fail(aErrors, opened);
  return StreamFrom(*device, aCommandLine, aOut, aErrors);
}

} // namespace krtool
