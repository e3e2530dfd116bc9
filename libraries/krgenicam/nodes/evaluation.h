#pragma once
// One operation on a node map, as it goes from node to node under the map's lock: what is remembered from before, what
// may be asked of the device, and where it stands. The values themselves are left to the nodes.

#include "krbase/krresult.h"
#include "krgenicam/ikrregisterport.h"

#include <cstdint>
#include <span>
#include <stop_token>
#include <vector>

namespace krgenicam {

class Node;
struct AccessCause;

/// What nodes need of the map they belong to.
///
/// Thread: under the map's lock.
class INodeHost {
public:
  virtual IKrRegisterPort& GetPort() = 0;
  /// Nothing may be written.
  virtual bool IsReadOnly() const = 0;
  virtual std::uint32_t GetTimeoutMs() const = 0;
  virtual std::stop_token GetStopToken() const = 0;
  /// Why registers cannot be reached any more; OK while they can.
  virtual KrResult GetClosing() const = 0;
  virtual std::uint64_t GetTimeMs() const = 0;
  /// A number that is higher each time.
  virtual std::uint64_t TakeEpoch() = 0;
  /// The values of nodes have changed, or may have: forgets them and all that depends on any of them, each node once,
  /// and has sinks look.
  virtual void Invalidate(std::span<Node* const> aNodes) = 0;

protected:
  ~INodeHost() = default;
};

/// Thread: under the map's lock.
struct Evaluation {
  explicit Evaluation(INodeHost& aHost) : host(aHost), epoch(aHost.TakeEpoch()) {}

  /// Levels of nodes that stand on one another beyond which a description counts as endless.
  static constexpr std::size_t kMaxDepth = 256;
  /// Nodes of which each says of the next that it is the reason, beyond which reasons are cut short.
  static constexpr std::size_t kMaxReasons = 32;

  /// The values of nodes were changed by one writing: what depends on them is forgotten, and what this evaluation found
  /// so far.
  void OnWritten(std::span<Node* const> aNodes) {
    host.Invalidate(aNodes);
    epoch = host.TakeEpoch();
  }
  void OnWritten(Node& aNode) {
    Node* const node = &aNode;
    OnWritten(std::span(&node, 1));
  }

  INodeHost& host;
  std::uint64_t epoch;          ///< What was computed under it holds until the evaluation's end, stable or not.
  bool mayAskDevice = true;     ///< Otherwise a register that is not cached gives Busy.
  bool hasMissed = false;       ///< A register gave Busy for that reason: what was found is not the whole truth.
  bool hasUnknownLock = false;  ///< A pIsLocked could not be read, and counted as open.
  bool isFresh = false;         ///< What was read before the evaluation began is not used.
  bool isStable = true;         ///< All that the node under computation was computed from may be remembered.
  std::vector<Node*> reasons{}; ///< The nodes that are giving a reason, each because of the one before.
  AccessCause* cause = nullptr; ///< Takes what stands in the way when a reason is found; null where nobody wants it.
  std::size_t visitCount = 0;   ///< Nodes that were walked to by descents (see Descent).
  std::vector<Node*> path{};    ///< The nodes under computation, from the outermost on.
};

/// Lets an evaluation ask around all caches, its own memory too, as long as it lives.
///
/// Thread: under the map's lock.
class AroundCaches {
public:
  explicit AroundCaches(Evaluation& aEvaluation) : mEvaluation(aEvaluation), mWasFresh(aEvaluation.isFresh) {
    mEvaluation.isFresh = true;
    mEvaluation.epoch = mEvaluation.host.TakeEpoch();
  }
  ~AroundCaches() { mEvaluation.isFresh = mWasFresh; }
  AroundCaches(const AroundCaches&) = delete;
  AroundCaches& operator=(const AroundCaches&) = delete;

private:
  Evaluation& mEvaluation;
  const bool mWasFresh;
};

} // namespace krgenicam
