#include "saveframecommand.h"

#include "krbuffer/krbufferconverter.h"
#include "labfixture.h"
#include "pngfile.h"
#include "simulation/testpattern.h"
#include "temporaryfolder.h"
#include "tifffile.h"

#include <algorithm>
#include <sstream>

namespace krtool {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;

// The number behind "key=" at the begin of a line or a word.
std::uint64_t ReadNumber(const std::string& aText, const std::string& aKey) {
  std::istringstream words(aText);
  for (std::string word; words >> word;)
    if (word.starts_with(aKey + "="))
      return std::stoull(word.substr(aKey.size() + 1));
  ADD_FAILURE() << aKey << " is not in: " << aText;
  return 0;
}

class SaveFrameCommand : public LabTest {
protected:
  int Run(const char* aDevice, const std::string& aPath, const char* aPixelFormat = "", bool aForce = false) {
    mOut.str("");
    mErrors.str("");
    return RunSaveFrame(mSystem,
                        {.verb = Verb::SaveFrame,
                         .device = aDevice,
                         .file = aPath,
                         .format = krapps::FindFrameFileFormatOf(aPath),
                         .pixelFormat = aPixelFormat,
                         .force = aForce},
                        mOut, mErrors);
  }

  TemporaryFolder mFolder;
  std::ostringstream mOut;
  std::ostringstream mErrors;
};

struct FormatRow {
  const char* device;
  std::uint32_t width;
  std::uint32_t height;
  KrPixelType type;
};

class SaveFrameOfFormat : public SaveFrameCommand, public testing::WithParamInterface<FormatRow> {
protected:
  std::string GetName() const { return std::string(KrFindPixelType(mRow.type)->name); }
  /// The frame of a number as the camera sends it.
  void PaintFrame(KrBuffer& aFrame, std::uint64_t aFrameID) const {
    ASSERT_TRUE(aFrame.GetImage()->Alloc(mRow.width, mRow.height, mRow.type).IsOK());
    ASSERT_TRUE(krtransport::FillPattern(mRow.type, mRow.width, mRow.height, aFrameID, aFrame.GetDataPointer()));
  }

