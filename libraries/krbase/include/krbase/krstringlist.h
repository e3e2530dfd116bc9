#pragma once
// An ordered list of texts, as operations return them: load errors, names of ports, entries of an enumeration.

#include "krbase/krstring.h"

#include <cstddef>
#include <vector>

/// A list of texts in the order in which they were added; equal texts may occur several times.
///
/// Thread: a value; different objects may be used from different threads.
/// Ownership: owns its texts.
class KR_EXPORT KrStringList {
public:
  /// Appends a text.
  void Add(const KrString& aText);
  /// Removes all texts.
  void Clear();
  /// The number of texts.
  std::size_t GetCount() const;
  /// Whether there are no texts.
  bool IsEmpty() const;
  /// The text at an index; an index at or beyond GetCount() gives the empty text.
  const KrString& operator[](std::size_t aIndex) const;

  /// For range-based loops; valid until the list is changed.
  std::vector<KrString>::const_iterator begin() const;
  /// For range-based loops; valid until the list is changed.
  std::vector<KrString>::const_iterator end() const;

  /// Whether both have the same texts in the same order.
  friend bool operator==(const KrStringList&, const KrStringList&) = default;

private:
  std::vector<KrString> mTexts;
};
