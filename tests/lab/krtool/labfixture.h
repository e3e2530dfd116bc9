#pragma once
// The built-in lab as the only transport of the process, for tests of the commands: no real network is touched.

#include "commandline.h"
#include "krsystem/krsystem.h"
#include "krsystem/transportregistry.h"
#include "simulation/simulationtransport.h"

#include <gmock/gmock.h>

#include <memory>

namespace krtool {

class LabTest : public testing::Test {
protected:
  LabTest() {
    krsystem::RegisterTransport(mLab);
    mSystem.SetDetectionTimeout(100);
    mSystem.SetSubnetBroadcastEnabled(false);
  }
  ~LabTest() override { krsystem::UnregisterTransport(mLab); }

  std::shared_ptr<krtransport::SimulationTransport> mLab =
      std::make_shared<krtransport::SimulationTransport>(krtransport::GetBuiltInLab());
  KrSystem mSystem;
};

} // namespace krtool
