// A disk that is full when something is saved or recorded, and files and folders that disappear.
//
// Beside the cases here, recordings that fill their disk by themselves are in krviewer/recordingdisktest, files that
// cannot be made at all in unit/krviewer/recordingfailurestest, unit/common/framefiletest and
// unit/krbase/kratomicfiletest, a file that vanishes while the terminal sends it in widget/serial/terminaltransfertest.

#include "await.h"
#include "caselimit.h"
#include "faultlab.h"
#include "smalldisk.h"

#include "acquisition/acquisition.h"
#include "framefile.h"
#include "krcamerabridge/krcamerabridge.h"
#include "krgenicam/krgensettings.h"
#include "krpersistence/krconfigurationreader.h"
#include "krpersistence/krconfigurationwriter.h"
#include "recording/recordingtexts.h"
#include "recordings.h"

namespace krtest {

namespace {

using krviewer::RecordingEnd;
using krviewer::RecordingState;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::uint64_t kDiskBytes = 1 << 20U;

/// Something that is saved under a name.
struct SavingRow {
  const char* name;
  const char* file;
  KrResult (*save)(const std::string& aFile, int aVersion); ///< One version differs from the other.
};

KrResult SaveFrame(const std::string& aFile, krapps::FrameFileFormat aFormat, int aVersion) {
  krapps::FrameFileOptions options;
  options.fileName = aFile;
  options.format = aFormat;
  options.replacesExisting = true;
  return krapps::WriteFrame(krviewer::MakeNumberedFrame(static_cast<std::uint64_t>(aVersion), 8192), options);
}

KrResult SaveSettings(const std::string& aFile, int aVersion) {
  KrGenSettings settings;
  for (int i = 0; i < 1000; ++i)
    settings.Add("Feature" + std::to_string(i), std::to_string(aVersion));
  return settings.Save(aFile);
}

KrResult SaveConfiguration(const std::string& aFile, int aVersion) {
  KrPropertyList list;
  for (int i = 0; i < 1000; ++i)
    list.Add({KrString("Feature" + std::to_string(i)), KrString(std::to_string(aVersion))});
  KrConfigurationWriter writer;
  const KrResult stored = writer.Store("list", list);
  return stored.IsOK() ? writer.Save(aFile) : stored;
}

constexpr SavingRow kSavings[] = {
    {"PNG", "frame.png",
     [](const std::string& aFile, int aVersion) { return SaveFrame(aFile, krapps::FrameFileFormat::PNG, aVersion); }},
    {"TIFF", "frame.tif",
     [](const std::string& aFile, int aVersion) { return SaveFrame(aFile, krapps::FrameFileFormat::TIFF, aVersion); }},
    {"Raw", "frame.raw",
     [](const std::string& aFile, int aVersion) { return SaveFrame(aFile, krapps::FrameFileFormat::Raw, aVersion); }},
    {"Settings", "settings.txt", SaveSettings},
    {"Configuration", "configuration.xml", SaveConfiguration},
};

class FullDisk : public testing::Test {
protected:
  const SmallDisk mDisk{kDiskBytes};
  const CaseLimit mLimit{[] { return std::string("saving"); }};
  KrLogCapture mLog;
};

class SavingOnAFullDisk : public FullDisk, public testing::WithParamInterface<SavingRow> {};

} // namespace

TEST_P(SavingOnAFullDisk, IsSaidKeepsTheFormerFileAndSavesWhenThereIsRoom) {
  const std::string file = mDisk.GetFile(GetParam().file);
  ASSERT_TRUE(GetParam().save(file, 1).IsOK());
  const std::vector<std::string> before = mDisk.GetNames();
  const std::string former = TemporaryFolder::ReadFile(file);
  mDisk.Fill();

  const KrResult saved = GetParam().save(file, 2);

  EXPECT_EQ(saved, KrResult::Code::SystemError);
  EXPECT_THAT(saved.GetDescription().ToUtf8(), HasSubstr(file));
  EXPECT_THAT(saved.GetDescription().ToUtf8(), HasSubstr("No space left on device"));
  EXPECT_TRUE(TemporaryFolder::ReadFile(file) == former) << "the former file is damaged";
  mDisk.Free();
  EXPECT_THAT(mDisk.GetNames(), testing::UnorderedElementsAreArray(before));
  EXPECT_TRUE(GetParam().save(file, 2).IsOK());
  EXPECT_FALSE(TemporaryFolder::ReadFile(file) == former);
}

TEST_P(SavingOnAFullDisk, FolderThatDisappears_IsNamedAndSavedIntoWhenItIsBack) {
  const std::string folder = mDisk.GetFile("folder");
  const std::string file = folder + "/" + GetParam().file;
  std::filesystem::create_directory(folder);
  ASSERT_TRUE(GetParam().save(file, 1).IsOK());
  std::filesystem::remove_all(folder);

  const KrResult saved = GetParam().save(file, 2);

  EXPECT_EQ(saved, KrResult::Code::NotFound);
  EXPECT_THAT(saved.GetDescription().ToUtf8(), HasSubstr(file));
  std::filesystem::create_directory(folder);
  EXPECT_TRUE(GetParam().save(file, 2).IsOK());
}

INSTANTIATE_TEST_SUITE_P(Files, SavingOnAFullDisk, testing::ValuesIn(kSavings), NameRow<SavingRow>);

TEST_F(FullDisk, SettingsFileThatDisappears_IsNamedAndReadWhenItIsBack) {
  const std::string file = mDisk.GetFile("settings.txt");
  ASSERT_TRUE(SaveSettings(file, 1).IsOK());
  const std::string text = TemporaryFolder::ReadFile(file);
  std::filesystem::remove(file);
  KrGenSettings settings;

  const KrResult loaded = settings.Load(file);

  EXPECT_EQ(loaded, KrResult::Code::NotFound);
  EXPECT_THAT(loaded.GetDescription().ToUtf8(), HasSubstr(file));
  TemporaryFolder::WriteFile(file, text);
  EXPECT_TRUE(settings.Load(file).IsOK());
  EXPECT_EQ(settings.GetCount(), 1000U);
}

TEST_F(FullDisk, ConfigurationThatDisappears_IsNamedAndReadWhenItIsBack) {
  const std::string file = mDisk.GetFile("configuration.xml");
  ASSERT_TRUE(SaveConfiguration(file, 1).IsOK());
  const std::string text = TemporaryFolder::ReadFile(file);
  std::filesystem::remove(file);
  KrConfigurationReader reader;

  const KrResult loaded = reader.Load(file);

  EXPECT_EQ(loaded, KrResult::Code::NotFound);
  EXPECT_THAT(loaded.GetDescription().ToUtf8(), HasSubstr(file));
  TemporaryFolder::WriteFile(file, text);
  EXPECT_TRUE(reader.Load(file).IsOK());
}

namespace {

/// A simulated camera is recorded on a small disk.
class RecordedCamera : public FaultLab {
protected:
  RecordedCamera() { EXPECT_TRUE(mAcquisition.GetFrames().Register(&mRecorder).IsOK()); }

