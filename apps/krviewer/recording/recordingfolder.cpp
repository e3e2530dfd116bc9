#include "recording/recordingfolder.h"

#include "framedescription.h"
#include "krbase/kratomicfile.h"
#include "plaintext.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cinttypes>
#include <cstdio>

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace krviewer {

namespace {

constexpr mode_t kNewFolderRights = 0777; // Less what the process' mask takes.
constexpr const char* kIndexName = "index.csv";
constexpr const char* kTextName = "recording.txt";

struct EndRow {
  RecordingEnd end;
  const char* word;
};

constexpr std::array kEnds = {
    EndRow{RecordingEnd::Stopped, "stopped"},          EndRow{RecordingEnd::FrameLimit, "frame_limit"},
    EndRow{RecordingEnd::TimeLimit, "time_limit"},     EndRow{RecordingEnd::DiskBudget, "disk_budget"},
    EndRow{RecordingEnd::DiskReserve, "disk_reserve"}, EndRow{RecordingEnd::Failed, "failed"}};

std::string GetNow() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return krapps::FormatTime(
      static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()));
}

const char* GetExtension(krapps::FrameFileFormat aFormat) {
  switch (aFormat) {
  case krapps::FrameFileFormat::PNG:
    return ".png";
  case krapps::FrameFileFormat::TIFF:
    return ".tif";
  case krapps::FrameFileFormat::Raw:
    break;
  }
  return ".raw";
}

std::string MakeFileName(std::uint64_t aNumber, krapps::FrameFileFormat aFormat) {
  std::array<char, 48> name = {};
  std::snprintf(name.data(), name.size(), "frame-%08" PRIu64 "%s", aNumber, GetExtension(aFormat));
  return name.data();
}

std::string DescribeCounts(const RecordingCounts& aCounts) {
  const auto line = [](const char* aKey, std::uint64_t aValue) {
    return krapps::MakeLine(aKey, std::to_string(aValue));
  };
  return line("received", aCounts.received) + line("written", aCounts.written) +
         line("passed_over", aCounts.passedOver) + line("incomplete", aCounts.incomplete) +
         line("queue_full", aCounts.queueFull) + line("failed", aCounts.failed) + line("abandoned", aCounts.abandoned) +
         line("bytes", aCounts.bytes);
}

} // namespace

const char* GetEndWord(RecordingEnd aEnd) {
  for (const EndRow& row : kEnds)
    if (row.end == aEnd)
      return row.word;
  return "-";
}

KrResult RecordingFolder::Create(const RecordingOptions& aOptions) {
  mOptions = aOptions;
  mBeginTime = GetNow();
  mNumber = 0;
  mBytes = 0;
  if (::mkdir(mOptions.folder.c_str(), kNewFolderRights) != 0) {
    const KrResult failed = MakeFileError("Making the recording's folder", mOptions.folder, errno);
    return {failed.GetCode(), failed.GetDescription() + " Choose another name or place."};
  }
  KrResult filled = Fill();
  if (filled.IsOK())
    return filled;
  for (const char* name : {kIndexName, kTextName})
    ::unlink(GetPath(name).c_str());
  ::rmdir(mOptions.folder.c_str());
  return filled;
}

KrResult RecordingFolder::Fill() {
  if (KrResult created = mIndex.Create(GetPath(kIndexName)); !created.IsOK())
    return created;
  return WriteText(nullptr);
}

