#pragma once
// Texts as whole files: written in one step, read up to a limit.

#include "krbase/krresult.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace krtool {

/// Tries whether a file could be written, without making it. Results as WriteTextFile.
KrResult CheckTextFile(const std::string& aPath, bool aReplaces);
/// Writes a file that is there as a whole or not at all; results as KrAtomicFile, WrongState for one that is there
/// already and is not to be replaced.
KrResult WriteTextFile(const std::string& aPath, bool aReplaces, std::string_view aText);
/// Reads a file. NotFound, AccessDenied or SystemError with the system's reason; InvalidInput for what is no file,
/// BadData for more than aMostBytes.
KrResult ReadTextFile(const std::string& aPath, std::size_t aMostBytes, std::string& aText);

} // namespace krtool
