#pragma once
// The parameter array of a table of host features, made when it is asked for first. Which features there are is left to
// whoever gives the table.

#include "featuredescription.h"
#include "hostfeatureport.h"
#include "krgenicam/krgenparameterarray.h"

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace krdevice {

/// Thread: any, but for construction and destruction.
/// Ownership: owns table and array. The table's functions are called until Close has returned or later, where a sink
/// uses the array still; they borrow what outlives this.
class HostParameters {
public:
  /// aMake gives the table, when it is needed. The module's command to reset counters is added to it.
  HostParameters(FeatureModule aModule, std::function<krsystem::HostFeatures()> aMake);

  /// Gives the array. ConnectionLost after Close.
  KrResult Get(KrGenParameterArray*& aArray);
  /// Values may have changed by something else than a write; sinks hear of what turns out to be different. Reads
  /// nothing, and makes no array.
  void ForgetValues();
  /// Counters begin at 0, as what they count begins anew.
  void ForgetReset();
  /// Ends the array's accesses, now and from now on; the array stays, for whoever uses it still.
  void Close();

private:
  struct Made {
    explicit Made(krsystem::HostFeatures aFeatures) : features(std::move(aFeatures)), port(features) {}
    krsystem::HostFeatures features;
    HostFeaturePort port;
    std::unique_ptr<KrGenParameterArray> array; // Ends first: it stands on the port.
  };

  KrResult Make();
  Made* Find();

  const FeatureModule mModule;
  const std::function<krsystem::HostFeatures()> mMake;

  std::mutex mMutex; // Guards the members from here on.
  bool mIsClosed = false;
  std::unique_ptr<Made> mMade; // Never changes once it is there.
};

} // namespace krdevice
