#pragma once
// How far the storing or restoring of settings has come, and whether it is to go on. What is counted is left to those
// who store and restore.

#include "krgenicam/krgensettings.h"

#include <cstddef>

namespace krgenicam {

/// Thread: the one that stores or restores; no lock is held while the application's function runs.
/// Ownership: borrows the function.
class SettingsProgress {
public:
  explicit SettingsProgress(const KrGenProgress& aProgress) : mProgress(aProgress) {}

  void SetTotal(std::size_t aTotal) { mTotal = aTotal; }
  /// What is done never becomes less, nor more than all.
  void SetDone(std::size_t aDone);
  /// Tells the application; false from its first no on, after which it is told nothing more.
  bool Tell();

private:
  bool Ask() const;

  const KrGenProgress& mProgress;
  std::size_t mDone = 0;
  std::size_t mTotal = 0;
  bool mIsCancelled = false;
};

} // namespace krgenicam
