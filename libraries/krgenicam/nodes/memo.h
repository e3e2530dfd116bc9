#pragma once
// What a node was found to be, and for how long that may be believed. What it is computed from is left to the node.

#include "krbase/krresult.h"
#include "nodes/evaluation.h"
#include "number.h"

#include <cstdint>
#include <memory>

namespace krgenicam {

/// Thread: under the map's lock.
class Memo {
public:
  /// Whether it holds in an evaluation: found in it, or remembered from before.
  bool Holds(const Evaluation& aEvaluation) const {
    return mEpoch == aEvaluation.epoch || (mIsStable && !aEvaluation.isFresh);
  }
  bool IsStable() const { return mIsStable; }
  /// Of the evaluation that found it; 0 where nothing is remembered.
  std::uint64_t GetEpoch() const { return mEpoch; }
  const Number& GetValue() const { return mValue; }
  /// Null for success.
  const KrResult* GetError() const { return mError.get(); }

  void Set(const Evaluation& aEvaluation, const KrResult& aResult, const Number& aValue, bool aIsStable) {
    mEpoch = aEvaluation.epoch;
    mIsStable = aIsStable && aResult.IsOK();
    mValue = aValue;
    mError = aResult.IsOK() ? nullptr : std::make_unique<KrResult>(aResult);
  }
  void Forget() {
    mEpoch = 0;
    mIsStable = false;
    mError.reset();
  }

  bool isBusy = false; ///< It is being computed.

private:
  std::uint64_t mEpoch = 0;
  Number mValue;
  bool mIsStable = false;
  std::unique_ptr<KrResult> mError;
};

} // namespace krgenicam
