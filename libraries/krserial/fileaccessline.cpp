#include "fileaccessline.h"

#include <algorithm>
#include <string>
#include <utility>

namespace krserial {

namespace {

constexpr const char* kOpen = "Open";
constexpr const char* kClose = "Close";
constexpr const char* kRead = "Read";
constexpr const char* kWrite = "Write";
constexpr const char* kReadWrite = "ReadWrite";
constexpr const char* kSuccess = "Success";

// A device that closes its file at all does so at once.
constexpr std::chrono::milliseconds kClosingLimit(200);

} // namespace

FileAccessLine::FileAccessLine(const Features& aFeatures, KrString aFile)
    : mFeatures(aFeatures), mFile(std::move(aFile)), mFileSelector(aFeatures.file),
      mOperationSelector(aFeatures.operation) {}

std::unique_ptr<FileAccessLine> FileAccessLine::Find(FeatureFinder& aFinder, const FileAccessNames& aNames,
                                                     const KrString& aFile) {
  const Features features = {.array = &aFinder.GetArray(),
                             .file = aFinder.Find<KrGenEnum>(aNames.fileSelector),
                             .operation = aFinder.Find<KrGenEnum>(aNames.fileOperationSelector),
                             .execute = aFinder.Find<KrGenCommand>(aNames.fileOperationExecute),
                             .openMode = aFinder.Find<KrGenEnum>(aNames.fileOpenMode),
                             .offset = aFinder.FindOptional<KrGenInteger>(aNames.fileAccessOffset),
                             .length = aFinder.Find<KrGenInteger>(aNames.fileAccessLength),
                             .buffer = aFinder.Find<KrGenRegister>(aNames.fileAccessBuffer),
                             .status = aFinder.Find<KrGenEnum>(aNames.fileOperationStatus),
                             .result = aFinder.Find<KrGenInteger>(aNames.fileOperationResult)};
  aFinder.NeedEntry(features.file, aFile);
  aFinder.NeedEntry(features.openMode, kReadWrite);
  for (const char* operation : {kOpen, kClose, kRead, kWrite})
    aFinder.NeedEntry(features.operation, operation);
  if (!aFinder.HasAll())
    return nullptr;
  return std::unique_ptr<FileAccessLine>(new FileAccessLine(features, aFile));
}

// Executes the operation that is selected; ProtocolError unless the device says that it succeeded.
KrResult FileAccessLine::Run() {
  if (KrResult executed = ExecuteAndWait(*mFeatures.execute); !executed.IsOK())
    return executed;
  KrString status;
  if (KrResult forgotten = mFeatures.array->Invalidate(mFeatures.status->GetName()); !forgotten.IsOK())
    return forgotten;
  if (KrResult read = mFeatures.status->GetEntry(status); !read.IsOK())
    return read;
  if (status == KrString(kSuccess))
    return {};
  KrString operation;
  static_cast<void>(mFeatures.operation->GetEntry(operation)); // For the text alone.
  return {KrResult::Code::ProtocolError,
          "The device's file " + mFile + ": the operation " + operation + " ended with " + status + "."};
}

KrResult FileAccessLine::Select(const char* aOperation) {
  KrResult result = mFileSelector.Set(mFile);
  return result.IsOK() ? mOperationSelector.Set(aOperation) : result;
}

// In the reverse order: the operations may belong to the file.
void FileAccessLine::Rest() {
  mOperationSelector.PutBack();
  mFileSelector.PutBack();
}

KrResult FileAccessLine::OpenFile() {
  if (KrResult set = Select(kOpen); !set.IsOK())
    return set;
  if (KrResult set = mFeatures.openMode->SetEntry(kReadWrite); !set.IsOK())
    return set;
  return Run();
}

KrResult FileAccessLine::Open() {
  const KrResult opened = OpenFile();
  if (opened != KrResult::Code::ProtocolError)
    return opened;
  // A program that ended without closing the file left it open.
  if (KrResult closed = Close(); !closed.IsOK())
    return closed;
  return OpenFile();
}

// A device that does not close its file has it closed by the next opening.
KrResult FileAccessLine::Close() {
  if (KrResult set = Select(kClose); !set.IsOK())
    return set;
  bool isDone = false;
  if (KrResult executed = Execute(*mFeatures.execute, kClosingLimit, isDone); !executed.IsOK())
    return executed;
  Rest();
  return {};
}

// Sets how many bytes the next operation moves: as many as the buffer and the feature allow, at most aMost. The
// buffer's length may follow from that.
KrResult FileAccessLine::PutLength(std::size_t aMost, std::size_t& aLength) {
  std::int64_t most = 0;
  if (KrResult asked = mFeatures.length->GetMax(most); !asked.IsOK())
    return asked;
  auto wanted = static_cast<std::int64_t>(std::min(aMost, mRoom));
  wanted = std::min(wanted, std::max(most, std::int64_t{1}));
  if (KrResult set = mFeatures.length->SetValue(wanted); !set.IsOK())
    return set;
  std::size_t room = 0;
  if (KrResult found = FindRoom(*mFeatures.buffer, nullptr, room); !found.IsOK())
    return found;
  aLength = static_cast<std::size_t>(wanted);
  if (room < aLength) {
    aLength = mRoom = room;
    if (KrResult set = mFeatures.length->SetValue(static_cast<std::int64_t>(room)); !set.IsOK())
      return set;
  }
  // Not every device lets a line have a place.
  if (mFeatures.offset && mFeatures.offset->IsWritable())
    return mFeatures.offset->SetValue(0);
  return {};
}

KrResult FileAccessLine::Receive(std::vector<std::uint8_t>& aBytes) {
  if (KrResult set = Select(kRead); !set.IsOK())
    return set;
  std::size_t length = 0;
  if (KrResult put = PutLength(kMostTransferBytes, length); !put.IsOK())
    return put;
  if (KrResult run = Run(); !run.IsOK())
    return run;
  std::size_t count = 0;
  if (KrResult read = ReadCount(*mFeatures.array, *mFeatures.result, static_cast<std::int64_t>(length), count);
      !read.IsOK())
    return read;
  return count == 0 ? KrResult() : ReadBytes(*mFeatures.array, *mFeatures.buffer, count, aBytes);
}

KrResult FileAccessLine::Transmit(const std::uint8_t* aBytes, std::size_t aSize, std::size_t& aTaken) {
  if (KrResult set = Select(kWrite); !set.IsOK())
    return set;
  std::size_t length = 0;
  if (KrResult put = PutLength(aSize, length); !put.IsOK())
    return put;
  if (KrResult written = WriteBytes(*mFeatures.buffer, aBytes, length); !written.IsOK())
    return written;
  if (KrResult run = Run(); !run.IsOK())
    return run;
  return ReadCount(*mFeatures.array, *mFeatures.result, static_cast<std::int64_t>(length), aTaken);
}

} // namespace krserial
