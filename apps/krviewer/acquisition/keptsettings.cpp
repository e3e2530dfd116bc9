#include "acquisition/keptsettings.h"

#include "krgenicam/krgenaccessstop.h"

#include <algorithm>
#include <stop_token>
#include <utility>

namespace krviewer {

namespace {

// Beyond this nobody has set them.
constexpr std::size_t kMostSettings = 20000;

} // namespace

KeptSettings::~KeptSettings() {
  Leave();
}

void KeptSettings::Follow(KrGenParameterArray& aParameters) {
  Leave();
  mParameters = &aParameters;
  const std::vector<KrGenParameter*> features = ListKeptFeatures(aParameters);
  for (std::size_t order = 0; order < features.size(); ++order)
    mFeatures[features[order]] = order;
  {
    const std::lock_guard lock(mMutex);
    mToRead.assign(features.begin(), features.end());
  }
  // Before they are read, so that no change falls in between.
  for (KrGenParameter* const feature : features)
    (void)feature->RegisterEventSink(this); // It is registered nowhere yet.
  mThread = std::jthread([this](const std::stop_token& aStop) { Run(aStop); });
}

void KeptSettings::NoteRemembered() {
  if (!mParameters)
    return;
  std::stop_source nothing;
  nothing.request_stop();
  const KrGenAccessStop withoutTheCamera(nothing.get_token());
  const KrGenParameterArray::Turn turn(*mParameters);
  for (const auto& [feature, order] : mFeatures)
    Read(*feature);
}

void KeptSettings::Leave() {
  for (const auto& [feature, order] : mFeatures)
    (void)feature->UnregisterEventSink(this); // It is registered since Follow.
  mThread = {};
  mFeatures.clear();
  mParameters = nullptr;
  const std::lock_guard lock(mMutex);
  mToRead.clear();
}

std::vector<KeptSetting> KeptSettings::Get() const {
  std::vector<KeptSetting> settings;
  {
    const std::lock_guard lock(mMutex);
    for (const auto& [place, setting] : mSettings)
      settings.push_back(setting);
  }
  std::ranges::stable_sort(settings, {}, &KeptSetting::order);
  return settings;
}

// Nothing is read here, so that others who are to hear of changes need not wait for it.
void KeptSettings::OnParameterUpdate(KrGenParameter* aParameter) {
  {
    const std::lock_guard lock(mMutex);
    std::erase(mToRead, aParameter);
    mToRead.push_front(aParameter);
  }
  mHasWork.notify_all();
}

void KeptSettings::Run(const std::stop_token& aStop) {
  const KrGenAccessStop end(aStop);
  for (;;) {
    KrGenParameter* next = nullptr;
    {
      std::unique_lock lock(mMutex);
      if (!mHasWork.wait(lock, aStop, [this] { return !mToRead.empty(); }) || aStop.stop_requested())
        return;
      next = mToRead.front();
      mToRead.pop_front();
    }
    Read(*next);
  }
}

void KeptSettings::Read(KrGenParameter& aParameter) {
  KeptSetting setting{.order = mFeatures.at(&aParameter)};
  // Until it is noted, so that an older value never comes after a newer one.
  const KrGenParameterArray::Turn turn(*mParameters);
  if (!ReadKeptSetting(*mParameters, aParameter, setting).IsOK())
    return;
  const std::lock_guard lock(mMutex);
  const std::string place = MakePlaceName(setting);
  if (mSettings.size() < kMostSettings || mSettings.contains(place))
    mSettings.insert_or_assign(place, std::move(setting));
}

} // namespace krviewer
