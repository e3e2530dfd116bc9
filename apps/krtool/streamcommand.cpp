#include "streamcommand.h"

#include "camerasession.h"
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
      return aStop.IsRaised() ? KrResult() : result;
    aFigures.Add(GetSteadyNs(), buffer->GetAcquiredSize());
    if (KrResult released = aStream.Release(buffer); !released.IsOK())
      return released;
  }
  return {};
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
  // Before the stop, which takes a while with a camera that is gone.
  const int exitCode = taken.IsOK() ? 0 : Fail(aErrors, Explain("the stream of " + name + " ended", taken));
  stream.Stop();
  aOut << krapps::FormatClosingLine(figures, statistics) << std::endl;
  return exitCode;
}

} // namespace

int RunStream(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  std::unique_ptr<KrDevice> device;
  if (KrResult opened = OpenNamedDevice(aSystem, aCommandLine.device, device); !opened.IsOK())
    return Fail(aErrors, opened);
  return StreamFrom(*device, aCommandLine, aOut, aErrors);
}

} // namespace krtool
