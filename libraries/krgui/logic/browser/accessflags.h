#pragma once
// What can be done with a feature, as it was when it was read last.

namespace krgui {

struct AccessFlags {
  bool isReadable = false;
  bool isWritable = false;
  bool isImplemented = false;
  bool isAvailable = false;
  friend bool operator==(const AccessFlags&, const AccessFlags&) = default;
};

} // namespace krgui
