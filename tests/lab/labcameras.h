#pragma once
// The GigE Vision cameras of the built-in lab, for tests that go through all of them.

#include "simulation/lab.h"

#include <vector>

inline std::vector<krtransport::LabGEVCamera> ListLabCameras() {
  std::vector<krtransport::LabGEVCamera> cameras;
  for (const krtransport::LabAdapter& adapter : krtransport::GetBuiltInLab().adapters) {
    for (const krtransport::LabNetworkDevice& device : adapter.devices) {
      if (const auto* const camera = std::get_if<krtransport::LabGEVCamera>(&device))
        cameras.push_back(*camera);
    }
  }
  return cameras;
}
