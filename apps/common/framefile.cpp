#include "framefile.h"

#include "krbase/kratomicfile.h"
#include "krbase/krwholefile.h"
#include "pngframe.h"
#include "rawframe.h"
#include "tiffframe.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <utility>

namespace krapps {

namespace {

struct FormatRow {
  FrameFileFormat format;
  std::string_view name;
  std::array<std::string_view, 2> extensions; // The second may be empty.
};

constexpr std::array kFormats = {
    FormatRow{FrameFileFormat::PNG, "png", {".png", ""}},
    FormatRow{FrameFileFormat::TIFF, "tiff", {".tiff", ".tif"}},
    FormatRow{FrameFileFormat::Raw, "raw", {".raw", ""}},
};

std::string ToLowerCase(std::string_view aText) {
  std::string text(aText);
  std::transform(text.begin(), text.end(), text.begin(), [](char aCharacter) {
    return aCharacter >= 'A' && aCharacter <= 'Z' ? static_cast<char>(aCharacter + ('a' - 'A')) : aCharacter;
  });
  return text;
}

KrAtomicFile::Existing GetExisting(const FrameFileOptions& aOptions) {
  return aOptions.replacesExisting ? KrAtomicFile::Existing::Replaced : KrAtomicFile::Existing::Kept;
}

KrAtomicFile::Flushing GetFlushing(const FrameFileOptions& aOptions) {
  return aOptions.isFlushed ? KrAtomicFile::Flushing::ToDisk : KrAtomicFile::Flushing::LeftToSystem;
}

KrResult WriteImage(const KrBuffer& aFrame, const FrameFileOptions& aOptions, KrAtomicFile& aFile) {
  return aOptions.format == FrameFileFormat::PNG ? WritePng(aFrame, aOptions, aFile)
                                                 : WriteTiff(aFrame, aOptions, aFile);
}

// Ours have a few hundred bytes; what is much longer is no such text.
constexpr std::size_t kMostTextBytes = std::size_t{1} << 20;

// A text as it was before it was replaced, to bring it back.
class FormerText {
public:
  explicit FormerText(const KrString& aFileName) : mFileName(aFileName) {}

  /// A text that cannot be kept is not to be replaced.
  KrResult Keep() {
    std::string bytes;
    const KrResult read = KrReadWholeFile(mFileName, kMostTextBytes, bytes);
    if (read == KrResult::Code::NotFound)
      return {};
    if (!read.IsOK())
      return {read.GetCode(),
              "The file \"" + mFileName + "\" is left as it is, as it could not be put back: " + read.GetDescription()};
    mBytes = std::move(bytes);
    return {};
  }

