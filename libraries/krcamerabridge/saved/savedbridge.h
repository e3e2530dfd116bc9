#pragma once
// A camera bridge as a property list: how it is connected, and what its camera was set to. Connecting is left to the
// bridge.

#include "connection/cameraway.h"
#include "krbase/krresult.h"
#include "krbase/krstringlist.h"
#include "krgenicam/krgensettings.h"
#include "krpersistence/krpropertylist.h"

#include <optional>

namespace krcamerabridge {

/// Thread: a value.
struct SavedBridge {
  CameraChoice choice = {}; ///< Without a way where none was stored that can be used.
  KrString source = {};
  std::optional<bool> isSyncOn = {}; ///< None where it was not stored as it has to be.
  KrGenSettings settings = {};
};

/// The properties "Way", those of the way ("Path", "Template", "XMLID"), "Source", "ParametersSync" and, in the order
/// in which they are to be set, "Feature." with a feature's name.
KrPropertyList StoreBridge(const SavedBridge& aBridge);

/// Reads them. aErrors gets a sentence for everything that is missing or wrong; the first is the result, BadData.
/// Properties of other names are passed over.
KrResult RestoreBridge(const KrPropertyList& aProperties, SavedBridge& aBridge, KrStringList& aErrors);

} // namespace krcamerabridge
