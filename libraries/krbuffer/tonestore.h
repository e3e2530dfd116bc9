#pragma once
// The settings of one converter and the tables made from them, which are kept until the settings change.

#include "tonetables.h"

#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace krbuffer {

/// Thread: any.
class ToneStore {
public:
  using MakeTables =
      std::function<std::shared_ptr<const ToneTables>(const ToneSettings& aSettings, const ToneDepth& aDepth)>;

  ToneStore();
  /// With tables made in another way: for tests of what happens meanwhile.
  explicit ToneStore(MakeTables aMake) : mMake(std::move(aMake)) {}

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
  /// outside the lock, so that nobody waits for them who needs others, and not kept when the settings change meanwhile.
  std::shared_ptr<const ToneTables> GetTables(const ToneDepth& aDepth);

private:
  using Row = std::pair<ToneDepth, std::shared_ptr<const ToneTables>>;

  const MakeTables mMake;

  mutable std::mutex mMutex; // Guards all below.
  ToneSettings mSettings;
  std::uint64_t mGeneration = 0; ///< Counts the changes.
  std::vector<Row> mTables;      ///< Made from the present settings; at most one row for each depth.
};

} // namespace krbuffer
