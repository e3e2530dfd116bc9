#include "window/camerasearch.h"

#include "deviceselection.h"
#include "krsystem/krsystem.h"

#include <utility>

namespace krviewer {

namespace {

struct Search {
  KrSystem system;
  const KrDeviceInfo* device = nullptr;
  KrResult result;
};

} // namespace

void CameraSearch::Start(const QString& aName, Found aFound) {
  const auto search = std::make_shared<Search>();
  // So that cameras of a foreign subnet answer too, and a user is told why one cannot be opened.
  search->system.SetSubnetBroadcastEnabled(false);
  mCall.Start(
      [search, name = aName.toStdString()](const std::stop_token&) {
        search->result = krapps::SelectDevice(search->system, name, search->device);
      },
      [search] { search->system.Cancel(); },
      [search, found = std::move(aFound)] { found(CameraInfo(search, search->device), search->result); });
}

} // namespace krviewer
