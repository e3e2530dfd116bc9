#pragma once
// The features of a description, each by its type, as a program that reads them has them: in our array, and in Aravis'
// node map. How long that takes is left to others.

#include "aravismap.h"
#include "krgenicam/krgenparameterarray.h"

#include <cstddef>
#include <variant>
#include <vector>

namespace benchmarks {

/// Ownership: borrows the array.
struct OurFeatures {
  using View = std::variant<KrGenInteger*, KrGenFloat*, KrGenEnum*, KrGenBoolean*, KrGenString*>;

  explicit OurFeatures(KrGenParameterArray& aArray);

  /// Returns how many have a value at the moment.
  std::size_t ReadAll() const;
  /// Returns how many can be read.
  std::size_t AskAccess() const;

  std::vector<KrGenParameter*> all;
  std::vector<View> views; ///< Of those that have a value.
};

/// The same features in the same order. Ownership: borrows the map.
struct TheirFeatures {
  using View = std::variant<ArvGcInteger*, ArvGcFloat*, ArvGcEnumeration*, ArvGcBoolean*, ArvGcString*>;

  TheirFeatures(const AravisMap& aMap, const OurFeatures& aOurs);

  std::size_t ReadAll() const;
  /// Returns of how many all was told.
  std::size_t AskAccess() const;

  std::vector<ArvGcFeatureNode*> all;
  std::vector<View> views;
};

/// Takes out of both the features that one of them cannot read at the moment, so that both do the same work.
void KeepWhatBothRead(OurFeatures& aOurs, TheirFeatures& aTheirs);

} // namespace benchmarks
