#pragma once
// A setup of camera bridges as the library stores it, in the shape in which setups are kept: one list, with the ports'
// names before those of their bridges' properties. What the properties mean is left to the library.

#include "krbase/krresult.h"
#include "krpersistence/krpropertylist.h"

class KrConfigurationReader;
class KrConfigurationWriter;

namespace krviewer {

// Thread: any.

/// NotFound for a configuration without camera bridges. Names that are no port's are kept in the list, so that they are
/// told once.
KrResult ReadCameraSetup(const KrConfigurationReader& aReader, KrPropertyList& aBridges);
/// With those bridges of another setup to whose ports it has none.
KrPropertyList CompleteCameraSetup(const KrPropertyList& aBridges, const KrPropertyList& aOthers);
KrResult WriteCameraSetup(const KrPropertyList& aBridges, KrConfigurationWriter& aWriter);

} // namespace krviewer
