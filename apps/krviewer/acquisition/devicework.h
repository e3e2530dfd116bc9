#pragma once
// What can be asked of the thread that takes frames from a camera, beside taking them.

#include "krbase/krresult.h"
#include "krgenicam/krgenparameterarray.h"

#include <functional>

namespace krviewer {

/// Hears how a request ended. Thread: user interface.
using RequestEnd = std::function<void(const KrResult&)>;

/// Something to be done with the camera's parameters between two frames.
struct DeviceWork {
  std::function<KrResult(KrGenParameterArray&)> run =
      {};                       ///< On the acquisition's thread, which takes no frame meanwhile.
  bool isStreamStopped = false; ///< Whether the stream is stopped around it, and started again if it was running.
  bool isSetting = true;        ///< Whether it sets something, which is noted before it ends.
  RequestEnd then = {};         ///< May be empty.
};

/// A request as it waits for its turn.
struct AcquisitionRequest {
  enum class Kind {
    Start,
    StartSingle,
    StopStreaming,
    Work,
    ShowLatest, ///< The latest frame is displayed again, by a window that was not looked at.
  };

  Kind kind = Kind::Work;
  DeviceWork work = {}; ///< Of a request of another kind its end alone.
};

} // namespace krviewer
