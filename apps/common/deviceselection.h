#pragma once
// From what a user typed to the one device that is meant. Opening it, and how the command line is written, are left to
// the programs.

#include "krbase/krresult.h"
#include "krsystem/krsystem.h"

#include <string>
#include <vector>

namespace krapps {

/// What a name came to among the devices found: a device, or why there is none.
struct Selection {
  const KrDeviceInfo* device = nullptr;
  bool isAmbiguous = false; ///< Several devices have the name.
  KrString error = {};      ///< A text for the user; empty with a device.
};

/// Whether a device has a unique ID, MAC address (any case, ':' or '-'), serial number or user-defined name. Any
/// thread.
bool IsNamed(const KrDeviceInfo& aDevice, const KrString& aName);

/// The devices, one each line behind a line's end: unique ID, text for lists and, where there is one, name. Any thread.
std::string ListDevices(const std::vector<const KrDeviceInfo*>& aDevices);

/// Chooses among devices by unique ID, MAC address (any case, ':' or '-'), serial number or user-defined name. Several
/// answers of one device, by its unique ID, count once, the reachable one first; several devices are an error that
/// lists them. The empty name chooses the first camera that can be reached. Any thread.
Selection ChooseDevice(const std::vector<const KrDeviceInfo*>& aDevices, const KrString& aName);

/// Looks for the device of a name. An IPv4 address is asked directly, without discovery; for every other name one round
/// of discovery is done. The empty name gives the first camera that can be reached, where the transports registered
/// first come first: the real ones before the simulated lab. NotFound when nothing fits, InvalidInput when several
/// devices do; the description says what was found. Blocks for the system's detection timeout.
KrResult SelectDevice(KrSystem& aSystem, const KrString& aName, const KrDeviceInfo*& aDevice);

} // namespace krapps
