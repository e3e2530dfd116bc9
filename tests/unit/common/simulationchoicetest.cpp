#include "simulationchoice.h"

#include "scriptedtransport.h"

#include <gtest/gtest.h>

namespace krapps {
namespace {

constexpr const char* kAdapter = "adapter";

// A lab in which every camera says of itself who holds it.
class Lab : public ScriptedTransport {
public:
  KrString GetName() const override { return "Simulation"; }
  KrResult GetAccessType(const krsystem::AnyDeviceFields& aDevice, krsystem::AccessType& aType) override {
    const auto* const camera = std::get_if<krsystem::GEVFields>(&aDevice);
    if (!camera)
      return KrResult::Code::NotSupported;
    aType = camera->userDefinedName == "held" ? krsystem::AccessType::Exclusive : krsystem::AccessType::Open;
    return {};
  }
};

template <typename Fields>
Fields MakeDevice(const char* aID, bool aIsReachable = true) {
  Fields fields;
  fields.uniqueID = aID;
  fields.configurationValid = aIsReachable;
  return fields;
}

krsystem::GEVFields MakeHeld(const char* aID) {
  krsystem::GEVFields fields = MakeDevice<krsystem::GEVFields>(aID);
  fields.userDefinedName = "held";
  return fields;
}

class SimulationChoice : public testing::Test {
protected:
  SimulationChoice() {
    krsystem::NetworkAdapterFields adapter;
    adapter.uniqueID = kAdapter;
    mLab->AddInterface(adapter);
    krsystem::RegisterTransport(mLab);
  }
  ~SimulationChoice() override { krsystem::UnregisterTransport(mLab); }

  const std::shared_ptr<Lab> mLab = std::make_shared<Lab>();
  KrString mFound;
};

TEST_F(SimulationChoice, FirstOnesOutOfReachAndHeld_IsTheFirstThatIsFree) {
  mLab->AddDevice(kAdapter, MakeDevice<krsystem::GEVFields>("far", /*aIsReachable=*/false));
  mLab->AddDevice(kAdapter, MakeHeld("held"));
  mLab->AddDevice(kAdapter, MakeDevice<krsystem::TolvanProtocolFields>("older"));
  mLab->AddDevice(kAdapter, MakeDevice<krsystem::GEVFields>("free"));
  mLab->AddDevice(kAdapter, MakeDevice<krsystem::GEVFields>("next"));

  EXPECT_TRUE(FindSimulatedCamera(mFound).IsOK());
  EXPECT_EQ(mFound, "free");
}

TEST_F(SimulationChoice, CameraThatDoesNotSayWhoHoldsIt_CountsAsFree) {
  mLab->AddDevice(kAdapter, MakeHeld("held"));
  mLab->AddDevice(kAdapter, MakeDevice<krsystem::U3VFields>("usb"));

  EXPECT_TRUE(FindSimulatedCamera(mFound).IsOK());
  EXPECT_EQ(mFound, "usb");
}

TEST_F(SimulationChoice, AllHeld_IsTheFirst) {
  mLab->AddDevice(kAdapter, MakeHeld("held"));
  mLab->AddDevice(kAdapter, MakeHeld("held too"));

  EXPECT_TRUE(FindSimulatedCamera(mFound).IsOK());
  EXPECT_EQ(mFound, "held");
}

TEST_F(SimulationChoice, NoneWithinReach_IsNotFound) {
  mLab->AddDevice(kAdapter, MakeDevice<krsystem::GEVFields>("far", /*aIsReachable=*/false));

  EXPECT_EQ(FindSimulatedCamera(mFound), KrResult::Code::NotFound);
  EXPECT_TRUE(mFound.IsEmpty());
}

TEST(SimulationChoiceWithoutALab, Wanted_IsNotFound) {
  KrString found;

  EXPECT_EQ(FindSimulatedCamera(found), KrResult::Code::NotFound);
}

} // namespace
} // namespace krapps
