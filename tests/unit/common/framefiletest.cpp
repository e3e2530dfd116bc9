#include "framefile.h"

#include "filesizelimit.h"
#include "framedescription.h"
#include "temporaryfolder.h"
#include "testframe.h"

#include <gmock/gmock.h>

namespace krapps {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST(FrameFileFormats, Extension_SaysTheFormatInAnyCase) {
  EXPECT_EQ(FindFrameFileFormatOf("a/b.png"), FrameFileFormat::PNG);
  EXPECT_EQ(FindFrameFileFormatOf("b.TIF"), FrameFileFormat::TIFF);
  EXPECT_EQ(FindFrameFileFormatOf("b.1.tiff"), FrameFileFormat::TIFF);
  EXPECT_EQ(FindFrameFileFormatOf("b.raw"), FrameFileFormat::Raw);
}

TEST(FrameFileFormats, OtherExtension_SaysNone) {
  for (const char* name : {"", "b", "png", ".png", "b.jpg", "b.png.txt", "a.png/b", "b."})
    EXPECT_EQ(FindFrameFileFormatOf(name), std::nullopt) << name;
}

TEST(FrameFileFormats, Names_AreThoseOfTheList) {
  for (const FrameFileFormat format : {FrameFileFormat::PNG, FrameFileFormat::TIFF, FrameFileFormat::Raw}) {
    EXPECT_EQ(FindFrameFileFormat(GetFrameFileFormatName(format)), format);
    EXPECT_THAT(ListFrameFileFormats(), HasSubstr(std::string(GetFrameFileFormatName(format))));
  }
  EXPECT_EQ(FindFrameFileFormat("Tiff"), FrameFileFormat::TIFF);
  EXPECT_EQ(FindFrameFileFormat("tif"), std::nullopt);
  EXPECT_EQ(FindFrameFileFormat(""), std::nullopt);
}

TEST(FrameDescription, Time_IsInUtcWithNanoseconds) {
  EXPECT_EQ(FormatTime(0), "1970-01-01T00:00:00.000000000Z");
  EXPECT_EQ(FormatTime(1'709'251'199'987'654'321), "2024-02-29T23:59:59.987654321Z");
}

class FrameFile : public testing::Test {
protected:
  FrameFile() { FillFrame(mFrame, KrPixel::Mono12p, 3); }

  KrResult Write(const std::string& aPath, FrameFileFormat aFormat, bool aReplaces = false) const {
    return WriteFrame(mFrame,
                      {.fileName = aPath, .format = aFormat, .replacesExisting = aReplaces, .deviceID = "id\n=x"});
  }

  TemporaryFolder mFolder;
  KrBuffer mFrame;
};

TEST_F(FrameFile, Progress_HearsOfAllBytesOfEachFormat) {
  for (const char* const name : {"frame.raw", "frame.tif", "frame.png"}) {
    SCOPED_TRACE(name);
    std::uint64_t heard = 0;
    const std::string path = mFolder.GetFile(name);

    ASSERT_TRUE(WriteFrame(mFrame, {.fileName = path,
                                    .format = *FindFrameFileFormatOf(path),
                                    .isFlushed = false,
                                    .onProgress = [&](std::uint64_t aBytes) { heard += aBytes; }})
                    .IsOK());

    // TIFF's writer comes back to some bytes of the beginning.
    EXPECT_GE(heard, TemporaryFolder::ReadFile(path).size());
  }
}

TEST_F(FrameFile, Raw_HoldsTheBytesAndATextThatSaysWhatTheyAre) {
  const std::string path = mFolder.GetFile("frame.raw");

  const KrResult result = Write(path, FrameFileFormat::Raw);

  ASSERT_TRUE(result.IsOK()) << result.GetDescription().CStr();
  const std::string bytes(reinterpret_cast<const char*>(mFrame.GetDataPointer()), mFrame.GetSize());
  EXPECT_EQ(TemporaryFolder::ReadFile(path), bytes);
  EXPECT_EQ(TemporaryFolder::ReadFile(path + ".txt"), "pixel_format=Mono12p\n"
                                                      "pixel_format_code=0x010C0047\n"
                                                      "bits_per_pixel=12\n"
                                                      "significant_bits=12\n"
                                                      "width=7\n"
                                                      "height=5\n"
                                                      "complete=yes\n"
                                                      "frame_id=4711\n"
                                                      "timestamp_ns=123456789\n"
                                                      "host_timestamp_ns=1700000000000000001\n"
                                                      "host_time=2023-11-14T22:13:20.000000001Z\n"
                                                      "device_id=id?=x\n"
                                                      "padding_x_bytes=3\n"
                                                      "padding_y_bytes=0\n"
                                                      "bytes=70\n"
                                                      "byte_order=little-endian\n");
  EXPECT_THAT(mFolder.GetNames(), UnorderedElementsAre("frame.raw", "frame.raw.txt"));
}

TEST_F(FrameFile, FormatWithoutAName_IsSavedRawByItsCode) {
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(4, 2, 0x81100FFF).IsOK());
  frame.SetStatus(KrBufferStatus::Incomplete);
  const std::string path = mFolder.GetFile("frame.raw");

