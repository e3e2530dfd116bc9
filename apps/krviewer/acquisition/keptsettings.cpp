#include "acquisition/keptsettings.h"

#include "krbase/krlogger.h"
#include "krgenicam/krgenaccessstop.h"

#include <algorithm>
#include <exception>
#include <stop_token>
#include <utility>

namespace krviewer {

namespace {

// Beyond this nobody has set them.
constexpr std::size_t kMostSettings = 20000;
// Of all their texts, as much as a file of settings may have.
constexpr std::size_t kMostBytes = std::size_t{16} << 20;

std::size_t CountBytes(const std::string& aPlace, const KeptSetting& aSetting) {
  std::size_t bytes = aPlace.size() + aSetting.name.GetLength() + aSetting.value.GetLength();
  for (const KrGenSetting& position : aSetting.positions)
    bytes += position.name.GetLength() + position.value.GetLength();
  return bytes;
}

} // namespace

KeptSettings::~KeptSettings() {
  Leave();
}

void KeptSettings::Follow(KrGenParameterArray& aParameters) {
  Leave();
  mParameters = &aParameters;
  mHasFailed = false;
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

// What left the thread would end the program. What is thrown for want of memory costs that one setting.
void KeptSettings::Read(KrGenParameter& aParameter) {
  try {
    ReadAndKeep(aParameter);
  } catch (const std::exception& error) {
    TellFailure(error.what());
  } catch (...) {
    TellFailure("an exception without a text");
  }
}

void KeptSettings::TellFailure(const char* aReason) {
  if (mHasFailed.exchange(true))
    return;
  try {
    KrLogger("krviewer")
        .Log(KrLogLevel::Error, {"KeptSettings", "keptsettings"},
             KrString("A value of the camera, and perhaps others, is not kept for the camera's return: ") + aReason);
  } catch (...) { // There is no memory for the words either.
  }
}

void KeptSettings::ReadAndKeep(KrGenParameter& aParameter) {
  KeptSetting setting{.order = mFeatures.at(&aParameter)};
  // Until it is noted, so that an older value never comes after a newer one.
  const KrGenParameterArray::Turn turn(*mParameters);
  if (ReadKeptSetting(*mParameters, aParameter, setting).IsOK())
    Keep(std::move(setting));
}

// What the camera was set to before is nothing to set it to, so that it goes even where there is no room for the new.
void KeptSettings::Keep(KeptSetting aSetting) {
  const std::lock_guard lock(mMutex);
  const std::string place = MakePlaceName(aSetting);
  if (const auto former = mSettings.find(place); former != mSettings.end()) {
    mBytes -= CountBytes(place, former->second);
    mSettings.erase(former);
  }
  const std::size_t bytes = CountBytes(place, aSetting);
  if (mSettings.size() >= kMostSettings || mBytes + bytes > kMostBytes)
    return;
  mSettings.emplace(place, std::move(aSetting));
  mBytes += bytes;
}

} // namespace krviewer
