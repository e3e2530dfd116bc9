#pragma once
// The devices of a lab file, each kind with its keys. What lists they stand in, and that no two are alike, is left to
// the lab reader.

#include "simulation/lab.h"
#include "simulation/labfile/labmap.h"

#include <variant>
#include <vector>

namespace krtransport {

using AnyLabDevice = std::variant<LabGEVCamera, LabTolvanDevice, LabU3VCamera, LabPlainUSBDevice>;

/// A device and where it stands in the file.
struct ReadLabDevice {
  AnyLabDevice device;
  TextPlace place;
  bool mayRepeat = false; ///< Its ID may be another's too.
};

/// What a list of devices may hold.
enum class LabDeviceList { OfAdapter, OfController };

inline constexpr std::size_t kMostLabDevices = 4096;

/// Reads one entry of a list and adds the devices that it stands for, as many as its count says. Any thread.
void ReadLabDevices(const YamlNode& aNode, LabDeviceList aList, LabProblem& aProblem,
                    std::vector<ReadLabDevice>& aDevices);

/// The keys of a schedule: when something is there. Any thread.
void ReadSchedule(LabMap& aMap, LabSchedule& aSchedule);
/// The same for an adapter, and when it is down, which goes by the same period.
void ReadSchedules(LabMap& aMap, LabSchedule& aSchedule, LabSchedule& aDownSchedule);

} // namespace krtransport