  ASSERT_TRUE(WriteFrame(frame, {.fileName = path, .format = FrameFileFormat::Raw}).IsOK());

  EXPECT_THAT(TemporaryFolder::ReadFile(path + ".txt"),
              AllOf(HasSubstr("pixel_format=-\n"), HasSubstr("pixel_format_code=0x81100FFF\n"),
                    HasSubstr("significant_bits=-\n"), HasSubstr("complete=no\n"), HasSubstr("host_time=-\n")));
}

TEST_F(FrameFile, FrameOfEachStatus_IsCalledCompleteOnlyWhenItIs) {
  constexpr std::pair<KrBufferStatus, const char*> kRows[] = {{KrBufferStatus::Complete, "complete=yes\n"},
                                                              {KrBufferStatus::Incomplete, "complete=no\n"},
                                                              {KrBufferStatus::TooSmall, "complete=no\n"},
                                                              {KrBufferStatus::Aborted, "complete=no\n"},
                                                              {KrBufferStatus::Empty, "complete=no\n"}};
  const std::string path = mFolder.GetFile("frame.raw");
  for (const auto& [status, line] : kRows) {
    mFrame.SetStatus(status);

    ASSERT_TRUE(Write(path, FrameFileFormat::Raw, true).IsOK());

    EXPECT_THAT(TemporaryFolder::ReadFile(path + ".txt"), HasSubstr(line)) << static_cast<int>(status);
  }
}

TEST_F(FrameFile, FormatThatCannotBeShown_IsRefusedByName) {
  KrBuffer frame;
  ASSERT_TRUE(frame.GetImage()->Alloc(4, 2, KrPixel::Coord3D_ABC32f).IsOK());

  for (const char* name : {"frame.png", "frame.tif"}) {
    const std::string path = mFolder.GetFile(name);
    const KrResult result = WriteFrame(frame, {.fileName = path, .format = *FindFrameFileFormatOf(path)});

    EXPECT_EQ(result.GetCode(), KrResult::Code::NotSupported);
    EXPECT_THAT(result.GetDescription().ToUtf8(), AllOf(HasSubstr(path), HasSubstr("Coord3D_ABC32f")));
  }
  EXPECT_THAT(mFolder.GetNames(), IsEmpty());
}

TEST_F(FrameFile, FrameWithoutAnImage_IsRefused) {
  const KrBuffer empty;
  KrBuffer chunks(KrPayloadType::ChunkData);
  ASSERT_TRUE(chunks.Alloc(100).IsOK());
  const FrameFileOptions options = {.fileName = mFolder.GetFile("a.raw"), .format = FrameFileFormat::Raw};

  EXPECT_EQ(WriteFrame(empty, options).GetCode(), KrResult::Code::BadData);
  EXPECT_EQ(WriteFrame(chunks, options).GetCode(), KrResult::Code::NotSupported);
  EXPECT_THAT(mFolder.GetNames(), IsEmpty());
}

