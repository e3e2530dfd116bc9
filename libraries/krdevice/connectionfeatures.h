#pragma once
// What there is to see and to set of the connection to a device, whatever carries it, as a table of features. What its
// link adds is the link's business.

#include "countingport.h"
#include "deviceparameters.h"
#include "featuredescription.h"
#include "krdevice/krdevice.h"
#include "parameterlock.h"

namespace krdevice {

/// The parts of an open device that the table tells of.
struct ConnectionParts {
  KrDeviceInfoType type;
  KrDeviceAccess access;
  const krsystem::DeviceFields& fields;
  krsystem::IDeviceLink& link;
  CountingPort& port;
  DeviceParameters& parameters;
  const ParameterLock& lock;
};

/// The array of connections: its name, its lock, its command to reset counters.
FeatureModule GetConnectionModule();
/// The parts must live as long as the features are used.
krsystem::HostFeatures ListConnectionFeatures(const ConnectionParts& aParts);

} // namespace krdevice
