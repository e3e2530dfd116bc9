#pragma once
// Who listens to a parameter, and what each of them knows of it. When sinks are called is left to the notification
// thread.

#include "krbase/kreventsinks.h"
#include "krgenicam/krgeneventsink.h"
#include "map/invalidation.h"
#include "map/parametersnapshot.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace krgenicam {

/// Thread: any. Ownership: the map's, from the first registration until the map's end; borrows the sinks.
class ParameterWatch {
public:
  /// What the parameter was at an epoch of the map.
  struct Known {
    std::shared_ptr<const ParameterSnapshot> snapshot = nullptr; ///< Null where it is not known.
    std::uint64_t epoch = 0;
  };

  ParameterWatch(KrGenParameter& aParameter, Node& aNode) : mParameter(aParameter), mNode(aNode) {}

  Node& GetNode() const { return mNode; }
  bool HasSinks() const { return !mSinks.IsEmpty(); }

  /// aEpoch is the map's at this moment.
  KrResult Register(KrGenEventSink* aSink, std::uint64_t aEpoch);
  /// What the parameter is, for the sinks that know nothing of it yet; calls nobody.
  void TellNewSinks(const Known& aKnown);
  KrResult Unregister(KrGenEventSink* aSink);

  /// The map is about to find out, at an epoch and without the device, what the parameter is for new sinks.
  void OnWelcome(std::uint64_t aEpoch);
  /// The parameter is about to be forgotten at an epoch; whether it has to be looked at for its sinks. For a sink that
  /// does not know what it was it has changed, unless nothing was written and nobody asked for it, who could know
  /// better; what is polled then is known from there on.
  bool OnInvalidated(std::uint64_t aEpoch, Invalidation aCause);
  /// How often the parameter was written, or its device spoke of it.
  std::uint64_t GetWritesCount() const;
  /// Calls the sinks for which a snapshot is news.
  void Notify(const Known& aKnown);

  bool isQueued = false; ///< The notification thread's.
  std::uint64_t lastLook =
      0; ///< The map's: the last walk from outside after which a look at another had this looked at.

private:
  struct Knowledge {
    Known known;
    std::uint64_t firstChange = 0; // The epoch, while nothing is known; 0 for none.
  };

  bool WasAsked() const { return mWasAsked || mNode.GetLastAsked() > mWelcomeEpoch; }
  bool Learn(KrGenEventSink& aSink, const Known& aKnown);

  KrGenParameter& mParameter;
  Node& mNode;
  KrEventSinks<KrGenEventSink> mSinks{
      "a parameter's event sink", "KrGenICam", {"KrGenParameter::Notify", "krgenparameter"}};
  // Under the map's lock: the last welcome, which asks for the parameter itself, and whether others did before it.
  std::uint64_t mWelcomeEpoch = 0;
  bool mWasAsked = false;
  mutable std::mutex mMutex; // Guards the members from here on.
  std::unordered_map<KrGenEventSink*, Knowledge> mKnowledge;
  std::uint64_t mWritesCount = 0;
};

} // namespace krgenicam
