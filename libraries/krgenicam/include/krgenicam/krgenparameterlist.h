#pragma once
// An ordered list of parameters, walked from its first to its last. What the parameters are is left to them.

#include "krbase/krexport.h"

#include <cstddef>
#include <vector>

class KrGenParameter;

/// A list of parameters.
///
/// Thread: a value with a place that GetFirst and GetNext move; one thread at a time.
/// Ownership: borrows the parameters, which belong to their array.
///
///     for (KrGenParameter* parameter = list.GetFirst(); parameter; parameter = list.GetNext())
class KR_EXPORT KrGenParameterList {
public:
  /// Appends a parameter, which is borrowed.
  void Add(KrGenParameter* aParameter);
  /// Appends all selectors of a parameter, those of its selectors among them, each once and after those that select it,
  /// as they have to be set in that order. Of more than fifteen the rest is left out.
  void AddSelectorsOf(KrGenParameter& aParameter);
  /// Leaves no parameters.
  void Clear();
  /// The number of parameters.
  std::size_t GetCount() const { return mParameters.size(); }
  /// Whether there are no parameters.
  bool IsEmpty() const { return mParameters.empty(); }
  /// The parameter at an index; null at or beyond GetCount().
  KrGenParameter* operator[](std::size_t aIndex) const;
  /// The first parameter, or null; GetNext() goes on from there.
  KrGenParameter* GetFirst();
  /// The parameter behind the one that was given last, or null at the end.
  KrGenParameter* GetNext();

  /// For range-based loops; valid until the list is changed.
  std::vector<KrGenParameter*>::const_iterator begin() const { return mParameters.begin(); }
  /// For range-based loops; valid until the list is changed.
  std::vector<KrGenParameter*>::const_iterator end() const { return mParameters.end(); }

private:
  std::vector<KrGenParameter*> mParameters;
  std::size_t mNext = 0;
};
