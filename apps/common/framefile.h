#pragma once
// One frame as a file, in the format that its reader wants. What the formats hold is described in docs/saving.md; which
// frame is saved, and when, is left to the programs.

#include "krbase/krresult.h"
#include "krbuffer/krbuffer.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace krapps {

enum class FrameFileFormat {
  PNG,  ///< The image as it is shown, in 8 bits.
  TIFF, ///< The camera's own values, where the format has a form that TIFF can hold.
  Raw,  ///< The image's bytes as they came, with a text beside them that says what they are.
};

/// How a frame is saved.
struct FrameFileOptions {
  KrString fileName;
  FrameFileFormat format = FrameFileFormat::TIFF;
  bool replacesExisting = false; ///< Otherwise a file that is there already is an error.
  bool isFlushed = true;         ///< To the disk, before it has its name; otherwise the system does that when it likes.
  KrString deviceID = {};        ///< Goes into the description.
  KrString software = "KrGUI";   ///< The program that saves, for the formats that name it.
  std::function<void(std::uint64_t aBytes)> onProgress = {}; ///< As KrAtomicFile::SetProgress; may be empty.
};

/// The format of a name ("png", "tiff", "raw", case does not matter), or nothing.
std::optional<FrameFileFormat> FindFrameFileFormat(std::string_view aName);
/// The format that a file's extension says (.png, .tif, .tiff, .raw, case does not matter), or nothing.
std::optional<FrameFileFormat> FindFrameFileFormatOf(const std::string& aFileName);
std::string_view GetFrameFileFormatName(FrameFileFormat aFormat);
/// All formats with their extensions, for a message.
std::string ListFrameFileFormats();

/// True when a file of this format holds every bit of such an image's samples; otherwise it holds the image as shown.
bool KeepsEverySample(FrameFileFormat aFormat, KrPixelType aType);

/// Tries whether the files could be made, without making them: the folder, the right to write, what is there already.
/// Results as WriteFrame.
KrResult CheckFrameFile(const FrameFileOptions& aOptions);

/// Writes a frame, whole or incomplete as it is; each file appears in one step when all of it is on the disk, and after
/// an error what was there is as it was. (The text of a raw frame is there before the bytes; should these then fail, it
/// is put back, unless the disk refuses that as well. One of more than 1 MiB, or that cannot be read, is therefore not
/// replaced: OutOfRange, or what KrReadWholeFile returns.) WrongState for a file that is there and is not to be
/// replaced; NotSupported for a payload that is no image, or a format that cannot even be shown; BadData for an image
/// that holds nothing; otherwise what KrAtomicFile returns. Descriptions name the file.
KrResult WriteFrame(const KrBuffer& aFrame, const FrameFileOptions& aOptions);

} // namespace krapps
