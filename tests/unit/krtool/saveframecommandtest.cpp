#include "saveframecommand.h"

#include "describedlink.h"
#include "krdevice/krdevicegev.h"
#include "temporaryfolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstring>
#include <sstream>

namespace krtool {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// Sends the frames that a test lists, as images of 8 by 8 pixels whose every byte is the frame's number.
class ScriptedSource : public FakeBufferSource {
public:
  struct Frame {
    std::uint64_t id;
    KrBufferStatus status = KrBufferStatus::Complete;
  };

  KrResult Start() override {
    const KrResult result = FakeBufferSource::Start();
    for (const Frame& frame : frames)
      EXPECT_TRUE(Push(frame.id, frame.status));
    return result;
  }
  KrResult Retrieve(KrBuffer*& aBuffer, std::uint32_t aTimeoutMs, const std::stop_token& aCancel) override {
    if (isInterrupted)
      std::raise(SIGINT);
    const KrResult result = FakeBufferSource::Retrieve(aBuffer, aTimeoutMs, aCancel);
    if (!result.IsOK())
      return result;
    std::memset(aBuffer->GetDataPointer(), static_cast<int>(aBuffer->GetFrameID()), aBuffer->GetSize());
    return aBuffer->DescribeImage(8, 64 / KrGetBitsPerPixel(type), type);
  }

  std::vector<Frame> frames;
  KrPixelType type = KrPixel::Mono8;
  bool isInterrupted = false; // Ctrl-C comes while a frame is awaited.
};

constexpr std::uint64_t kPixelFormatRegister = 0x40;

// The pixel formats Mono8 and Mono16 and nothing else.
std::string MakePixelFormats() {
  return R"(<Enumeration Name="PixelFormat">
      <EnumEntry Name="Mono8"><Value>8</Value></EnumEntry><EnumEntry Name="Mono16"><Value>16</Value></EnumEntry>
      <pValue>PixelFormatReg</pValue></Enumeration>)" +
         MakeIntReg("PixelFormatReg", "0x40");
}

class SaveFrame : public testing::Test {
protected:
  int Run(CommandLine aCommandLine) {
    auto link = std::make_unique<DescribedLink>(MakePixelFormats(), &mSource);
    DescribedLink& camera = *link;
    if (!mIsDescribed)
      camera.SetDescription("none");
    KrDeviceGEV device(std::move(link), MakeDeviceFields());
    aCommandLine.verb = Verb::SaveFrame;
    aCommandLine.file = mPath;
    const int exitCode = SaveFrameOf(device, aCommandLine, mOut, mErrors);
    mPixelFormat = camera.Peek(kPixelFormatRegister);
    return exitCode;
  }

  TemporaryFolder mFolder;
  std::string mPath = mFolder.GetFile("frame");
  ScriptedSource mSource;
  bool mIsDescribed = true;
  std::uint32_t mPixelFormat = 0; // The camera's, in the end.
  std::ostringstream mOut;
  std::ostringstream mErrors;
};

TEST_F(SaveFrame, FirstFrame_IsSavedAndReportedInOneLine) {
  mSource.frames = {{5}, {6}};

  const int exitCode = Run({.format = krapps::FrameFileFormat::Raw});

  EXPECT_EQ(exitCode, 0);
  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), std::string(64, '\5'));
  EXPECT_EQ(mOut.str(), "pixel_format=Mono8 width=8 height=8 frame_id=5 format=raw file=" + mPath + "\n");
  EXPECT_EQ(mErrors.str(), "");
}

TEST_F(SaveFrame, FramesThatDidNotComeWhole_AreSkippedAndNamed) {
  mSource.frames = {{5, KrBufferStatus::Incomplete}, {6, KrBufferStatus::TooSmall}, {7}};

  const int exitCode = Run({.format = krapps::FrameFileFormat::Raw});

  EXPECT_EQ(exitCode, 0);
  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), std::string(64, '\7'));
  EXPECT_THAT(mErrors.str(), AllOf(HasSubstr("frame 5"), HasSubstr("frame 6"), Not(HasSubstr("frame 7"))));
}

