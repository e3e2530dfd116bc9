#include "saveframecommand.h"

#include "labfixture.h"
#include "pngfile.h"
#include "simulation/testpattern.h"
#include "temporaryfolder.h"
#include "tifffile.h"

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
  std::string GetName() const { return std::string(mInfo.name); }
  /// The frame of a number as the camera sends it.
  void PaintFrame(KrBuffer& aFrame, std::uint64_t aFrameID) const {
    ASSERT_TRUE(aFrame.GetImage()->Alloc(mRow.width, mRow.height, mRow.type).IsOK());
    ASSERT_TRUE(krtransport::FillPattern(mRow.type, mRow.width, mRow.height, aFrameID, aFrame.GetDataPointer()));
  }

  bool HasColour() const { return mInfo.layout == KrPixelLayout::RGB; }
  bool IsBayer() const { return mInfo.layout == KrPixelLayout::BayerRG || mInfo.layout == KrPixelLayout::BayerGB; }
  /// The colour of a pixel's filter, 0 to 2 for red, green and blue; 0 for grey formats.
  std::uint32_t GetFilter(std::uint32_t aX, std::uint32_t aY) const {
    const std::uint32_t redLine = mInfo.layout == KrPixelLayout::BayerGB ? 1 : 0;
    return IsBayer() ? aX % 2 + (aY + redLine) % 2 : 0;
  }
  /// The camera's picture as docs/simulation.md has it, in steps of 0 to 255.
  static std::uint64_t GetRamp(std::uint32_t aX, std::uint32_t aY, std::uint32_t aColour, std::uint64_t aFrameID) {
    return (aX + aY + aFrameID + std::uint64_t{85} * aColour) % 256;
  }
  /// A step of the ramp in the bits of a sample.
  std::uint64_t Stretch(std::uint64_t aStep) const {
    return aStep * ((std::uint64_t{1} << mInfo.bitsPerSample) - 1) / 255;
  }

  const FormatRow mRow = GetParam();
  const KrPixelTypeInfo mInfo = *KrFindPixelType(mRow.type);
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
  const std::uint64_t frameID = ReadNumber(file.description, "frame_id");
  ASSERT_EQ(file.width, mRow.width);
  ASSERT_EQ(file.height, mRow.height);
  ASSERT_EQ(file.bitsPerSample, mInfo.bitsPerSample > 8 ? 16 : 8);
  ASSERT_EQ(file.samplesPerPixel, HasColour() ? 3 : 1);
  std::size_t differences = 0;
  for (std::uint32_t y = 0; y < mRow.height; ++y)
    for (std::uint32_t x = 0; x < mRow.width; ++x)
      for (std::uint32_t component = 0; component < file.samplesPerPixel; ++component) {
        const std::uint64_t ramp = GetRamp(x, y, HasColour() ? component : GetFilter(x, y), frameID);
        differences += file.GetSample(x, y, component) == Stretch(ramp) ? 0 : 1;
      }
  EXPECT_EQ(differences, 0U);
  EXPECT_EQ(mErrors.str(), "");
}

// Of a filter array the two other colours are interpolated: those are left to the converter's tests.
TEST_P(SaveFrameOfFormat, Png_HoldsInEightBitsWhatTheCameraSent) {
  const std::string path = mFolder.GetFile("frame.png");

  ASSERT_EQ(Run(mRow.device, path, GetName().c_str()), 0) << mErrors.str();

  const PngFile file(path);
  const std::uint64_t frameID = ReadNumber(mOut.str(), "frame_id");
  const std::size_t samples = file.hasColour ? 3 : 1;
  ASSERT_EQ(file.hasColour, HasColour() || IsBayer());
  ASSERT_EQ(file.bytes.size(), samples * mRow.width * mRow.height);
  std::size_t differences = 0;
  for (std::uint32_t y = 0; y < mRow.height; ++y)
    for (std::uint32_t x = 0; x < mRow.width; ++x)
      for (std::uint32_t component = 0; component < samples; ++component) {
        if (IsBayer() && component != GetFilter(x, y))
          continue;
        const std::uint8_t shown = file.bytes[(std::size_t{y} * mRow.width + x) * samples + component];
        differences += shown == GetRamp(x, y, component, frameID) ? 0 : 1;
      }
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
