#pragma once
// The words for types, visibilities and name spaces, and the features that are shown as addresses by their name.

#include "krbase/krstring.h"
#include "krgenicam/krgentypes.h"

namespace krgui {

const char* TypeToText(KrGenType aType);
const char* VisibilityToText(KrGenVisibility aVisibility);
const char* NameSpaceToText(KrGenNameSpace aNameSpace);

/// Whether a feature of this name is shown and edited as a dotted IPv4 address, or shown as a MAC address, whatever its
/// type and representation.
bool IsIPAddressName(const KrString& aName);
bool IsMACAddressName(const KrString& aName);

} // namespace krgui
