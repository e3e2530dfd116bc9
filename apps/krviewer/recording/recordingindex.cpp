#include "recording/recordingindex.h"

#include <array>
#include <cinttypes>
#include <cstdio>
#include <optional>
#include <string_view>

namespace krviewer {

namespace {

constexpr std::string_view kColumns =
    "number,file,bytes,frame_id,timestamp_ns,host_timestamp_ns,arrival_ns,run,complete,incomplete_before,"
    "queue_full_before,pixel_format,pixel_format_code,width,height,padding_x_bytes,padding_y_bytes\n";

std::string FormatPixelType(KrPixelType aType) {
  std::array<char, 16> code = {};
  std::snprintf(code.data(), code.size(), "0x%08" PRIX32, static_cast<std::uint32_t>(aType));
  const std::optional<KrPixelTypeInfo> info = KrFindPixelType(aType);
  return (info ? std::string(info->name) : "-") + "," + code.data();
}

} // namespace

KrResult RecordingIndex::Create(const std::string& aPath) {
  if (KrResult created = mFile.Create(aPath); !created.IsOK())
    return created;
  return mFile.Append(kColumns.data(), kColumns.size());
}

KrResult RecordingIndex::Add(const RecordedFrame& aFrame, std::uint64_t aNumber, const std::string& aFile,
                             std::uint64_t aBytes) {
  const KrBuffer& frame = aFrame.frame;
  const IKrImage& image = *frame.GetImage();
  const bool isComplete = frame.GetStatus() == KrBufferStatus::Complete;
  std::string line = std::to_string(aNumber) + "," + aFile;
  const auto add = [&line](std::uint64_t aValue) { line += "," + std::to_string(aValue); };
  for (const std::uint64_t value :
       {aBytes, frame.GetFrameID(), frame.GetTimestampNs(), frame.GetHostTimestampNs(), aFrame.arrivalNs, aFrame.run})
    add(value);
  line += isComplete ? ",yes" : ",no";
  add(aFrame.incompleteBefore);
  add(aFrame.queueFullBefore);
  line += "," + FormatPixelType(image.GetPixelType());
  for (const std::uint32_t value : {image.GetWidth(), image.GetHeight(), image.GetPaddingX(), image.GetPaddingY()})
    add(value);
  line += "\n";
  return mFile.Append(line.data(), line.size());
}

} // namespace krviewer
