#pragma once
// What the camera bridge manager says: identifiers as short as people need them, a bridge's status, whether its camera
// answers, and what is wrong with a camera file.

#include "krbase/krresult.h"
#include "krbase/krstring.h"
#include "krbase/krstringlist.h"

#include <cstddef>
#include <optional>

namespace krgui {

// Thread: any.

/// A template of a CL Protocol driver without its directory and file: twice, where there is a "#" behind the first
/// character, what follows the first "#"; then blanks for "#".
KrString ShortenTemplate(const KrString& aTemplate);
/// A camera's identifier: what follows the second "#" behind the first character, where there are two; then blanks for
/// "#".
KrString ShortenCameraID(const KrString& aCameraID);
/// The identifier of a CL Protocol description: what follows the second "@" behind the first character, where there are
/// two.
KrString ShortenXMLID(const KrString& aXMLID);

/// Of a bridge with so many parameters, or without any array of them.
KrString FormatBridgeStatus(std::optional<std::size_t> aParameterCount);
/// Of a bridge's camera, by KrCameraBridge::GetCameraState: what is wrong first, as that alone may have room; empty
/// while it answers.
KrString FormatCameraState(const KrResult& aState);
/// Of a camera file that could not be loaded, with its mistakes line by line.
KrString FormatCameraFileError(const KrStringList& aMistakes);

} // namespace krgui
