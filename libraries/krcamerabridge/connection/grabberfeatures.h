#pragma once
// The features of a frame grabber that a bridge uses, by the names that devices give them.

#include "krbase/krresult.h"
#include "krdevice/ikrdeviceadapter.h"

namespace krcamerabridge {

/// The enumeration of the device's sources.
inline constexpr const char* kSourceSelector = "SourceSelector";

/// OK for an entry that can be chosen, InvalidInput for any other; failures of a device that does not answer.
KrResult CheckSource(IKrDeviceAdapter& aAdapter, const KrString& aSource);

/// The boolean that switches Power over Camera Link, the first of the names in use that the device has; empty for none.
KrString FindPoCLSwitch(IKrDeviceAdapter& aAdapter);

/// Says of the failure to hear of a camera that the device gives it no power, where that is so. Others stay as they
/// are.
KrResult ExplainSilence(const KrResult& aFailure, IKrDeviceAdapter& aAdapter);

} // namespace krcamerabridge
