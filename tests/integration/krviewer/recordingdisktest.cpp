// Recordings on a disk that is too small for them.

#include "recordings.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <thread>

#include <sched.h>
#include <sys/mount.h>

using namespace krviewer;
using testing::HasSubstr;

namespace {

constexpr std::uint64_t kDiskBytes = 1 << 20U;

// A file system in memory, which this thread and those that it makes see at a folder; the others do not.
KrResult MountSmallDisk(const std::string& aFolder) {
  const auto fail = [](const char* aAttempt) {
    return KrResult(KrResult::Code::SystemError, std::string(aAttempt) + std::generic_category().message(errno));
  };
  if (::unshare(CLONE_NEWNS) != 0)
    return fail("unshare: ");
  if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
    return fail("mount --make-rprivate: ");
  const std::string size = "size=" + std::to_string(kDiskBytes);
  if (::mount("tmpfs", aFolder.c_str(), "tmpfs", 0, size.c_str()) != 0)
    return fail("mount tmpfs: ");
  return {};
}

class RecordingDiskTest : public testing::Test {
protected:
  // Runs on a thread that has the small disk at the folder.
  void RunOnSmallDisk(const std::function<void()>& aTest) {
    std::thread thread([&] {
      const KrResult mounted = MountSmallDisk(mPlace.GetPath().string());
      EXPECT_TRUE(mounted.IsOK()) << mounted.GetDescription().CStr();
      if (mounted.IsOK())
        aTest();
      ::umount2(mPlace.GetPath().c_str(), MNT_DETACH);
    });
    thread.join();
  }
  // Records until it ends by itself.
  static RecordingProgress RecordToTheEnd(const RecordingOptions& aOptions) {
    Recorder recorder;
    EXPECT_TRUE(recorder.Start(aOptions).IsOK());
    for (std::uint64_t frameID = 1; recorder.IsBusy(); ++frameID)
      recorder.OnFrame(MakeNumberedFrame(frameID, 8192), frameID); // 64 KiB each.
    return recorder.GetProgress();
  }
  RecordingOptions MakeOptions() const {
    RecordingOptions options;
    options.folder = mPlace.GetFile("recording");
    options.freeDiskBytes = 0;
    options.mostQueuedFrames = 4;
    return options;
  }
  // Each line's file is there, whole, and there is no other.
  static void ExpectInOrder(const std::string& aFolder, std::uint64_t aFrames) {
    IndexLines lines = ReadIndex(aFolder);
    EXPECT_EQ(lines.size(), aFrames);
    for (auto& line : lines)
      EXPECT_EQ(TemporaryFolder::ReadFile(aFolder + "/" + line["file"]),
                std::string(65536, static_cast<char>(std::stoull(line["frame_id"]) & 0xFFU)));
    std::uint64_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(aFolder))
      files += entry.path().filename().string().starts_with("frame-") ? 1 : 0;
    EXPECT_EQ(files, aFrames);
  }

  TemporaryFolder mPlace;
};

} // namespace

TEST_F(RecordingDiskTest, DiskThatFillsUp_EndsTheRecordingInOrder) {
  RunOnSmallDisk([this] {
    const RecordingProgress progress = RecordToTheEnd(MakeOptions());

    EXPECT_EQ(progress.state, RecordingState::Ended);
    EXPECT_TRUE(progress.end == RecordingEnd::DiskReserve || progress.end == RecordingEnd::Failed);
    EXPECT_GT(progress.counts.written, 10U);
    EXPECT_LT(progress.counts.written, 16U);
    ExpectInOrder(MakeOptions().folder, progress.counts.written);
  });
}

TEST_F(RecordingDiskTest, RoomThatIsToStayFree_StaysFree) {
  RunOnSmallDisk([this] {
    RecordingOptions options = MakeOptions();
    options.freeDiskBytes = kDiskBytes / 2;

    const RecordingProgress progress = RecordToTheEnd(options);

    EXPECT_EQ(progress.end, RecordingEnd::DiskReserve);
    EXPECT_GE(std::filesystem::space(mPlace.GetPath()).available, kDiskBytes / 2);
    ExpectInOrder(options.folder, progress.counts.written);
    EXPECT_EQ(ReadText(options.folder, "ended_by"), "disk_reserve");
    EXPECT_EQ(ReadText(options.folder, "written"), std::to_string(progress.counts.written));
  });
}

TEST_F(RecordingDiskTest, DiskFilledByOthers_LeavesNoPartOfAFrame) {
  RunOnSmallDisk([this] {
    // TIFF files are larger than their frames, so that the last one meets a disk that is full.
    RecordingOptions options = MakeOptions();
    options.format = krapps::FrameFileFormat::TIFF;
    TemporaryFolder::WriteFile(mPlace.GetFile("others"), std::string(kDiskBytes - 3 * 65536 - 8192, 'x'));

    const RecordingProgress progress = RecordToTheEnd(options);

    EXPECT_EQ(progress.state, RecordingState::Ended);
    EXPECT_LT(progress.counts.written, 3U);
    std::uint64_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(options.folder))
      files += entry.path().extension() == ".tif" || entry.path().extension() == ".tmp" ? 1 : 0;
    EXPECT_EQ(files, progress.counts.written);
    EXPECT_EQ(ReadIndex(options.folder).size(), progress.counts.written);
  });
}
