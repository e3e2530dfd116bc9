#pragma once
// A lab, the built-in one as a rule, as the only transport of the process, for tests of the commands: no real network
// is touched.

#include "commandline.h"
#include "krsystem/krsystem.h"
#include "krsystem/transportregistry.h"
#include "simulation/simulationtransport.h"

#include <gmock/gmock.h>

#include <memory>
#include <utility>

namespace krtool {

class LabTest : public testing::Test {
protected:
  explicit LabTest(krtransport::Lab aLab = krtransport::GetBuiltInLab())
      : mLab(std::make_shared<krtransport::SimulationTransport>(std::move(aLab))) {
    krsystem::RegisterTransport(mLab);
    mSystem.SetDetectionTimeout(100);
    mSystem.SetSubnetBroadcastEnabled(false);
  }
  ~LabTest() override { krsystem::UnregisterTransport(mLab); }

  std::shared_ptr<krtransport::SimulationTransport> mLab;
  KrSystem mSystem;
};

} // namespace krtool
