#include "acquisition/triggercommand.h"

#include "acquisition/expectedframes.h"

namespace krviewer {

KrResult ExecuteTrigger(KrGenParameterArray& aParameters) {
  KrGenCommand* const trigger = aParameters.GetCommand("TriggerSoftware");
  if (!trigger)
    return {KrResult::Code::NotSupported,
            "Triggering the camera: it has no TriggerSoftware. Trigger it by one of its inputs."};
  if (KrResult executed = trigger->Execute(); !executed.IsOK())
    return executed;
  // Cameras take the command all the same.
  KrString source;
  KrGenParameter* const setting = aParameters.Get("TriggerSource");
  if (!setting || !setting->ToString(source).IsOK() || IsSoftwareTrigger(source))
    return {};
  return {KrResult::Code::WrongState, "Triggering the camera: its TriggerSource is " + source +
                                          ", so that it takes no trigger from here. Set TriggerSource to Software."};
}

} // namespace krviewer
