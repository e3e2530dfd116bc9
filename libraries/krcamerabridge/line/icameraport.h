#pragma once
// The registers of a camera that is connected, and the end of its connection. How it was found is left to each way.

#include "krgenicam/ikrregisterport.h"

#include <stop_token>

namespace krcamerabridge {

/// Thread: as of IKrRegisterPort; Disconnect never while an access runs that an array has not cancelled.
/// Ownership: the connection's. Destruction disconnects.
class ICameraPort : public IKrRegisterPort {
public:
  /// Gives the camera free and puts camera and line back to how they were, as far as the camera answers within a few
  /// seconds; a stop of aStop ends the waiting. What is not connected stays so.
  virtual void Disconnect(const std::stop_token& aStop) = 0;
};

} // namespace krcamerabridge
