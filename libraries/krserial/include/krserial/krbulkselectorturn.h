#pragma once
// Keeps others of this process from the selector of a device's bulk ports. What is selected, and whether it is put
// back, is left to who has the turn.

#include "krbase/krexport.h"
#include "krserial/krdeviceserial.h"

#include <memory>
#include <stop_token>

class IKrDeviceAdapter;

/// A turn at the parameters that all bulk ports of a device share, while it lives. Of a port that is no bulk port
/// there is nothing to share: it is had at once.
///
/// Thread: the constructor waits until all other turns at the same device (by its text) have ended; a thread that has
/// one must not ask for a second. Other processes are not kept from anything.
/// Ownership: the adapter is used by the constructor alone.
class KR_EXPORT KrBulkSelectorTurn {
public:
  /// A wait ends without the turn when aStop is stopped.
  KrBulkSelectorTurn(const IKrDeviceAdapter& aAdapter, KrDeviceSerial aPort, const std::stop_token& aStop = {});
  ~KrBulkSelectorTurn();
  KrBulkSelectorTurn(const KrBulkSelectorTurn&) = delete;
  KrBulkSelectorTurn& operator=(const KrBulkSelectorTurn&) = delete;

  /// Whether the turn is had; always without a stop.
  bool IsMine() const { return mIsMine; }

private:
  struct Selector;
  static std::shared_ptr<Selector> FindSelector(const IKrDeviceAdapter& aAdapter);

  std::shared_ptr<Selector> mSelector; // Null for a port that is no bulk port.
  bool mIsMine = true;
};
