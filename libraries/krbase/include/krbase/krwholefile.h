#pragma once
// The bytes of a whole file, as long as there are not too many of them: settings and camera descriptions are read
// through it. What the bytes mean is left to the reader.

#include "krbase/krresult.h"

#include <cstddef>
#include <string>

/// Reads a file. InvalidInput for a name that holds a zero byte and for what is no file (a folder, a pipe, a device,
/// which would keep the caller waiting), NotFound where there is none, OutOfRange for one of more than aMostBytes,
/// otherwise AccessDenied or SystemError. The description says why, as the end of a sentence and without the file's
/// name; aBytes is set on success only.
///
/// Thread: any.
KR_EXPORT KrResult KrReadWholeFile(const KrString& aFileName, std::size_t aMostBytes, std::string& aBytes);
