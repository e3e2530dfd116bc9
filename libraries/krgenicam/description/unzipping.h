#pragma once
// The description inside a ZIP archive, of which neither sizes nor names are believed.

#include "krbase/krresult.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace krgenicam {

/// Whether bytes begin as a ZIP archive does.
bool IsZip(std::string_view aBytes);

/// Takes the first file of an archive whose name ends with ".xml", else the first file. BadData, with a reason that is
/// the end of a sentence, for an archive that is damaged, encrypted, or without files, and for a file of more than
/// aMostBytes once it is unpacked.
KrResult Unzip(std::string_view aArchive, std::size_t aMostBytes, std::string& aFile);

} // namespace krgenicam
