#pragma once
// A gate before the registers of a device: who asks for one waits until a test opens it.

#include "gate.h"
#include "recordingport.h"

#include <cstdint>
#include <functional>
#include <utility>

/// Outlives the port's last access.
class PortGate : public Gate {
public:
  using Choice = std::function<bool(const RegisterAccessRecord&)>;

  /// From now on the accesses that are chosen wait at the gate, holding the port and the array. What they give, and
  /// what all others give at once, is aAnswer; for OK the port behind is asked.
  void CloseFor(RecordingPort& aPort, Choice aChoice, KrResult aAnswer = {}) {
    aPort.SetFault(
        [this, choice = std::move(aChoice), answer = std::move(aAnswer)](const RegisterAccessRecord& aAccess) {
          if (choice(aAccess))
            Wait({});
          return answer;
        });
  }
  void CloseAt(RecordingPort& aPort, std::uint64_t aAddress, KrResult aAnswer = {}) {
    CloseFor(
        aPort, [aAddress](const RegisterAccessRecord& aAccess) { return aAccess.address == aAddress; },
        std::move(aAnswer));
  }
};
