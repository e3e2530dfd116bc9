#pragma once
// The settings of one converter and the tables made from them, which are kept until the settings change.

#include "tonetables.h"

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace krbuffer {

/// Thread: any.
class ToneStore {
public:
  ToneSettings GetSettings() const;

  /// Replaces the settings by what the change, called with the present ones under the lock, leaves of them.
  template <typename Change>
  void ChangeSettings(const Change& aChange) {
    const std::lock_guard lock(mMutex);
    aChange(mSettings);
    ++mGeneration;
    mTables.clear();
  }

  /// The tables for samples of this depth by the settings of this moment; null where none are needed. They are made
  /// outside the lock, so that nobody waits for them who needs others.
  std::shared_ptr<const ToneTables> GetTables(const ToneDepth& aDepth);

private:
  using Row = std::pair<ToneDepth, std::shared_ptr<const ToneTables>>;

  mutable std::mutex mMutex; // Guards all below.
  ToneSettings mSettings;
  std::uint64_t mGeneration = 0; ///< Counts the changes.
  std::vector<Row> mTables;      ///< Made from the present settings; at most one row for each depth.
};

} // namespace krbuffer
