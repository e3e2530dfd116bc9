#pragma once
// What stands behind the features that Aravis evaluates itself when it streams. It follows references as deep as they
// lead, and in circles without end, which ends the process: they are looked at before. Parameters for users are not
// evaluated by Aravis.

#include "krbase/krresult.h"

#include <arv.h>

#include <initializer_list>

namespace krtransport {

/// BadData when the value of one of the features, which may be missing, or of its limits, leads over more nodes than a
/// camera has reason for, in a row or in all, or back to itself. Asks the device nothing. Thread: that of the device.
KrResult CheckValueChains(ArvGc& aDescription, std::initializer_list<const char*> aFeatures);

} // namespace krtransport
