#pragma once
// A transport in front of another one: what is asked of it and of the devices that it opens are steps, which a test
// counts and lets fail.

#include "krsystem/itransport.h"
#include "steps.h"

#include <memory>

namespace krtest {

/// Gives the transport behind it; threads and ownership as ITransport. Borrows the steps, which outlive it and all that
/// it opened.
std::shared_ptr<krsystem::ITransport> MakeSteppedTransport(std::shared_ptr<krsystem::ITransport> aTransport,
                                                           Steps& aSteps);

} // namespace krtest
