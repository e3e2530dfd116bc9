#pragma once
// The camera inside a device of the lab, made when it is first needed: a lab may have a thousand that nobody opens.

#include "simulation/lab.h"

#include <functional>
#include <memory>
#include <mutex>

namespace krtransport {

class SimulatedCamera;

/// Thread: any. Ownership: shares the camera with the links to it.
class CameraHolder {
public:
  using Maker = std::function<std::shared_ptr<SimulatedCamera>()>;

  explicit CameraHolder(Maker aMaker);

  /// The camera; made by the first call.
  std::shared_ptr<SimulatedCamera> Get();
  /// The camera if it was needed yet; else null.
  std::shared_ptr<SimulatedCamera> Find() const;
  /// Whether the device answers: it is not away, and no order has pulled its cable.
  bool IsPresent() const;
  void SetAway(bool aIsAway);

private:
  const Maker mMaker;
  mutable std::mutex mMutex; // Guards the members from here on.
  std::shared_ptr<SimulatedCamera> mCamera;
  bool mIsAway = false;
};

} // namespace krtransport
