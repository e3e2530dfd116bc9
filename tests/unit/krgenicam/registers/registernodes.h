#pragma once
// Register elements of descriptions, as texts.

#include <string>

/// A register of a kind at the port "Device", with further elements in it.
inline std::string MakeNode(const std::string& aKind, const std::string& aName, const std::string& aPlace,
                            const std::string& aFurther = "<AccessMode>RW</AccessMode>") {
  return "<" + aKind + " Name=\"" + aName + "\">" + aPlace + "<pPort>Device</pPort>" + aFurther + "</" + aKind + ">\n";
}

inline std::string Address(const std::string& aAddress) {
  return "<Address>" + aAddress + "</Address>";
}

inline std::string Length(const std::string& aLength) {
  return "<Length>" + aLength + "</Length>";
}

inline std::string AccessMode(const std::string& aMode) {
  return "<AccessMode>" + aMode + "</AccessMode>";
}
