#include "acquisition/hostparameters.h"

#include "krbase/krlogger.h"

#include <algorithm>

namespace krviewer {

namespace {

void Log(const KrString& aText) {
  KrLogger("krviewer").Log(KrLogLevel::Info, {"HostParameters", "hostparameters"}, aText);
}

// What fails leaves the rest as it is; a receiver works with what it starts with, too.
void LogFailure(const char* aWhat, const KrResult& aResult) {
  if (!aResult.IsOK())
    Log(aWhat + aResult.GetDescription());
}

KrGenSettings Store(KrGenParameterArray& aParameters) {
  KrGenSettings settings;
  KrStringList problems;
  LogFailure("Not all settings could be kept: ", aParameters.StoreSettings(settings, problems));
  return settings;
}

void Restore(KrGenParameterArray& aParameters, const std::vector<KrGenSetting>& aSettings) {
  if (aSettings.empty())
    return;
  KrGenSettings settings;
  for (const KrGenSetting& setting : aSettings)
    settings.Add(setting.name, setting.value);
  KrStringList problems;
  if (aParameters.RestoreSettings(settings, problems).IsOK())
    return;
  for (const KrString& problem : problems)
    Log("Not set as it was before: " + problem);
}

std::vector<KrGenSetting> FindChanged(const KrGenSettings& aInitial, const KrGenSettings& aNow) {
  const std::vector<KrGenSetting>& initial = aInitial.GetSettings();
  std::vector<KrGenSetting> changed;
  for (const KrGenSetting& setting : aNow.GetSettings())
    if (std::ranges::find(initial, setting) == initial.end())
      changed.push_back(setting);
  return changed;
}

} // namespace

HostParameters::Arrays HostParameters::Find(KrDevice& aDevice, KrStream& aStream) {
  Arrays arrays{};
  LogFailure("The stream's parameters cannot be had: ",
             aStream.GetParameters(arrays[static_cast<std::size_t>(HostSide::Stream)]));
  LogFailure("The connection's parameters cannot be had: ",
             aDevice.GetTransportParameters(arrays[static_cast<std::size_t>(HostSide::Connection)]));
  return arrays;
}

void HostParameters::Return(KrDevice& aDevice, KrStream& aStream) {
  const Arrays arrays = Find(aDevice, aStream);
  const HostSettings wanted = GetChanged();
  for (std::size_t i = 0; i < kHostSides; ++i) {
    if (!arrays[i])
      continue;
    mSides[i].initial = Store(*arrays[i]);
    Restore(*arrays[i], wanted[i]);
  }
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
  for (std::size_t i = 0; i < kHostSides; ++i) {
    Side& side = mSides[i];
    side.loan.TakeBack();
    KrGenParameterArray* const taken = std::exchange(side.lent, nullptr);
    if (!taken)
      continue;
    std::vector<KrGenSetting> changed = FindChanged(side.initial, Store(*taken));
    const std::lock_guard lock(mMutex);
    mChanged[i] = std::move(changed);
  }
}

HostSettings HostParameters::GetChanged() const {
  const std::lock_guard lock(mMutex);
  return mChanged;
}

} // namespace krviewer
