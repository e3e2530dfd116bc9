#include "recording/recordingtexts.h"

#include "plaintext.h"

#include <array>

namespace krviewer {

namespace {

struct Unit {
  std::uint64_t bytes;
  const char* name;
};

constexpr std::array kUnits = {Unit{1'000'000'000'000, " TB"}, Unit{1'000'000'000, " GB"}, Unit{1'000'000, " MB"},
                               Unit{1'000, " kB"}};

std::string CountFrames(std::uint64_t aCount) {
  return std::to_string(aCount) + (aCount == 1 ? " frame" : " frames");
}

std::string FormatSeconds(std::uint64_t aMs) {
  return krapps::FormatFixed(static_cast<double>(aMs) / 1000, 1) + " s";
}

std::string DescribeEnd(const RecordingProgress& aProgress) {
  switch (aProgress.end) {
  case RecordingEnd::FrameLimit:
    return "Ended: the number of frames was reached.";
  case RecordingEnd::TimeLimit:
    return "Ended: the time was over.";
  case RecordingEnd::DiskBudget:
    return "Ended: more would have taken more room than allowed.";
  case RecordingEnd::DiskReserve:
    return aProgress.keepsDiskFree ? "Ended: more would have taken the room that is to stay free on the disk. Free "
                                     "some, or record elsewhere."
                                   : "Ended: the disk is full. Free some of it, or record elsewhere.";
  case RecordingEnd::Failed:
    return "Failed: " + aProgress.result.GetDescription().ToUtf8();
  case RecordingEnd::Stopped:
  case RecordingEnd::None:
    break;
  }
  return "Stopped.";
}

} // namespace

std::string FormatBytes(std::uint64_t aBytes) {
  for (const Unit& unit : kUnits)
    if (aBytes >= unit.bytes)
      return krapps::FormatFixed(static_cast<double>(aBytes) / static_cast<double>(unit.bytes), 1) + unit.name;
  return std::to_string(aBytes) + " bytes";
}

std::string DescribeState(const RecordingProgress& aProgress) {
  switch (aProgress.state) {
  case RecordingState::Recording:
    return aProgress.isFed ? "Recording for " + FormatSeconds(aProgress.elapsedMs) + "."
                           : "Recording for " + FormatSeconds(aProgress.elapsedMs) +
                                 ": the camera does not stream, and its next frames are awaited.";
  case RecordingState::Finishing:
    return "Writing what is in memory: " + CountFrames(aProgress.queuedFrames) + ".";
  case RecordingState::Ended:
    return DescribeEnd(aProgress);
  case RecordingState::Idle:
    break;
  }
  return {};
}

std::string DescribeWritten(const RecordingCounts& aCounts) {
  return CountFrames(aCounts.written) + ", " + FormatBytes(aCounts.bytes);
}

bool HasLosses(const RecordingCounts& aCounts) {
  return aCounts.queueFull + aCounts.incomplete + aCounts.failed + aCounts.abandoned > 0;
}

bool CouldBegin(const RecordingProgress& aProgress) {
  return aProgress.end != RecordingEnd::Failed || aProgress.counts.written > 0;
}

bool HasFailed(const RecordingProgress& aProgress) {
  return aProgress.end == RecordingEnd::Failed || aProgress.end == RecordingEnd::DiskReserve ||
         aProgress.counts.failed > 0;
}

std::string DescribeLosses(const RecordingProgress& aProgress) {
  const RecordingCounts& counts = aProgress.counts;
  std::string text;
  const auto add = [&text](std::uint64_t aCount, const std::string& aReason) {
    if (aCount > 0)
      text += (text.empty() ? "" : "\n") + CountFrames(aCount) + " " + aReason;
  };
  add(counts.queueFull, "left out: the memory was full, as the disk is slower than the camera. Record to a faster one, "
                        "as raw, or fewer frames.");
  add(counts.incomplete, "left out: a part never came.");
  add(counts.failed, aProgress.frameFailure.IsOK()
                         ? "could not be written."
                         : "could not be written: " + aProgress.frameFailure.GetDescription().ToUtf8());
  add(counts.abandoned, "given up while in memory at the end.");
  add(counts.passedOver, "passed over, as asked.");
  // What could not begin has had no frame to lose.
  if (HasLosses(counts) || !CouldBegin(aProgress))
    return text;
  return "No frame was lost." + (text.empty() ? "" : "\n" + text);
}

} // namespace krviewer