  /// A frame of it has more bytes than the disk.
  KrResult Record(const std::string& aFolder, std::uint64_t aFrames) {
    krviewer::RecordingOptions options;
    options.folder = aFolder;
    options.freeDiskBytes = 0;
    options.mostFrames = aFrames;
    return mRecorder.Start(options);
  }
  krviewer::RecordingProgress AwaitEnd() {
    EXPECT_TRUE(Await([this] { return mRecorder.GetProgress().state == RecordingState::Ended; }));
    return mRecorder.GetProgress();
  }

  const SmallDisk mDisk{kDiskBytes};
  const TemporaryFolder mPlace; ///< On a disk with room.
  const CaseLimit mLimit{[] { return std::string("recording"); }};
  KrDisplayWnd mWindow;
  krviewer::Recorder mRecorder;
  krviewer::Acquisition mAcquisition{
      mWindow, krviewer::BorrowCamera(*mInfo)}; // Last, so that it ends before who hears of its frames.
};

} // namespace

TEST_F(RecordedCamera, DiskThatIsFull_EndsTheRecordingSaysSoAndTheNextOneIsWhole) {
  ASSERT_TRUE(Record(mDisk.GetFile("recording"), 0).IsOK());

  const krviewer::RecordingProgress full = AwaitEnd();

  EXPECT_THAT(full.end, testing::AnyOf(RecordingEnd::DiskReserve, RecordingEnd::Failed));
  EXPECT_EQ(full.counts.written, 0U) << "a frame is larger than the disk";
  EXPECT_THAT(krviewer::DescribeState(full), testing::AnyOf(HasSubstr("disk"), HasSubstr("space")));
  EXPECT_EQ(mAcquisition.GetProgress().state, krviewer::AcquisitionState::Streaming);
  ASSERT_TRUE(Record(mPlace.GetFile("recording"), 3).IsOK());
  EXPECT_EQ(AwaitEnd().counts.written, 3U);
}

TEST_F(RecordedCamera, FolderThatDisappears_EndsTheRecordingSaysSoAndTheNextOneIsWhole) {
  const std::string folder = mPlace.GetFile("gone");
  ASSERT_TRUE(Record(folder, 0).IsOK());
  ASSERT_TRUE(Await([this] { return mRecorder.GetProgress().counts.written > 0; }));

  std::filesystem::rename(folder, mPlace.GetFile("elsewhere"));
  std::filesystem::remove_all(mPlace.GetFile("elsewhere"));
  const krviewer::RecordingProgress gone = AwaitEnd();

  EXPECT_EQ(gone.end, RecordingEnd::Failed);
  EXPECT_TRUE(SaysWhatHappened(gone.result, {folder}));
  EXPECT_FALSE(krviewer::DescribeState(gone).empty());
  EXPECT_EQ(mAcquisition.GetProgress().state, krviewer::AcquisitionState::Streaming);
  ASSERT_TRUE(Record(folder, 3).IsOK());
  EXPECT_EQ(AwaitEnd().counts.written, 3U);
}

} // namespace krtest
