#pragma once
// What a camera is set to, for the day on which it comes back without that: noted as it changes, from the camera's own
// word, without moving its selectors. Setting a camera so again is left to SettingsReturn.

#include "acquisition/keptsetting.h"
#include "krgenicam/krgeneventsink.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

namespace krviewer {

/// Values are read one by one on a thread of its own, those that have changed before the others; under other positions
/// of selectors than those that the camera had meanwhile nothing is known. A value that cannot be read any more stays
/// as it was; one for which there is no room, in number or in bytes, is not known any more.
///
/// Thread: Follow, NoteRemembered and Leave on one, Get on any. Ownership: borrows the parameters from Follow to Leave.
class KeptSettings : private KrGenEventSink {
public:
  KeptSettings() = default;
  ~KeptSettings() override;
  KeptSettings(const KeptSettings&) = delete;
  KeptSettings& operator=(const KeptSettings&) = delete;

  /// Notes what a camera is set to from now on, instead of one before.
  void Follow(KrGenParameterArray& aParameters);
  /// Notes at once what the parameters remember, without asking the camera: what was just set, for one. Waits for an
  /// access that is under way.
  void NoteRemembered();
  /// Ends that; what was noted stays. Accesses that are under way for it end at once.
  void Leave();
  /// What was noted, in the description's order.
  std::vector<KeptSetting> Get() const;

private:
  void OnParameterUpdate(KrGenParameter* aParameter) override;
  void Run(const std::stop_token& aStop);
  void Read(KrGenParameter& aParameter);
  void TellFailure(const char* aReason);
  void ReadAndKeep(KrGenParameter& aParameter);
  void Keep(KeptSetting aSetting);

  KrGenParameterArray* mParameters = nullptr;
  std::unordered_map<KrGenParameter*, std::size_t> mFeatures; ///< With their order; stays while the thread runs.
  std::atomic<bool> mHasFailed = false;                       ///< Reading threw, which has been told.

  mutable std::mutex mMutex; ///< Guards the members from here on.
  std::condition_variable_any mHasWork;
  std::deque<KrGenParameter*> mToRead;          ///< Each once.
  std::map<std::string, KeptSetting> mSettings; ///< By the names of their places.
  std::size_t mBytes = 0;                       ///< Of their texts.
  std::jthread mThread;                         ///< Follow's and Leave's own.
};

} // namespace krviewer
