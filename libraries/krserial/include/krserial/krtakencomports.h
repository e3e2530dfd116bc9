#pragma once
// The COM numbers that stand for a serial port of the host, also for one that is away at the moment: a port that is
// made must not have one of them, or what waits for the other would take it. Which ports there are now is left to
// KrHostSerialPorts.

#include "krbase/krresult.h"

#include <cstdint>
#include <set>

/// Thread: any.
class KR_EXPORT KrTakenCOMPorts {
public:
  /// The numbers of all names "comN" in the folder of links, whatever they are and wherever they lead, and of all ttys
  /// that were ever given one. SystemError when the folder cannot be read, and the results of reading a file of at most
  /// 1 MiB for the file of numbers; without them nothing is taken. aNumbers is set on success only.
  static KrResult GetNumbers(std::set<std::uint32_t>& aNumbers);
};
