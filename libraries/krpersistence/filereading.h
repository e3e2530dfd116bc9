#pragma once
// The bytes of a whole file, as long as there are not too many of them.

#include "krbase/krresult.h"

#include <cstddef>
#include <string>

namespace krpersistence {

/// Reads a file. NotFound where there is none, InvalidInput for what is no file, OutOfRange for one beyond the limit,
/// otherwise AccessDenied or SystemError; the description says why, without the file's name, and aBytes is unchanged.
KrResult ReadWholeFile(const KrString& aFileName, std::size_t aMostBytes, std::string& aBytes);

} // namespace krpersistence
