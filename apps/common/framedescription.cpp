#include "framedescription.h"

#include "plaintext.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <optional>

namespace krapps {

namespace {

struct BayerRow {
  KrPixelLayout layout;
  std::string_view order;
};

constexpr std::array kBayerOrders = {BayerRow{KrPixelLayout::BayerGR, "GR"}, BayerRow{KrPixelLayout::BayerRG, "RG"},
                                     BayerRow{KrPixelLayout::BayerGB, "GB"}, BayerRow{KrPixelLayout::BayerBG, "BG"}};

std::string FormatCode(KrPixelType aType) {
  std::array<char, 16> text = {};
  std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned>(aType));
  return text.data();
}

std::string DescribeFormat(KrPixelType aType) {
  const std::optional<KrPixelTypeInfo> info = KrFindPixelType(aType);
  std::string text = MakeLine("pixel_format", info ? std::string(info->name) : "-") +
                     MakeLine("pixel_format_code", FormatCode(aType)) +
                     MakeLine("bits_per_pixel", std::to_string(KrGetBitsPerPixel(aType))) +
                     MakeLine("significant_bits", info ? std::to_string(info->bitsPerSample) : "-");
  for (const BayerRow& row : kBayerOrders)
    if (info && info->layout == row.layout)
      text += MakeLine("bayer_order", std::string(row.order));
  return text;
}

} // namespace

std::string MakeLine(std::string_view aKey, const std::string& aValue) {
  return std::string(aKey) + "=" + aValue + "\n";
}

std::string FormatTime(std::uint64_t aNanoseconds) {
  namespace chrono = std::chrono;
  const auto time = chrono::sys_time<chrono::nanoseconds>(chrono::nanoseconds(static_cast<std::int64_t>(aNanoseconds)));
  const auto day = chrono::floor<chrono::days>(time);
  const chrono::year_month_day date(day);
  const chrono::hh_mm_ss clock(time - day);
  std::array<char, 64> text = {};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%09lldZ", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()), static_cast<long long>(clock.subseconds().count()));
  return text.data();
}

std::string DescribeFrame(const KrBuffer& aFrame, const FrameFileOptions& aOptions) {
  const IKrImage& image = *aFrame.GetImage();
  const std::uint64_t hostNs = aFrame.GetHostTimestampNs();
  return DescribeFormat(image.GetPixelType()) + MakeLine("width", std::to_string(image.GetWidth())) +
         MakeLine("height", std::to_string(image.GetHeight())) +
         MakeLine("complete", aFrame.GetStatus() == KrBufferStatus::Complete ? "yes" : "no") +
         MakeLine("frame_id", std::to_string(aFrame.GetFrameID())) +
         MakeLine("timestamp_ns", std::to_string(aFrame.GetTimestampNs())) +
         MakeLine("host_timestamp_ns", std::to_string(hostNs)) +
         MakeLine("host_time", hostNs != 0 ? FormatTime(hostNs) : "-") +
         MakeLine("device_id", MakeCell(aOptions.deviceID));
}

} // namespace krapps