  const FormatRow mRow = GetParam();
};

TEST_P(SaveFrameOfFormat, Raw_HoldsTheBytesThatTheCameraSent) {
  const std::string path = mFolder.GetFile("frame.raw");

  ASSERT_EQ(Run(mRow.device, path, GetName().c_str()), 0) << mErrors.str();

  const std::string text = TemporaryFolder::ReadFile(path + ".txt");
  KrBuffer sent;
  PaintFrame(sent, ReadNumber(text, "frame_id"));
  EXPECT_THAT(text, AllOf(HasSubstr("pixel_format=" + GetName() + "\n"),
                          HasSubstr("width=" + std::to_string(mRow.width) + "\n"),
                          HasSubstr("height=" + std::to_string(mRow.height) + "\n")));
  EXPECT_EQ(ReadNumber(text, "bytes"), sent.GetSize());
  EXPECT_TRUE(TemporaryFolder::ReadFile(path) ==
              std::string(reinterpret_cast<const char*>(sent.GetDataPointer()), sent.GetSize()));
}

TEST_P(SaveFrameOfFormat, Tiff_HoldsTheSamplesThatTheCameraSent) {
  const std::string path = mFolder.GetFile("frame.tif");

  ASSERT_EQ(Run(mRow.device, path, GetName().c_str()), 0) << mErrors.str();

  const TiffFile file(path);
  KrBuffer sent;
  PaintFrame(sent, ReadNumber(file.description, "frame_id"));
  KrBuffer unpacked;
  ASSERT_TRUE(unpacked.GetImage()->Alloc(mRow.width, mRow.height, KrGetUnpackedPixelType(mRow.type).value()).IsOK());
  ASSERT_TRUE(KrBufferConverter().Convert(sent.GetImage(), &unpacked, false, false).IsOK());
  ASSERT_EQ(file.bytes.size(), unpacked.GetSize());
  EXPECT_TRUE(std::equal(file.bytes.begin(), file.bytes.end(), unpacked.GetDataPointer()));
  EXPECT_EQ(mErrors.str(), "");
}

TEST_P(SaveFrameOfFormat, Png_HoldsWhatTheConverterShows) {
  const std::string path = mFolder.GetFile("frame.png");

  ASSERT_EQ(Run(mRow.device, path, GetName().c_str()), 0) << mErrors.str();

  const PngFile file(path);
  KrBuffer sent;
  PaintFrame(sent, ReadNumber(mOut.str(), "frame_id"));
  KrBuffer shown;
  ASSERT_TRUE(KrBufferConverter().Convert(sent.GetImage(), &shown, true, false).IsOK());
  const std::size_t samples = file.hasColour ? 3 : 1;
  ASSERT_EQ(file.bytes.size(), samples * mRow.width * mRow.height);
  std::size_t differences = 0;
  for (std::size_t index = 0; index < file.bytes.size(); ++index)
    differences += file.bytes[index] != shown.GetDataPointer()[index / samples * 4 + 2 - index % samples] ? 1 : 0;
  EXPECT_EQ(differences, 0U);
}

INSTANTIATE_TEST_SUITE_P(Formats, SaveFrameOfFormat,
                         testing::Values(FormatRow{"sim-mono", 1280, 960, KrPixel::Mono8},
                                         FormatRow{"sim-mono", 1280, 960, KrPixel::Mono16},
                                         FormatRow{"sim-mono", 1280, 960, KrPixel::Mono12p},
                                         FormatRow{"sim-mono", 1280, 960, KrPixel::Mono10Packed},
                                         FormatRow{"sim-colour", 1920, 1200, KrPixel::BayerRG8},
                                         FormatRow{"sim-colour", 1920, 1200, KrPixel::BayerGB12p},
                                         FormatRow{"sim-colour", 1920, 1200, KrPixel::RGB16}),
                         [](const auto& aInfo) { return std::string(KrFindPixelType(aInfo.param.type)->name); });

TEST_F(SaveFrameCommand, Report_IsOneLineThatNamesTheFile) {
  const std::string path = mFolder.GetFile("frame.tiff");

  EXPECT_EQ(Run("sim-mono", path), 0) << mErrors.str();

  EXPECT_THAT(mOut.str(), testing::MatchesRegex("pixel_format=Mono8 width=1280 height=960 frame_id=[0-9]+ "
                                                "format=tiff file=" +
                                                path + "\n"));
  EXPECT_THAT(TiffFile(path).description, HasSubstr("device_id=02:4b:52:00:77:10\n"));
}

TEST_F(SaveFrameCommand, FileThatIsThere_IsReplacedOnlyWithForce) {
  const std::string path = mFolder.GetFile("frame.png");
  TemporaryFolder::WriteFile(path, "old");

  EXPECT_EQ(Run("sim-mono", path), 1);
  EXPECT_THAT(mErrors.str(), AllOf(HasSubstr(path), HasSubstr("--force")));
  EXPECT_EQ(TemporaryFolder::ReadFile(path), "old");

  EXPECT_EQ(Run("sim-mono", path, "", true), 0) << mErrors.str();
  EXPECT_EQ(PngFile(path).width, 1280U);
}

TEST_F(SaveFrameCommand, MissingFolder_FailsBeforeTheCameraIsLookedFor) {
  EXPECT_EQ(Run("nobody", mFolder.GetFile("missing/frame.png")), 1);

  EXPECT_THAT(mErrors.str(), AllOf(HasSubstr("missing/frame.png"), HasSubstr("No such file or directory")));
}

TEST_F(SaveFrameCommand, UnknownDevice_FailsWithoutAFile) {
  EXPECT_EQ(Run("nobody", mFolder.GetFile("frame.png")), 1);

  EXPECT_EQ(mOut.str(), "");
  EXPECT_THAT(mErrors.str(), HasSubstr("\"nobody\""));
  EXPECT_THAT(mFolder.GetNames(), IsEmpty());
}

TEST_F(SaveFrameCommand, PixelFormatThatTheCameraLacks_FailsWithThoseItHas) {
  EXPECT_EQ(Run("sim-mono", mFolder.GetFile("frame.png"), "RGB8"), 1);

  EXPECT_THAT(mErrors.str(), AllOf(HasSubstr("RGB8"), HasSubstr(" Mono12p")));
  EXPECT_THAT(mFolder.GetNames(), IsEmpty());
}

TEST_F(SaveFrameCommand, Camera_IsFreeAgainAfterwards) {
  EXPECT_EQ(Run("sim-mono", mFolder.GetFile("1.png")), 0) << mErrors.str();
  EXPECT_EQ(Run("sim-mono", mFolder.GetFile("2.png")), 0) << mErrors.str();
}

} // namespace
} // namespace krtool
