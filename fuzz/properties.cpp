// Whatever may stand in a configuration file under the names that its readers look for: the feature browser's options
// and a camera bridge are taken as far as they can be, with a sentence for what cannot, and come back as they were
// saved.

#include "configurationparser.h"
#include "logic/browser/browseroptions.h"
#include "require.h"
#include "saved/savedbridge.h"

#include <string_view>

namespace {

void CheckOptions(const KrPropertyList& aList) {
  krgui::BrowserOptions options;
  krgui::LoadBrowserOptions(aList, options);
  KrPropertyList saved;
  krgui::SaveBrowserOptions(options, saved);
  krgui::BrowserOptions again;
  krgui::LoadBrowserOptions(saved, again);
  Require(again == options);
}

void CheckBridge(const KrPropertyList& aList) {
  krcamerabridge::SavedBridge bridge;
  KrStringList errors;
  const KrResult restored = krcamerabridge::RestoreBridge(aList, bridge, errors);
  Require(restored.IsOK() == errors.IsEmpty());
  Require(restored.IsOK() || restored == KrResult::Code::BadData);
  Require(!restored.IsOK() || (bridge.choice.way && bridge.isSyncOn));
  if (!bridge.choice.way)
    return;
  const KrPropertyList saved = krcamerabridge::StoreBridge(bridge);
  krcamerabridge::SavedBridge again;
  KrStringList none;
  Require(krcamerabridge::RestoreBridge(saved, again, none).IsOK());
  Require(krcamerabridge::StoreBridge(again) == saved);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize) {
  krpersistence::Configuration read;
  if (!krpersistence::ParseConfiguration({reinterpret_cast<const char*>(aData), aSize}, read).IsOK())
    return 0;
  for (const auto& [name, properties] : read) {
    CheckOptions(properties);
    CheckBridge(properties);
  }
  return 0;
}
