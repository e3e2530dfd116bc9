#pragma once
// A streaming camera's place on a network adapter, so that each camera of this process hears when others come and go.
// What a camera's share is worth, and how the camera is told, is left to others.

#include <cstdint>
#include <functional>
#include <string>

namespace krtransport {

/// Counts its camera among those on the adapter from construction to destruction.
///
/// Thread: any, one at a time; another one's coming and going is told on its thread.
class AdapterMembership {
public:
  /// aOnChange is called when another camera came or went, under a lock that construction and destruction of any
  /// membership take: it only passes the word on, and does not wait. Destruction returns when no call runs.
  AdapterMembership(std::string aAdapterName, std::function<void()> aOnChange);
  ~AdapterMembership();
  AdapterMembership(const AdapterMembership&) = delete;
  AdapterMembership& operator=(const AdapterMembership&) = delete;

  /// How many cameras of this process stream on the adapter, this one included.
  std::uint32_t CountCameras() const;

private:
  void TellOthers() const;

  const std::string mAdapterName;
  const std::function<void()> mOnChange;
};

} // namespace krtransport
