#pragma once
// A feature of a device, or another node of its description, whatever its type. The typed views (KrGenInteger and so
// on) are had by dynamic_cast.

#include "krbase/krresult.h"
#include "krbase/krstringlist.h"
#include "krgenicam/krgentypes.h"

#include <cstdint>

class KrGenEventSink;
class KrGenParameterList;

namespace krgenicam {
class Node;
class NodeMap;
} // namespace krgenicam

/// A parameter.
///
/// Results of the operations that reach the device: AccessDenied for what cannot be read or written at the moment (the
/// description says why: not implemented, not available, locked, by access mode), OutOfRange for a value outside range,
/// increment or set of valid values, InvalidInput for a value of the wrong form, an entry that does not exist (the
/// description lists those that can be chosen) and a text too long, BadData where the camera's description is at fault
/// (naming node, line and reason), and what a register port gives. A value that is asked for is set on success only,
/// and nothing is written unless all of it can be.
///
/// Thread: any. A call may wait as long as the registers need that it touches, and for calls of other threads.
/// Ownership: the array's, as long as the array lives.
///
///     if (auto* exposure = dynamic_cast<KrGenFloat*>(array->Get("ExposureTime")))
///       KrResult result = exposure->SetValue(5000.0);
class KR_EXPORT KrGenParameter {
public:
  virtual ~KrGenParameter();
  KrGenParameter(const KrGenParameter&) = delete;
  KrGenParameter& operator=(const KrGenParameter&) = delete;

  /// The name by which the array knows the parameter.
  KrResult GetName(KrString& aName) const;
  /// The same.
  KrString GetName() const;
  /// The name for people; the name itself where the description has none.
  KrResult GetDisplayName(KrString& aDisplayName) const;
  /// What it is, in a few words; empty where the description has none.
  KrResult GetToolTip(KrString& aToolTip) const;
  /// What it is, at length; empty where the description has none.
  KrResult GetDescription(KrString& aDescription) const;
  /// The address of more documentation; empty where there is none. Text of the device: not to be opened unseen.
  KrResult GetDocuURL(KrString& aURL) const;
  /// Whether the name is a standard's or the maker's own.
  KrResult GetNameSpace(KrGenNameSpace& aNameSpace) const;
  /// The stricter one of Visibility and ImposedVisibility.
  KrResult GetVisibility(KrGenVisibility& aVisibility) const;
  /// Which of the typed classes it is.
  KrResult GetType(KrGenType& aType) const;
  /// The same.
  KrGenType GetType() const;
  /// Whether users of a level are to see the parameter.
  bool IsVisible(KrGenVisibility aVisibility) const;
  /// Whether the value belongs to the settings that are stored and restored.
  KrResult IsStreamable(bool& aIsStreamable) const;
  /// Whether the description advises against its use.
  KrResult IsDeprecated(bool& aIsDeprecated) const;
  /// The path of the first category that holds the parameter, from the root on, parted by backslashes, for example
  /// "Root\ImageFormatControl"; empty for a node that no category holds.
  KrResult GetCategory(KrString& aPath) const;
  /// The same.
  KrString GetCategory() const;
  /// The paths of all categories that hold it, in the order of the description.
  KrResult GetCategories(KrStringList& aPaths) const;
  /// The line of the description where the node begins, from 1 on.
  std::uint32_t GetLine() const;

  /// What can be done at the moment. What cannot be found out (a predicate that cannot be read) counts as not
  /// available.
  KrGenAccessMode GetAccessMode();
  /// What can be done at the moment, as yes or no. The results with an argument are those of the register port where it
  /// failed (TimeLimitExceeded, ConnectionLost, Aborted …), so that the answer is not known and the argument stays as
  /// it was; the others say no then, but for IsWritable of what nothing but an unknown lock could keep from being
  /// written. Each question asks the device for what it needs: IsImplemented for pIsImplemented alone, IsAvailable
  /// besides for availability, IsReadable for no lock, IsWritable for all of it.
  KrResult IsImplemented(bool& aIsImplemented);
  /// The same, without the port's result.
  bool IsImplemented();
  /// Whether it is there at the moment; see IsImplemented.
  KrResult IsAvailable(bool& aIsAvailable);
  /// The same, without the port's result.
  bool IsAvailable();
  /// Whether it can be read at the moment; see IsImplemented.
  KrResult IsReadable(bool& aIsReadable);
  /// The same, without the port's result.
  bool IsReadable();
  /// Whether it can be written at the moment; see IsImplemented.
  KrResult IsWritable(bool& aIsWritable);
  /// The same, without the port's result.
  bool IsWritable();
  /// Why the parameter is not implemented, not available or not writable at the moment: plain text in a sentence or two
  /// for people that names the node which says so and its value, for example "Locked by TLParamsLocked (1).", "Not
  /// available: ChunkModeActive is 0." or "Not available, as GainReg is not: GainEnable is 0."; where the device did
  /// not answer, what it was asked for. Empty where nothing limits the parameter, and where it can never be written, or
  /// never be read, whatever the device says. Asks the device for what is not remembered; ConnectionLost once the array
  /// is closed.
  KrResult GetAccessReason(KrString& aReason);

  /// The parameters whose value says which of several this one stands for: its selectors.
  KrResult GetSelectingParameters(KrGenParameterList& aParameters);
  /// The parameters that this one selects.
  KrResult GetSelectedParameters(KrGenParameterList& aParameters);
  /// The same feature in other units (pAlias) and in another type (pCastAlias); null where there is none.
  KrGenParameter* GetAlias();
  /// The same feature in another type (pCastAlias); null where there is none.
  KrGenParameter* GetCastAlias();

  /// The value as text, as FromString takes it and settings are stored: integers decimal, floats with as many digits as
  /// it takes to read the same number, booleans 1 and 0, the entry's name for an enumeration, hexadecimal digits for a
  /// register. InvalidInput for a type without a value (commands).
  KrResult ToString(KrString& aText);
  /// Sets the value from text; takes besides hexadecimal integers (0x…), true and false in any case, and an entry's
  /// number. InvalidInput for a text that is no value of the type.
  KrResult FromString(const KrString& aText);

  /// Registers a sink; InvalidInput for null or one that is registered here already, SystemError without a thread.
  KrResult RegisterEventSink(KrGenEventSink* aSink);
  /// Takes a sink out; returns when no call of it for this parameter is running on another thread, and at once inside
  /// the sink's own call. InvalidInput when it is not registered.
  KrResult UnregisterEventSink(KrGenEventSink* aSink);

protected:
  /// A view on a node of a map, both of which outlive it.
  KrGenParameter(krgenicam::NodeMap& aMap, krgenicam::Node& aNode) : mMap(aMap), mNode(aNode) {}

  krgenicam::NodeMap& mMap; ///< The map that each call is an operation on.
  krgenicam::Node& mNode;   ///< What this is a view on.

private:
  friend class krgenicam::NodeMap;
};