  /// Does what it can: whoever calls it has the reason of a failure to tell already.
  void PutBack() const {
    if (!mBytes) {
      [[maybe_unused]] const int isRemoved = std::remove(mFileName.CStr());
      return;
    }
    KrAtomicFile file;
    if (file.Open(mFileName, KrAtomicFile::Existing::Replaced).IsOK() &&
        file.Write(mBytes->data(), mBytes->size()).IsOK())
      static_cast<void>(file.Commit());
  }

private:
  const KrString mFileName;
  std::optional<std::string> mBytes; // Nothing where there was no file.
};

// The text is there before the bytes are, so that bytes without their description never appear.
KrResult WriteWithSidecar(const KrBuffer& aFrame, const FrameFileOptions& aOptions) {
  KrAtomicFile bytes;
  KrAtomicFile sidecar;
  bytes.SetProgress(aOptions.onProgress);
  const std::string text = DescribeRawFrame(aFrame, aOptions);
  const IKrImage& image = *aFrame.GetImage();
  if (KrResult opened = bytes.Open(aOptions.fileName, GetExisting(aOptions)); !opened.IsOK())
    return opened;
  if (KrResult opened = sidecar.Open(GetSidecarName(aOptions.fileName), GetExisting(aOptions)); !opened.IsOK())
    return opened;
  if (KrResult written = bytes.Write(image.GetDataPointer(), image.GetImageSize()); !written.IsOK())
    return written;
  if (KrResult written = sidecar.Write(text.data(), text.size()); !written.IsOK())
    return written;
  FormerText former(GetSidecarName(aOptions.fileName));
  if (KrResult kept = former.Keep(); !kept.IsOK())
    return kept;
  if (KrResult committed = sidecar.Commit(GetFlushing(aOptions)); !committed.IsOK())
    return committed;
  KrResult committed = bytes.Commit(GetFlushing(aOptions));
  if (!committed.IsOK())
    former.PutBack();
  return committed;
}

KrResult CheckFrame(const KrBuffer& aFrame) {
  const IKrImage* const image = aFrame.GetImage();
  if (!image)
    return {KrResult::Code::NotSupported, "the frame's payload is of type " +
                                              std::to_string(static_cast<unsigned>(aFrame.GetPayloadType())) +
                                              " and no image"};
  if (!image->GetDataPointer() || image->GetImageSize() == 0)
    return {KrResult::Code::BadData, "the frame's image holds no pixels"};
  return {};
}

} // namespace

std::optional<FrameFileFormat> FindFrameFileFormat(std::string_view aName) {
  const std::string name = ToLowerCase(aName);
  const auto row =
      std::find_if(kFormats.begin(), kFormats.end(), [&](const FormatRow& aRow) { return aRow.name == name; });
  return row != kFormats.end() ? std::optional(row->format) : std::nullopt;
}

std::optional<FrameFileFormat> FindFrameFileFormatOf(const std::string& aFileName) {
  const std::string extension = ToLowerCase(std::filesystem::path(aFileName).extension().string());
  const auto row = std::find_if(kFormats.begin(), kFormats.end(), [&](const FormatRow& aRow) {
    return !extension.empty() && (aRow.extensions[0] == extension || aRow.extensions[1] == extension);
  });
  return row != kFormats.end() ? std::optional(row->format) : std::nullopt;
}

std::string_view GetFrameFileFormatName(FrameFileFormat aFormat) {
  const auto row = std::find_if(kFormats.begin(), kFormats.end(),
                                [aFormat](const FormatRow& aRow) { return aRow.format == aFormat; });
  return row != kFormats.end() ? row->name : std::string_view();
}

std::string ListFrameFileFormats() {
  std::string text;
  for (const FormatRow& row : kFormats) {
    text += (text.empty() ? "" : ", ") + std::string(row.name) + " (" + std::string(row.extensions[0]);
    text += (row.extensions[1].empty() ? "" : " or " + std::string(row.extensions[1])) + ")";
  }
  return text;
}

bool KeepsEverySample(FrameFileFormat aFormat, KrPixelType aType) {
  return aFormat == FrameFileFormat::Raw || (aFormat == FrameFileFormat::TIFF && HasTiffForm(aType));
}

KrResult CheckFrameFile(const FrameFileOptions& aOptions) {
  KrAtomicFile file;
  KrResult opened = file.Open(aOptions.fileName, GetExisting(aOptions));
  if (!opened.IsOK() || aOptions.format != FrameFileFormat::Raw)
    return opened;
  return file.Open(GetSidecarName(aOptions.fileName), GetExisting(aOptions));
}

KrResult WriteFrame(const KrBuffer& aFrame, const FrameFileOptions& aOptions) {
  const KrString failed = "The file \"" + aOptions.fileName + "\" cannot be written: ";
  try {
    if (KrResult checked = CheckFrame(aFrame); !checked.IsOK())
      return {checked.GetCode(), failed + checked.GetDescription() + "."};
    if (aOptions.format == FrameFileFormat::Raw)
      return WriteWithSidecar(aFrame, aOptions);
    KrAtomicFile file;
    file.SetProgress(aOptions.onProgress);
    if (KrResult opened = file.Open(aOptions.fileName, GetExisting(aOptions)); !opened.IsOK())
      return opened;
    if (KrResult written = WriteImage(aFrame, aOptions, file); !written.IsOK())
      return written;
    return file.Commit(GetFlushing(aOptions));
  } catch (const std::exception& exception) {
    return {KrResult::Code::SystemError, failed + exception.what() + "."};
  }
}

} // namespace krapps
