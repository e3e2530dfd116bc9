#include "saveframecommand.h"

#include "camerasession.h"
#include "framefile.h"
#include "krbase/krsteadytime.h"
#include "krdevice/krdeviceadapter.h"
#include "plaintext.h"

#include <memory>

namespace krtool {

namespace {

krapps::FrameFileOptions MakeOptions(const CommandLine& aCommandLine) {
  return {.fileName = aCommandLine.file,
          .format = aCommandLine.format.value_or(krapps::FrameFileFormat::Raw),
          .replacesExisting = aCommandLine.force,
          .software = "krtool " KRGUI_VERSION};
}

std::string GetFormatText(KrPixelType aType) {
  const std::optional<KrPixelTypeInfo> info = KrFindPixelType(aType);
  return info ? std::string(info->name) : std::to_string(aType);
}

KrResult SetPixelFormat(KrDevice& aDevice, const std::string& aName) {
  KrDeviceAdapter adapter(aDevice);
  const KrResult set = adapter.SetEnumValue("PixelFormat", aName);
  KrStringList entries;
  if (set.IsOK() || !adapter.GetEnumEntries("PixelFormat", entries).IsOK())
    return set;
  std::string text = set.GetDescription().ToUtf8() + " The camera's formats:";
  for (const KrString& entry : entries)
    text += " " + krapps::MakeCell(entry);
  return {set.GetCode(), text + "."};
}

// A frame that came whole, lent by the stream, within the time limit for all of the waiting.
KrResult AwaitWholeFrame(KrStream& aStream, const krapps::StopSignal& aStop, std::uint32_t aTimeoutMs,
                         std::ostream& aErrors, KrBuffer*& aFrame) {
  const std::uint64_t start = KrGetSteadyNs();
  for (std::uint64_t skipped = 0;; ++skipped) {
    const std::uint64_t waitedMs = (KrGetSteadyNs() - start) / 1'000'000;
    const std::uint32_t leftMs = waitedMs < aTimeoutMs ? aTimeoutMs - static_cast<std::uint32_t>(waitedMs) : 0;
    KrResult result = AwaitFrame(aStream, aStop, leftMs, aFrame);
    if (result == KrResult::Code::Aborted)
      return {result.GetCode(), "It was stopped before a whole frame came."};
    if (result == KrResult::Code::TimeLimitExceeded)
      return {result.GetCode(), "No whole frame came within " + std::to_string(aTimeoutMs) + " ms" +
                                    (skipped > 0 ? ", but " + std::to_string(skipped) +
                                                       " incomplete ones. Check the "
                                                       "adapter's packet size and the system's socket buffers."
                                                 : ". Check the camera's trigger and exposure.")};
    if (!result.IsOK() || aFrame->GetStatus() == KrBufferStatus::Complete)
      return result;
    aErrors << "krtool: frame " << aFrame->GetFrameID() << " did not come whole and is skipped\n";
    if (KrResult released = aStream.Release(aFrame); !released.IsOK())
      return released;
  }
}

int WriteAndReport(const KrBuffer& aFrame, const krapps::FrameFileOptions& aOptions, std::ostream& aOut,
                   std::ostream& aErrors) {
  if (KrResult written = krapps::WriteFrame(aFrame, aOptions); !written.IsOK())
    return FailToWrite(aErrors, written);
  const IKrImage& image = *aFrame.GetImage();
  const std::string pixelFormat = GetFormatText(image.GetPixelType());
  if (aOptions.format == krapps::FrameFileFormat::TIFF &&
      !krapps::KeepsEverySample(aOptions.format, image.GetPixelType()))
    aErrors << "krtool: " << pixelFormat << " has no form of its own in TIFF: the file holds the image as it is shown, "
            << "in 8 bits. Save it as raw to keep every bit.\n";
  aOut << "pixel_format=" << pixelFormat << " width=" << image.GetWidth() << " height=" << image.GetHeight()
       << " frame_id=" << aFrame.GetFrameID() << " format=" << krapps::GetFrameFileFormatName(aOptions.format)
       << " file=" << aOptions.fileName.CStr() << std::endl;
  return 0;
}

} // namespace

int SaveFrameOf(KrDevice& aDevice, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  const std::string name = krapps::MakeCell(aDevice.GetDisplayID());
  if (!aCommandLine.pixelFormat.empty())
    if (KrResult set = SetPixelFormat(aDevice, aCommandLine.pixelFormat); !set.IsOK())
      return Fail(aErrors, Explain("setting the pixel format of " + name + " failed", set));

  const krapps::StopSignal stop;
  KrStream stream(aDevice);
  if (KrResult started = stream.Start(); !started.IsOK())
    return Fail(aErrors, Explain("starting the stream of " + name + " failed", started));
  KrBuffer* frame = nullptr;
  const std::uint32_t timeoutMs = aCommandLine.timeoutMs.value_or(kDefaultFrameTimeoutMs);
  const KrResult taken = AwaitWholeFrame(stream, stop, timeoutMs, aErrors, frame);
  if (!taken.IsOK()) {
    const int exitCode = Fail(aErrors, Explain("taking a frame of " + name + " failed", taken));
    return stop.IsRaised() ? stop.GetExitCode() : exitCode;
  }
  stream.Stop(); // The frame stays readable, and the camera need not send while the disk is busy.

  krapps::FrameFileOptions options = MakeOptions(aCommandLine);
  options.deviceID = aDevice.GetUniqueID();
  return WriteAndReport(*frame, options, aOut, aErrors);
}

int RunSaveFrame(KrSystem& aSystem, const CommandLine& aCommandLine, std::ostream& aOut, std::ostream& aErrors) {
  if (KrResult checked = krapps::CheckFrameFile(MakeOptions(aCommandLine)); !checked.IsOK())
    return FailToWrite(aErrors, checked);
  std::unique_ptr<KrDevice> device;
  if (KrResult opened = OpenNamedDevice(aSystem, aCommandLine.device, KrDeviceAccess::Control, device); !opened.IsOK())
    return Fail(aErrors, opened);
  return SaveFrameOf(*device, aCommandLine, aOut, aErrors);
}

} // namespace krtool
