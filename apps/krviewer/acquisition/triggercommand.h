#pragma once
// Triggers a camera by its software trigger, and says why it may take none. When is left to the acquisition.

#include "krbase/krresult.h"
#include "krgenicam/krgenparameterarray.h"

namespace krviewer {

/// NotSupported for a camera without TriggerSoftware, WrongState for one whose TriggerSource is another; such a camera
/// is told all the same.
KrResult ExecuteTrigger(KrGenParameterArray& aParameters);

} // namespace krviewer
