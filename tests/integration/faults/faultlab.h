#pragma once
// What the cases of fault injection share: a simulated lab whose devices are used in steps, the faults that they are
// tried with at every step, and what must hold for each: an end within the limit, words for what happened, and the same
// use done well afterwards.

#include "steppedtransport.h"

#include "krbase/krlogger.h"
#include "krdevice/krdevice.h"
#include "krsystem/krsystem.h"
#include "krtransport/krsimulatedfaults.h"
#include "simulation/cameraclock.h"
#include "simulation/simulationtransport.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace krtest {

/// The camera that the cases use; of the built-in lab where they bring none of their own.
inline constexpr const char* kFaultCamera = "02:4b:52:00:77:10";
inline constexpr const char* kFaultAddress = "192.168.77.10";

/// What goes wrong with a device, at one step of its use.
enum class DeviceFault {
  Vanishes,    ///< Its cable is pulled.
  LosesPower,  ///< And it forgets what it was set to.
  TimesOut,    ///< Once it does not answer, and has not done what it was told.
  AnswersLate, ///< The same, but it has.
  StaysSilent, ///< It answers no more.
  Refuses,     ///< Once it says no.
};

/// Whether the device does not come back by itself.
bool IsForGood(DeviceFault aFault);

struct DeviceFaultRow {
  const char* name;
  DeviceFault fault;
};

inline constexpr DeviceFaultRow kDeviceFaults[] = {
    {"Vanishes", DeviceFault::Vanishes},       {"LosesPower", DeviceFault::LosesPower},
    {"TimesOut", DeviceFault::TimesOut},       {"AnswersTooLate", DeviceFault::AnswersLate},
    {"StaysSilent", DeviceFault::StaysSilent}, {"Refuses", DeviceFault::Refuses},
};

template <typename Row>
std::string NameRow(const testing::TestParamInfo<Row>& aInfo) {
  return aInfo.param.name;
}

using Words = std::vector<std::string>;

/// What the user is to do about a device.
inline const Words kDeviceAdvice = {"check ", "Check ", "open it anew", "try again"};

/// The result says what happened: of whom or what, by one of the names, and what to do, by one of the words for that;
/// where there are none of these, its description need only be there.
testing::AssertionResult SaysWhatHappened(const KrResult& aResult, const Words& aNames = {}, const Words& aAdvice = {});

class FaultLab : public testing::Test {
protected:
  using Use = std::function<KrResult()>;

  explicit FaultLab(std::shared_ptr<krtransport::ICameraClock> aClock = nullptr,
                    const krtransport::Lab& aLab = krtransport::GetBuiltInLab(), const char* aCamera = kFaultCamera);
  ~FaultLab() override;

  /// Uses the device in aUse from its beginning to its end without a fault, then with the fault at each step (at so
  /// many of them, evenly spread, where there are more), each time followed by another whole use. aUse gives the first
  /// failure, and calls NoteUsed() when nothing more is wanted of the device. A use during which the device went for
  /// good must fail; one that failed must say of what, and what to do.
  void TryAtEachStep(DeviceFault aFault, const Use& aUse, std::uint64_t aMostSteps = 48);
  /// The same with a fault of the case's own, which the use may make up for.
  void TryAtEachStep(const StepFault& aFault, const Use& aUse, std::uint64_t aMostSteps = 48, bool aIsForGood = false);

  /// Opens the camera, which was found before.
  KrResult Open(std::unique_ptr<KrDevice>& aDevice);
  StepFault MakeFault(DeviceFault aFault);
  /// The camera is there and answers again.
  void EndFault();
  KrSimulatedFaults& GetFaults() { return *mFaults; }
  std::string MakeName() const;

  Steps mSteps;
  const std::shared_ptr<krtransport::SimulationTransport> mLab;
  const std::shared_ptr<krsystem::ITransport> mStepped;
  const std::string mCamera;
  KrSystem mSystem;
  const KrDeviceInfo* mInfo = nullptr;
  std::shared_ptr<KrSimulatedFaults> mFaults;
  Words mNames;  ///< One of them is in every text of a failure: the device's, where a case does not say others.
  Words mAdvice; ///< One of them, too.
  /// What the libraries log of all the faults; none of it is on the screen.
  std::unique_ptr<KrLogCapture> mLog = std::make_unique<KrLogCapture>();
};

} // namespace krtest