class EachFormat : public FrameFile, public testing::WithParamInterface<FrameFileFormat> {
protected:
  std::string mPath = mFolder.GetFile("frame");
};

TEST_P(EachFormat, ExistingFile_IsReplacedOnlyWhenAsked) {
  TemporaryFolder::WriteFile(mPath, "old");

  const KrResult refused = Write(mPath, GetParam());

  EXPECT_EQ(refused.GetCode(), KrResult::Code::WrongState);
  EXPECT_THAT(refused.GetDescription().ToUtf8(), AllOf(HasSubstr(mPath), HasSubstr("exists")));
  EXPECT_EQ(CheckFrameFile({.fileName = mPath, .format = GetParam()}).GetCode(), KrResult::Code::WrongState);
  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), "old");
  EXPECT_TRUE(Write(mPath, GetParam(), true).IsOK());
  EXPECT_NE(TemporaryFolder::ReadFile(mPath), "old");
}

TEST_P(EachFormat, SystemThatTakesNoMoreBytes_LeavesTheOldFileAndNothingElse) {
  TemporaryFolder::WriteFile(mPath, "old");
  KrResult result;
  {
    const FileSizeLimit limit(20);
    result = Write(mPath, GetParam(), true);
  }

  EXPECT_EQ(result.GetCode(), KrResult::Code::SystemError);
  EXPECT_THAT(result.GetDescription().ToUtf8(), AllOf(HasSubstr(mPath), HasSubstr("File too large")));
  EXPECT_EQ(TemporaryFolder::ReadFile(mPath), "old");
  EXPECT_THAT(mFolder.GetNames(), UnorderedElementsAre("frame"));
}

TEST_P(EachFormat, MissingFolder_IsNotFoundAndNamed) {
  const std::string path = mFolder.GetFile("missing/frame");

  EXPECT_EQ(Write(path, GetParam()).GetCode(), KrResult::Code::NotFound);
  EXPECT_EQ(CheckFrameFile({.fileName = path, .format = GetParam()}).GetCode(), KrResult::Code::NotFound);
}

TEST_P(EachFormat, Checking_MakesNoFile) {
  EXPECT_TRUE(CheckFrameFile({.fileName = mPath, .format = GetParam()}).IsOK());
  EXPECT_THAT(mFolder.GetNames(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Formats, EachFormat,
                         testing::Values(FrameFileFormat::PNG, FrameFileFormat::TIFF, FrameFileFormat::Raw),
                         [](const auto& aInfo) { return std::string(GetFrameFileFormatName(aInfo.param)); });

TEST_F(FrameFile, TextTooLongToBePutBack_StaysAndNothingIsWritten) {
  const std::string path = mFolder.GetFile("frame.raw");
  const std::string most(1U << 20U, 'x');
  TemporaryFolder::WriteFile(path + ".txt", most + "y");

  const KrResult result = Write(path, FrameFileFormat::Raw, true);

  EXPECT_EQ(result.GetCode(), KrResult::Code::OutOfRange);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("frame.raw.txt"));
  EXPECT_EQ(TemporaryFolder::ReadFile(path + ".txt"), most + "y");
  EXPECT_THAT(mFolder.GetNames(), UnorderedElementsAre("frame.raw.txt"));
  TemporaryFolder::WriteFile(path + ".txt", most);
  EXPECT_TRUE(Write(path, FrameFileFormat::Raw, true).IsOK());
}

TEST_F(FrameFile, TextOfAnotherRawFile_IsNotOverwritten) {
  const std::string path = mFolder.GetFile("frame.raw");
  TemporaryFolder::WriteFile(path + ".txt", "notes");

  const KrResult result = Write(path, FrameFileFormat::Raw);

  EXPECT_EQ(result.GetCode(), KrResult::Code::WrongState);
  EXPECT_THAT(result.GetDescription().ToUtf8(), HasSubstr("frame.raw.txt"));
  EXPECT_THAT(mFolder.GetNames(), UnorderedElementsAre("frame.raw.txt"));
}

} // namespace
} // namespace krapps
