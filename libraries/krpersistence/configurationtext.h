#pragma once
// The bytes of a configuration file. Reading them is the parser's business, saving them the writer's.

#include "configuration.h"
#include "krbase/krresult.h"

#include <string>

namespace krpersistence {

/// Writes the document. OutOfRange, naming the limit, for what the parser would refuse to read.
KrResult WriteConfigurationText(const Configuration& aConfiguration, std::string& aText);

} // namespace krpersistence
