#pragma once
// How a cost goes with the size of what it is for.

#include "figure.h"

#include <optional>
#include <string>

namespace benchmarks {

/// What some items cost together: us, and a peer.
struct SizedCost {
  double items = 0;
  double ours = 0;
  double peers = 0;
};

/// The cost of one of many items by that of one of few: 1 where it grows with the items alone, less where part of it is
/// there for any number, more where items are in each other's way.
inline double GetGrowth(double aFew, double aFewCost, double aMany, double aManyCost) {
  return aManyCost / aMany / (aFewCost / aFew);
}

inline void PrintGrowth(const std::string& aName, const SizedCost& aFew, const SizedCost& aMany,
                        const std::optional<std::string>& aPeer) {
  Figure figure{aName + "_growth", GetGrowth(aFew.items, aFew.ours, aMany.items, aMany.ours), "times"};
  if (aPeer)
    figure.peer = Peer{*aPeer, GetGrowth(aFew.items, aFew.peers, aMany.items, aMany.peers)};
  PrintFigure(figure);
}

} // namespace benchmarks
