#pragma once
// Names proposed for what is saved of a camera: of its name and a number or the time, without anything that a file
// system or a command line would stumble over.

#include <cstdint>
#include <string>

namespace krviewer {

/// A name of letters, digits, '.', '-' and '_' alone, that begins with a letter or digit and is not too long; "camera"
/// where nothing is left. Bytes of other letters become '-', as do runs of anything else.
std::string MakePlainName(const std::string& aText);

/// Of a frame, without an extension.
std::string MakeFrameName(const std::string& aCamera, std::uint64_t aFrameID);
/// Of a recording that begins at a time, in seconds since 1970, told in this computer's time zone.
std::string MakeRecordingName(const std::string& aCamera, std::int64_t aSeconds);

} // namespace krviewer
