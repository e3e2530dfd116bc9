#pragma once
// Finds the features that a line needs, each of the type that it has to have, and notes what is not as it has to be.
// What they are for is left to the lines.

#include "krgenicam/krgenparameterarray.h"

#include "krbase/krstringlist.h"

namespace krserial {

/// Thread: one at a time. Ownership: borrows the array; what it gives belongs to that.
class FeatureFinder {
public:
  explicit FeatureFinder(KrGenParameterArray& aArray) : mArray(aArray) {}

  /// A feature that there has to be; null where there is none that the device implements.
  template <typename Parameter>
  Parameter* Find(const KrString& aName) {
    KrGenParameter* const found = mArray.Get(aName);
    auto* const typed = dynamic_cast<Parameter*>(found);
    if (IsImplemented(typed)) {
      mHasSome = true;
      return typed;
    }
    Lack(aName + (!found ? "" : typed ? " (not implemented)" : " (of another type)"));
    return nullptr;
  }
  /// One that need not be there: null, and no lack, for an empty name.
  template <typename Parameter>
  Parameter* FindNamed(const KrString& aName) {
    return aName.IsEmpty() ? nullptr : Find<Parameter>(aName);
  }
  /// One that may be missing although it has a name.
  template <typename Parameter>
  Parameter* FindOptional(const KrString& aName) {
    auto* const typed = dynamic_cast<Parameter*>(mArray.Get(aName));
    return IsImplemented(typed) ? typed : nullptr;
  }
  /// An entry that there has to be; nothing more to be said where there is no enumeration.
  void NeedEntry(KrGenEnum* aEnum, const KrString& aEntry) {
    KrGenEnumEntry* entry = nullptr;
    if (aEnum && !(aEnum->GetEntryByName(aEntry, entry).IsOK() && IsImplemented(entry)))
      Lack("the entry " + aEntry + " of " + aEnum->GetName());
  }
  /// Notes that something is not as it has to be.
  void Lack(const KrString& aWhat) { mLacks.Add(aWhat); }

  bool HasAll() const { return mLacks.GetCount() == 0; }
  /// Whether any feature that there has to be is there.
  bool HasSome() const { return mHasSome; }
  /// What is not as it has to be, for people.
  const KrStringList& GetLacks() const { return mLacks; }
  /// Of the device, where it could not be asked: then what it has is not known.
  const KrResult& GetFailure() const { return mFailure; }
  KrGenParameterArray& GetArray() { return mArray; }

private:
  // A device that could not be asked once is asked no more: each question may take as long as its time limit.
  bool IsImplemented(KrGenParameter* aParameter) {
    bool isImplemented = false;
    if (aParameter && mFailure.IsOK())
      mFailure = aParameter->IsImplemented(isImplemented);
    return isImplemented;
  }

  KrGenParameterArray& mArray;
  KrStringList mLacks;
  bool mHasSome = false;
  KrResult mFailure;
};

} // namespace krserial
