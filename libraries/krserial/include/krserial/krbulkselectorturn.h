#pragma once
// Keeps others of this process from the selector of a device's bulk ports. What is selected, and whether it is put
// back, is left to who has the turn.

#include "krbase/krexport.h"
#include "krserial/krdeviceserial.h"

#include <memory>
#include <mutex>

class IKrDeviceAdapter;

/// A turn at the parameters that all bulk ports of a device share, while it lives. Of a port that is no bulk port
/// there is nothing to share: it is had at once.
///
/// Thread: the constructor waits until all other turns at the same device (by its text) have ended; a thread that has
/// one must not ask for a second. Other processes are not kept from anything.
/// Ownership: the adapter is used by the constructor alone.
class KR_EXPORT KrBulkSelectorTurn {
public:
  KrBulkSelectorTurn(const IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort);
  ~KrBulkSelectorTurn();
  KrBulkSelectorTurn(const KrBulkSelectorTurn&) = delete;
  KrBulkSelectorTurn& operator=(const KrBulkSelectorTurn&) = delete;

private:
  std::shared_ptr<std::mutex> mMutex; // Null for a port that is no bulk port.
};