TEST_F(SaveFrame, NoFrameInTime_FailsWithoutAFile) {
  const int exitCode = Run({.format = krapps::FrameFileFormat::Raw, .timeoutMs = 1});

  EXPECT_EQ(exitCode, 1);
  EXPECT_EQ(mOut.str(), "");
  EXPECT_THAT(mErrors.str(), AllOf(HasSubstr("within 1 ms"), HasSubstr("trigger")));
  EXPECT_THAT(mFolder.GetNames(), IsEmpty());
}

TEST_F(SaveFrame, OnlyIncompleteFramesInTime_AreSaidToBeThere) {
  mSource.frames = {{5, KrBufferStatus::Incomplete}, {6, KrBufferStatus::Incomplete}};

  const int exitCode = Run({.format = krapps::FrameFileFormat::Raw, .timeoutMs = 1000});

  EXPECT_EQ(exitCode, 1);
  EXPECT_THAT(mErrors.str(), HasSubstr("but 2 incomplete ones"));
}

TEST_F(SaveFrame, CtrlCBeforeAFrame_EndsWithTheSignalsCodeAndWithoutAFile) {
  mSource.isInterrupted = true;

  const int exitCode = Run({.format = krapps::FrameFileFormat::Raw, .timeoutMs = 600'000});

  EXPECT_EQ(exitCode, 128 + SIGINT);
  EXPECT_THAT(mErrors.str(), HasSubstr("stopped before a whole frame came"));
  EXPECT_THAT(mFolder.GetNames(), IsEmpty());
}

TEST_F(SaveFrame, LostCamera_FailsWithTheReason) {
  mSource.Lose();

  EXPECT_EQ(Run({.format = krapps::FrameFileFormat::Raw}), 1);
  EXPECT_THAT(mErrors.str(), HasSubstr("krtool: "));
  EXPECT_EQ(mOut.str(), "");
}

TEST_F(SaveFrame, FormatWithoutItsOwnFormInTiff_IsSavedAsShownAndSaid) {
  mSource.frames = {{5}};
  mSource.type = KrPixel::YUV422_8;

  EXPECT_EQ(Run({.format = krapps::FrameFileFormat::TIFF}), 0) << mErrors.str();
  EXPECT_THAT(mErrors.str(), AllOf(HasSubstr("YUV422_8"), HasSubstr("as it is shown")));
}

TEST_F(SaveFrame, FormatThatTiffHolds_IsSavedWithoutARemark) {
  mSource.frames = {{5}};

  EXPECT_EQ(Run({.format = krapps::FrameFileFormat::TIFF}), 0);
  EXPECT_EQ(mErrors.str(), "");
}

TEST_F(SaveFrame, PixelFormat_IsSetOnTheCamera) {
  mSource.frames = {{5}};

  EXPECT_EQ(Run({.format = krapps::FrameFileFormat::Raw, .pixelFormat = "Mono16"}), 0) << mErrors.str();
  EXPECT_EQ(mPixelFormat, 16u);
}

TEST_F(SaveFrame, PixelFormatThatTheCameraLacks_FailsWithThoseItHas) {
  const int exitCode = Run({.format = krapps::FrameFileFormat::Raw, .pixelFormat = "Mono99"});

  EXPECT_EQ(exitCode, 1);
  EXPECT_THAT(mErrors.str(), AllOf(HasSubstr("Mono99"), HasSubstr("Mono8 Mono16")));
  EXPECT_THAT(mFolder.GetNames(), IsEmpty());
}

TEST_F(SaveFrame, PixelFormatOfACameraWithoutDescription_Fails) {
  mIsDescribed = false;

  EXPECT_EQ(Run({.format = krapps::FrameFileFormat::Raw, .pixelFormat = "Mono8"}), 1);
  EXPECT_THAT(mErrors.str(), HasSubstr("setting the pixel format"));
}

} // namespace
} // namespace krtool
