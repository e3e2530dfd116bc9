#pragma once
// The process-wide list of backends. A program fills it once, before it looks for devices; the libraries only read it.

#include "krsystem/itransport.h"

#include <memory>
#include <vector>

namespace krsystem {

/// Adds a transport behind those already there. A transport that is registered already, or null, is ignored. Any
/// thread.
KR_EXPORT void RegisterTransport(std::shared_ptr<ITransport> aTransport);
/// Removes a transport; devices that it opened stay open. Any thread.
KR_EXPORT void UnregisterTransport(const std::shared_ptr<ITransport>& aTransport);
/// The transports in the order in which they were registered. Any thread.
KR_EXPORT std::vector<std::shared_ptr<ITransport>> GetTransports();

} // namespace krsystem
