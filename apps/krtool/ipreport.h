#pragma once
// The address of one device, how it got it and how it will get it at its next start, as lines and as JSON.

#include "krdevice/krdevicegev.h"
#include "networkselection.h"

#include <cstdint>
#include <optional>
#include <string>

namespace krtool {

struct IPReport {
  NetworkDevice device;
  std::optional<std::uint64_t> answeredAfterMs = {};    ///< After a change of the address.
  std::optional<KrLastingIPConfiguration> lasting = {}; ///< Nothing where it cannot be read.
  std::string lastingProblem = {};                      ///< Why not; empty where the device has none by nature.
};

/// Lines of a name and a value, the values in one column.
std::string FormatIPReport(const IPReport& aReport);
/// One object and a line break.
std::string FormatIPReportJson(const IPReport& aReport);

} // namespace krtool
