#include "tonestore.h"

#include <algorithm>

namespace krbuffer {

ToneStore::ToneStore()
    : ToneStore([](const ToneSettings& aSettings, const ToneDepth& aDepth) {
        return std::make_shared<const ToneTables>(aSettings, aDepth);
      }) {}

ToneSettings ToneStore::GetSettings() const {
  const std::lock_guard lock(mMutex);
  return mSettings;
}

std::shared_ptr<const ToneTables> ToneStore::GetTables(const ToneDepth& aDepth) {
  ToneSettings settings;
  std::uint64_t generation = 0;
  const auto isOfDepth = [&aDepth](const Row& aRow) { return aRow.first == aDepth; };
  {
    const std::lock_guard lock(mMutex);
    if (IsNeutral(mSettings, aDepth))
      return nullptr;
    const auto row = std::find_if(mTables.begin(), mTables.end(), isOfDepth);
    if (row != mTables.end())
      return row->second;
    settings = mSettings;
    generation = mGeneration;
  }
  std::shared_ptr<const ToneTables> tables = mMake(settings, aDepth);
  const std::lock_guard lock(mMutex);
  if (generation == mGeneration && std::none_of(mTables.begin(), mTables.end(), isOfDepth))
    mTables.emplace_back(aDepth, tables);
  return tables;
}

} // namespace krbuffer
