#pragma once
// One step on a way through nodes of which nothing is remembered: writing, texts, sets of valid values. Keeps hostile
// descriptions from making the way endless, or as good as.

#include "nodes/evaluation.h"

namespace krgenicam {

/// A step from a node to the next, taken back at the end of its life.
///
/// Thread: under the map's lock.
class Descent {
public:
  /// Steps from one outermost step on beyond which a description counts as endless.
  static constexpr std::size_t kMaxVisits = 100'000;

  Descent(Evaluation& aEvaluation, Node& aFrom);
  ~Descent();
  Descent(const Descent&) = delete;
  Descent& operator=(const Descent&) = delete;

  /// BadData when the way is too long to be gone on with.
  KrResult Check() const;

private:
  Evaluation& mEvaluation;
};

} // namespace krgenicam
