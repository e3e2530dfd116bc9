#pragma once
// Reads the maps of a file (docs/serial-ports.md). Nothing in a file is trusted; every mistake is told with its place.

#include "krbase/krresult.h"
#include "serialmap.h"

#include <string_view>

namespace krserial {

/// Reads a text; aFile stands for it in messages. InvalidInput with a line "file:line:column: what was expected" for
/// every mistake. aMaps is set on success only. Any thread.
KrResult ParseSerialMaps(std::string_view aText, const KrString& aFile, SerialMaps& aMaps);
/// The same of a file; NotFound where it cannot be read.
KrResult ReadSerialMaps(const KrString& aFile, SerialMaps& aMaps);

} // namespace krserial
