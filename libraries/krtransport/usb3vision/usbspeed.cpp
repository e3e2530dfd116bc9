#include "usb3vision/usbspeed.h"

#include <algorithm>
#include <iterator>

namespace krtransport {
namespace {

struct SpeedRow {
  const char* sysfsText;
  std::uint32_t kbit;
  std::int32_t speedClass;
  const char* description;
};

constexpr SpeedRow kRows[] = {
    {"1.5", 1500, 1, "Low Speed (1.5 Mbit/s)"},
    {"12", 12000, 2, "Full Speed (12 Mbit/s)"},
    {"480", 480000, 3, "High Speed (480 Mbit/s)"},
    {"5000", 5000000, 4, "Super Speed (5 Gbit/s)"},
    {"10000", 10000000, 4, "Super Speed Plus (10 Gbit/s)"},
    {"20000", 20000000, 4, "Super Speed Plus (20 Gbit/s)"},
};

const SpeedRow* FindRow(std::uint32_t aSpeedKbit) {
  const auto* row = std::ranges::find(kRows, aSpeedKbit, &SpeedRow::kbit);
  return row != std::end(kRows) ? row : nullptr;
}

} // namespace

std::uint32_t ParseUsbSpeed(const std::string& aText) {
  const auto* row = std::ranges::find_if(kRows, [&aText](const SpeedRow& aRow) { return aText == aRow.sysfsText; });
  return row != std::end(kRows) ? row->kbit : 0;
}

std::int32_t GetUsbSpeedClass(std::uint32_t aSpeedKbit) {
  const SpeedRow* row = FindRow(aSpeedKbit);
  return row != nullptr ? row->speedClass : 0;
}

std::string DescribeUsbSpeed(std::uint32_t aSpeedKbit) {
  const SpeedRow* row = FindRow(aSpeedKbit);
  return row != nullptr ? row->description : "Unknown speed";
}

} // namespace krtransport
