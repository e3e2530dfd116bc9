#pragma once
// One reading of a feature: its access and its value as text, or why it could not be read. What becomes of it is left
// to the node.

#include "krbase/krstring.h"
#include "logic/browser/accessflags.h"

#include <cstdint>
#include <optional>
#include <variant>

class KrGenParameter;

namespace krgui {

/// How a feature's value becomes text, beside its type. A MAC address goes before an IP address.
struct ValueStyle {
  bool isMACAddress = false;
  bool isIPAddress = false;
  bool showsDisplayNames = false; ///< Of the entries of an enumeration.
};

/// Why a feature is not writable, or less, though it might be. Costs the device as much as the access itself, so it is
/// asked for once for each change of the access.
struct AccessReason {
  std::optional<AccessFlags> access; ///< What it explains; nothing where nothing was explained.
  KrString text;                     ///< Empty where nothing is known.
};

/// The number behind a value's text, whole: of an integer, an enumeration or a float; nothing where it was not read.
using FeatureNumber = std::variant<std::monostate, std::int64_t, double>;

struct FeatureReading {
  AccessFlags access; ///< What was not found out is false.
  KrString value;     ///< As KeepText leaves it, as are the other texts.
  FeatureNumber number;
  bool isCut = false; ///< The value is the beginning of a text that a device has.
  bool isTooLongToEdit = false;
  bool keepsValue = false; ///< Not readable: what was read before still stands.
  bool hasError = false;   ///< A step failed, or the value lies outside the bounds, which leaves it its text.
  KrString error;
  AccessReason accessReason;
};

/// Reads a feature; waits as long as its registers need. What a register port throws becomes the error, too. aKnown is
/// the reason that the last reading gave, which still stands where the access is what it was then.
///
/// Thread: any.
FeatureReading ReadFeature(KrGenParameter& aFeature, const ValueStyle& aStyle, const AccessReason& aKnown = {});

} // namespace krgui
