#pragma once
// One reading of a feature: its access and its value as text, or why it could not be read. What becomes of it is left
// to the node.

#include "krbase/krstring.h"
#include "logic/browser/accessflags.h"

class KrGenParameter;

namespace krgui {

/// How a feature's value becomes text, beside its type. A MAC address goes before an IP address.
struct ValueStyle {
  bool isMACAddress = false;
  bool isIPAddress = false;
  bool showsDisplayNames = false; ///< Of the entries of an enumeration.
};

struct FeatureReading {
  AccessFlags access; ///< What was not found out is false.
  KrString value;
  bool keepsValue = false; ///< Not readable: what was read before still stands.
  bool hasError = false;   ///< A step failed, or the value lies outside the bounds, which leaves it its text.
  KrString error;
  KrString
      accessReason; ///< Why the feature is not writable, or less, though it might be; empty where nothing is known.
};

/// Reads a feature; waits as long as its registers need. What a register port throws becomes the error, too.
///
/// Thread: any.
FeatureReading ReadFeature(KrGenParameter& aFeature, const ValueStyle& aStyle);

} // namespace krgui
