#pragma once
// What the program has: the ports as it last counted them, and its sessions by reference. A process that is forked has
// neither.

#include "krbase/krclsockets.h"
#include "krclserial/clserkrg.h"
#include "port.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace krclserial {

/// Thread: any.
class Sessions {
public:
  /// The library's own.
  static Sessions& Get();

  Sessions(const Sessions&) = delete;
  Sessions& operator=(const Sessions&) = delete;
  /// Closes what the program left open, when the library is unloaded.
  ~Sessions();

  /// Counts what is published now; indexes are those of this count from now on. A directory that cannot be used has no
  /// ports.
  std::size_t CountPorts();
  /// The port of an index; nothing beyond the count. A program that never counts gets the ports that are there now.
  std::optional<KrCLPort> FindPort(std::size_t aIndex);

  hSerRef Add(const std::shared_ptr<Port>& aPort);
  /// The session; null for a reference that is none.
  std::shared_ptr<Port> Find(hSerRef aReference);
  /// Likewise, and the reference is none from now on.
  std::shared_ptr<Port> Remove(hSerRef aReference);

private:
  Sessions();

  void LeaveToParent();

  std::mutex mMutex; ///< Guards what follows.
  std::vector<KrCLPort> mPorts;
  bool mIsCounted = false;
  std::map<std::uintptr_t, std::shared_ptr<Port>> mSessions;
  std::uintptr_t mLastReference = 0; ///< References are numbers, so that a wrong one is found without being followed.
};

} // namespace krclserial
