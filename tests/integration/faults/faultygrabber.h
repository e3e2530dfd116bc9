#pragma once
// The lab of a frame grabber whose cameras the cases of fault injection use.

#include "seriallinefixture.h"

#include <string>

namespace krtest {

/// A frame grabber with cameras that have one speed, so that none has to be looked for at others.
inline krtransport::Lab MakeFaultyGrabberLab() {
  const std::string keys = "vendor: Maker, model: C, serial: \"1\", rates: [9600], protocol: ";
  return MakeSerialLab("{port: Serial0, behind: camera, camera: {" + keys +
                           "GenCP}}, "
                           "{port: Serial1, behind: camera, camera: {" +
                           keys +
                           "text, checkedAnswers: true}}, "
                           "{port: Bulk0, behind: camera, camera: {" +
                           keys + "CLProtocol}}",
                       ", frameGrabber: {sources: 2}");
}

} // namespace krtest
