#pragma once
// When something of a lab is on: there, or down. What that means for an adapter or a device is left to them.

#include <cstdint>

namespace krtransport {

/// On from one moment to another, once or in every period; a value. Times are nanoseconds since the lab was made.
/// Where the end comes before the begin it is on at first, off from the end to the begin, and on again.
/// Thread: a value.
struct LabSchedule {
  static constexpr std::uint64_t kNever = UINT64_MAX;
  /// Nobody sees what comes and goes faster, and carrying it out would keep a processor busy.
  static constexpr std::uint64_t kLeastStepNs = 10000000;

  std::uint64_t beginNs = 0;
  std::uint64_t endNs = kNever;
  std::uint64_t periodNs = 0; ///< 0: once.

  bool IsOn(std::uint64_t aNowNs) const;
  /// The earliest moment behind aNowNs at which it may change; kNever where there is none.
  std::uint64_t GetNextChangeNs(std::uint64_t aNowNs) const;
  friend bool operator==(const LabSchedule&, const LabSchedule&) = default;
};

/// Never on; a schedule as it is made is always on.
inline constexpr LabSchedule kNever = {.beginNs = LabSchedule::kNever};

} // namespace krtransport
