#pragma once
// From the bytes of a configuration file to the lists in it: all of them or a reason. Files are left to the reader.

#include "configuration.h"
#include "krbase/krresult.h"

#include <string_view>

namespace krpersistence {

/// Parses a document. BadData with "line L, column C: reason" for one that is damaged or no configuration, NotSupported
/// for another major version, OutOfRange for more than the limits allow, SystemError for too little memory;
/// aConfiguration is then unchanged.
KrResult ParseConfiguration(std::string_view aBytes, Configuration& aConfiguration);

} // namespace krpersistence
