#pragma once
// All parameters of a device: a description brought to life over a register port. Finding the description is left to
// KrGenDescription, bytes to the port.

#include "krbase/krstringlist.h"
#include "krgenicam/ikrregisterport.h"
#include "krgenicam/krgenboolean.h"
#include "krgenicam/krgencategory.h"
#include "krgenicam/krgencommand.h"
#include "krgenicam/krgendescription.h"
#include "krgenicam/krgenenum.h"
#include "krgenicam/krgeneventsink.h"
#include "krgenicam/krgenfloat.h"
#include "krgenicam/krgeninteger.h"
#include "krgenicam/krgenregister.h"
#include "krgenicam/krgensettings.h"
#include "krgenicam/krgenstring.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

/// How an array is opened.
struct KrGenArrayOptions {
  /// How long one register access may take, in milliseconds.
  std::uint32_t timeoutMs = 1000;
  /// The registers may be read only: nothing is writable.
  bool isReadOnly = false;
  /// The clock by which polling times pass, in milliseconds from any beginning; a steady clock where it is empty.
  std::function<std::uint64_t()> getTimeMs = {};
};

/// The parameters of a device.
///
/// Thread: any, but for construction and destruction, which must not happen inside an event sink. Operations of several
/// threads are done one after the other; sinks are called on a thread of the array's own.
/// Ownership: the application's, or the open device's; borrows the port. Parameters and categories belong to it.
///
///     std::unique_ptr<KrGenParameterArray> array;
///     KrResult result = KrGenParameterArray::Open(description, port, {}, array);
class KR_EXPORT KrGenParameterArray {
public:
  /// While it lives what a thread does with an array is as one operation: those of other threads wait, its own go on.
  /// For steps that nobody may come between, as moving a selector, setting what it selects, and putting it back.
  ///
  /// Thread: ends on the one that made it, which waits for no other thread meanwhile; of one thread there may be
  /// several. Cancel and Close work as ever. Ownership: ends before the array.
  class KR_EXPORT Turn {
  public:
    /// Waits until no other thread has a turn, and begins one.
    explicit Turn(KrGenParameterArray& aArray);
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

  private:
    krgenicam::NodeMap& mMap;
  };

  /// Reads a description. BadData with line and column where it is no description at all or none that this version
  /// knows; a fault in one node only costs that node (GetFaults). aArray is set on success only.
  static KrResult Open(const KrGenDescription& aDescription, IKrRegisterPort& aPort, const KrGenArrayOptions& aOptions,
                       std::unique_ptr<KrGenParameterArray>& aArray);
  ~KrGenParameterArray();
  KrGenParameterArray(const KrGenParameterArray&) = delete;
  KrGenParameterArray& operator=(const KrGenParameterArray&) = delete;

  /// How many features the root category reaches, each counted once.
  std::size_t GetCount() const;
  /// The feature at an index, in the order in which the categories name them; null at or beyond GetCount().
  KrGenParameter* operator[](std::size_t aIndex) const;
  /// The node of a name, feature or not, or null; "Std::" or "Cust::" before the name asks for its name space, too.
  /// Nodes that are no parameters (categories, ports) are not found.
  KrGenParameter* Get(const KrString& aName) const;
  /// The category of a name, or null; "Root" is the first.
  KrGenCategory* GetCategory(const KrString& aName) const;

  /// The typed view of a name, or null where there is no such parameter or one of another type.
  KrGenInteger* GetInteger(const KrString& aName) const { return dynamic_cast<KrGenInteger*>(Get(aName)); }
  /// As GetInteger.
  KrGenFloat* GetFloat(const KrString& aName) const { return dynamic_cast<KrGenFloat*>(Get(aName)); }
  /// As GetInteger.
  KrGenEnum* GetEnum(const KrString& aName) const { return dynamic_cast<KrGenEnum*>(Get(aName)); }
  /// As GetInteger.
  KrGenBoolean* GetBoolean(const KrString& aName) const { return dynamic_cast<KrGenBoolean*>(Get(aName)); }
  /// As GetInteger.
  KrGenString* GetString(const KrString& aName) const { return dynamic_cast<KrGenString*>(Get(aName)); }
  /// As GetInteger.
  KrGenCommand* GetCommand(const KrString& aName) const { return dynamic_cast<KrGenCommand*>(Get(aName)); }

  /// Who made the device, as the description says.
  KrString GetVendorName() const;
  /// What model the device is, as the description says.
  KrString GetModelName() const;
  /// What is wrong with the description: node, line and reason of each fault, in the order of the lines.
  KrResult GetFaults(KrStringList& aFaults) const;

  /// Open until the array is closed.
  KrGenArrayAccess GetAccessMode() const;
  /// Forgets all values that were read; sinks hear of what turns out to be different.
  void InvalidateCache();
  /// Forgets the value of one node and of all that depends on it, as something else has changed it. NotFound for a name
  /// that is not there.
  KrResult Invalidate(const KrString& aName);
  /// Reads again what has a polling time that has passed, commands that are under way among it; sinks hear of what has
  /// changed. Returns the first failure, having tried all; Aborted when aStop ended it, which ends the access that is
  /// under way, as Cancel does, and is asked between two parameters.
  KrResult Poll(const std::stop_token& aStop = {});

  /// An event of the device (EventID): its data, which may be empty, are what the nodes of the event's port read.
  void DeliverEvent(std::uint64_t aEventID, const void* aData, std::size_t aLength);
  /// The data of a chunk (ChunkID): what the nodes of the chunk's port read, until the next data; null takes it away.
  void SetChunkData(std::uint64_t aChunkID, const void* aData, std::size_t aLength);

  /// Takes the values of all streamable parameters, under all positions of their selectors, which are put back
  /// afterwards. aProblems names what could not be read, and why; OK when everything could, else the first Aborted
  /// (also when aProgress ended it, asked between two), ConnectionLost or TimeLimitExceeded, or else the first failure.
  KrResult StoreSettings(KrGenSettings& aSettings, KrStringList& aProblems, const KrGenProgress& aProgress = {});
  /// Sets values in their order, in several passes where one depends on another, then reads all of them back. aProblems
  /// names what could not be set, or is not what was set, and why; OK when all is as stored, else the first failure.
  /// What can be set is set in any case. Aborted when aProgress ended it, which is asked between two settings: what was
  /// set stays set, and the selectors are put where the settings leave them if the device still answers.
  KrResult RestoreSettings(const KrGenSettings& aSettings, KrStringList& aProblems,
                           const KrGenProgress& aProgress = {});

  /// Ends the accesses that are under way with Aborted, at once; later ones are not touched.
  void Cancel();
  /// Ends accesses as Cancel, and lets every later one fail with ConnectionLost. Values are not had any more.
  void Close();

private:
  explicit KrGenParameterArray(std::unique_ptr<krgenicam::NodeMap> aMap);

  std::unique_ptr<krgenicam::NodeMap> mMap;
};