KrResult RecordingFolder::WriteText(const RecordingProgress* aProgress) const {
  using krapps::MakeLine;
  std::string text = MakeLine("recording_version", "1") + MakeLine("software", krapps::MakeCell(mOptions.software)) +
                     MakeLine("device_id", krapps::MakeCell(mOptions.deviceID)) +
                     MakeLine("file_format", std::string(krapps::GetFrameFileFormatName(mOptions.format))) +
                     MakeLine("byte_order", "little-endian") + MakeLine("every", std::to_string(mOptions.everyNth)) +
                     MakeLine("begin", mBeginTime) + MakeLine("end", aProgress ? GetNow() : "-") +
                     MakeLine("ended_by", aProgress ? GetEndWord(aProgress->end) : "-");
  if (aProgress)
    text +=
        MakeLine("reason", krapps::MakeCell(aProgress->result.GetDescription())) + DescribeCounts(aProgress->counts);
  KrAtomicFile file;
  const auto existing = aProgress ? KrAtomicFile::Existing::Replaced : KrAtomicFile::Existing::Kept;
  KrResult result = file.Open(GetPath(kTextName), existing);
  if (result.IsOK())
    result = file.Write(text.data(), text.size());
  return result.IsOK() ? file.Commit() : result;
}

RecordingEnd RecordingFolder::CheckRoom(std::uint64_t aBytes) {
  struct statvfs room = {};
  // A file system that does not tell is asked by writing to it.
  const bool isKnown = ::statvfs(mOptions.folder.c_str(), &room) == 0;
  mFreeBytes = isKnown ? std::uint64_t{room.f_bavail} * room.f_frsize : 0;
  if (isKnown && (mFreeBytes < aBytes || mFreeBytes - aBytes < mOptions.freeDiskBytes))
    return RecordingEnd::DiskReserve;
  const bool isLimited = mOptions.mostDiskBytes != 0;
  if (isLimited && (mBytes > mOptions.mostDiskBytes || aBytes > mOptions.mostDiskBytes - mBytes))
    return RecordingEnd::DiskBudget;
  return RecordingEnd::None;
}

KrResult RecordingFolder::Write(const RecordedFrame& aFrame) {
  const std::string name = MakeFileName(mNumber + 1, mOptions.format);
  std::uint64_t bytes = 0;
  if (KrResult written = WriteFile(aFrame, GetPath(name), bytes); !written.IsOK())
    return written;
  if (KrResult added = mIndex.Add(aFrame, mNumber + 1, name, bytes); !added.IsOK()) {
    ::unlink(GetPath(name).c_str());
    return added;
  }
  ++mNumber;
  mBytes += bytes;
  return {};
}

KrResult RecordingFolder::WriteFile(const RecordedFrame& aFrame, const std::string& aPath,
                                    std::uint64_t& aBytes) const {
  if (mOptions.format == krapps::FrameFileFormat::Raw)
    return WriteRaw(aFrame, aPath, aBytes);
  const krapps::FrameFileOptions options = {.fileName = aPath,
                                            .format = mOptions.format,
                                            .isFlushed = false,
                                            .deviceID = mOptions.deviceID,
                                            .software = mOptions.software,
                                            .onProgress = mProgress};
  if (KrResult written = krapps::WriteFrame(aFrame.frame, options); !written.IsOK())
    return written;
  struct stat status = {};
  if (::stat(aPath.c_str(), &status) != 0)
    return MakeFileError("Looking at the file", aPath, errno);
  aBytes = static_cast<std::uint64_t>(status.st_size);
  return {};
}

KrResult RecordingFolder::WriteRaw(const RecordedFrame& aFrame, const std::string& aPath, std::uint64_t& aBytes) const {
  NewFile file;
  if (KrResult created = file.Create(aPath); !created.IsOK())
    return created;
  const IKrImage& image = *aFrame.frame.GetImage();
  KrResult written = file.Append(image.GetDataPointer(), image.GetImageSize(), mProgress);
  if (written.IsOK())
    written = file.Close();
  if (!written.IsOK())
    file.Remove();
  aBytes = file.GetSize();
  return written;
}

KrResult RecordingFolder::Close(const RecordingProgress& aProgress) {
  const KrResult closed = mIndex.Close();
  const KrResult said = WriteText(&aProgress);
  return closed.IsOK() ? said : closed;
}

} // namespace krviewer
