#include "acquisition/hostparameters.h"

#include "krbase/krlogger.h"

#include <utility>

namespace krviewer {

namespace {

// What fails leaves the rest as it is; a receiver works with what it starts with, too.
void Log(const char* aWhat, const KrResult& aResult) {
  if (!aResult.IsOK())
    KrLogger("krviewer").Log(KrLogLevel::Info, {"HostParameters", "hostparameters"}, aWhat + aResult.GetDescription());
}

} // namespace

HostParameters::Arrays HostParameters::Find(KrDevice& aDevice, KrStream& aStream) {
  Arrays arrays{};
  Log("The stream's parameters cannot be had: ",
      aStream.GetParameters(arrays[static_cast<std::size_t>(HostSide::Stream)]));
  Log("The connection's parameters cannot be had: ",
      aDevice.GetTransportParameters(arrays[static_cast<std::size_t>(HostSide::Connection)]));
  return arrays;
}

void HostParameters::Return(KrDevice& aDevice, KrStream& aStream) {
  const Arrays arrays = Find(aDevice, aStream);
  KrStringList problems;
  for (std::size_t i = 0; i < kHostSides; ++i)
    if (arrays[i] && mSides[i].settings.GetCount() > 0)
      Log("Not all is set as it was before: ", arrays[i]->RestoreSettings(mSides[i].settings, problems));
}

void HostParameters::Lend(KrDevice& aDevice, KrStream& aStream) {
  const Arrays arrays = Find(aDevice, aStream);
  for (std::size_t i = 0; i < kHostSides; ++i) {
    mSides[i].lent = arrays[i];
    if (arrays[i])
      mSides[i].loan.Lend(*arrays[i]);
  }
}

void HostParameters::TakeBack() {
  KrStringList problems;
  for (Side& side : mSides) {
    side.loan.TakeBack();
    if (KrGenParameterArray* const taken = std::exchange(side.lent, nullptr))
      Log("Not all settings could be kept: ", taken->StoreSettings(side.settings, problems));
  }
}

} // namespace krviewer
